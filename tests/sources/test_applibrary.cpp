#include "sources/applibrary.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <optional>

namespace {

const QString fixtures = QStringLiteral(APPS_FIXTURES);

// "Folder(App, App) Folder(App)": the whole tree at a glance.
QString render(const QList<AppEntry> &entries)
{
    QStringList parts;
    for (const AppEntry &entry : entries) {
        if (const AppFolder *folder = entry.folder())
            parts.append(folder->name + QLatin1Char('(') + render(folder->entries) + QLatin1Char(')'));
        else
            parts.append(entry.name());
    }
    return parts.join(QLatin1String(", "));
}

std::optional<App> findApp(const QList<AppEntry> &tree, const QString &name)
{
    for (const App &app : AppLibrary::apps(tree)) {
        if (app.name == name)
            return app;
    }
    return std::nullopt;
}

} // namespace

class TestAppLibrary : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        QVERIFY(m_home.isValid());
        qputenv("HOME", m_home.path().toUtf8());
        qputenv("XDG_DATA_HOME", (fixtures + QLatin1String("/home")).toUtf8());
        // A missing data directory is normal and must stay silent.
        qputenv("XDG_DATA_DIRS", (fixtures + QLatin1String("/sys1:") + fixtures + QLatin1String("/sys2:")
                                  + m_home.path() + QLatin1String("/missing"))
                                     .toUtf8());
        qputenv("LANGUAGE", "en");
    }

    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void treeFollowsDesktop_data()
    {
        QTest::addColumn<QByteArray>("desktops");
        QTest::addColumn<QString>("tree");

        const QString accessories = QStringLiteral("Accessories(App 1, App 2, app 10, Twin), ");
        const QString common = QStringLiteral("Games(Twin), Other(Loose), Programming(Editor, Vendor Tool), "
                                              "Sound & Video(Calculator), ");
        const QString gnome = accessories + common + QStringLiteral("System Tools(GNOME Only, Shell Tool)");
        QTest::newRow("GNOME") << QByteArray("GNOME") << gnome;
        // The first listed desktop that an entry names decides.
        QTest::newRow("second of two") << QByteArray("X-Cinnamon:GNOME") << gnome;
        // KDE's own folder names come first there.
        QTest::newRow("KDE") << QByteArray("KDE")
                             << common
                                    + QStringLiteral("System Tools(KDE Only, Not GNOME, Shell Tool), "
                                                     "Utilities(App 1, App 2, app 10, Twin)");
        QTest::newRow("none") << QByteArray()
                              << accessories + common + QStringLiteral("System Tools(Not GNOME, Shell Tool)");
    }

    void treeFollowsDesktop()
    {
        QFETCH(QByteArray, desktops);
        QFETCH(QString, tree);
        qputenv("XDG_CURRENT_DESKTOP", desktops);
        QCOMPARE(render(AppLibrary::scan()), tree);
    }

    // Which file wins for each name (the user's copy, a Hidden mask, the ID
    // of a sub-folder's file) shows in the trees above; here, what the names
    // do not show.
    void iconsFolderFilesAndOrder()
    {
        qputenv("XDG_CURRENT_DESKTOP", "GNOME");
        const QList<AppEntry> tree = AppLibrary::scan();

        // Of two same-named applications in one folder, the first file is kept.
        QCOMPARE(findApp(tree, QStringLiteral("Twin"))->icon, QStringLiteral("twin-a"));

        // Icons: absolute paths stay, image extensions leave theme names.
        QCOMPARE(findApp(tree, QStringLiteral("Calculator"))->icon, QStringLiteral("/opt/calc/calc.svg"));
        QCOMPARE(findApp(tree, QStringLiteral("Loose"))->icon, QStringLiteral("loose"));

        // Folders take name, icon and URL from the most important .directory file.
        const AppFolder *accessories = tree.first().folder();
        QVERIFY(accessories);
        QCOMPARE(accessories->url,
                 QUrl::fromLocalFile(fixtures + QLatin1String("/sys1/desktop-directories/Utility.directory")));
        QCOMPARE(accessories->icon, QStringLiteral("applications-utilities"));
        // Programming has none.
        QVERIFY(tree.at(3).folder()->url.isEmpty());

        // The applications folder by folder, each in its order.
        QStringList names;
        for (const App &app : AppLibrary::apps(tree))
            names.append(app.name);
        QCOMPARE(names, QStringList({"App 1", "App 2", "app 10", "Twin", "Twin", "Loose", "Editor", "Vendor Tool",
                                     "Calculator", "GNOME Only", "Shell Tool"}));
    }

    void namesFollowLanguage()
    {
        qputenv("XDG_CURRENT_DESKTOP", "GNOME");
        qputenv("LANGUAGE", "de_AT:en");
        const QString tree = render(AppLibrary::scan());
        qputenv("LANGUAGE", "en");
        QCOMPARE(tree, QStringLiteral("Other(Loose), Programming(Editor, Vendor Tool), Sound & Video(Rechner), "
                                      "Spiele(Twin), System Tools(GNOME Only, Shell Tool), "
                                      "Zubehör(App 1, App 2, app 10, Twin)"));
    }

    void unreadableFolderIsLoggedOnce()
    {
        // A link to itself cannot be opened, whoever runs the test.
        QTemporaryDir data;
        QVERIFY(QDir().mkpath(data.path() + QLatin1String("/share")));
        const QString loop = data.path() + QLatin1String("/share/applications");
        QVERIFY(QFile::link(loop, loop));
        qputenv("XDG_CURRENT_DESKTOP", "GNOME");
        const QByteArray dirs = qgetenv("XDG_DATA_DIRS");
        qputenv("XDG_DATA_DIRS", dirs + ':' + (data.path() + QLatin1String("/share")).toUtf8());

        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QRegularExpression::escape(loop)
                                                              + QStringLiteral(" could not be read: .+")));
        const QList<AppEntry> tree = AppLibrary::scan();
        qputenv("XDG_DATA_DIRS", dirs);
        QCOMPARE(AppLibrary::apps(tree).size(), 11);
    }

private:
    QTemporaryDir m_home;
};

QTEST_GUILESS_MAIN(TestAppLibrary)
#include "test_applibrary.moc"
