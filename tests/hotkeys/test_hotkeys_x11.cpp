#include "app/appservices.h"
#include "config/preferences.h"
#include "hotkeys/hotkeycenter.h"
#include "hotkeys/hotkeyrecorder.h"
#include "hotkeys/x11_hotkeys.h"
#include "settings/settingswindow.h"

#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

#include <X11/keysym.h>
#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

namespace {
constexpr quint32 ctrlAlt = HotKeyModifier::Ctrl | HotKeyModifier::Alt;
constexpr quint16 xcbCtrlAlt = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
} // namespace

// Quillon's side, as after a start: the preferences, the key grabs and both
// centres, whose actions count the presses.
struct Running {
    explicit Running(const QString &preferencesFile)
        : preferences(preferencesFile)
        , backend(X11HotKeys::create())
        , centers(preferences, *backend)
    {
        centers.search().setAction([this] { ++searches; });
        centers.menu().setAction([this] { ++menus; });
    }
    Preferences preferences;
    std::unique_ptr<X11HotKeys> backend;
    HotKeyCenters centers;
    int searches = 0;
    int menus = 0;
};

// Runs against a real X server (Xvfb): Quillon's grabs, another client's
// grabs on a second connection, and key presses through XTEST (xdotool).
class TestHotKeysX11 : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    xcb_connection_t *m_other = nullptr;
    xcb_key_symbols_t *m_otherSymbols = nullptr;

    QString preferencesFile() const { return m_dir.filePath(QStringLiteral("Quillon.conf")); }

    // What another program does to own a combination: grab it on the root window.
    bool otherClientGrabs(xcb_keysym_t keysym, bool grab = true)
    {
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(m_other)).data->root;
        xcb_keycode_t *codes = xcb_key_symbols_get_keycode(m_otherSymbols, keysym);
        bool ok = codes != nullptr && *codes != XCB_NO_SYMBOL;
        for (const xcb_keycode_t *code = codes; ok && *code != XCB_NO_SYMBOL; ++code) {
            const xcb_void_cookie_t cookie = grab ? xcb_grab_key_checked(m_other, 1, root, xcbCtrlAlt, *code,
                                                                         XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)
                                                  : xcb_ungrab_key_checked(m_other, *code, root, xcbCtrlAlt);
            if (xcb_generic_error_t *error = xcb_request_check(m_other, cookie)) {
                ok = false;
                free(error);
            }
        }
        free(codes);
        return ok;
    }

    // Keys pressed through XTEST: "key", or "keydown" and "keyup" to hold them.
    static void xdotool(const QString &action, const QString &keys)
    {
        QCOMPARE(QProcess::execute(QStringLiteral("xdotool"), {action, keys}), 0);
    }
    static void press(const QString &keys) { xdotool(QStringLiteral("key"), keys); }

private Q_SLOTS:
    void initTestCase()
    {
        QCOMPARE(QGuiApplication::platformName(), QStringLiteral("xcb"));
        QStandardPaths::setTestModeEnabled(true);
        qputenv("XDG_CONFIG_HOME", m_dir.filePath(QStringLiteral("config")).toUtf8());
        // None of this machine's own desktop shortcuts: only X decides what is taken.
        qputenv("XDG_DATA_DIRS", m_dir.filePath(QStringLiteral("data")).toUtf8());
        qputenv("GSETTINGS_BACKEND", "memory");
        m_other = xcb_connect(nullptr, nullptr);
        QVERIFY(!xcb_connection_has_error(m_other));
        m_otherSymbols = xcb_key_symbols_alloc(m_other);
    }

    void cleanupTestCase()
    {
        xcb_key_symbols_free(m_otherSymbols);
        xcb_disconnect(m_other);
    }

    void recordedInSettingsSavedRestoredAndPressed()
    {
        QVERIFY(otherClientGrabs(XK_j));
        {
            Running quillon(preferencesFile());
            AppServices services;
            SettingsWindow window(services.settingsServices(quillon.centers));
            window.present();
            QVERIFY(QTest::qWaitForWindowExposed(&window));
            HotKeyRecorder *recorder = window.searchHotKey();
            QPushButton *button = recorder->recordButton();
            QVERIFY(!recorder->warning()->isVisible());
            QTest::mouseClick(button, Qt::LeftButton);
            QCOMPARE(button->text(), QStringLiteral("Press keys"));

            // Another client's combination is refused, and recording goes on.
            QTest::keyClick(button, Qt::Key_J, Qt::ControlModifier | Qt::AltModifier);
            QVERIFY(recorder->warning()->isVisible());
            QCOMPARE(recorder->warning()->text(), QStringLiteral("Shortcut used by another action"));
            QVERIFY(recorder->model().isRecording());
            QVERIFY(!quillon.preferences.contains(QStringLiteral("HotKeyKeyCode")));
            QVERIFY(otherClientGrabs(XK_j, false));

            QTest::keyClick(button, Qt::Key_K, Qt::ControlModifier | Qt::AltModifier);
            QCOMPARE(button->text(), QStringLiteral("Ctrl+Alt+K"));
            QVERIFY(recorder->clearButton()->isVisible());
            const Preferences saved(preferencesFile());
            QCOMPARE(saved.value(QStringLiteral("HotKeyKeyCode")).toUInt(), quint32(Qt::Key_K));
            QCOMPARE(saved.value(QStringLiteral("HotKeyModifiers")).toUInt(), ctrlAlt);
            QCOMPARE(saved.value(QStringLiteral("HotKeyDisplay")).toString(), QStringLiteral("Ctrl+Alt+K"));

            press(QStringLiteral("ctrl+alt+k"));
            QTRY_COMPARE(quillon.searches, 1);
            // Held down, the key repeats; the action does not.
            xdotool(QStringLiteral("keydown"), QStringLiteral("ctrl+alt+k"));
            QTest::qWait(700);
            xdotool(QStringLiteral("keyup"), QStringLiteral("ctrl+alt+k"));
            QTest::qWait(100);
            QCOMPARE(quillon.searches, 2);
            QCOMPARE(quillon.menus, 0);
        }
        // While Quillon is gone, the combination is free for others.
        QVERIFY(otherClientGrabs(XK_k));
        QVERIFY(otherClientGrabs(XK_k, false));

        // Started again: the saved combination comes back, CapsLock or not.
        Running quillon(preferencesFile());
        quillon.centers.restore();
        QVERIFY(!quillon.centers.menu().isRegistered());
        press(QStringLiteral("Caps_Lock"));
        press(QStringLiteral("ctrl+alt+k"));
        press(QStringLiteral("Caps_Lock"));
        QTRY_COMPARE(quillon.searches, 1);
        quillon.centers.search().clear();
    }

    void replacingLeavesOneGrabAndPressesFollowTheKeys()
    {
        Running quillon(preferencesFile());
        HotKeyCenter &search = quillon.centers.search();
        QVERIFY(search.registerHotKey(Qt::Key_L, ctrlAlt, {}));
        QVERIFY(search.registerHotKey(Qt::Key_L, ctrlAlt, {}));
        QVERIFY(search.registerHotKey(Qt::Key_O, ctrlAlt, {}));
        // Nothing of Ctrl+Alt+L is left with Quillon.
        QVERIFY(otherClientGrabs(XK_l));
        QVERIFY(otherClientGrabs(XK_l, false));

        QVERIFY(quillon.centers.menu().registerHotKey(Qt::Key_M, ctrlAlt, {}));
        press(QStringLiteral("ctrl+alt+m"));
        QTRY_COMPARE(quillon.menus, 1);
        QCOMPARE(quillon.searches, 0);
        // Other modifiers make another combination.
        press(QStringLiteral("ctrl+alt+shift+o"));
        press(QStringLiteral("ctrl+alt+o"));
        QTRY_COMPARE(quillon.searches, 1);
        QTest::qWait(100);
        QCOMPARE(quillon.searches, 1);
        quillon.centers.menu().clear();

        // O moves to another key, as it does when the layout changes.
        const auto xmodmap = [](const QString &from, const QString &to) {
            QCOMPARE(
                QProcess::execute(QStringLiteral("xmodmap"), {QStringLiteral("-e"), from, QStringLiteral("-e"), to}),
                0);
        };
        xmodmap(QStringLiteral("keycode 32 = NoSymbol"), QStringLiteral("keycode 97 = o O"));
        QTest::qWait(300);
        press(QStringLiteral("ctrl+alt+o"));
        QTRY_COMPARE(quillon.searches, 2);
        xmodmap(QStringLiteral("keycode 97 ="), QStringLiteral("keycode 32 = o O o O"));
        search.clear();
    }
};

QTEST_MAIN(TestHotKeysX11)
#include "test_hotkeys_x11.moc"
