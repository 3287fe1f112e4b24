#include "Kit/Persistence/ZQPredicate.h"

#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQPredicateNode.h"
#include "Kit/Persistence/ZQPredicateParser.h"

namespace {

// A combination too deep to run must not match everything, which a null predicate would.
ZQPredicate combined(ZQPredicateNodePtr node)
{
    if (!node) {
        qCWarning(zqLogStore, "A predicate is nested too deeply and matches nothing");
        node = zqMakeConstant(false);
    }
    return ZQPredicate(std::move(node));
}

} // namespace

ZQPredicate ZQPredicate::predicateWithFormat(const QString &format, const QVariantList &arguments, ZQError *error)
{
    return ZQPredicate(zqParsePredicate(format, arguments, error));
}

ZQPredicate ZQPredicate::andPredicate(const QList<ZQPredicate> &parts)
{
    std::vector<ZQPredicateNodePtr> nodes;
    for (const ZQPredicate &part : parts) {
        if (!part.isNull()) {
            nodes.push_back(part.m_root);
        }
    }
    return nodes.empty() ? ZQPredicate() : combined(zqMakeCompound(ZQPredicateNode::Kind::And, nodes));
}

ZQPredicate ZQPredicate::orPredicate(const QList<ZQPredicate> &parts)
{
    std::vector<ZQPredicateNodePtr> nodes;
    for (const ZQPredicate &part : parts) {
        if (!part.isNull()) {
            nodes.push_back(part.m_root);
        }
    }
    return nodes.empty() ? ZQPredicate() : combined(zqMakeCompound(ZQPredicateNode::Kind::Or, nodes));
}

ZQPredicate ZQPredicate::notPredicate(const ZQPredicate &part)
{
    return combined(part.isNull() ? zqMakeConstant(false) : zqMakeNot(part.m_root));
}

QString ZQPredicate::predicateFormat() const
{
    QVariantList arguments;
    return m_root ? zqFormatOfNode(*m_root, &arguments) : QStringLiteral("TRUEPREDICATE");
}

QVariantList ZQPredicate::predicateFormatArguments() const
{
    QVariantList arguments;
    if (m_root) {
        zqFormatOfNode(*m_root, &arguments);
    }
    return arguments;
}

bool operator==(const ZQPredicate &a, const ZQPredicate &b)
{
    if (!a.m_root || !b.m_root) {
        return a.m_root == b.m_root;
    }
    return a.m_root == b.m_root || zqEqualNodes(*a.m_root, *b.m_root);
}
