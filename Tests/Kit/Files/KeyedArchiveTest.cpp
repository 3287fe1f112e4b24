#include "Kit/Files/ZQKeyedArchive.h"

#include "Kit/Files/ZQPropertyList.h"
#include "Kit/Foundation/ZQIndexSet.h"

#include <QDateTime>
#include <QPointF>
#include <QSizeF>

#include <gtest/gtest.h>

#include <random>

using ZQKeyedArchive::Object;

namespace {

ZQIndexSet indexes(std::initializer_list<ZQIndexSet::Range> ranges)
{
    ZQIndexSet result;
    for (const auto &[first, last] : ranges) {
        result.insert(first, last);
    }
    return result;
}

QVariant uid(quint64 value)
{
    return QVariant::fromValue(ZQPropertyListUID{value});
}

// "$null", the description of a class of that name, and the objects behind it; the first of them is the root.
QByteArray archive(const char *className, const QVariantList &objects)
{
    const QVariantList all = QVariantList{QStringLiteral("$null"),
                                          QVariantMap{{QStringLiteral("$classname"), QString::fromLatin1(className)}}} +
                             objects;
    return *ZQPropertyList::toBinary(
        QVariantMap{{QStringLiteral("$archiver"), QStringLiteral("NSKeyedArchiver")},
                    {QStringLiteral("$version"), 100000},
                    {QStringLiteral("$top"), QVariantMap{{QStringLiteral("root"), uid(2)}}},
                    {QStringLiteral("$objects"), all}});
}

QVariantMap object(QVariantMap fields)
{
    fields.insert(QStringLiteral("$class"), uid(1));
    return fields;
}

QVariantMap members(const QVariantList &list)
{
    return object({{QStringLiteral("NS.objects"), list}});
}

} // namespace

TEST(KeyedArchive, GivesBackWhatWasArchivedInTheFormOfTheOtherDesktop)
{
    const QVariantMap root{
        {QStringLiteral("nothing"), QVariant()},
        {QStringLiteral("text"), QStringLiteral("Grün")},
        {QStringLiteral("yes"), true},
        {QStringLiteral("number"), qlonglong(-7)},
        {QStringLiteral("real"), 0.445},
        {QStringLiteral("data"), QByteArray("\0\1", 2)},
        {QStringLiteral("date"), QDateTime::fromSecsSinceEpoch(1700000000, Qt::UTC)},
        {QStringLiteral("list"), QVariantList{QStringLiteral("a"), QVariantList(), QVariantMap()}},
        {QStringLiteral("point"), QPointF(0.1, -12345678.5)},
        {QStringLiteral("none"), QVariant::fromValue(ZQIndexSet())},
        {QStringLiteral("one"), QVariant::fromValue(indexes({{3, 900000}}))},
        {QStringLiteral("several"), QVariant::fromValue(indexes({{0, 0}, {5, 200}, {70000, 5000000000}}))},
    };
    const auto data = ZQKeyedArchive::toData(QVariant::fromValue(Object{QStringLiteral("Kind"), root}));
    ASSERT_TRUE(data);
    const auto back = ZQKeyedArchive::fromData(*data);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->value<Object>().className, QStringLiteral("Kind"));
    const QVariantMap fields = back->value<Object>().fields;
    EXPECT_EQ(fields.keys(), root.keys());
    for (auto it = root.cbegin(); it != root.cend(); ++it) {
        EXPECT_EQ(fields.value(it.key()), it.value()) << qPrintable(it.key());
    }
    EXPECT_EQ(ZQKeyedArchive::fromData(*ZQKeyedArchive::toData(root))->toMap(), root);

    const QVariantMap list = ZQPropertyList::fromData(*data)->toMap();
    EXPECT_EQ(list.value(QStringLiteral("$archiver")), QStringLiteral("NSKeyedArchiver"));
    EXPECT_EQ(list.value(QStringLiteral("$version")), 100000);
    EXPECT_EQ(list.value(QStringLiteral("$objects")).toList().first(), QStringLiteral("$null"));
    EXPECT_EQ(list.value(QStringLiteral("$top")), QVariant(QVariantMap{{QStringLiteral("root"), uid(1)}}));
    const QVariantMap top = list.value(QStringLiteral("$objects")).toList().at(1).toMap();
    EXPECT_EQ(top.value(QStringLiteral("nothing")), uid(0));
    const auto described = top.value(QStringLiteral("$class")).value<ZQPropertyListUID>().value;
    EXPECT_EQ(list.value(QStringLiteral("$objects")).toList().at(qsizetype(described)),
              QVariant(QVariantMap{
                  {QStringLiteral("$classname"), QStringLiteral("Kind")},
                  {QStringLiteral("$classes"), QVariantList{QStringLiteral("Kind"), QStringLiteral("NSObject")}}}));
}

TEST(KeyedArchive, RefusesWhatCannotBeArchived)
{
    QVariant deep = QStringLiteral("inside");
    for (int i = 0; i <= ZQKeyedArchive::deepest; ++i) {
        deep = i % 2 == 0 ? QVariant(QVariantList{deep})
                          : QVariant::fromValue(Object{QStringLiteral("K"), {{QStringLiteral("k"), deep}}});
    }
    for (const QVariant &value : {deep, QVariant(QSizeF(1, 1)), QVariant(QVariantList{QChar(u'x')})}) {
        ZQError error;
        EXPECT_FALSE(ZQKeyedArchive::toData(value, &error));
        EXPECT_EQ(error.localizedDescription(), QStringLiteral("The value cannot be archived."));
    }
}

TEST(KeyedArchive, RefusesWhatIsHostile)
{
    const auto field = [](const char *key, const QVariant &value) {
        return QVariantMap{{QString::fromLatin1(key), value}};
    };
    QVariantList doubled; // two to the power of forty texts
    for (quint64 i = 0; i < 40; ++i) {
        doubled.append(members({uid(i + 3), uid(i + 3)}));
    }
    doubled.append(QStringLiteral("x"));
    QVariantList chain;
    for (quint64 i = 0; i < 80; ++i) {
        chain.append(members({uid(i + 3)}));
    }
    chain.append(QStringLiteral("end"));
    const QVariantMap ranges = object({{QStringLiteral("NSRangeCount"), 2}});
    const auto withRanges = [&ranges](const QByteArray &data, qlonglong count = 2) {
        QVariantMap result = ranges;
        result.insert(QStringLiteral("NSRangeCount"), count);
        result.insert(QStringLiteral("NSRangeData"), data);
        return result;
    };
    const QByteArray hostile[] = {
        archive("NSArray", {members({uid(2)})}), // holds itself
        archive("NSArray", doubled),
        archive("NSArray", chain),
        archive("NSArray", {members({uid(99)})}),
        archive("NSArray", {members({uid(quint64(-1))})}),
        archive("NSArray", {object({{QStringLiteral("NS.objects"), QStringLiteral("text")}})}),
        archive("NSArray", {field("$class", uid(5))}),
        archive("NSArray", {field("$class", uid(0))}),
        archive("NSArray", {field("NS.objects", QVariantList())}),
        archive("NSArray", {QVariant(QVariantList{QStringLiteral("bare")})}),
        archive("NSDictionary", {object({{QStringLiteral("NS.keys"), QVariantList{QStringLiteral("a")}},
                                         {QStringLiteral("NS.objects"), QVariantList()}})}),
        archive("NSDictionary", {object({{QStringLiteral("NS.keys"), QVariantList{7}},
                                         {QStringLiteral("NS.objects"), QVariantList{7}}})}),
        archive("NSValue", {object({{QStringLiteral("NS.pointval"), QStringLiteral("{1}")}})}),
        archive("NSValue", {object({{QStringLiteral("NS.pointval"), QStringLiteral("{inf, 1}")}})}),
        archive("NSValue", {object({})}),
        archive("NSIndexSet", {ranges}),
        archive("NSIndexSet", {withRanges(QByteArray("\1\1", 2))}),
        archive("NSIndexSet", {withRanges(QByteArray("\5\1\1\1", 4))}), // in disorder
        archive("NSIndexSet", {withRanges(QByteArray("\1\1\3\0", 4))}), // of no length
        archive("NSIndexSet", {withRanges(QByteArray(200, '\xff'))}),
        archive("NSIndexSet", {withRanges(QByteArray("\1\1", 2), qlonglong(1) << 60)}),
        archive("NSIndexSet", {withRanges({}, -1)}),
        archive("NSIndexSet", {object({{QStringLiteral("NSRangeCount"), 1}})}),
        archive("NSIndexSet", {object({{QStringLiteral("NSRangeCount"), 1},
                                       {QStringLiteral("NSLocation"), std::numeric_limits<qlonglong>::max()},
                                       {QStringLiteral("NSLength"), std::numeric_limits<qlonglong>::max()}})}),
        *ZQPropertyList::toBinary(QStringLiteral("text")),
        *ZQPropertyList::toBinary(QVariantMap{}),
        QByteArray(),
        QByteArray("bplist00"),
    };
    int row = 0;
    for (const QByteArray &data : hostile) {
        ZQError error;
        EXPECT_FALSE(ZQKeyedArchive::fromData(data, &error)) << row;
        EXPECT_FALSE(error.localizedDescription().isEmpty()) << row;
        ++row;
    }
    EXPECT_EQ(ZQKeyedArchive::fromData(archive("NSMutableArray", {members({uid(0), 7, uid(3)}), 2.5})),
              QVariant(QVariantList{QVariant(), qlonglong(7), 2.5}));
    EXPECT_EQ(ZQKeyedArchive::fromData(archive(
                  "NSMutableString", {object({{QStringLiteral("NS.string"), uid(3)}}), QStringLiteral("text")})),
              QVariant(QStringLiteral("text")));
}

TEST(KeyedArchive, TakesOnlyWhatSaysWhatItIs)
{
    const auto withEntry = [](const char *key, const QVariant &value) {
        QVariantMap whole = ZQPropertyList::fromData(archive("NSArray", {members({7})}))->toMap();
        whole.insert(QString::fromLatin1(key), value);
        return ZQKeyedArchive::fromData(*ZQPropertyList::toBinary(whole));
    };
    const QVariant root = QVariantMap{{QStringLiteral("root"), uid(2)}};
    const QVariant bareRoot = QVariantMap{{QStringLiteral("root"), QStringLiteral("bare")}};
    EXPECT_EQ(withEntry("$top", root), QVariant(QVariantList{qlonglong(7)}));
    EXPECT_FALSE(withEntry("$archiver", QStringLiteral("NSArchiver")));
    EXPECT_FALSE(withEntry("$version", 100001));
    EXPECT_FALSE(withEntry("$top", bareRoot));
}

TEST(KeyedArchive, ReadsWhatIsNestedAsDeeplyAsItMayBeAndNoDeeper)
{
    const auto chain = [](int arrays) {
        QVariantList objects;
        for (int i = 0; i < arrays; ++i) {
            objects.append(members({uid(quint64(i) + 3)}));
        }
        objects.append(QStringLiteral("end"));
        return ZQKeyedArchive::fromData(archive("NSArray", objects));
    };
    QVariant deepest = QStringLiteral("end");
    for (int i = 0; i < ZQKeyedArchive::deepest; ++i) {
        deepest = QVariantList{deepest};
    }
    EXPECT_EQ(chain(ZQKeyedArchive::deepest), deepest);
    EXPECT_FALSE(chain(ZQKeyedArchive::deepest + 1));
}

TEST(KeyedArchive, SurvivesEveryCutAndFlippedBits)
{
    const QByteArray whole = *ZQKeyedArchive::toData(QVariantMap{
        {QStringLiteral("list"), QVariantList{QPointF(1, 2), QVariant::fromValue(indexes({{1, 2}, {5, 9}}))}}});
    for (qsizetype size = 0; size < whole.size(); ++size) {
        EXPECT_FALSE(ZQKeyedArchive::fromData(whole.first(size))) << size;
    }
    std::mt19937 random(11);
    int refused = 0;
    for (int round = 0; round < 20000; ++round) {
        QByteArray damaged = whole;
        for (auto flips = 1 + random() % 3; flips > 0; --flips) {
            const auto at = qsizetype(random() % unsigned(damaged.size()));
            damaged[at] = char(damaged.at(at) ^ (1 << random() % 8));
        }
        refused += ZQKeyedArchive::fromData(damaged) ? 0 : 1;
    }
    EXPECT_GT(refused, 0);
}
