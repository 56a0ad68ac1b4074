#include "jsontext.h"

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
    QString printLayout(const QString &configHome)
    {
        QProcess quillon;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), configHome);
        environment.remove(QStringLiteral("DISPLAY"));
        environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
        environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
        quillon.setProcessEnvironment(environment);
        quillon.start(QStringLiteral(QUILLON_BINARY), {QStringLiteral("--print-layout")});
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
            settings.setValue(QStringLiteral("MenuState"), QStringLiteral(JSON({
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
                 QStringLiteral(
                     "hidden\t{\"shortcuts\":{}}\n"
                     "inline\t{\"separator\":{\"_0\":\"00000000-0000-4000-8000-0000000000C0\"}}\n"
                     "inline\t{\"folder\":{\"_0\":\"00000000-0000-4000-8000-0000000000F0\"}}\n"
                     "submenu\t{\"applications\":{}}\n"
                     "submenu\t{\"systemSettings\":{}}\n"
                     "submenu\t{\"recents\":{}}\n"
                     "submenu\t{\"customMenu\":{\"_0\":\"00000000-0000-4000-8000-00000000000A\"}}\n"
                     "inline\t{\"shortcut\":{\"_0\":{\"id\":\"A1B2C3D4-0000-4000-8000-000000000001\",\"name\":\"Backup\"}}}\n"));
    }
};

QTEST_GUILESS_MAIN(TestPrintLayout)
#include "test_printlayout.moc"
