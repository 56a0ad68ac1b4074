#include "settings/settingswindow.h"

#include "catalog/systemstrings.h"
#include "config/preferences.h"
#include "hotkeys/hotkeycenter.h"
#include "hotkeys/hotkeyrecorder.h"
#include "platform/ownicons.h"
#include "settings/applicationspane.h"
#include "settings/contentpane.h"
#include "settings/generalpane.h"
#include "settings/menuspane.h"
#include "sources/contentsources.h"

#include <QFormLayout>
#include <QIcon>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {
const QString geometryKey = QStringLiteral("SettingsWindowGeometry");
} // namespace

SettingsWindow::SettingsWindow(SettingsServices services, QWidget *parent)
    : QWidget(parent, Qt::Window)
    , m_services(services)
    , m_tabs(new QTabWidget(this))
    , m_general(new GeneralPane(services.preferences, services.store, services.updates,
                                services.sources.context().strings, m_tabs))
    , m_menus(new MenusPane(services, m_tabs))
    , m_content(new ContentPane(services, m_tabs))
    , m_applications(new ApplicationsPane(services, m_tabs))
{
    SystemStrings &strings = services.sources.context().strings;
    HotKeyCenters &hotKeys = services.hotKeys;
    QString title = strings.text(SystemString::Settings);
    if (title.endsWith(QStringLiteral("…")))
        title.chop(1);
    setWindowTitle(QStringLiteral("Quillon ") + title);
    setWindowIcon(applicationIcon());

    m_general->addHotKeyRows(hotKeys, strings);
    m_searchHotKey = m_general->searchHotKey();
    m_menuHotKey = m_general->menuHotKey();

    m_tabs->addTab(m_general, strings.text(SystemString::General));
    m_tabs->addTab(m_menus, strings.text(SystemString::Menus));
    m_tabs->addTab(m_content, strings.text(SystemString::Content));
    m_tabs->addTab(m_applications, services.sources.title(MenuSource::applications()));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs);

    resize(760, 560);
    restoreGeometry(services.preferences.value(geometryKey).toByteArray());
}

void SettingsWindow::present()
{
    show();
    raise();
    activateWindow();
}

void SettingsWindow::hideEvent(QHideEvent *event)
{
    m_services.preferences.setValue(geometryKey, saveGeometry());
    QWidget::hideEvent(event);
}
