#include "Classes/Capture/PageSnapshot.h"

#include "Classes/Capture/WebCaptureErrors.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int elementNode = 1;
constexpr qsizetype longestString = 4096; // of what is named: a page may name one of many megabytes anywhere
constexpr qsizetype stringsPerNode = 10;
constexpr double farthest = 1e9; // of a place on a page, in points: sums of such numbers stay numbers

class Reader
{
public:
    explicit Reader(const QJsonObject &answer)
        : m_allStrings(answer[QStringLiteral("strings")].toArray()),
          m_document(answer[QStringLiteral("documents")].toArray().at(0).toObject()),
          m_nodes(m_document[QStringLiteral("nodes")].toObject()),
          m_layout(m_document[QStringLiteral("layout")].toObject())
    {
    }

    bool isTooLarge() const
    {
        return std::max(m_nodes[QStringLiteral("parentIndex")].toArray().size(),
                        m_layout[QStringLiteral("nodeIndex")].toArray().size()) > PageSnapshot::mostNodes ||
               m_allStrings.size() > stringsPerNode * PageSnapshot::mostNodes;
    }

    // As far as it got when the thread was cancelled.
    QList<PageSnapshot::Node> read()
    {
        for (const QJsonValue text : std::as_const(m_allStrings)) {
            m_strings.append(text.toString().left(longestString));
        }
        QList<PageSnapshot::Node> nodes = elements();
        addPseudo(nodes);
        addLayout(nodes);
        return nodes;
    }

private:
    static double length(const QJsonValue &value) { return std::clamp(value.toDouble(), -farthest, farthest); }
    QString string(const QJsonValue &index) const { return m_strings.value(index.toInt(-1)); }

    QList<PageSnapshot::Node> elements() const
    {
        const QJsonArray parents = m_nodes[QStringLiteral("parentIndex")].toArray();
        const QJsonArray types = m_nodes[QStringLiteral("nodeType")].toArray();
        const QJsonArray names = m_nodes[QStringLiteral("nodeName")].toArray();
        const QJsonArray attributes = m_nodes[QStringLiteral("attributes")].toArray();
        QList<PageSnapshot::Node> nodes;
        for (qsizetype i = 0; i < parents.size() && !ZQCancellation::isCurrentCancelled(); ++i) {
            PageSnapshot::Node node;
            const int parent = parents.at(i).toInt(-1);
            node.parent = parent >= 0 && parent < i ? parent : -1;
            node.isElement = types.at(i).toInt() == elementNode;
            if (node.isElement) {
                node.name = string(names.at(i)).toLower();
                addAttributes(attributes.at(i).toArray(), node);
            }
            nodes.append(node);
        }
        return nodes;
    }

    void addAttributes(const QJsonArray &list, PageSnapshot::Node &node) const
    {
        static const QStringList kept{QStringLiteral("id"), QStringLiteral("class"), QStringLiteral("aria-label"),
                                      QStringLiteral("alt")};
        for (qsizetype i = 0; i + 1 < list.size(); i += 2) {
            const QString name = string(list.at(i));
            if (name == PageSnapshot::markAttribute) {
                bool isNumber = false;
                const int mark = string(list.at(i + 1)).toInt(&isNumber);
                node.mark = isNumber ? mark : -1;
            } else if (kept.contains(name)) {
                node.attributes.insert(name, string(list.at(i + 1)).simplified());
            }
        }
    }

    void addPseudo(QList<PageSnapshot::Node> &nodes) const
    {
        const QJsonValue pseudo = m_nodes[QStringLiteral("pseudoType")];
        const QJsonArray indexes = pseudo[QStringLiteral("index")].toArray();
        const QJsonArray types = pseudo[QStringLiteral("value")].toArray();
        for (qsizetype i = 0; i < indexes.size(); ++i) {
            if (const int index = indexes.at(i).toInt(-1); index >= 0 && index < nodes.size()) {
                nodes[index].name = QStringLiteral("::") + string(types.at(i));
                nodes[index].mark = -1;
            }
        }
    }

    void addLayout(QList<PageSnapshot::Node> &nodes) const
    {
        const QJsonArray indexes = m_layout[QStringLiteral("nodeIndex")].toArray();
        const QJsonArray bounds = m_layout[QStringLiteral("bounds")].toArray();
        const QJsonArray styles = m_layout[QStringLiteral("styles")].toArray();
        const QJsonArray texts = m_layout[QStringLiteral("text")].toArray();
        const QJsonArray orders = m_layout[QStringLiteral("paintOrders")].toArray();
        for (qsizetype i = 0; i < indexes.size() && !ZQCancellation::isCurrentCancelled(); ++i) {
            const int index = indexes.at(i).toInt(-1);
            if (index < 0 || index >= nodes.size()) {
                continue;
            }
            PageSnapshot::Node &node = nodes[index];
            const QJsonArray rect = bounds.at(i).toArray();
            node.bounds |= QRectF(length(rect.at(0)), length(rect.at(1)), length(rect.at(2)), length(rect.at(3)));
            node.paintOrder = std::max(node.paintOrder, orders.at(i).toInt(-1));
            node.text += string(texts.at(i)).left(longestString - node.text.size());
            addStyles(styles.at(i).toArray(), node);
        }
        for (const QJsonValue layout :
             m_layout[QStringLiteral("stackingContexts")][QStringLiteral("index")].toArray()) {
            if (const int index = indexes.at(layout.toInt(-1)).toInt(-1); index >= 0 && index < nodes.size()) {
                nodes[index].isStackingContext = true;
            }
        }
    }

    void addStyles(const QJsonArray &values, PageSnapshot::Node &node) const
    {
        const QStringList names = PageSnapshot::styleNames();
        for (qsizetype i = 0; i < std::min(names.size(), values.size()); ++i) {
            node.styles.insert(names[i], string(values.at(i)));
        }
    }

    const QJsonArray m_allStrings;
    QStringList m_strings; // cut, and shared by all that name them
    const QJsonObject m_document;
    const QJsonObject m_nodes;
    const QJsonObject m_layout;
};

} // namespace

QStringList PageSnapshot::styleNames()
{
    static const QStringList names{
        QStringLiteral("visibility"),
        QStringLiteral("opacity"),
        QStringLiteral("display"),
        QStringLiteral("position"),
        QStringLiteral("z-index"),
        QStringLiteral("background-color"),
        QStringLiteral("background-image"),
        QStringLiteral("border-top-width"),
        QStringLiteral("border-right-width"),
        QStringLiteral("border-bottom-width"),
        QStringLiteral("border-left-width"),
        QStringLiteral("border-image-source"),
        QStringLiteral("outline-style"),
        QStringLiteral("outline-width"),
        QStringLiteral("outline-offset"),
        QStringLiteral("box-shadow"),
        QStringLiteral("text-shadow"),
        QStringLiteral("filter"),
    };
    return names;
}

QJsonObject PageSnapshot::parameters()
{
    return {{QStringLiteral("computedStyles"), QJsonArray::fromStringList(styleNames())},
            {QStringLiteral("includePaintOrder"), true},
            {QStringLiteral("includeDOMRects"), true}};
}

std::optional<QList<PageSnapshot::Node>> PageSnapshot::nodes(const QJsonObject &answer, ZQError *error)
{
    Reader reader(answer);
    if (reader.isTooLarge()) {
        zqSetError(error, WebCaptureErrors::with(WebCaptureErrors::NoPage,
                                                 zqLocalized("This page has too many elements to be captured in "
                                                             "layers. Capture it as a picture.")));
        return std::nullopt;
    }
    QList<Node> nodes = reader.read();
    if (ZQCancellation::isCurrentCancelled()) {
        zqSetError(error,
                   WebCaptureErrors::with(WebCaptureErrors::Cancelled, zqLocalized("The capture was cancelled.")));
        return std::nullopt;
    }
    return nodes;
}
