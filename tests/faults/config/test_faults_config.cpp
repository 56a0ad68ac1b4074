#include "app/lazymenu.h"
#include "app/statusmenu.h"
#include "app/updates.h"
#include "config/menustore.h"
#include "config/preferences.h"
#include "config/stalelock.h"
#include "fakelauncher.h"
#include "fixtures.h"
#include "platform/opener.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

namespace {

// Every bound is checked at three times its goal, for a loaded machine.
constexpr qint64 boundMs = 3000;

QString uuid(int n)
{
    return QStringLiteral("00000000-0000-4000-8000-%1").arg(n, 12, 10, QLatin1Char('0'));
}

void writeState(const QString &path, const QJsonObject &state)
{
    QSettings(path, QSettings::IniFormat)
        .setValue(QStringLiteral("MenuState"), QString::fromUtf8(QJsonDocument(state).toJson(QJsonDocument::Compact)));
}

} // namespace

// Configurations a crash, a hand edit or a tool can leave: huge, locked,
// spelled unusually. Each is read in bounded time and nothing is lost.
class TestFaultsConfig : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

private Q_SLOTS:
    void twentyThousandSeparatorsPrintAtOnce()
    {
        QJsonArray separators;
        QJsonArray layout;
        for (int i = 0; i < 20000; ++i) {
            separators.append(uuid(i));
            layout.prepend(
                QJsonObject{{"source", QJsonObject{{"separator", QJsonObject{{"_0", uuid(i)}}}}}, {"style", "inline"}});
        }
        const QString home = m_dir.filePath(QStringLiteral("separators"));
        writeState(home + QStringLiteral("/Quillon/Quillon.conf"), {{"separators", separators}, {"layout", layout}});

        QProcess quillon;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home);
        environment.remove(QStringLiteral("DISPLAY"));
        environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
        quillon.setProcessEnvironment(environment);
        QElapsedTimer timer;
        timer.start();
        quillon.start(QStringLiteral(QUILLON_BINARY), {QStringLiteral("--print-layout")});
        QVERIFY(quillon.waitForFinished(30000));
        QVERIFY2(timer.elapsed() < boundMs, qPrintable(QString::number(timer.elapsed())));
        const QList<QByteArray> lines = quillon.readAllStandardOutput().split('\n');
        QCOMPARE(lines.size(), 20004 + 1);
        // The saved order stands, the built-ins follow.
        QVERIFY(lines.first().contains(uuid(19999).toLatin1()));
        QCOMPARE(lines.at(20000), QByteArray("submenu\t{\"applications\":{}}"));
    }

    // 11 MB of custom menus: read, and the menu opened, each within the
    // bound; a menu's own items are made only when it opens.
    void twentyThousandCustomMenusOpenAtOnce()
    {
        QJsonArray menus;
        for (int i = 0; i < 20000; ++i) {
            QJsonArray urls;
            for (int k = 0; k < 6; ++k)
                urls.append(
                    QStringLiteral("file:///nonexistent/Documents/Quarterly%20reports/q%1-%2.ods").arg(i).arg(k));
            urls.append(QStringLiteral("settings://gnome/wifi"));
            urls.append(QStringLiteral("shortcuts://run-shortcut?id=%1").arg(uuid(i)));
            menus.append(QJsonObject{{"id", uuid(i)},
                                     {"name", QStringLiteral("Menu %1").arg(i)},
                                     {"urls", urls},
                                     {"symbol", "folder-documents"},
                                     {"color", "green"}});
        }
        const QString path = m_dir.filePath(QStringLiteral("menus.conf"));
        writeState(path, {{"menus", menus}});
        QVERIFY(QFileInfo(path).size() > 10'000'000);

        QElapsedTimer timer;
        timer.start();
        Preferences preferences(path);
        MenuStore store(preferences);
        QCOMPARE(store.menus().size(), 20000);
        // Linear, if not instant in a debug build: a quadratic read takes
        // minutes.
        QVERIFY2(timer.elapsed() < 4 * boundMs, qPrintable(QString::number(timer.elapsed())));

        TestCatalog settings;
        settings.set({{QStringLiteral("wifi")}}, {testPane(QStringLiteral("wifi"), QStringLiteral("Wi-Fi"))});
        ShortcutLibrary shortcuts(m_dir.filePath(QStringLiteral("no-tool")));
        Updates updates(preferences, QUrl(), QStringLiteral("1.0"));
        FakeLauncher launcher;
        Opener opener(launcher, [](const QString &) {});
        StatusMenu menu({settings.sources(store, shortcuts), shortcuts, preferences, updates, opener}, [] {});
        for (int opening = 0; opening < 2; ++opening) {
            timer.restart();
            menu.rebuild();
            QVERIFY2(timer.elapsed() < boundMs, qPrintable(QString::number(timer.elapsed())));
        }

        // The last one is there, under "More" within "More"…, as is every
        // other: the top stays as short as a menu can show.
        QVERIFY(menu.menu()->actions().size() < MenuBuilder::maxItems + 20);
        QMenu *level = menu.menu();
        int found = 0;
        LazyMenu *submenu = nullptr;
        while (level) {
            QMenu *more = nullptr;
            for (QAction *action : level->actions()) {
                found += action->text().startsWith(QStringLiteral("Menu "));
                if (action->text() == QStringLiteral("Menu 19999"))
                    submenu = qobject_cast<LazyMenu *>(action->menu());
                if (action->text() == QStringLiteral("More"))
                    more = action->menu();
            }
            if (auto *lazy = qobject_cast<LazyMenu *>(more))
                lazy->fillIfNeeded();
            level = more;
        }
        QCOMPARE(found, 20000);
        QVERIFY(submenu);
        submenu->fillIfNeeded();
        // Six missing files, disabled, the place and the shortcut.
        QVERIFY2(submenu->actions().size() >= 8, qPrintable(QString::number(submenu->actions().size())));
        QVERIFY(!submenu->actions().at(1)->isEnabled());
    }

    void aLockLeftByACrashDoesNotHoldUpTheNextChange()
    {
        const QString path = m_dir.filePath(QStringLiteral("locked.conf"));
        const QString lock = path + QStringLiteral(".lock");
        Preferences preferences(path);
        MenuStore store(preferences);

        // Held by a live process: not touched.
        {
            QLockFile live(lock);
            QVERIFY(live.tryLock());
            QVERIFY(!removeStaleLock(lock));
            QVERIFY(QFile::exists(lock));
        }

        // Empty, as a crash between creating and writing it leaves it.
        QFile stale(lock);
        QVERIFY(stale.open(QIODevice::WriteOnly));
        stale.close();
        QElapsedTimer timer;
        timer.start();
        store.addSeparator();
        QVERIFY2(timer.elapsed() < boundMs, qPrintable(QString::number(timer.elapsed())));
        QVERIFY(!QFile::exists(lock));
        Preferences again(path);
        QCOMPARE(MenuStore(again).separators(), store.separators());
    }

    // Qt holds a "#" inside the fragment apart from "%23"; each must come
    // back as it was, in every list of URLs the store keeps.
    void urlsComeBackEqualAfterAReload()
    {
        const QStringList spellings{
            QStringLiteral("a#b#c"),
            QStringLiteral("https://example.org/p#b#c"),
            QStringLiteral("https://example.org/p%23q#b%23c#d"),
            QStringLiteral("file:///tmp/Caf%C3%A9%20menu/#x#%20y"),
        };
        QJsonArray urls;
        for (const QString &spelling : spellings)
            urls.append(spelling);
        const QString path = m_dir.filePath(QStringLiteral("urls.conf"));
        writeState(path,
                   {{"menus", QJsonArray{QJsonObject{{"id", uuid(1)}, {"name", "Links"}, {"urls", urls}}}},
                    {"favoriteApps", urls},
                    {"folders", QJsonArray{QJsonObject{{"id", uuid(2)}, {"url", spellings.at(3)}, {"sort", "name"}}}}});

        Preferences preferences(path);
        MenuStore store(preferences);
        QCOMPARE(store.menus().constFirst().urls.size(), spellings.size());
        QList<QUrl> recents;
        for (const QString &spelling : spellings)
            recents.append(QUrl(spelling, QUrl::StrictMode));
        store.setRecents(recents);
        store.renameMenu(QUuid::fromString(uuid(1)), QStringLiteral("Saved"));
        QVERIFY(QSettings(path, QSettings::IniFormat)
                    .value(QStringLiteral("MenuState"))
                    .toString()
                    .contains(QStringLiteral("\"a#b#c\"")));

        Preferences again(path);
        MenuStore reloaded(again);
        QCOMPARE(reloaded.menus(), store.menus());
        QCOMPARE(reloaded.favoriteApps(), store.favoriteApps());
        QCOMPARE(reloaded.folders(), store.folders());
        QCOMPARE(reloaded.recents(), recents);
        QVERIFY(reloaded.contains(QUrl(QStringLiteral("a#b#c")), QUuid::fromString(uuid(1))));
    }
};

QTEST_MAIN(TestFaultsConfig)
#include "test_faults_config.moc"
