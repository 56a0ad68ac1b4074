#include "config/preferences.h"
#include "fakebackend.h"
#include "hotkeys/bindingroute.h"
#include "hotkeys/desktopshortcuts.h"
#include "hotkeys/gnomeshortcuts.h"
#include "hotkeys/hotkeyrecorder.h"
#include "hotkeys/hotkeyroutenotice.h"

#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {
constexpr quint32 ctrlAlt = HotKeyModifier::Ctrl | HotKeyModifier::Alt;
const QString searchCommand = QStringLiteral("quillon --toggle-search");
} // namespace

// GNOME's shortcuts from GSettings: fixture schemas compiled into a
// temporary folder, values in a key file under a temporary config home.
class TestGnomeShortcuts : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    QString path(const QString &name) const { return m_dir.filePath(name); }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(QDir().mkpath(path(QStringLiteral("schemas"))));
        QCOMPARE(QProcess::execute(QStringLiteral("glib-compile-schemas"),
                                   {QStringLiteral("--strict"),
                                    QStringLiteral("--targetdir=") + path(QStringLiteral("schemas")),
                                    QStringLiteral(QUILLON_HOTKEYS_DATA)}),
                 0);
        // Only the fixture's schemas: none of the machine's own.
        qputenv("XDG_DATA_DIRS", path(QStringLiteral("data")).toUtf8());
        qputenv("GSETTINGS_SCHEMA_DIR", path(QStringLiteral("schemas")).toUtf8());
        qputenv("GSETTINGS_BACKEND", "keyfile");
        qputenv("XDG_CONFIG_HOME", path(QStringLiteral("config")).toUtf8());
        qputenv("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
        QStandardPaths::setTestModeEnabled(true);
    }

    void customShortcutsAreAddedReplacedAndInUse()
    {
        QVERIFY(GnomeShortcuts::addCustom(QStringLiteral("Terminal"), QStringLiteral("gnome-terminal"), Qt::Key_T,
                                          ctrlAlt));
        QVERIFY(GnomeShortcuts::addCustom(QStringLiteral("Quillon"), searchCommand, Qt::Key_Space, ctrlAlt));
        QVERIFY(GnomeShortcuts::addCustom(QStringLiteral("Quillon"), searchCommand, Qt::Key_K, HotKeyModifier::Super));
        QCOMPARE(GnomeShortcuts::customBinding(searchCommand), QStringLiteral("<Super>k"));
        // Where GNOME reads them: one list of paths, one entry per shortcut.
        QFile keyfile(path(QStringLiteral("config/glib-2.0/settings/keyfile")));
        QVERIFY(keyfile.open(QIODevice::ReadOnly));
        QVERIFY(keyfile.readAll().contains("custom-keybindings=['/org/gnome/settings-daemon/plugins/media-keys/"
                                           "custom-keybindings/custom0/', '/org/gnome/settings-daemon/plugins/"
                                           "media-keys/custom-keybindings/custom1/']"));

        const QList<HotKeyCombination> used = desktopShortcuts();
        const QList<HotKeyCombination> expected{
            {Qt::Key_Tab, HotKeyModifier::Super, {}}, {Qt::Key_Tab, HotKeyModifier::Alt, {}},
            {Qt::Key_F2, HotKeyModifier::Alt, {}},    {Qt::Key_L, HotKeyModifier::Super, {}},
            {Qt::Key_E, HotKeyModifier::Super, {}},   {Qt::Key_T, ctrlAlt, {}},
        };
        for (const HotKeyCombination &combination : expected)
            QVERIFY2(used.contains(combination), qPrintable(QString::number(combination.keyCode, 16)));
        // Quillon's own custom shortcut is no conflict with itself.
        QVERIFY(!used.contains(HotKeyCombination{Qt::Key_K, HotKeyModifier::Super, {}}));
        QCOMPARE(used.size(), expected.size());

        QVERIFY(GnomeShortcuts::removeCustom(searchCommand));
        QVERIFY(!GnomeShortcuts::removeCustom(searchCommand));
        QCOMPARE(GnomeShortcuts::customBinding(QStringLiteral("gnome-terminal")), QStringLiteral("<Control><Alt>t"));
        QVERIFY(GnomeShortcuts::removeCustom(QStringLiteral("gnome-terminal")));
    }

    void noticeOffersGnomesKeyboardSettingsAfterAsking()
    {
        Preferences preferences(path(QStringLiteral("Quillon.conf")));
        FakeBackend backend;
        backend.available = false;
        backend.refusals.insert({Qt::Key_Space, HotKeyModifier::Super}, HotKeyRefusal::Unavailable);
        HotKeyCenters centers(preferences, backend);
        HotKeyRecorder recorder(centers.search(), centers.others(centers.search()));
        HotKeyRouteNotice notice({&centers.search(), &centers.menu()}, BindingRoute::forSession());
        QStringList questions;
        bool agree = false;
        notice.setConfirm([&](QWidget *, const QString &question) {
            questions.append(question);
            return agree;
        });
        notice.show();
        recorder.show();
        QPushButton *add = notice.addToGnomeButton();
        QVERIFY(add && add->isVisible());
        QVERIFY(notice.explanation()->text().contains(QStringLiteral("Custom Shortcuts")));

        // The combination the session could not bind is the one offered.
        QTest::mouseClick(recorder.recordButton(), Qt::LeftButton);
        QTest::keyClick(recorder.recordButton(), Qt::Key_Space, Qt::MetaModifier);
        add->click();
        QCOMPARE(questions.size(), 1);
        QVERIFY(questions.first().contains(searchCommand));
        QVERIFY(questions.first().contains(QStringLiteral("Super+")));
        QCOMPARE(GnomeShortcuts::customBinding(searchCommand), std::nullopt);

        agree = true;
        add->click();
        QCOMPARE(GnomeShortcuts::customBinding(searchCommand), QStringLiteral("<Super>space"));
        QVERIFY(!add->isVisible());
        QVERIFY(notice.gnomeState()->isVisible());
        QVERIFY(notice.gnomeState()->text().contains(searchCommand));
        QVERIFY(GnomeShortcuts::removeCustom(searchCommand));
    }
};

QTEST_MAIN(TestGnomeShortcuts)
#include "test_gnomeshortcuts.moc"
