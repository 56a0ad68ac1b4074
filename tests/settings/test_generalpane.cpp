#include "app/updates.h"
#include "catalog/systemstrings.h"
#include "config/menustore.h"
#include "config/preferences.h"
#include "platform/loginitem.h"
#include "settings/generalpane.h"

#include <QCheckBox>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

// The general options write through to where the program reads them.
class TestGeneralPane : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void optionsTakeEffectAtOnce()
    {
        QTemporaryDir home;
        qputenv("XDG_CONFIG_HOME", home.filePath(QStringLiteral("config")).toUtf8());
        Preferences preferences(home.filePath(QStringLiteral("Quillon.conf")));
        MenuStore store(preferences);
        Updates updates(preferences, QUrl(QStringLiteral("http://127.0.0.1:9/appcast.xml")), QStringLiteral("1.0"));
        GeneralPane pane(preferences, store, updates, SystemStrings::shared());

        const auto boxes = pane.findChildren<QCheckBox *>();
        QCOMPARE(boxes.size(), 3);
        QCheckBox *login = boxes.at(0);
        QCheckBox *search = boxes.at(1);
        QCheckBox *automatic = boxes.at(2);
        QVERIFY(!login->isChecked() && search->isChecked() && automatic->isChecked());

        login->click();
        QVERIFY(QFile::exists(LoginItem::entryPath()));
        login->click();
        QVERIFY(!QFile::exists(LoginItem::entryPath()));

        search->click();
        QCOMPARE(preferences.value(QStringLiteral("ShowSearch")).toBool(), false);
        automatic->click();
        QVERIFY(!updates.automaticallyChecksForUpdates());

        pane.findChild<QSpinBox *>()->setValue(9);
        QCOMPARE(store.recentsLimit(), 9);
        QCOMPARE(MenuStore(preferences).recentsLimit(), 9);
    }
};

QTEST_MAIN(TestGeneralPane)
#include "test_generalpane.moc"
