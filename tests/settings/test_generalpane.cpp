#include "app/updates.h"
#include "catalog/systemstrings.h"
#include "config/menustore.h"
#include "config/preferences.h"
#include "hotkeys/fakebackend.h"
#include "hotkeys/hotkeycenter.h"
#include "hotkeys/hotkeyrecorder.h"
#include "hotkeys/hotkeyroutenotice.h"
#include "platform/loginitem.h"
#include "settings/generalpane.h"

#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
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

    // Where the desktop binds no keys for programs (sway), the pane says so
    // in a paragraph that wraps at the pane's width, and hands over the
    // commands and the line for sway's configuration.
    void explainsTheDesktopsOwnRoute()
    {
        QTemporaryDir home;
        qputenv("XDG_CONFIG_HOME", home.filePath(QStringLiteral("config")).toUtf8());
        qputenv("XDG_CURRENT_DESKTOP", "sway");
        Preferences preferences(home.filePath(QStringLiteral("Quillon.conf")));
        MenuStore store(preferences);
        Updates updates(preferences, QUrl(), QStringLiteral("1.0"));
        FakeBackend backend;
        backend.later = true;
        HotKeyCenters centers(preferences, backend);
        GeneralPane pane(preferences, store, updates, SystemStrings::shared());
        pane.addHotKeyRows(centers, SystemStrings::shared());
        pane.resize(460, 700);
        pane.show();
        QVERIFY(QTest::qWaitForWindowExposed(&pane));
        HotKeyRouteNotice *notice = pane.hotKeyRoute();
        QVERIFY(notice && pane.searchHotKey() && pane.menuHotKey());
        QVERIFY(!notice->isVisible());

        // The desktop turns the saved combination down later.
        QVERIFY(centers.search().registerHotKey(Qt::Key_Space, HotKeyModifier::Ctrl | HotKeyModifier::Alt,
                                                QStringLiteral("Ctrl+Alt+Space")));
        QCOMPARE(pane.searchHotKey()->status()->text(), QStringLiteral("Waiting for the desktop to bind it…"));
        Q_EMIT backend.refused(backend.lastHandle(), HotKeyRefusal::Unavailable);
        QTRY_VERIFY(notice->isVisible());
        QVERIFY(pane.searchHotKey()->status()->isVisible());

        QLabel *explanation = notice->explanation();
        QVERIFY(explanation->text().contains(QStringLiteral("does not let applications")));
        QVERIFY(explanation->wordWrap());
        QTRY_VERIFY(explanation->height() >= 2 * explanation->fontMetrics().lineSpacing());
        QVERIFY(explanation->geometry().right() <= pane.width());
        QVERIFY(explanation->heightForWidth(explanation->width()) <= explanation->height());

        QStringList texts;
        for (const QLabel *label : notice->findChildren<QLabel *>())
            texts.append(label->text());
        QVERIFY(texts.contains(QStringLiteral("quillon --toggle-search")));
        QVERIFY(texts.contains(QStringLiteral("quillon --menu")));
        QVERIFY(texts.contains(QStringLiteral("bindsym Ctrl+Alt+space exec quillon --toggle-search")));
        // The menu has no saved keys: the line suggests some.
        QVERIFY(texts.contains(QStringLiteral("bindsym Ctrl+Alt+m exec quillon --menu")));

        QPushButton *copy = nullptr;
        for (QPushButton *button : notice->findChildren<QPushButton *>()) {
            if (button->accessibleName().contains(QStringLiteral("quillon --menu")))
                copy = button;
        }
        QVERIFY(copy);
        copy->click();
        QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("quillon --menu"));
        QVERIFY(!notice->addToGnomeButton());

        // Bound after all (the portal came back): nothing left to explain.
        QVERIFY(centers.search().registerHotKey(Qt::Key_K, HotKeyModifier::Ctrl, QStringLiteral("Ctrl+K")));
        Q_EMIT backend.bound(backend.lastHandle(), QStringLiteral("Ctrl+K"));
        QTRY_VERIFY(!notice->isVisible());
        QVERIFY(!pane.searchHotKey()->status()->isVisible());
        qunsetenv("XDG_CURRENT_DESKTOP");
    }
};

QTEST_MAIN(TestGeneralPane)
#include "test_generalpane.moc"
