#include "config/preferences.h"
#include "fakebackend.h"
#include "hotkeys/accelerators.h"
#include "hotkeys/bindingroute.h"
#include "hotkeys/desktopshortcuts.h"
#include "hotkeys/hotkeycenter.h"
#include "hotkeys/hotkeymechanism.h"
#include "hotkeys/hotkeyrecordermodel.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using Outcome = HotKeyRecorderModel::KeyOutcome;

namespace {
constexpr quint32 ctrlAlt = HotKeyModifier::Ctrl | HotKeyModifier::Alt;
} // namespace

class TestHotKeys : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    std::unique_ptr<Preferences> m_preferences;
    std::unique_ptr<FakeBackend> m_backend;
    std::unique_ptr<HotKeyCenters> m_centers;
    QList<HotKeyCombination> m_desktop;

    QString preferencesFile() const { return m_dir.filePath(QStringLiteral("Quillon.conf")); }
    std::unique_ptr<HotKeyRecorderModel> recorder(HotKeyCenter &center)
    {
        auto model = std::make_unique<HotKeyRecorderModel>(center, m_centers->others(center),
                                                           QStringLiteral("Leertaste"), [this] { return m_desktop; });
        model->startRecording();
        return model;
    }

private Q_SLOTS:
    void init()
    {
        cleanup();
        QFile::remove(preferencesFile());
        m_preferences = std::make_unique<Preferences>(preferencesFile());
        m_backend = std::make_unique<FakeBackend>();
        m_centers = std::make_unique<HotKeyCenters>(*m_preferences, *m_backend);
        m_desktop.clear();
    }

    void cleanup()
    {
        m_centers.reset();
        m_backend.reset();
        m_preferences.reset();
    }

    void centresPersistReplaceAndForget()
    {
        HotKeyCenter &search = m_centers->search();
        // A fresh install has nothing to restore.
        m_centers->restore();
        QVERIFY(m_backend->grabs.empty());
        QCOMPARE(search.current(), std::nullopt);

        QVERIFY(search.registerHotKey(Qt::Key_K, ctrlAlt, QStringLiteral("Ctrl+Alt+K")));
        QVERIFY(search.registerHotKey(Qt::Key_K, ctrlAlt, QStringLiteral("Ctrl+Alt+K")));
        QVERIFY(search.registerHotKey(Qt::Key_J, ctrlAlt, QStringLiteral("Ctrl+Alt+J")));
        QCOMPARE(m_backend->grabs.size(), size_t(1));
        QCOMPARE(m_backend->grabs.begin()->second, (FakeBackend::Grabbed{Qt::Key_J, ctrlAlt, 1}));
        QCOMPARE(m_preferences->value(QStringLiteral("HotKeyKeyCode")).toUInt(), quint32(Qt::Key_J));
        QCOMPARE(m_preferences->value(QStringLiteral("HotKeyModifiers")).toUInt(), ctrlAlt);
        QCOMPARE(m_preferences->value(QStringLiteral("HotKeyDisplay")).toString(), QStringLiteral("Ctrl+Alt+J"));

        // A refused combination drops the old grab but keeps what was saved.
        m_backend->refusals.insert({Qt::Key_T, ctrlAlt}, HotKeyRefusal::Taken);
        QCOMPARE(search.registerHotKey(Qt::Key_T, ctrlAlt, QStringLiteral("Ctrl+Alt+T")),
                 HotKeyRegistration{HotKeyRefusal::Taken});
        QVERIFY(m_backend->grabs.empty());
        QVERIFY(!search.isRegistered());
        QCOMPARE(search.current()->keyCode, quint32(Qt::Key_J));

        // Clear forgets even what is not registered: saved by hand, say by an
        // earlier run that could not register it.
        m_preferences->setValue(QStringLiteral("MenuHotKeyKeyCode"), 32);
        m_preferences->setValue(QStringLiteral("MenuHotKeyModifiers"), 256);
        m_preferences->setValue(QStringLiteral("MenuHotKeyDisplay"), QStringLiteral("Super+Space"));
        m_centers->menu().clear();
        for (const char *key : {"MenuHotKeyKeyCode", "MenuHotKeyModifiers", "MenuHotKeyDisplay"})
            QVERIFY2(!m_preferences->contains(QString::fromLatin1(key)), key);

        // No display saved counts as an empty one.
        m_preferences->setValue(QStringLiteral("MenuHotKeyKeyCode"), int(Qt::Key_F5));
        QCOMPARE(m_centers->menu().current(), (HotKeyCombination{Qt::Key_F5, 0, {}}));
    }

    void eachSessionGetsTheMechanismThatWorksThere()
    {
        const QStringList gnome{QStringLiteral("GNOME")};
        const QStringList plasma{QStringLiteral("KDE")};
        const struct {
            const char *session;
            HotKeySession facts;
            HotKeyMechanism mechanism;
        } cases[] = {
            {"X11", {true, false, gnome, true, false}, HotKeyMechanism::X11Grabs},
            {"Xwayland", {true, true, gnome, true, false}, HotKeyMechanism::Portal},
            {"Plasma on Wayland", {false, true, plasma, true, true}, HotKeyMechanism::KGlobalAccel},
            {"Plasma on X11", {true, false, plasma, true, false}, HotKeyMechanism::KGlobalAccel},
            {"bare KWin", {false, true, {}, true, true}, HotKeyMechanism::KGlobalAccel},
            {"sway", {false, true, {}, true, false}, HotKeyMechanism::Portal},
            // A KDE program started the daemon, but GNOME's compositor has the keys.
            {"GNOME with the KDE daemon", {false, true, gnome, true, true}, HotKeyMechanism::Portal},
            {"no session bus", {false, true, plasma, false, false}, HotKeyMechanism::None},
        };
        for (const auto &c : cases)
            QVERIFY2(hotKeyMechanism(c.facts) == c.mechanism, c.session);
    }

    void lateAnswersSettleTheStatus()
    {
        m_backend->later = true;
        HotKeyCenter &search = m_centers->search();
        QSignalSpy changed(&search, &HotKeyCenter::statusChanged);
        QVERIFY(search.registerHotKey(Qt::Key_K, ctrlAlt, QStringLiteral("Ctrl+Alt+K")));
        QCOMPARE(search.status(), HotKeyStatus(HotKeyPending{}));
        QVERIFY(!search.isRegistered());
        const HotKeyHandle first = m_backend->lastHandle();

        Q_EMIT m_backend->bound(first, QStringLiteral("Press Ctrl+Alt+K"));
        QCOMPARE(search.status(), HotKeyStatus(HotKeyBound{QStringLiteral("Press Ctrl+Alt+K")}));
        QVERIFY(search.isRegistered());

        // An answer about a replaced combination changes nothing.
        QVERIFY(search.registerHotKey(Qt::Key_J, ctrlAlt, QStringLiteral("Ctrl+Alt+J")));
        Q_EMIT m_backend->refused(first, HotKeyRefusal::Taken);
        QCOMPARE(search.status(), HotKeyStatus(HotKeyPending{}));
        QVERIFY(!search.needsDesktopRoute());

        // Refused later: the choice stays saved for the desktop's own settings.
        Q_EMIT m_backend->refused(m_backend->lastHandle(), HotKeyRefusal::Unavailable);
        QCOMPARE(search.status(), HotKeyStatus(HotKeyRefusal::Unavailable));
        QVERIFY(search.needsDesktopRoute());
        QCOMPARE(search.current()->keyCode, quint32(Qt::Key_J));
        QCOMPARE(changed.count(), 4);

        // Keys changed in the desktop's settings become the saved ones, and
        // keys removed there are forgotten here.
        Q_EMIT m_backend->rebound(1, HotKeyCombination{Qt::Key_L, HotKeyModifier::Super, QStringLiteral("Meta+L")});
        QCOMPARE(search.current(), (HotKeyCombination{Qt::Key_L, HotKeyModifier::Super, QStringLiteral("Meta+L")}));
        QCOMPARE(search.status(), HotKeyStatus(HotKeyBound{QStringLiteral("Meta+L")}));
        Q_EMIT m_backend->rebound(2, std::nullopt);
        QVERIFY(search.current());
        Q_EMIT m_backend->rebound(1, std::nullopt);
        QCOMPARE(search.current(), std::nullopt);
        QCOMPARE(search.status(), HotKeyStatus(HotKeyUnset{}));
        QVERIFY(m_backend->grabs.empty());

        // An unavailable facility needs the desktop's route with nothing saved.
        m_backend->available = false;
        QVERIFY(search.needsDesktopRoute());
    }

    void desktopRouteNamesCommandsAndLines()
    {
        QCOMPARE(BindingRoute::desktopOf({QStringLiteral("ubuntu"), QStringLiteral("GNOME")}, false, false),
                 RouteDesktop::Gnome);
        QCOMPARE(BindingRoute::desktopOf({}, true, false), RouteDesktop::Sway);
        QCOMPARE(BindingRoute::desktopOf({QStringLiteral("Hyprland")}, false, false), RouteDesktop::Hyprland);
        QCOMPARE(BindingRoute::desktopOf({QStringLiteral("XFCE")}, false, false), RouteDesktop::Other);

        const HotKeyCombination suggested = BindingRoute::suggestedCombination(1);
        QCOMPARE(BindingRoute(RouteDesktop::Hyprland).configLine(BindingRoute::command(1), suggested),
                 QStringLiteral("bind = CTRL ALT, space, exec, quillon --toggle-search"));
        const HotKeyCombination superShiftF2{Qt::Key_F2, HotKeyModifier::Super | HotKeyModifier::Shift, {}};
        QCOMPARE(BindingRoute(RouteDesktop::Sway).configLine(BindingRoute::command(2), superShiftF2),
                 QStringLiteral("bindsym Mod4+Shift+F2 exec quillon --menu"));
        QCOMPARE(BindingRoute(RouteDesktop::Hyprland).configLine(BindingRoute::command(2), superShiftF2),
                 QStringLiteral("bind = SUPER SHIFT, F2, exec, quillon --menu"));
        // Desktops with a settings program have no line to paste.
        QVERIFY(BindingRoute(RouteDesktop::Gnome).configLine(BindingRoute::command(1), suggested).isEmpty());
    }

    void recorderDecidesOnKeys()
    {
        using enum Outcome;
        const auto none = Qt::KeyboardModifiers();
        const auto ctrlAltQt = Qt::ControlModifier | Qt::AltModifier;
        const auto ctrlShiftQt = Qt::ControlModifier | Qt::ShiftModifier;
        const auto allQt = Qt::MetaModifier | Qt::ShiftModifier | ctrlAltQt;
        const struct {
            int key;
            Qt::KeyboardModifiers modifiers;
            Outcome outcome;
            HotKeyCombination saved; // display empty: nothing saved
        } cases[] = {
            {Qt::Key_A, Qt::ShiftModifier, Refused, {}}, // Shift alone does not count
            {Qt::Key_A, none, Refused, {}},
            {Qt::Key_F13, none, Refused, {}}, // only F1-F12 stand alone
            {Qt::Key_Control, Qt::ControlModifier, Ignored, {}},
            {Qt::Key_Escape, none, Cancelled, {}},
            {Qt::Key_F5, none, Registered, {Qt::Key_F5, 0, QStringLiteral("F5")}},
            {Qt::Key_Space, ctrlAltQt, Registered, {Qt::Key_Space, 6144, QStringLiteral("Ctrl+Alt+Leertaste")}},
            {Qt::Key_Escape, Qt::MetaModifier, Registered, {Qt::Key_Escape, 256, QStringLiteral("Super+Esc")}},
            {Qt::Key_K, allQt, Registered, {Qt::Key_K, 6912, QStringLiteral("Ctrl+Alt+Shift+Super+K")}},
            {Qt::Key_Backtab, ctrlShiftQt, Registered, {Qt::Key_Tab, 4608, QStringLiteral("Ctrl+Shift+Tab")}},
        };
        for (const auto &c : cases) {
            init();
            auto model = recorder(m_centers->search());
            QCOMPARE(model->handleKey(c.key, c.modifiers), c.outcome);
            QCOMPARE(model->display(), c.saved.display);
            QCOMPARE(model->isRecording(), c.outcome != Outcome::Registered && c.outcome != Outcome::Cancelled);
            QVERIFY(!model->isTaken());
            QCOMPARE(m_centers->search().current(), c.saved.display.isEmpty() ? std::nullopt : std::optional(c.saved));
        }
    }

    void recorderRefusesCombinationsInUse()
    {
        m_desktop = {{Qt::Key_T, ctrlAlt, {}}};
        QVERIFY(m_centers->search().registerHotKey(Qt::Key_K, ctrlAlt, QStringLiteral("Ctrl+Alt+K")));
        m_backend->refusals.insert({Qt::Key_L, ctrlAlt}, HotKeyRefusal::Taken);
        auto model = recorder(m_centers->menu());
        QSignalSpy changed(model.get(), &HotKeyRecorderModel::changed);

        for (const int key : {Qt::Key_T, Qt::Key_K, Qt::Key_L}) {
            QCOMPARE(model->handleKey(key, Qt::ControlModifier | Qt::AltModifier), Outcome::Taken);
            QVERIFY(model->isTaken());
            QVERIFY(model->isRecording());
        }
        QCOMPARE(m_centers->menu().current(), std::nullopt);
        QCOMPARE(changed.count(), 3);

        // The next free combination goes through and the warning goes away.
        QCOMPARE(model->handleKey(Qt::Key_M, Qt::ControlModifier | Qt::AltModifier), Outcome::Registered);
        QVERIFY(!model->isTaken());
        // Starting again clears an old warning.
        model->startRecording();
        model->handleKey(Qt::Key_T, Qt::ControlModifier | Qt::AltModifier);
        model->startRecording();
        QVERIFY(!model->isTaken());

        model->clear();
        QCOMPARE(model->display(), QString());
        QCOMPARE(m_centers->menu().current(), std::nullopt);

        // Where the session has no global shortcuts, the combination is kept
        // for the desktop's own settings.
        m_backend->refusals.insert({Qt::Key_Space, HotKeyModifier::Super}, HotKeyRefusal::Unavailable);
        model->startRecording();
        QCOMPARE(model->handleKey(Qt::Key_Space, Qt::MetaModifier), Outcome::Unbound);
        QVERIFY(!model->isRecording());
        QCOMPARE(model->unbound(),
                 (HotKeyCombination{Qt::Key_Space, HotKeyModifier::Super, QStringLiteral("Super+Leertaste")}));
        QCOMPARE(m_centers->menu().current(), std::nullopt);
    }

    void gnomeAccelerators()
    {
        const QList<std::pair<QString, HotKeyCombination>> readable{
            {QStringLiteral("<Primary><Alt>F1"), {Qt::Key_F1, ctrlAlt, {}}},
            {QStringLiteral("<Shift><Super>Page_Up"),
             {Qt::Key_PageUp, HotKeyModifier::Shift | HotKeyModifier::Super, {}}},
            {QStringLiteral("<Control><Alt>t"), {Qt::Key_T, ctrlAlt, {}}},
            {QStringLiteral("Print"), {Qt::Key_Print, 0, {}}},
        };
        for (const auto &[text, combination] : readable) {
            QCOMPARE(fromGtkAccelerator(text), combination);
            // Written back in GNOME's spelling, it reads the same.
            QCOMPARE(fromGtkAccelerator(gtkAccelerator(combination.keyCode, combination.modifiers)), combination);
        }
        // Hyper is none of the four modifiers, so it never conflicts.
        for (const char *unreadable : {"<Hyper>x", "<Super>XF86Keyboard", "<Super", ""})
            QCOMPARE(fromGtkAccelerator(QString::fromLatin1(unreadable)), std::nullopt);
    }

    void kdeShortcutsAreRead()
    {
        QFile file(m_dir.filePath(QStringLiteral("kglobalshortcutsrc")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        // Active keys only (not the defaults), several per action, a comma as a key.
        file.write("[kwin]\n_k_friendly_name=KWin\n"
                   "Expose=Ctrl+F9\tMeta+Shift+W,Ctrl+F9,Toggle Present Windows, all\n"
                   "Walk Through Windows=none,Alt+Tab,Walk Through Windows\n"
                   "[org.kde.konsole.desktop]\nSettings=Ctrl+,,none,Settings\n");
        file.close();
        const QList<HotKeyCombination> expected{
            {Qt::Key_F9, HotKeyModifier::Ctrl, {}},
            {Qt::Key_W, HotKeyModifier::Super | HotKeyModifier::Shift, {}},
            {Qt::Key_Comma, HotKeyModifier::Ctrl, {}},
        };
        QCOMPARE(kdeShortcuts(file.fileName()), expected);
        QVERIFY(kdeShortcuts(m_dir.filePath(QStringLiteral("missing"))).isEmpty());
    }
};

QTEST_MAIN(TestHotKeys)
#include "test_hotkeys.moc"
