#include "Kit/Persistence/ZQPredicateNode.h"

#include <QLocale>

#include <cmath>

namespace {

constexpr qint64 referenceDate = 978307200000; // 2001-01-01T00:00Z in milliseconds since 1970

template <class T>
QString spellingOf(const std::vector<ZQSpelling<T>> &spellings, T value)
{
    for (const ZQSpelling<T> &spelling : spellings) {
        if (spelling.value == value) {
            return QLatin1String(spelling.text);
        }
    }
    return {};
}

QString quoted(const QString &text)
{
    QString result = QStringLiteral("\"");
    for (const QChar c : text) {
        if (c == u'"' || c == u'\\') {
            result += u'\\';
            result += c;
        } else if (c.unicode() < 0x20 || c.unicode() == 0x7f) {
            result += QStringLiteral("\\u%1").arg(int(c.unicode()), 4, 16, QLatin1Char('0'));
        } else {
            result += c;
        }
    }
    return result + u'"';
}

QString numberText(double value)
{
    if (std::isinf(value)) {
        return value > 0 ? QStringLiteral("1e999") : QStringLiteral("-1e999");
    }
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

QString dateText(qint64 milliseconds)
{
    const qint64 offset = milliseconds - referenceDate;
    const qint64 magnitude = std::abs(offset);
    return QStringLiteral("CAST(%1%2.%3, \"NSDate\")")
        .arg(offset < 0 ? QStringLiteral("-") : QString())
        .arg(magnitude / 1000)
        .arg(magnitude % 1000, 3, 10, QLatin1Char('0'));
}

QString constantText(const ZQScalar &value, QVariantList *arguments)
{
    if (const qint64 *number = std::get_if<qint64>(&value)) {
        return QString::number(*number);
    }
    if (const double *number = std::get_if<double>(&value)) {
        return numberText(*number);
    }
    if (const QString *text = std::get_if<QString>(&value)) {
        return quoted(*text);
    }
    if (const ZQDateValue *date = std::get_if<ZQDateValue>(&value)) {
        return dateText(date->milliseconds);
    }
    if (const QByteArray *data = std::get_if<QByteArray>(&value)) {
        return QStringLiteral("CAST(\"%1\", \"NSData\")").arg(QString::fromLatin1(data->toBase64()));
    }
    if (const ZQObjectID *id = std::get_if<ZQObjectID>(&value)) {
        arguments->append(QVariant::fromValue(*id));
        return QStringLiteral("%@");
    }
    return QStringLiteral("nil");
}

QString keyPathText(const ZQExpression &expression)
{
    QStringList parts = expression.keys;
    for (QString &part : parts) {
        if (zqIsReservedWord(part)) {
            part.prepend(u'#');
        }
    }
    if (parts.isEmpty()) {
        parts.append(QStringLiteral("SELF"));
    }
    if (expression.isCount) {
        parts.append(QStringLiteral("@count"));
    }
    return parts.join(u'.');
}

QString expressionText(const ZQExpression &expression, QVariantList *arguments)
{
    if (expression.kind == ZQExpression::Kind::Constant) {
        return constantText(expression.constant, arguments);
    }
    if (expression.kind == ZQExpression::Kind::KeyPath) {
        return keyPathText(expression);
    }
    QStringList elements;
    for (const ZQExpression &element : expression.elements) {
        elements.append(expressionText(element, arguments));
    }
    return u'{' + elements.join(QStringLiteral(", ")) + u'}';
}

QString comparisonText(const ZQComparison &comparison, QVariantList *arguments)
{
    QString text;
    if (comparison.modifier != ZQComparisonModifier::Direct) {
        text = spellingOf(zqModifierSpellings, comparison.modifier) + u' ';
    }
    text += expressionText(comparison.left, arguments) + u' ' + spellingOf(zqOperatorSpellings, comparison.op);
    if (comparison.options.any()) {
        text += u'[';
        text += comparison.options.caseInsensitive ? QStringLiteral("c") : QString();
        text += comparison.options.diacriticInsensitive ? QStringLiteral("d") : QString();
        text += u']';
    }
    return text + u' ' + expressionText(comparison.right, arguments);
}

} // namespace

QString zqFormatOfNode(const ZQPredicateNode &node, QVariantList *arguments)
{
    switch (node.kind) {
    case ZQPredicateNode::Kind::Constant:
        return node.constant ? QStringLiteral("TRUEPREDICATE") : QStringLiteral("FALSEPREDICATE");
    case ZQPredicateNode::Kind::Comparison:
        return comparisonText(node.comparison, arguments);
    case ZQPredicateNode::Kind::Not:
        return QStringLiteral("NOT (") + zqFormatOfNode(*node.children.front(), arguments) + u')';
    default:
        break;
    }
    const bool isAnd = node.kind == ZQPredicateNode::Kind::And;
    QStringList parts;
    for (const ZQPredicateNodePtr &child : node.children) {
        const QString text = zqFormatOfNode(*child, arguments);
        const bool isCompound = child->kind == ZQPredicateNode::Kind::And || child->kind == ZQPredicateNode::Kind::Or;
        parts.append(isCompound ? u'(' + text + u')' : text);
    }
    return parts.join(isAnd ? QStringLiteral(" AND ") : QStringLiteral(" OR "));
}
