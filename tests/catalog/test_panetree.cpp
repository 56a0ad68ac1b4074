#include "catalog/catalogcodec.h"
#include "catalog/custommenunode.h"
#include "catalog/destination.h"
#include "jsontext.h"

#include <QTest>

namespace {

// top ─┬─ mid ── leaf (items l1, l2)
//      └─ (ghost ids only)
// solo: an item sharing the pane's URL; later: a pane reusing an item URL.
const char *const document = JSON({
    "osVersion": "1", "sections": [["top", "solo"]],
    "panes": [
        {"id": "top", "name": "Top", "url": "x:top", "children": [["mid", "ghost"], ["ghost2"]],
         "sections": [{"items": [{"label": "T1", "kind": "page", "url": "x:t1"}]}]},
        {"id": "mid", "name": "Mid", "url": "x:mid", "children": [["leaf"]], "sections": []},
        {"id": "leaf", "name": "Leaf", "url": "x:leaf", "sections": [
            {"title": "One", "items": [{"label": "L1", "kind": "tab", "url": "x:l1"}]},
            {"items": [{"label": "L2", "kind": "sheet", "url": "x:l2"}]}]},
        {"id": "solo", "name": "Solo", "url": "x:solo",
         "sections": [{"items": [{"label": "Same", "kind": "section", "url": "x:solo"}]}]},
        {"id": "later", "name": "Later", "url": "x:t1", "sections": []}
    ]
});

QUrl url(const char *text)
{
    return QUrl(QString::fromLatin1(text));
}

// A tree written as text: id, * when picked, item labels in brackets,
// children in parentheses.
QString describe(const QList<CustomMenuNode> &nodes)
{
    QStringList parts;
    for (const CustomMenuNode &node : nodes) {
        QString text = node.pane.id + (node.isPicked ? QStringLiteral("*") : QString());
        QStringList labels;
        for (const Item &item : node.items)
            labels.append(item.label);
        if (!labels.isEmpty())
            text += u'[' + labels.join(u',') + u']';
        if (!node.children.isEmpty())
            text += u'(' + describe(node.children) + u')';
        parts.append(text);
    }
    return parts.join(u' ');
}

} // namespace

class TestPaneTree : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        auto decoded = decodeCatalog(document);
        QVERIFY2(decoded.ok(), qPrintable(decoded.error()));
        m_catalog = std::move(decoded).value();
        m_index = Destination::buildIndex(m_catalog);
        // One destination per URL, the last writer's.
        QCOMPARE(m_index.size(), 7);
    }

    void panesWalkTheirChildren()
    {
        const Pane top = *m_catalog.pane(QStringLiteral("top"));
        // Unknown ids go, and with them the group they leave empty.
        QCOMPARE(top.childGroups(m_catalog).size(), 1);
        QCOMPARE(top.childPanes(m_catalog), QList<Pane>{*m_catalog.pane(QStringLiteral("mid"))});
        QCOMPARE(top.descendantURLs(m_catalog),
                 (QList<QUrl>{url("x:t1"), url("x:mid"), url("x:leaf"), url("x:l1"), url("x:l2")}));
        const Pane leaf = *m_catalog.pane(QStringLiteral("leaf"));
        QCOMPARE(leaf.items().size(), 2);
        QVERIFY(leaf.childGroups(m_catalog).isEmpty());
        QVERIFY(m_catalog.pane(QStringLiteral("later"))->descendantURLs(m_catalog).isEmpty());
    }

    void descendantsOfACycleEnd()
    {
        auto decoded = decodeCatalog(
            JSON({"osVersion": "1", "sections": [], "panes": [
            {"id": "a", "name": "A", "url": "x:a", "sections": [], "children": [["b"]]},
            {"id": "b", "name": "B", "url": "x:b", "sections": [], "children": [["a"]]}]}));
        QVERIFY(decoded.ok());
        const Catalog &cyclic = decoded.value();
        QCOMPARE(cyclic.pane(QStringLiteral("a"))->descendantURLs(cyclic), (QList<QUrl>{url("x:b"), url("x:a")}));
        QVERIFY(CustomMenuNode::tree({url("x:a")}, cyclic, Destination::buildIndex(cyclic)).isEmpty());
    }

    void headingPanesAreNoDestination()
    {
        // privacy heads screen and a nested heading; neither heading opens anything.
        auto decoded = decodeCatalog(JSON({"osVersion": "1", "sections": [["privacy"]], "panes": [
            {"id": "privacy", "name": "Privacy", "sections": [], "children": [["screen", "devices"]]},
            {"id": "screen", "name": "Screen", "url": "x:screen", "sections": []},
            {"id": "devices", "name": "Devices", "url": null, "sections": [], "children": [["camera"]]},
            {"id": "camera", "name": "Camera", "url": "x:camera", "sections": []}]}));
        QVERIFY2(decoded.ok(), qPrintable(decoded.error()));
        const Catalog &catalog = decoded.value();
        const Pane privacy = *catalog.pane(QStringLiteral("privacy"));
        QVERIFY(privacy.url.isEmpty());
        const auto index = Destination::buildIndex(catalog);
        QCOMPARE(index.size(), 2);
        QVERIFY(!index.contains(QUrl()));
        QCOMPARE(privacy.descendantURLs(catalog), (QList<QUrl>{url("x:screen"), url("x:camera")}));
        QCOMPARE(describe(CustomMenuNode::tree({url("x:camera")}, catalog, index)),
                 QStringLiteral("privacy(devices(camera*))"));
    }

    void treesOfPickedURLs_data()
    {
        QTest::addColumn<QList<QUrl>>("picked");
        QTest::addColumn<QString>("tree");
        QTest::newRow("grandchild item keeps its path") << QList<QUrl>{url("x:l2")} << "top(mid(leaf[L2]))";
        QTest::newRow("pane and its item") << QList<QUrl>{url("x:leaf"), url("x:l1")} << "top(mid(leaf*[L1]))";
        QTest::newRow("items in picked order") << QList<QUrl>{url("x:l2"), url("x:l1")} << "top(mid(leaf[L2,L1]))";
        QTest::newRow("unknown URLs") << QList<QUrl>{url("file:///tmp"), url("x:nowhere")} << "";
        // solo's item with its pane's URL replaces the pane's destination.
        QTest::newRow("roots in first-made order")
            << QList<QUrl>{url("x:solo"), url("x:mid")} << "solo[Same] top(mid*)";
        QTest::newRow("children in first-made order")
            << QList<QUrl>{url("x:l1"), url("x:top")} << "top*(mid(leaf[L1]))";
        // A later pane replaces an earlier item's destination.
        QTest::newRow("item URL taken by a later pane") << QList<QUrl>{url("x:t1")} << "later*";
    }

    void treesOfPickedURLs()
    {
        QFETCH(QList<QUrl>, picked);
        QFETCH(QString, tree);
        QCOMPARE(describe(CustomMenuNode::tree(picked, m_catalog, m_index)), tree);
    }

private:
    Catalog m_catalog;
    QHash<QUrl, Destination> m_index;
};

QTEST_GUILESS_MAIN(TestPaneTree)
#include "test_panetree.moc"
