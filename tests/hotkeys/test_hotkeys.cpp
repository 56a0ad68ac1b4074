#include "config/preferences.h"
#include "fakebackend.h"
#include "hotkeys/accelerators.h"
#include "hotkeys/desktopshortcuts.h"
#include "hotkeys/hotkeycenter.h"
#include "hotkeys/hotkeyrecordermodel.h"
#include "hotkeys/portal_hotkeys.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using Outcome = HotKeyRecorderModel::KeyOutcome;
Q_DECLARE_METATYPE(HotKeyRecorderModel::KeyOutcome)

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
        auto model = std::make_unique<HotKeyRecorderModel>(center, m_centers->others(center), QStringLiteral("Leertaste"),
                                                           [this] { return m_desktop; });
        model->startRecording();
        return model;
    }

private Q_SLOTS:
    void init()
    {
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

    void centresPersistReplaceAndRestore()
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

        // A restart registers the saved combination again, under the same number.
        m_centers.reset();
        m_preferences = std::make_unique<Preferences>(preferencesFile());
        m_centers = std::make_unique<HotKeyCenters>(*m_preferences, *m_backend);
        m_centers->restore();
        QCOMPARE(m_backend->grabs.size(), size_t(1));
        QCOMPARE(m_backend->grabs.begin()->second, (FakeBackend::Grabbed{Qt::Key_J, ctrlAlt, 1}));
        QVERIFY(!m_centers->menu().isRegistered());
    }

    void clearForgetsEvenWhenNothingIsRegistered()
    {
        // Saved by hand, say by an earlier run that could not register it.
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

    void aPressRunsOnlyItsCentresAction()
    {
        int searches = 0;
        int menus = 0;
        m_centers->search().setAction([&searches] { ++searches; });
        m_centers->menu().setAction([&menus] { ++menus; });
        QVERIFY(m_centers->search().registerHotKey(Qt::Key_K, ctrlAlt, {}));
        QVERIFY(m_centers->menu().registerHotKey(Qt::Key_M, ctrlAlt, {}));
        m_backend->press(2);
        // Actions run later, outside the desktop's event dispatch.
        QCOMPARE(menus, 0);
        QTRY_COMPARE(menus, 1);
        QCOMPARE(searches, 0);
    }

    void recorderDecidesOnKeys_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<Outcome>("outcome");
        QTest::addColumn<QString>("display");
        QTest::addColumn<quint32>("savedKey");
        QTest::addColumn<quint32>("savedModifiers");

        const auto none = Qt::KeyboardModifiers();
        QTest::newRow("Shift alone does not count") << int(Qt::Key_A) << Qt::KeyboardModifiers(Qt::ShiftModifier)
                                                    << Outcome::Refused << QString() << 0u << 0u;
        QTest::newRow("a plain letter") << int(Qt::Key_A) << none << Outcome::Refused << QString() << 0u << 0u;
        QTest::newRow("F13 is not among the bare keys") << int(Qt::Key_F13) << none << Outcome::Refused << QString() << 0u << 0u;
        QTest::newRow("a modifier on its own waits") << int(Qt::Key_Control) << Qt::KeyboardModifiers(Qt::ControlModifier)
                                                     << Outcome::Ignored << QString() << 0u << 0u;
        QTest::newRow("Escape cancels") << int(Qt::Key_Escape) << none << Outcome::Cancelled << QString() << 0u << 0u;
        QTest::newRow("F5 bare") << int(Qt::Key_F5) << none << Outcome::Registered << QStringLiteral("F5")
                                 << quint32(Qt::Key_F5) << 0u;
        QTest::newRow("F12 bare") << int(Qt::Key_F12) << none << Outcome::Registered << QStringLiteral("F12")
                                  << quint32(Qt::Key_F12) << 0u;
        QTest::newRow("the space bar by its name")
            << int(Qt::Key_Space) << (Qt::ControlModifier | Qt::AltModifier) << Outcome::Registered
            << QStringLiteral("Ctrl+Alt+Leertaste") << quint32(Qt::Key_Space) << 6144u;
        QTest::newRow("Escape with Super is a combination")
            << int(Qt::Key_Escape) << Qt::KeyboardModifiers(Qt::MetaModifier) << Outcome::Registered
            << QStringLiteral("Super+Esc") << quint32(Qt::Key_Escape) << 256u;
        QTest::newRow("modifiers in a fixed order")
            << int(Qt::Key_K) << (Qt::MetaModifier | Qt::ShiftModifier | Qt::AltModifier | Qt::ControlModifier)
            << Outcome::Registered << QStringLiteral("Ctrl+Alt+Shift+Super+K") << quint32(Qt::Key_K) << 6912u;
        QTest::newRow("Shift+Tab arrives as Backtab")
            << int(Qt::Key_Backtab) << (Qt::ShiftModifier | Qt::ControlModifier) << Outcome::Registered
            << QStringLiteral("Ctrl+Shift+Tab") << quint32(Qt::Key_Tab) << 4608u;
    }

    void recorderDecidesOnKeys()
    {
        QFETCH(int, key);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        QFETCH(Outcome, outcome);
        QFETCH(QString, display);
        QFETCH(quint32, savedKey);
        QFETCH(quint32, savedModifiers);

        auto model = recorder(m_centers->search());
        QCOMPARE(model->handleKey(key, modifiers), outcome);
        QCOMPARE(model->display(), display);
        QCOMPARE(model->isRecording(), outcome != Outcome::Registered && outcome != Outcome::Cancelled);
        QVERIFY(!model->isTaken());
        const auto saved = m_centers->search().current();
        QCOMPARE(saved.has_value(), outcome == Outcome::Registered);
        if (saved)
            QCOMPARE(*saved, (HotKeyCombination{savedKey, savedModifiers, display}));
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
    }

    void recorderKeepsWhatTheSessionCannotBind()
    {
        m_backend->refusals.insert({Qt::Key_Space, HotKeyModifier::Super}, HotKeyRefusal::Unavailable);
        auto model = recorder(m_centers->search());
        QCOMPARE(model->handleKey(Qt::Key_Space, Qt::MetaModifier), Outcome::Unbound);
        QVERIFY(!model->isRecording());
        QVERIFY(!model->isTaken());
        QCOMPARE(model->unbound(), (HotKeyCombination{Qt::Key_Space, HotKeyModifier::Super, QStringLiteral("Super+Leertaste")}));
        QCOMPARE(m_centers->search().current(), std::nullopt);
    }

    void acceleratorsOfTheDesktops_data()
    {
        QTest::addColumn<QString>("gtk");
        QTest::addColumn<quint32>("key");
        QTest::addColumn<quint32>("modifiers");
        QTest::newRow("Super+space") << QStringLiteral("<Super>space") << quint32(Qt::Key_Space) << HotKeyModifier::Super;
        QTest::newRow("Primary is Ctrl") << QStringLiteral("<Primary><Alt>F1") << quint32(Qt::Key_F1) << ctrlAlt;
        QTest::newRow("keysym names") << QStringLiteral("<Shift><Super>Page_Up") << quint32(Qt::Key_PageUp)
                                      << (HotKeyModifier::Shift | HotKeyModifier::Super);
        QTest::newRow("a letter") << QStringLiteral("<Control><Alt>t") << quint32(Qt::Key_T) << ctrlAlt;
        QTest::newRow("no modifiers") << QStringLiteral("Print") << quint32(Qt::Key_Print) << 0u;
        QTest::newRow("Hyper never matches") << QStringLiteral("<Hyper>x") << 0u << 0u;
        QTest::newRow("unknown key") << QStringLiteral("<Super>XF86Keyboard") << 0u << 0u;
        QTest::newRow("unclosed") << QStringLiteral("<Super") << 0u << 0u;
        QTest::newRow("empty") << QString() << 0u << 0u;
    }

    void acceleratorsOfTheDesktops()
    {
        QFETCH(QString, gtk);
        QFETCH(quint32, key);
        QFETCH(quint32, modifiers);
        const auto parsed = fromGtkAccelerator(gtk);
        QCOMPARE(parsed.has_value(), key != 0);
        if (!parsed)
            return;
        QCOMPARE(parsed->keyCode, key);
        QCOMPARE(parsed->modifiers, modifiers);
        // Written back in GNOME's spelling, it reads the same.
        QCOMPARE(fromGtkAccelerator(gtkAccelerator(key, modifiers)), parsed);
    }

    void kdeShortcutsAreRead()
    {
        QFile file(m_dir.filePath(QStringLiteral("kglobalshortcutsrc")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[kwin]\n_k_friendly_name=KWin\n"
                   "Expose=Ctrl+F9\tMeta+Shift+W,Ctrl+F9,Toggle Present Windows (Current desktop)\n"
                   "Kill Window=Meta+Ctrl+Esc,Meta+Ctrl+Esc,Kill Window\n"
                   "Walk Through Windows=none,Alt+Tab,Walk Through Windows\n"
                   "[org.kde.spectacle.desktop]\nRectangularRegionScreenShot=Meta+Shift+Print,none,Capture, with comma\n"
                   "[org.kde.konsole.desktop]\n_launch=Ctrl+Alt+T,none,Konsole\nSettings=Ctrl+,,none,Settings\n");
        file.close();
        const QList<HotKeyCombination> expected{
            {Qt::Key_F9, HotKeyModifier::Ctrl, {}},
            {Qt::Key_W, HotKeyModifier::Super | HotKeyModifier::Shift, {}},
            {Qt::Key_Escape, HotKeyModifier::Super | HotKeyModifier::Ctrl, {}},
            {Qt::Key_Print, HotKeyModifier::Super | HotKeyModifier::Shift, {}},
            {Qt::Key_T, ctrlAlt, {}},
            {Qt::Key_Comma, HotKeyModifier::Ctrl, {}},
        };
        QCOMPARE(kdeShortcuts(file.fileName()), expected);
        QVERIFY(kdeShortcuts(m_dir.filePath(QStringLiteral("missing"))).isEmpty());
    }

    void portalTriggers()
    {
        QCOMPARE(PortalHotKeys::trigger(Qt::Key_Space, ctrlAlt), QStringLiteral("CTRL+ALT+space"));
        QCOMPARE(PortalHotKeys::trigger(Qt::Key_K, HotKeyModifier::All), QStringLiteral("CTRL+ALT+SHIFT+LOGO+k"));
        QCOMPARE(PortalHotKeys::trigger(Qt::Key_F5, 0), QStringLiteral("F5"));
    }
};

QTEST_MAIN(TestHotKeys)
#include "test_hotkeys.moc"
