#include "app/appdelegate.h"

#include "app/notraynotice.h"
#include "app/statusmenucontroller.h"
#include "app/updatewindow.h"
#include "catalog/systemstrings.h"
#include "common/mainthread.h"
#include "hotkeys/hotkeycenter.h"
#include "platform/tray.h"
#include "platform/trayhostwatch.h"
#include "search/searchpanelcontroller.h"
#include "settings/settingswindow.h"

#include <QCoreApplication>
#include <QMenu>
#include <QPointer>
#include <QTimer>

namespace {

QKeySequence sequenceOf(const HotKeyCombination &combination)
{
    Qt::KeyboardModifiers modifiers;
    if (combination.modifiers & HotKeyModifier::Ctrl)
        modifiers |= Qt::ControlModifier;
    if (combination.modifiers & HotKeyModifier::Alt)
        modifiers |= Qt::AltModifier;
    if (combination.modifiers & HotKeyModifier::Shift)
        modifiers |= Qt::ShiftModifier;
    if (combination.modifiers & HotKeyModifier::Super)
        modifiers |= Qt::MetaModifier;
    return QKeySequence(QKeyCombination(modifiers, Qt::Key(combination.keyCode)));
}

// The icon may take a moment to be placed by the panel: look every 50 ms,
// twenty times at most, then open anyway.
constexpr int placementPollMs = 50;
constexpr int placementAttempts = 20;
constexpr int loginTrayWaitMs = 5000;
constexpr int manualTrayWaitMs = 500;
const QString noTrayNoticeShownKey = QStringLiteral("NoTrayNoticeShown");
} // namespace

AppDelegate::AppDelegate(bool launchedAtLogin, QObject *parent)
    : QObject(parent)
    , m_launchedAtLogin(launchedAtLogin)
{
    QUILLON_ASSERT_MAIN_THREAD();
    // The user's own update check answers in a small window of its own.
    connect(&m_services.updates, &Updates::userCheckStarted, this, [this] { updateWindow().showChecking(); });
    connect(&m_services.updates, &Updates::userCheckFinished, this,
            [this](const UpdateCheckResult &result) { updateWindow().showResult(result); });
}

AppDelegate::~AppDelegate() = default;

UpdateWindow &AppDelegate::updateWindow()
{
    if (!m_updateWindow) {
        m_updateWindow = std::make_unique<UpdateWindow>(QCoreApplication::applicationVersion(),
                                                        [this](const QUrl &url) { m_services.opener.open(url); });
        connect(m_updateWindow.get(), &UpdateWindow::checkCancelled, &m_services.updates, &Updates::cancelUserCheck);
    }
    return *m_updateWindow;
}

void AppDelegate::start()
{
    QUILLON_ASSERT_MAIN_THREAD();
    m_services.shortcuts.refresh();
    // The keys work as soon as this is the one instance, whether or not a
    // panel shows the icon yet: until it does, they open the menu panel.
    installHotKeys();
    // The tray icon waits for the panel's tray host (bounded), so the tray
    // the panel actually speaks is chosen. At login the panel may still be
    // on its way; started by hand, a panel that is not there now will not
    // come, and the person is waiting.
    m_trayWatch = std::make_unique<TrayHostWatch>(m_launchedAtLogin ? loginTrayWaitMs : manualTrayWaitMs);
    connect(m_trayWatch.get(), &TrayHostWatch::ready, this, &AppDelegate::finishLaunching);
    m_trayWatch->start();
}

void AppDelegate::finishLaunching()
{
    m_statusMenu = std::make_unique<StatusMenuController>(
        m_services.statusMenuServices(), Tray::forSession(),
        StatusMenuController::Commands{
            [this] { showSettings(); },
            [this] { searchPanel().show(); },
            [] {
                // Only a key the desktop really bound.
                const HotKeyCenter &search = HotKeyCenters::shared().search();
                const auto combination = search.current();
                return combination && search.isRegistered() ? sequenceOf(*combination) : QKeySequence();
            },
        });
    connect(m_statusMenu.get(), &StatusMenuController::searchWanted, this, &AppDelegate::toggleSearchPanel);
    // One floating thing at a time: the menu opening sends the panel away.
    connect(&m_statusMenu->statusMenu(), &StatusMenu::aboutToOpen, this, [this] {
        if (m_searchPanel)
            m_searchPanel->close();
    });
    switch (m_statusMenu->trayKind()) {
    case TrayKind::PopUp:
        if (!m_launchedAtLogin)
            openMenuWhenPlaced(0);
        break;
    case TrayKind::Exported:
        if (!m_launchedAtLogin)
            showMenuPanel();
        break;
    case TrayKind::Absent:
        // At login only the first time: by then the person knows the way in.
        if (!m_launchedAtLogin || !m_services.preferences.value(noTrayNoticeShownKey).toBool())
            showNoTrayNotice();
        break;
    }
}

// The search key toggles the panel; the menu key pops the menu up at the
// mouse unless it is open already. Then the saved combinations come back.
void AppDelegate::installHotKeys()
{
    HotKeyCenters &hotKeys = HotKeyCenters::shared();
    const QPointer<AppDelegate> self(this);
    hotKeys.search().setAction([self] {
        if (self)
            self->handle(InstanceCommand::ToggleSearch);
    });
    hotKeys.menu().setAction([self] {
        if (self)
            self->handle(InstanceCommand::PopUpMenu);
    });
    hotKeys.restore();
}

void AppDelegate::openMenuWhenPlaced(int attempt)
{
    if (!m_statusMenu)
        return;
    const auto icon = m_statusMenu->iconGeometry();
    const bool placed = icon && icon->left() > 0;
    if (placed || attempt >= placementAttempts) {
        m_statusMenu->openMenu();
        return;
    }
    QTimer::singleShot(placementPollMs, this, [this, attempt] { openMenuWhenPlaced(attempt + 1); });
}

void AppDelegate::handle(InstanceCommand command)
{
    QUILLON_ASSERT_MAIN_THREAD();
    switch (command) {
    case InstanceCommand::Reopen:
        if (popsOwnMenu())
            openMenuWhenPlaced(0);
        else
            showMenuPanel();
        break;
    case InstanceCommand::PopUpMenu:
        if (!popsOwnMenu())
            showMenuPanel();
        else if (!m_statusMenu->isOpen())
            m_statusMenu->popUpAtMouse();
        break;
    case InstanceCommand::ShowSettings:
        showSettings();
        break;
    case InstanceCommand::ToggleSearch:
        toggleSearchPanel();
        break;
    }
}

bool AppDelegate::popsOwnMenu() const
{
    return m_statusMenu && m_statusMenu->trayKind() == TrayKind::PopUp;
}

// Nothing can pop a menu at the pointer here: the panel lists the menu
// instead, and the keyboard walks into its submenus.
void AppDelegate::showMenuPanel()
{
    searchPanel().showMenu(menuCommands());
}

MenuEntries AppDelegate::menuCommands()
{
    SystemStrings &strings = m_services.sources.context().strings;
    return {
        CommandEntry{strings.text(SystemString::Settings), [this] { showSettings(); }},
        CommandEntry{strings.text(SystemString::QuitApp).replace(QLatin1String("%@"), QStringLiteral("Quillon")),
                     [] { QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection); }},
    };
}

// Said once per start: the panel, the menu in it, and the ways back to it.
void AppDelegate::showNoTrayNotice()
{
    showMenuPanel();
    const HotKeyCenter &search = HotKeyCenters::shared().search();
    const HotKeyCombination keys = search.wanted().value_or(BindingRoute::suggestedCombination(search.number()));
    const QPointer<AppDelegate> self(this);
    searchPanel().showNotice(noTrayNotice(BindingRoute::forSession(), keys, [self](const PanelNotice &next) {
        if (self)
            self->searchPanel().showNotice(next);
    }));
    m_services.preferences.setValue(noTrayNoticeShownKey, true);
}

void AppDelegate::showSettings()
{
    if (!m_settings)
        m_settings = std::make_unique<SettingsWindow>(m_services.settingsServices(HotKeyCenters::shared()));
    m_settings->present();
}

SearchPanelController &AppDelegate::searchPanel()
{
    if (!m_searchPanel) {
        m_searchPanel = std::make_unique<SearchPanelController>(SearchPanelController::Services{
            m_services.sources,
            m_services.shortcuts,
            m_services.opener,
        });
    }
    return *m_searchPanel;
}

void AppDelegate::toggleSearchPanel()
{
    QUILLON_ASSERT_MAIN_THREAD();
    searchPanel().toggle();
}
