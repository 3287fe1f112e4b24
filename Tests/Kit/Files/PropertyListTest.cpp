#include "Kit/Files/ZQPropertyList.h"

#include <QDateTime>

#include <gtest/gtest.h>

#include <random>

namespace {

QVariant example()
{
    const QDateTime date = QDateTime::fromMSecsSinceEpoch(1700000000123, Qt::UTC);
    return QVariantMap{
        {QStringLiteral("text"), QStringLiteral("plain")},
        {QStringLiteral("wide"), QStringLiteral("Grün 💡 & <b>")},
        {QStringLiteral("empty"), QString()},
        {QStringLiteral("long"), QString(5000, u'x')},
        {QStringLiteral("yes"), true},
        {QStringLiteral("no"), false},
        {QStringLiteral("small"), qlonglong(3)},
        {QStringLiteral("negative"), qlonglong(-7)},
        {QStringLiteral("large"), qlonglong(9007199254740993)},
        {QStringLiteral("real"), 2.5},
        {QStringLiteral("whole"), 4.0},
        {QStringLiteral("date"), date},
        {QStringLiteral("early"), QDateTime::fromMSecsSinceEpoch(-86400500, Qt::UTC)},
        {QStringLiteral("data"), QByteArray("\0\1\2\xff", 4)},
        {QStringLiteral("list"), QVariantList{QStringLiteral("a"), QVariantList{}, QVariantMap{}}},
    };
}

QVariant nested(int depth)
{
    QVariant value = QStringLiteral("inside");
    for (int i = 0; i < depth; ++i) {
        value = QVariantList{value};
    }
    return value;
}

} // namespace

TEST(PropertyList, KeepsEveryTypeInBinary)
{
    const auto data = ZQPropertyList::toBinary(example());
    ASSERT_TRUE(data);
    EXPECT_TRUE(data->startsWith("bplist00"));
    const auto back = ZQPropertyList::fromData(*data);
    ASSERT_TRUE(back);
    const QVariantMap expected = example().toMap();
    const QVariantMap found = back->toMap();
    EXPECT_EQ(found.keys(), expected.keys());
    for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
        EXPECT_EQ(found.value(it.key()), it.value()) << qPrintable(it.key());
        EXPECT_EQ(found.value(it.key()).typeId(), it.value().typeId()) << qPrintable(it.key());
    }
}

TEST(PropertyList, WritesTimePointsWithMicroseconds)
{
    using namespace std::chrono;
    const sys_time<microseconds> time{seconds(1'700'000'000) + microseconds(123'456)};
    const auto data = ZQPropertyList::toBinary(QVariant::fromValue<system_clock::time_point>(time));
    const auto next = ZQPropertyList::toBinary(QVariant::fromValue<system_clock::time_point>(time + microseconds(1)));
    ASSERT_TRUE(data);
    EXPECT_NE(data, next);
    const QDateTime expected = QDateTime::fromMSecsSinceEpoch(1'700'000'000'123, Qt::UTC);
    EXPECT_EQ(ZQPropertyList::fromData(*data)->toDateTime(), expected);
}

TEST(PropertyList, KeepsValuesInXMLWithDatesInSeconds)
{
    QVariantMap expected = example().toMap();
    for (const char *const key : {"date", "early"}) {
        const QString name = QString::fromLatin1(key);
        const qint64 milliseconds = expected.value(name).toDateTime().toMSecsSinceEpoch();
        const qint64 rounded = milliseconds >= 0 ? milliseconds / 1000 : (milliseconds - 999) / 1000;
        expected[name] = QDateTime::fromSecsSinceEpoch(rounded, Qt::UTC);
    }
    const auto data = ZQPropertyList::toXML(expected);
    ASSERT_TRUE(data);
    const auto back = ZQPropertyList::fromData(*data);
    ASSERT_TRUE(back);
    const QVariantMap found = back->toMap();
    EXPECT_EQ(found.keys(), expected.keys());
    for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
        EXPECT_EQ(found.value(it.key()), it.value()) << qPrintable(it.key());
    }
}

TEST(PropertyList, ReadsWhatOtherWritersMake)
{
    const auto data = QByteArray::fromHex("62706c6973743030" // bplist00
                                          "a20102"
                                          "53526564"
                                          "6200e4d83d" // ["Red", "ä" and half a pair]
                                          "080b0f"     // offsets
                                          "0000000000000101"
                                          "0000000000000003"
                                          "0000000000000000"
                                          "0000000000000014");
    const auto value = ZQPropertyList::fromData(data);
    ASSERT_TRUE(value);
    EXPECT_EQ(value->toList().value(0).toString(), QStringLiteral("Red"));
    EXPECT_EQ(value->toList().value(1).toString().at(0), QChar(0xe4));
    const auto xml =
        ZQPropertyList::fromData("<?xml version=\"1.0\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                 "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">"
                                 "<array><string>a &amp; b</string><integer> 42 </integer><data>\n AAEC\n /w==\n</data>"
                                 "<date>2001-01-01T00:00:00Z</date></array></plist>");
    ASSERT_TRUE(xml);
    EXPECT_EQ(*xml, QVariant(QVariantList{QStringLiteral("a & b"), qlonglong(42), QByteArray("\0\1\2\xff", 4),
                                          QDateTime::fromSecsSinceEpoch(978307200, Qt::UTC)}));
}

TEST(PropertyList, RefusesWhatItCannotRead)
{
    QByteArray deepXML;
    for (int i = 0; i < 100000; ++i) {
        deepXML += "<array>";
    }
    // A list that holds itself, and one that doubles at each of forty levels.
    const auto cycle = QByteArray::fromHex("62706c6973743030"
                                           "a100"
                                           "08"
                                           "0000000000000101"
                                           "0000000000000001"
                                           "0000000000000000"
                                           "000000000000000a");
    QByteArray bomb = "bplist00";
    QByteArray offsets;
    for (int i = 0; i < 40; ++i) {
        offsets.append(static_cast<char>(bomb.size()));
        bomb += i == 39 ? QByteArray("\x09") : QByteArray("\xa2") + static_cast<char>(i + 1) + static_cast<char>(i + 1);
    }
    const char table = static_cast<char>(bomb.size());
    bomb += offsets +
            QByteArray::fromHex("0000000000000101"
                                "0000000000000028"
                                "0000000000000000"
                                "00000000000000") +
            table;
    for (const QByteArray &data :
         {QByteArray(), QByteArray("bplist00"), QByteArray("no list"), QByteArray("<plist>"),
          QByteArray("<plist><string>a</string>"), QByteArray("<plist><integer>x</integer></plist>"),
          QByteArray("<plist><dict><string>a</string></dict></plist>"), QByteArray("<plist><strange/></plist>"),
          deepXML, cycle, bomb}) {
        ZQError error;
        EXPECT_FALSE(ZQPropertyList::fromData(data, &error)) << data.left(60).constData();
        EXPECT_FALSE(error.localizedDescription().isEmpty());
    }
    EXPECT_TRUE(ZQPropertyList::fromData(*ZQPropertyList::toBinary(nested(100))));
}

TEST(PropertyList, RefusesWhatItCannotWrite)
{
    for (const QVariant &value :
         {QVariant(), QVariant(QVariantList{QVariant()}), nested(400),
          QVariant(QDateTime(QDate(9999, 1, 1), QTime(), Qt::UTC)), QVariant(QString(QChar::Null))}) {
        ZQError error;
        EXPECT_FALSE(ZQPropertyList::toBinary(value, &error));
        EXPECT_FALSE(ZQPropertyList::toXML(value, &error));
        EXPECT_FALSE(error.isNull());
    }
}

TEST(PropertyList, SurvivesDamage)
{
    std::mt19937 random(7);
    for (const QByteArray &whole : {*ZQPropertyList::toBinary(example()), *ZQPropertyList::toXML(example())}) {
        int refused = 0;
        for (int i = 0; i < 4000; ++i) {
            QByteArray damaged = whole;
            for (quint32 changes = random() % 4 + 1; changes > 0; --changes) {
                const auto size = static_cast<quint32>(damaged.size());
                const auto at =
                    static_cast<qsizetype>(random() % 2 ? random() % size : size - 1 - random() % std::min(size, 64u));
                damaged[at] = static_cast<char>(random());
            }
            if (random() % 8 == 0) {
                damaged.truncate(static_cast<qsizetype>(random() % static_cast<quint32>(damaged.size())));
            }
            refused += ZQPropertyList::fromData(damaged) ? 0 : 1;
        }
        EXPECT_GT(refused, 100);
    }
}
