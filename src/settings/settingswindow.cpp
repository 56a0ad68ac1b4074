#include "settings/settingswindow.h"

#include "catalog/systemstrings.h"
#include "hotkeys/hotkeycenter.h"
#include "hotkeys/hotkeyrecorder.h"
#include "settings/generalpane.h"
#include "sources/contentsources.h"

#include <QFormLayout>
#include <QIcon>
#include <QTabWidget>
#include <QVBoxLayout>

SettingsWindow::SettingsWindow(SettingsServices services, QWidget *parent)
    : QWidget(parent, Qt::Window)
    , m_tabs(new QTabWidget(this))
    , m_general(new GeneralPane(services.preferences, services.store, services.updates, m_tabs))
{
    SystemStrings &strings = services.sources.context().strings;
    HotKeyCenters &hotKeys = services.hotKeys;
    QString title = strings.text(SystemString::Settings);
    if (title.endsWith(QStringLiteral("…")))
        title.chop(1);
    setWindowTitle(QStringLiteral("Quillon ") + title);
    setWindowIcon(QIcon(QStringLiteral(":/icons/quillon.svg")));
    m_searchHotKey = new HotKeyRecorder(hotKeys.search(), hotKeys.others(hotKeys.search()),
                                        QStringLiteral("quillon --toggle-search"), m_general);
    m_menuHotKey =
        new HotKeyRecorder(hotKeys.menu(), hotKeys.others(hotKeys.menu()), QStringLiteral("quillon --menu"), m_general);
    m_general->form()->addRow(tr("Search panel:"), m_searchHotKey);
    m_general->form()->addRow(tr("Menu at the mouse:"), m_menuHotKey);
    m_tabs->addTab(m_general, strings.text(SystemString::General));
    for (const QString &title : {strings.text(SystemString::Menus), strings.text(SystemString::Content),
                                 services.sources.title(MenuSource::applications())})
        m_tabs->addTab(new QWidget(m_tabs), title);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs);
    resize(720, 520);
}

void SettingsWindow::present()
{
    show();
    raise();
    activateWindow();
}
