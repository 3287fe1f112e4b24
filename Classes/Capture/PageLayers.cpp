#include "Classes/Capture/PageLayers.h"

#include "Kit/Foundation/ZQCancellation.h"

#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <utility>

namespace {

using Node = PageSnapshot::Node;

constexpr int groundGroup = 0;
constexpr int noGroup = -1;
constexpr int noNode = -1;
constexpr double textOverhang = 6; // points that letters reach beyond their lines
constexpr double mostOverhang = 400;

bool isBelowFlow(const Node &node)
{
    return node.isStackingContext && node.styles.value(QStringLiteral("z-index")).toInt() < 0;
}

struct Group
{
    PageLayers::Layer layer;
    std::array<int, 3> order{}; // of painting; see `orderOf`
    QRectF bounds;
    int parent = noGroup; // the group that its elements lie in
    bool isText = false;  // takes what stands in its lines
};

// Drawn as one: what they hold is a part of them.
bool isWhole(const QString &name)
{
    static const QSet<QString> names{QStringLiteral("svg"),   QStringLiteral("button"),   QStringLiteral("select"),
                                     QStringLiteral("input"), QStringLiteral("textarea"), QStringLiteral("meter"),
                                     QStringLiteral("video"), QStringLiteral("progress"), QStringLiteral("math"),
                                     QStringLiteral("object")};
    return names.contains(name);
}

bool isReplaced(const QString &name)
{
    static const QSet<QString> names{QStringLiteral("img"), QStringLiteral("canvas"), QStringLiteral("iframe"),
                                     QStringLiteral("embed"), QStringLiteral("hr")};
    return names.contains(name) || isWhole(name);
}

double points(const QString &text)
{
    static const QString unit = QStringLiteral("px");
    return text.endsWith(unit) ? text.chopped(unit.size()).toDouble() : 0;
}

bool isTransparent(const QString &color)
{
    static const QRegularExpression noAlpha(QStringLiteral(R"(^rgba\(.*,\s*0\)$|/\s*0\)$|^transparent$)"));
    return color.isEmpty() || noAlpha.match(color).hasMatch();
}

bool isGiven(const QString &value)
{
    return !value.isEmpty() && value != QStringLiteral("none");
}

// Whether its box is seen.
bool drawsBox(const Node &node)
{
    const auto style = [&](const char *name) { return node.styles.value(QString::fromLatin1(name)); };
    const bool hasBorder = points(style("border-top-width")) > 0 || points(style("border-right-width")) > 0 ||
                           points(style("border-bottom-width")) > 0 || points(style("border-left-width")) > 0;
    return !isTransparent(style("background-color")) || isGiven(style("background-image")) || hasBorder ||
           isGiven(style("box-shadow")) || isGiven(style("border-image-source")) || isGiven(style("outline-style"));
}

// How far its shadows and its outline may reach: the lengths in them together are more than they do.
double overhang(const Node &node)
{
    static const QRegularExpression length(QStringLiteral(R"((-?[0-9.]+)px)"));
    double sum = textOverhang;
    for (const char *name : {"box-shadow", "text-shadow", "filter"}) {
        auto matches = length.globalMatch(node.styles.value(QString::fromLatin1(name)));
        while (matches.hasNext()) {
            sum += 2 * std::abs(matches.next().captured(1).toDouble());
        }
    }
    if (isGiven(node.styles.value(QStringLiteral("outline-style")))) {
        sum += points(node.styles.value(QStringLiteral("outline-width"))) +
               std::abs(points(node.styles.value(QStringLiteral("outline-offset"))));
    }
    return std::min(sum, mostOverhang);
}

class Divider
{
public:
    Divider(const QList<Node> &nodes, const QRect &page) : m_nodes(nodes), m_page(page), m_texts(nodes.size())
    {
        for (qsizetype i = 0; i < nodes.size(); ++i) {
            collectText(i);
        }
    }

    PageLayers::Division divide(qsizetype most)
    {
        m_groups.append(Group());
        m_groupOf.fill(noGroup, m_nodes.size());
        m_isSeen.fill(true, m_nodes.size());
        for (qsizetype i = 0; i < m_nodes.size() && !ZQCancellation::isCurrentCancelled(); ++i) {
            carryDown(i);
            assign(i);
        }
        PageLayers::Division division;
        division.joined = joinSmallest(most);
        division.ground = m_groups.front().layer.marks;
        std::stable_sort(m_groups.begin() + 1, m_groups.end(),
                         [](const Group &a, const Group &b) { return a.order < b.order; });
        for (qsizetype i = 1; i < m_groups.size(); ++i) {
            if (!m_groups[i].layer.marks.isEmpty()) {
                division.layers.append(m_groups[i].layer);
                division.layers.back().bounds = boundsOf(m_groups[i]);
                division.layers.back().zIndex = division.layers.size();
            }
        }
        return division;
    }

private:
    // What is asked of all that a node lies in, once for each: a page may be as deep as it is large.
    void carryDown(qsizetype index)
    {
        const Node &node = m_nodes[index];
        const int parent = node.parent;
        const int around = parent >= 0 ? m_below[parent] : noNode;
        const bool isInBody = parent >= 0 && m_nodes[parent].name == QStringLiteral("body");
        m_isInWhole.append(parent >= 0 && (isWhole(m_nodes[parent].name) || (!isInBody && m_isInWhole[parent])));
        m_below.append(around < 0 && isBelowFlow(node) ? int(index) : around);
        m_contexts.append(index == 0 || node.isStackingContext ? int(index) : contextAround(node));
    }

    int contextAround(const Node &node) const { return node.parent >= 0 ? m_contexts[node.parent] : noNode; }

    // Text, and content that a style makes, is drawn by the element around it.
    void collectText(qsizetype index)
    {
        const Node &node = m_nodes[index];
        const bool isDrawn = !node.isElement || node.name.startsWith(u':');
        if (isDrawn && node.parent >= 0 && !node.bounds.isEmpty() &&
            (!node.text.trimmed().isEmpty() || node.name.startsWith(u':'))) {
            m_texts[node.parent].append(int(index));
        }
    }

    bool isSeen(const Node &node) const
    {
        // What has no box of its own ("display: contents") has no styles here either; what it holds may be seen.
        const QString opacity = node.styles.value(QStringLiteral("opacity"));
        return (opacity.isEmpty() || opacity.toDouble() > 0) && (node.parent < 0 || m_isSeen[node.parent]);
    }

    static bool isVisible(const Node &node)
    {
        const QString visibility = node.styles.value(QStringLiteral("visibility"));
        return visibility.isEmpty() || visibility == QStringLiteral("visible");
    }

    // Stands in the lines of the text around it.
    bool isInLine(const Node &node, int around) const
    {
        const QString position = node.styles.value(QStringLiteral("position"));
        const QString opacity = node.styles.value(QStringLiteral("opacity"));
        return around >= 0 && m_groups[around].isText && !isReplaced(node.name) &&
               node.styles.value(QStringLiteral("display")) == QStringLiteral("inline") &&
               (position == QStringLiteral("static") || position == QStringLiteral("relative")) &&
               (opacity.isEmpty() || opacity == QStringLiteral("1"));
    }

    void assign(qsizetype index)
    {
        const Node &node = m_nodes[index];
        m_isSeen[index] = isSeen(node);
        const int around = node.parent >= 0 ? m_groupOf[node.parent] : noGroup;
        m_groupOf[index] = around;
        if (!node.isElement || node.mark < 0 || !m_isSeen[index]) {
            if (around > groundGroup && m_isSeen[index]) {
                addBounds(around, node); // of a part of an element that has no number
            }
            return;
        }
        if (node.name == QStringLiteral("html") || node.name == QStringLiteral("body")) {
            m_groupOf[index] = groundGroup;
            m_groups[groundGroup].layer.marks.append(node.mark);
            m_groups[groundGroup].isText |= !m_texts[index].isEmpty();
            return;
        }
        if (m_isInWhole[index] && around > groundGroup) {
            add(around, index);
            return;
        }
        const bool draws = drawsBox(node) || isReplaced(node.name) || !m_texts[index].isEmpty();
        if (isInLine(node, around)) {
            add(around, index);
        } else if (draws && isVisible(node)) {
            m_groups.append(Group());
            m_groups.back().parent = around;
            m_groups.back().isText = !m_texts[index].isEmpty();
            m_groups.back().layer.name = nameOf(index);
            m_groupOf[index] = int(m_groups.size()) - 1;
            add(m_groupOf[index], index);
        }
    }

    void addBounds(int group, const Node &node)
    {
        if (!node.bounds.isEmpty()) {
            const double around = overhang(node);
            m_groups[group].bounds |= node.bounds.adjusted(-around, -around, around, around);
        }
    }

    void add(int group, qsizetype index)
    {
        const Node &node = m_nodes[index];
        if (!isVisible(node)) {
            return;
        }
        PageLayers::Layer &layer = m_groups[group].layer;
        if (layer.marks.isEmpty()) {
            m_groups[group].order = orderOf(index);
        }
        layer.marks.append(node.mark);
        addBounds(group, node);
        for (const int text : std::as_const(m_texts[index])) {
            addBounds(group, m_nodes[text]);
        }
    }

    int paintOrderOf(qsizetype index) const
    {
        int order = m_nodes[index].paintOrder;
        for (const int text : std::as_const(m_texts[index])) {
            order = order < 0 ? m_nodes[text].paintOrder : order;
        }
        return order;
    }

    // The browser tells of its own layers, and all that stands in the flow of one has its number; what lies below the
    // flow, but above the ground of its stacking context, has a number of its own behind.
    std::array<int, 3> orderOf(qsizetype index) const
    {
        const int below = m_below[index];
        if (below < 0) {
            return {paintOrderOf(index), m_nodes[index].isStackingContext ? 0 : 2, 0};
        }
        const int context = contextAround(m_nodes[below]);
        return {context < 0 ? 0 : m_nodes[context].paintOrder, 1, paintOrderOf(index)};
    }

    QString nameOf(qsizetype index) const
    {
        const Node &node = m_nodes[index];
        for (const char *attribute : {"id", "aria-label", "alt"}) {
            if (const QString value = node.attributes.value(QString::fromLatin1(attribute)); !value.isEmpty()) {
                return value;
            }
        }
        constexpr qsizetype longest = 40;
        for (const int text : std::as_const(m_texts[index])) {
            const QString words = m_nodes[text].name.isEmpty() ? m_nodes[text].text.simplified() : QString();
            if (!words.isEmpty()) {
                return words.left(longest);
            }
        }
        const QString className = node.attributes.value(QStringLiteral("class")).section(u' ', 0, 0);
        return className.isEmpty() ? node.name : node.name + u'.' + className;
    }

    QRect boundsOf(const Group &group) const { return group.bounds.toAlignedRect() & m_page; }

    // Those that are not on the page are none; of the others the smallest go onto what they lie in.
    qsizetype joinSmallest(qsizetype most)
    {
        QList<int> left;
        for (int i = groundGroup + 1; i < m_groups.size(); ++i) {
            leaveOutEmptyParent(m_groups[i]);
            if (boundsOf(m_groups[i]).isEmpty()) {
                m_groups[i].layer.marks.clear();
            } else {
                left.append(i);
            }
        }
        const qsizetype excess = left.size() - most;
        const auto area = [this](int group) {
            const QRect bounds = boundsOf(m_groups[group]);
            return qint64(bounds.width()) * bounds.height();
        };
        std::stable_sort(left.begin(), left.end(), [&](int a, int b) { return area(a) < area(b); });
        left.resize(std::max<qsizetype>(excess, 0));
        // Children come after their parents, so that what is joined goes on with them.
        std::sort(left.begin(), left.end(), std::greater<>());
        for (const int group : std::as_const(left)) {
            joinWithParent(group);
        }
        return left.size();
    }

    // Parents come first, and have left out theirs.
    void leaveOutEmptyParent(Group &group) const
    {
        if (group.parent > groundGroup && m_groups[group.parent].layer.marks.isEmpty()) {
            group.parent = m_groups[group.parent].parent;
        }
    }

    void joinWithParent(int index)
    {
        Group &target = m_groups[std::max(m_groups[index].parent, groundGroup)];
        QList<int> marks = std::exchange(m_groups[index].layer.marks, {});
        if (marks.size() > target.layer.marks.size()) { // the fewer go to the more: one chain may hold all
            marks.swap(target.layer.marks);
        }
        target.layer.marks.append(marks);
        target.bounds |= m_groups[index].bounds;
    }

    const QList<Node> &m_nodes;
    const QRect m_page;
    QList<QList<int>> m_texts; // of each element, what it draws as text
    QList<Group> m_groups;     // the first is the ground
    QList<int> m_groupOf;
    QList<bool> m_isSeen;
    // Of each node, as `carryDown` finds it.
    QList<bool> m_isInWhole; // a part of what is drawn as one
    QList<int> m_below;      // the outermost of it and those it lies in that is below the flow
    QList<int> m_contexts;   // the innermost of them that is a stacking context, or the root
};

} // namespace

PageLayers::Division PageLayers::divide(const QList<PageSnapshot::Node> &nodes, const QRect &page, qsizetype most)
{
    return Divider(nodes, page).divide(most);
}
