#include "Tests/Kit/Persistence/RandomPredicates.h"

#include <rapidcheck.h>

namespace {

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

const std::vector<QVariant> texts = {
    {},          text(""),     text("a"),  text("A"),      text("ä"),  text("a\u0308"), text("ß"),       text("ss"),
    text("SS"),  text("İ"),    text("i"),  text("Σ"),      text("ς"),  text("Å"),       text("A\u030a"), text("😀"),
    text("a*b"), text("a\\b"), text("%_"), text("\uffff"), text("10"), text("2"),       text("\u0301"),  text("ab?")};
const std::vector<QVariant> integers = {{}, 0, 1, -1, 2, 9007199254740993LL, std::numeric_limits<qint64>::min()};
const std::vector<QVariant> doubles = {{}, 0.0, 1.0, 1.5, -0.5, 9007199254740992.0, 1e300};
const std::vector<QVariant> flags = {{}, true, false};
const std::vector<QVariant> dates = {
    {}, QDateTime::fromMSecsSinceEpoch(0), QDateTime::fromMSecsSinceEpoch(978307201500)};

template <class T>
T oneOf(const std::vector<T> &values)
{
    return values[*rc::gen::inRange<size_t>(0, values.size())];
}

struct Property
{
    const char *path;
    const std::vector<QVariant> *values;
};
const std::vector<Property> properties = {
    {"title", &texts},
    {"author", &texts},
    {"parent.title", &texts},
    {"parent.parent.title", &texts},
    {"tags.name", &texts},
    {"children.title", &texts},
    {"notes.text", &texts},
    {"parent.notes.text", &texts},
    {"children.notes.text", &texts},
    {"children.parent.title", &texts},
    {"flag", &flags},
    {"small", &integers},
    {"large", &integers},
    {"exact", &doubles},
    {"parent.exact", &doubles},
    {"tags.weight", &integers},
    {"tags.@count", &integers},
    {"tags.weight.@count", &integers},
    {"children.@count", &integers},
    {"date", &dates},
    {"parent.date", &dates},
    {"parent.title.@count", &integers},
};

} // namespace

void fillAtRandom(PredicateDatabase &database)
{
    for (qint64 key = 1; key <= 4; ++key) {
        database.addTag(key, oneOf(texts), oneOf(integers));
    }
    const int count = *rc::gen::inRange(1, 8);
    for (qint64 key = 1; key <= count; ++key) {
        PredicateDatabase::Node node;
        node.values = {{text("title"), oneOf(texts)},    {text("author"), oneOf(texts)},
                       {text("flag"), oneOf(flags)},     {text("small"), oneOf(integers)},
                       {text("large"), oneOf(integers)}, {text("exact"), oneOf(doubles)},
                       {text("date"), oneOf(dates)}};
        node.parent = *rc::gen::inRange<qint64>(0, key);
        for (qint64 tag = 1; tag <= 4; ++tag) {
            if (*rc::gen::inRange(0, 3) == 0) {
                node.tags.append(tag);
            }
        }
        database.addNode(key, node);
    }
    for (qint64 key = 1; key <= 4; ++key) {
        database.addNote(key, oneOf(texts), *rc::gen::inRange<qint64>(1, count + 1));
    }
}

namespace {

// A random comparison; now and then of values whose types do not fit.
QString randomComparison(QVariantList *arguments)
{
    static const std::vector<QString> modifiers = {{}, {}, text("ANY "), text("ALL "), text("NONE ")};
    static const std::vector<QString> operators = {
        text("=="),      text("!="),         text("<"),        text("<="),       text(">"),
        text(">="),      text("BEGINSWITH"), text("ENDSWITH"), text("CONTAINS"), text("LIKE"),
        text("MATCHES"), text("IN"),         text("BETWEEN"),  text("IN path")};
    static const std::vector<QString> options = {{}, {}, text("[c]"), text("[d]"), text("[cd]")};
    static const std::vector<QString> wildcards = {text("a*"), text("?"), text("*s*"), text("a\\*b"), text("")};
    static const std::vector<QString> expressions = {text(".*"), text("\\w"), text("(a|ß)+"), text("[^a]"), text("")};

    const Property property = oneOf(properties);
    const bool isFitting = *rc::gen::inRange(0, 6) > 0;
    const auto value = [&] {
        return oneOf(isFitting ? *property.values : (property.values == &texts ? integers : texts));
    };
    const QString op = oneOf(operators);
    const QString left = oneOf(modifiers) + text(property.path) + u' ';
    if (op == text("IN path")) {
        return left + text("IN ") + text(oneOf(properties).path);
    }
    const QString start = left + op + oneOf(options) + u' ';
    if (op == text("IN") || op == text("BETWEEN")) {
        const int size = op == text("IN") ? *rc::gen::elementOf(std::vector<int>{0, 1, 3, 40}) : 2;
        QVariantList list;
        for (int i = 0; i < size; ++i) {
            list.append(value());
        }
        arguments->append(QVariant(list));
        return start + text("%@");
    }
    if (*rc::gen::inRange(0, 4) == 0) {
        return start + text(oneOf(properties).path);
    }
    if (op == text("LIKE") || op == text("MATCHES")) {
        arguments->append(oneOf(op == text("LIKE") ? wildcards : expressions));
        return start + text("%@");
    }
    arguments->append(value());
    return start + text("%@");
}

} // namespace

QString randomPredicateFormat(QVariantList *arguments, int depth)
{
    const int kind = depth > 0 ? *rc::gen::inRange(0, 6) : 0;
    if (kind < 3) {
        return randomComparison(arguments);
    }
    if (kind == 3) {
        return text("NOT (") + randomPredicateFormat(arguments, depth - 1) + u')';
    }
    const QString left = randomPredicateFormat(arguments, depth - 1);
    const QString right = randomPredicateFormat(arguments, depth - 1);
    return u'(' + left + (kind == 4 ? text(") AND (") : text(") OR (")) + right + u')';
}
