#include "jsontext.h"

#include <QDir>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

// `quillon --print-layout` as a user runs it: no display, the real
// preferences file under XDG_CONFIG_HOME.
class TestPrintLayout : public QObject
{
    Q_OBJECT

private:
    QString printLayout(const QString &configHome, const QStringList &arguments = {QStringLiteral("--print-layout")},
                        const QString &language = QStringLiteral("en"))
    {
        QProcess quillon;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), configHome);
        environment.insert(QStringLiteral("XDG_DATA_HOME"), configHome + QStringLiteral("/data"));
        environment.insert(QStringLiteral("XDG_CURRENT_DESKTOP"), QStringLiteral("GNOME"));
        environment.insert(QStringLiteral("LANGUAGE"), language);
        environment.remove(QStringLiteral("DISPLAY"));
        environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
        environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
        quillon.setProcessEnvironment(environment);
        quillon.start(QStringLiteral(QUILLON_BINARY), arguments);
        if (!quillon.waitForFinished(30000) || quillon.exitCode() != 0)
            return QStringLiteral("failed: ") + QString::fromUtf8(quillon.readAllStandardError());
        return QString::fromUtf8(quillon.readAllStandardOutput());
    }

private Q_SLOTS:
    void freshConfigurationShowsTheBuiltIns()
    {
        QTemporaryDir home;
        QCOMPARE(printLayout(home.path()), QStringLiteral("submenu\t{\"applications\":{}}\n"
                                                          "submenu\t{\"systemSettings\":{}}\n"
                                                          "submenu\t{\"shortcuts\":{}}\n"
                                                          "submenu\t{\"recents\":{}}\n"));
        QVERIFY(!QFile::exists(home.filePath(QStringLiteral("Quillon/Quillon.conf"))));
    }

    void handWrittenConfigurationIsDerived()
    {
        QTemporaryDir home;
        {
            QSettings settings(home.filePath(QStringLiteral("Quillon/Quillon.conf")), QSettings::IniFormat);
            settings.setValue(
                QStringLiteral("MenuState"),
                QStringLiteral(JSON({
                "layout": [
                    {"source": {"shortcuts": {}}, "style": "hidden"},
                    {"source": {"separator": {"_0": "00000000-0000-4000-8000-0000000000C0"}}, "style": "inline"},
                    {"source": {"folder": {"_0": "00000000-0000-4000-8000-0000000000F0"}}, "style": "inline"}
                ],
                "menus": [{"id": "00000000-0000-4000-8000-00000000000A", "name": "Work", "urls": [], "color": "green"}],
                "folders": [{"id": "00000000-0000-4000-8000-0000000000F0", "url": "file:///home/u/Downloads/", "sort": "dateAdded"}],
                "shortcuts": [{"shortcut": {"_0": {"id": "A1B2C3D4-0000-4000-8000-000000000001", "name": "Backup"}}}],
                "separators": ["00000000-0000-4000-8000-0000000000c0"]
            })));
        }
        QCOMPARE(printLayout(home.path()),
                 QStringLiteral("hidden\t{\"shortcuts\":{}}\n"
                                "inline\t{\"separator\":{\"_0\":\"00000000-0000-4000-8000-0000000000C0\"}}\n"
                                "inline\t{\"folder\":{\"_0\":\"00000000-0000-4000-8000-0000000000F0\"}}\n"
                                "submenu\t{\"applications\":{}}\n"
                                "submenu\t{\"systemSettings\":{}}\n"
                                "submenu\t{\"recents\":{}}\n"
                                "submenu\t{\"customMenu\":{\"_0\":\"00000000-0000-4000-8000-00000000000A\"}}\n"
                                "inline\t{\"shortcut\":{\"_0\":{\"id\":\"A1B2C3D4-0000-4000-8000-000000000001\","
                                "\"name\":\"Backup\"}}}\n"));
    }

    void theMenuFollowsTheConfiguration()
    {
        QTemporaryDir home;
        QDir().mkpath(home.filePath(QStringLiteral("Reports")));
        QFile(home.filePath(QStringLiteral("Reports/Q3 figures.ods"))).open(QIODevice::WriteOnly);
        {
            QSettings settings(home.filePath(QStringLiteral("Quillon/Quillon.conf")), QSettings::IniFormat);
            settings.setValue(
                QStringLiteral("MenuState"),
                QStringLiteral(
                    JSON({
                "layout": [
                    {"source": {"applications": {}}, "style": "hidden"},
                    {"source": {"folder": {"_0": "00000000-0000-4000-8000-0000000000F0"}}, "style": "inline"}
                ],
                "menus": [{"id": "00000000-0000-4000-8000-00000000000A", "name": "Network", "urls": ["settings://gnome/bluetooth", "settings://gnome/wifi"]}],
                "folders": [{"id": "00000000-0000-4000-8000-0000000000F0", "url": "REPORTS", "sort": "name"}]
            }))
                            .replace(QStringLiteral("REPORTS"),
                                     QUrl::fromLocalFile(home.filePath(QStringLiteral("Reports/"))).toString()));
        }
        const QString menu = printLayout(home.path(), {QStringLiteral("--print-menu")}, QStringLiteral("de"));
        const QStringList lines = menu.split(QLatin1Char('\n'));
        QCOMPARE(lines.at(2),
                 QStringLiteral("Q3 figures.ods  <%1>")
                     .arg(QUrl::fromLocalFile(home.filePath(QStringLiteral("Reports/Q3 figures.ods"))).toString()));
        // Hidden: no top-level Applications submenu.
        QVERIFY2(!lines.contains(QStringLiteral("Anwendungen  ▸")), qPrintable(menu));
        // The custom menu keeps its own order, in German when GNOME's texts are there.
        const qsizetype network = lines.indexOf(QStringLiteral("Network  ▸"));
        QVERIFY2(network > 0, qPrintable(menu));
        const bool german =
            QFile::exists(QStringLiteral("/usr/share/locale/de/LC_MESSAGES/gnome-control-center-2.0.mo"));
        QCOMPARE(lines.at(network + 1), QStringLiteral("  Bluetooth  <settings://gnome/bluetooth>"));
        QCOMPARE(lines.at(network + 2), german ? QStringLiteral("  WLAN  <settings://gnome/wifi>")
                                               : QStringLiteral("  Wi-Fi  <settings://gnome/wifi>"));

        const QString search = printLayout(home.path(), {QStringLiteral("--search"), QStringLiteral("figures")});
        QCOMPARE(search,
                 QStringLiteral("Reports\n  Q3 figures.ods  <%1>\n")
                     .arg(QUrl::fromLocalFile(home.filePath(QStringLiteral("Reports/Q3 figures.ods"))).toString()));
    }
};

QTEST_GUILESS_MAIN(TestPrintLayout)
#include "test_printlayout.moc"
