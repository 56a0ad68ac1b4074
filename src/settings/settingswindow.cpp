#include "settings/settingswindow.h"

#include "catalog/systemstrings.h"
#include "hotkeys/hotkeycenter.h"
#include "hotkeys/hotkeyrecorder.h"
#include "sources/sourcetitles.h"

#include <QFormLayout>
#include <QIcon>
#include <QTabWidget>
#include <QVBoxLayout>

SettingsWindow::SettingsWindow(HotKeyCenters &hotKeys, QWidget *parent)
    : QWidget(parent, Qt::Window)
    , m_tabs(new QTabWidget(this))
{
    SystemStrings &strings = SystemStrings::shared();
    QString title = strings.text(SystemString::Settings);
    if (title.endsWith(QStringLiteral("…")))
        title.chop(1);
    setWindowTitle(QStringLiteral("Quillon ") + title);
    setWindowIcon(QIcon(QStringLiteral(":/icons/quillon.svg")));
    m_tabs->addTab(makeGeneralTab(hotKeys), strings.text(SystemString::General));
    for (const QString &title : {strings.text(SystemString::Menus), strings.text(SystemString::Content),
                                 applicationsTitle()})
        m_tabs->addTab(new QWidget(m_tabs), title);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs);
    resize(720, 520);
}

QWidget *SettingsWindow::makeGeneralTab(HotKeyCenters &hotKeys)
{
    auto *tab = new QWidget(m_tabs);
    m_searchHotKey = new HotKeyRecorder(hotKeys.search(), hotKeys.others(hotKeys.search()),
                                        QStringLiteral("quillon --toggle-search"), tab);
    m_menuHotKey = new HotKeyRecorder(hotKeys.menu(), hotKeys.others(hotKeys.menu()), QStringLiteral("quillon --menu"), tab);
    auto *form = new QFormLayout(tab);
    form->addRow(tr("Search panel:"), m_searchHotKey);
    form->addRow(tr("Menu at the mouse:"), m_menuHotKey);
    return tab;
}

void SettingsWindow::present()
{
    show();
    raise();
    activateWindow();
}
