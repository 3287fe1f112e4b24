// Which elements of a page are a layer together, in which order and under which names; and which addresses are pages.

#include "Classes/Capture/PageLayers.h"
#include "Classes/Capture/WebCaptureErrors.h"
#include "Classes/Capture/WebCaptureRequest.h"
#include "Kit/Foundation/ZQCancellation.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QSet>

#include <memory>

#include <gtest/gtest.h>

namespace {

using Node = PageSnapshot::Node;
using Styles = QHash<QString, QString>;

const QRect page(0, 0, 1000, 2000);

// Builds a list of nodes as a browser tells of them; each is below the one whose number is given.
class Page
{
public:
    Page()
    {
        add(-1, "html");
        add(0, "body");
    }
    int add(int parent, const char *name, const Styles &styles = {}, const QRectF &bounds = {10, 10, 100, 50},
            int paintOrder = 1)
    {
        Node node;
        node.parent = parent;
        node.isElement = true;
        node.mark = int(nodes.size());
        node.name = QString::fromLatin1(name);
        node.styles = styles;
        if (!styles.contains(QStringLiteral("display"))) {
            node.styles.insert(QStringLiteral("display"), QStringLiteral("block"));
        }
        node.styles.insert(QStringLiteral("position"),
                           styles.value(QStringLiteral("position"), QStringLiteral("static")));
        node.bounds = bounds;
        node.paintOrder = paintOrder;
        nodes.append(node);
        return node.mark;
    }
    void addText(int parent, const char *text, const QRectF &bounds = {10, 10, 100, 20})
    {
        Node node;
        node.parent = parent;
        node.text = QString::fromUtf8(text);
        node.bounds = bounds;
        node.paintOrder = nodes[parent].paintOrder;
        nodes.append(node);
    }
    QStringList names(qsizetype most = PageLayers::mostLayers) const
    {
        QStringList list;
        for (const auto &layer : PageLayers::divide(nodes, page, most).layers) {
            list.append(layer.name);
        }
        return list;
    }

    QList<Node> nodes;
};

const Styles red{{QStringLiteral("background-color"), QStringLiteral("rgb(255, 0, 0)")}};
const Styles inLine{{QStringLiteral("display"), QStringLiteral("inline")}};

Styles with(Styles styles, const char *name, const char *value)
{
    styles.insert(QString::fromLatin1(name), QString::fromLatin1(value));
    return styles;
}

} // namespace

TEST(PageLayersTest, WhatOnlyHoldsOthersIsNoLayerAndTextTakesItsLines)
{
    Page made;
    const int wrapper = made.add(1, "div");
    const int paragraph = made.add(wrapper, "p");
    made.addText(paragraph, "Hello ");
    const int bold = made.add(paragraph, "b", inLine);
    made.addText(bold, "world");
    const int picture = made.add(paragraph, "img", inLine);
    const auto division = PageLayers::divide(made.nodes, page);
    ASSERT_EQ(division.layers.size(), 2);
    EXPECT_EQ(division.layers[0].name, QStringLiteral("Hello"));
    EXPECT_EQ(division.layers[0].marks, (QList<int>{paragraph, bold}));
    EXPECT_EQ(division.layers[1].marks, QList<int>{picture});
    EXPECT_EQ(division.ground, (QList<int>{0, 1}));
}

TEST(PageLayersTest, ControlsAndDrawingsAreWhole)
{
    Page made;
    const int button = made.add(1, "button", red);
    made.addText(made.add(button, "span", red), "Push");
    const int drawing = made.add(1, "svg");
    made.add(made.add(drawing, "g"), "circle", red);
    const auto division = PageLayers::divide(made.nodes, page);
    ASSERT_EQ(division.layers.size(), 2);
    EXPECT_EQ(division.layers[0].marks.size(), 2);
    EXPECT_EQ(division.layers[1].marks.size(), 3);
}

TEST(PageLayersTest, WhatIsNotSeenIsNoLayer)
{
    const Styles gone[] = {with(red, "visibility", "hidden"),
                           with(red, "opacity", "0"),
                           {{QStringLiteral("background-color"), QStringLiteral("rgba(0, 0, 0, 0)")}}};
    for (const Styles &styles : gone) {
        Page made;
        made.add(1, "div", styles);
        EXPECT_EQ(made.names(), QStringList());
    }
    Page made;
    made.add(1, "div", red, QRectF(-500, 0, 100, 100));
    made.add(made.add(1, "section", with({}, "opacity", "0")), "div", red);
    EXPECT_EQ(made.names(), QStringList());
    // What is shown in something hidden is.
    made.add(made.add(1, "section", with({}, "visibility", "hidden")), "em", with(red, "visibility", "visible"));
    EXPECT_EQ(made.names(), QStringList{QStringLiteral("em")});
}

TEST(PageLayersTest, ComeInTheOrderOfPainting)
{
    Page made;
    made.nodes[0].isStackingContext = true;
    made.add(1, "top", red, {0, 0, 9, 9}, 7);
    const int context = made.add(1, "context", red, {0, 0, 9, 9}, 3);
    made.nodes[context].isStackingContext = true;
    made.add(context, "inside", red, {0, 0, 9, 9}, 3);
    const Styles negative = with(with(red, "z-index", "-1"), "position", "absolute");
    made.nodes[made.add(context, "under", negative, {0, 0, 9, 9}, 4)].isStackingContext = true;
    made.add(1, "flow", red, {0, 0, 9, 9}, 1);
    made.nodes[made.add(1, "below", negative, {0, 0, 9, 9}, 2)].isStackingContext = true;
    EXPECT_EQ(made.names().join(u' '), QStringLiteral("below flow context under inside top"));
}

TEST(PageLayersTest, TheSmallestOfTooManyGoOntoWhatTheyLieIn)
{
    Page made;
    const int card = made.add(1, "card", red, {0, 0, 500, 500});
    const int small = made.add(card, "small", red, {0, 0, 20, 20});
    const int smallest = made.add(small, "smallest", red, {0, 0, 5, 5});
    made.add(1, "large", red, {0, 600, 400, 400});
    const auto division = PageLayers::divide(made.nodes, page, 2);
    ASSERT_EQ(division.layers.size(), 2);
    EXPECT_EQ(division.joined, 2);
    const QList<int> marks = division.layers[0].marks;
    EXPECT_EQ(QSet<int>(marks.begin(), marks.end()), (QSet<int>{card, small, smallest}));
}

TEST(PageLayersTest, ReachAsFarAsTheirShadowsAndNoFurtherThanThePage)
{
    Page made;
    made.add(1, "div", with(red, "box-shadow", "rgb(0, 0, 0) 10px 20px 30px 0px"), {900, 100, 80, 50});
    const QRect bounds = PageLayers::divide(made.nodes, page).layers.value(0).bounds;
    EXPECT_TRUE(bounds.contains(QRect(870, 70, 100, 150)));
    EXPECT_TRUE(page.contains(bounds));
}

TEST(PageLayersTest, SnapshotsThatDoNotFitTogetherAreReadAsFarAsTheyDo)
{
    const QJsonObject nodes{{QStringLiteral("parentIndex"), QJsonArray{-1, 7, 0}},
                            {QStringLiteral("nodeType"), QJsonArray{9}},
                            {QStringLiteral("nodeName"), QJsonArray{-5, 99}},
                            {QStringLiteral("attributes"), QJsonArray{QJsonArray{0}}}};
    const QJsonObject layout{{QStringLiteral("nodeIndex"), QJsonArray{0, 55, -1, QStringLiteral("x")}},
                             {QStringLiteral("bounds"), QJsonArray{QJsonArray{1}}}};
    const QJsonObject document{{QStringLiteral("nodes"), nodes}, {QStringLiteral("layout"), layout}};
    for (const QJsonObject &answer :
         {QJsonObject(), QJsonObject{{QStringLiteral("documents"), QJsonArray{document}}}}) {
        const auto read = PageSnapshot::nodes(answer).value_or(QList<Node>(4));
        EXPECT_LE(read.size(), 3);
        EXPECT_TRUE(PageLayers::divide(read, page).layers.isEmpty());
    }
}

TEST(PageLayersTest, APageTooLargeAndACancelledOneAreRefused)
{
    const auto answerOf = [](qsizetype count) {
        QJsonArray parents;
        for (qsizetype i = 0; i < count; ++i) {
            parents.append(i - 1);
        }
        const QJsonObject nodes{{QStringLiteral("parentIndex"), parents}};
        return QJsonObject{{QStringLiteral("documents"), QJsonArray{QJsonObject{{QStringLiteral("nodes"), nodes}}}}};
    };
    ZQError error;
    EXPECT_FALSE(PageSnapshot::nodes(answerOf(PageSnapshot::mostNodes + 1), &error));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("as a picture")));
    EXPECT_EQ(PageSnapshot::nodes(answerOf(3))->size(), 3);

    Page made;
    made.add(1, "div", red);
    const auto cancellation = std::make_shared<ZQCancellation>();
    const ZQCancellation::Scope scope(cancellation);
    EXPECT_EQ(made.names().size(), 1);
    cancellation->cancel();
    EXPECT_EQ(made.names().size(), 0);
    EXPECT_FALSE(PageSnapshot::nodes(answerOf(3), &error));
    EXPECT_EQ(error.code, WebCaptureErrors::Cancelled);
}

// As fast as a flat one: climbing from each to the root would take longer than anybody waits.
TEST(PageLayersTest, APageThatIsAsDeepAsItIsLargeIsDivided)
{
    Page made;
    made.nodes.reserve(PageSnapshot::mostNodes);
    for (int last = 1; made.nodes.size() < PageSnapshot::mostNodes;) {
        last = made.add(last, "div", red, made.nodes.size() % 2 ? QRectF(10, 10, 100, 50) : QRectF(-900, 10, 9, 9));
    }
    const auto division = PageLayers::divide(made.nodes, page, 1);
    ASSERT_EQ(division.layers.size(), 1);
    EXPECT_EQ(division.joined, PageSnapshot::mostNodes / 2 - 2);
    EXPECT_EQ(division.layers[0].marks.size() + division.ground.size(), PageSnapshot::mostNodes / 2 + 1);
}

TEST(WebCaptureRequestTest, CompletesAddressesAndTakesOnlyPages)
{
    struct Case
    {
        const char *typed;
        const char *address; // empty: refused
        bool mayReadFiles = false;
    };
    const Case cases[] = {
        {" example.com/a b ", "https://example.com/a%20b"},
        {"http://example.com", "http://example.com"},
        {"localhost:8080/x", "http://localhost:8080/x"},
        {"127.0.0.1", "http://127.0.0.1"},
        {"", ""},
        {"/etc/passwd", ""},
        {"file:///etc/passwd", ""},
        {"file:///tmp/page.html", "file:///tmp/page.html", true},
        {"javascript:alert(1)", "", true},
        {"chrome://settings", "", true},
        {"data:text/html,x", "", true},
        {"view-source:http://example.com", "", true},
    };
    for (const Case &each : cases) {
        ZQError error;
        EXPECT_EQ(WebCaptureRequest::addressFor(QString::fromLatin1(each.typed), each.mayReadFiles, &error),
                  QString::fromLatin1(each.address))
            << each.typed;
        EXPECT_EQ(error.isNull(), *each.address != 0) << each.typed;
    }
}
