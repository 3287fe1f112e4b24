#include "Kit/Files/ZQPropertyList.h"
#include "Kit/Files/ZQPropertyListReader.h"

#include <QDateTime>
#include <QPoint>

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

namespace {

// Objects one behind another, the first one the top, with offsets and references of one byte.
QByteArray binaryOf(const QList<QByteArray> &objects, quint8 offsetSize = 1, quint8 referenceSize = 1,
                    qint64 count = -1, quint64 top = 0, qint64 table = -1)
{
    QByteArray data = "bplist00";
    QByteArray offsets;
    for (const QByteArray &object : objects) {
        offsets += QByteArray(offsetSize - 1, '\0') + char(data.size());
        data += object;
    }
    const qint64 end = data.size();
    const auto wide = [](quint64 value) {
        QByteArray out;
        for (int shift = 56; shift >= 0; shift -= 8) {
            out += char(value >> shift);
        }
        return out;
    };
    return data + offsets + QByteArray(6, '\0') + char(offsetSize) + char(referenceSize) +
           wide(quint64(count < 0 ? objects.size() : count)) + wide(top) + wide(quint64(table < 0 ? end : table));
}

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

} // namespace

TEST(PropertyList, ReadsEveryWidthThatABinaryOneMayHave)
{
    const QDateTime epoch = QDateTime::fromSecsSinceEpoch(978307200, Qt::UTC);
    const struct
    {
        const char *object;
        QVariant value;
    } rows[] = {{"08", false},
                {"09", true},
                {"00", QVariant()},
                {"10ff", qlonglong(255)},
                {"110102", qlonglong(0x102)},
                {"1201020304", qlonglong(0x1020304)},
                {"13fffffffffffffffe", qlonglong(-2)},
                {"140000000000000000ffffffffffffffff", qlonglong(-1)},
                {"8005", QVariant::fromValue(ZQPropertyListUID{5})},
                {"810105", QVariant::fromValue(ZQPropertyListUID{0x105})},
                {"223fc00000", 1.5},
                {"23bff8000000000000", -1.5},
                {"333ff8000000000000", epoch.addMSecs(1500)},
                {"323fc00000", epoch.addMSecs(1500)},
                {"33c26d1a94a1ffc000", epoch.addMSecs(-999999999998000)},
                {"42aabb", QByteArray("\xaa\xbb")},
                {"4f1002aabb", QByteArray("\xaa\xbb")},
                {"4f110001aa", QByteArray("\xaa")},
                {"4f1200000001aa", QByteArray("\xaa")},
                {"4f130000000000000001aa", QByteArray("\xaa")},
                {"40", QByteArray()},
                {"52c3a9", QStringLiteral("é")},
                {"6100e9", QStringLiteral("é")},
                {"62d83ddca1", QStringLiteral("💡")},
                {"a0", QVariantList()},
                {"c0", QVariantList()},
                {"d0", QVariantMap()}};
    for (const auto &row : rows) {
        for (const quint8 offsetSize : std::initializer_list<quint8>{1, 2, 8}) {
            const auto found = ZQPropertyList::fromData(binaryOf({hex(row.object)}, offsetSize));
            ASSERT_TRUE(found) << row.object;
            EXPECT_EQ(*found, row.value) << row.object;
            EXPECT_EQ(found->typeId(), row.value.typeId()) << row.object;
        }
    }
    EXPECT_EQ(ZQPropertyList::fromData(binaryOf({hex("d2 0102 0301"), hex("5161"), hex("5162"), hex("1007")})),
              (QVariantMap{{QStringLiteral("a"), qlonglong(7)}, {QStringLiteral("b"), QStringLiteral("a")}}));
    EXPECT_EQ(ZQPropertyList::fromData(binaryOf({hex("a2 0000 0001"), hex("1007")}, 1, 2)).value_or(QVariant()),
              QVariant())
        << "a list that holds itself";
    EXPECT_EQ(ZQPropertyList::fromData(binaryOf({hex("a2 0001 0001"), hex("1007")}, 1, 2, -1, 1)),
              QVariant(qlonglong(7)));
    EXPECT_EQ(ZQPropertyList::fromData(binaryOf({hex("a2 0001 0002"), hex("1007")}, 1, 2, -1, 1)),
              QVariant(qlonglong(7)));
    EXPECT_EQ(ZQPropertyList::fromData(binaryOf({hex("a2 0001 0001").replace(1, 2, hex("0001")), hex("1007")}, 1, 2)),
              QVariant(QVariantList{qlonglong(7), qlonglong(7)}));
}

TEST(PropertyList, RefusesABinaryOneThatMakesNoSense)
{
    const QByteArray fine = binaryOf({hex("1007")});
    ASSERT_TRUE(ZQPropertyList::fromData(fine));
    QList<QByteArray> all{fine.mid(0, 8) + fine.mid(9), // one byte too few for anything
                          binaryOf({hex("1007")}, 9),
                          binaryOf({hex("1007")}, 1, 9),
                          binaryOf({hex("1007")}, 1, 0),
                          binaryOf({hex("1007")}, 1, 1, 2),
                          binaryOf({hex("1007")}, 1, 1, 1, 1),
                          binaryOf({hex("1007")}, 1, 1, 1, 0, 12),
                          binaryOf({hex("1007")}, 1, 1, 1, 0, 200)};
    QByteArray noOffsets = fine;
    noOffsets[fine.size() - 26] = 0;
    all.append(noOffsets);
    QByteArray beyond = fine; // an object that lies in the table
    beyond[10] = 10;
    all.append(beyond);
    for (const char *const object : {"01",
                                     "0a",
                                     "0f",
                                     "15",
                                     "24",
                                     "21",
                                     "34",
                                     "333ff8",
                                     "337ff0000000000000",
                                     "33426d1a94a2000000",
                                     "337ff8000000000000",
                                     "44aabb",
                                     "4f",
                                     "4f2001aa",
                                     "4f14",
                                     "4f1004aabb",
                                     "61",
                                     "70",
                                     "b0",
                                     "e0",
                                     "f0",
                                     "a101",
                                     "d101",
                                     "d10101",
                                     "a2"}) {
        all.append(binaryOf({hex(object)}));
    }
    all.append(binaryOf({hex("d1 0101"), hex("1007")})); // a key that is no text
    for (const QByteArray &data : std::as_const(all)) {
        ZQError error;
        EXPECT_FALSE(ZQPropertyList::fromData(data, &error)) << data.toHex().constData();
        EXPECT_EQ(error.localizedDescription(),
                  QStringLiteral("The property list cannot be read. The binary property list "
                                 "is damaged or nested too deeply."));
    }
}

TEST(PropertyList, ReadsXMLAsStrictlyAsItHasTo)
{
    const struct
    {
        const char *xml;
        QVariant value; // invalid: refused
    } rows[] = {
        {"<plist><integer>-7</integer></plist>", qlonglong(-7)},
        {"<integer>5</integer>", qlonglong(5)},
        {"<plist><integer>0x1F</integer></plist>", qlonglong(31)},
        {"<plist><integer>18446744073709551615</integer></plist>", qlonglong(-1)},
        {"<plist><integer>18446744073709551616</integer></plist>", {}},
        {"<plist><integer></integer></plist>", {}},
        {"<plist><real> 2.5 </real></plist>", 2.5},
        {"<plist><real>x</real></plist>", {}},
        {"<plist><true/></plist>", true},
        {"<plist><false/></plist>", false},
        {"<plist><date>x</date></plist>", {}},
        {"<plist><date> 2001-01-01T00:00:00Z </date></plist>", QDateTime::fromSecsSinceEpoch(978307200, Qt::UTC)},
        {"<plist><data> AA EC\n/w== </data></plist>", QByteArray("\0\1\2\xff", 4)},
        {"<plist><data>A*</data></plist>", {}},
        {"<plist><string>a</string><string>b</string></plist>", {}},
        {"<plist/>", {}},
        {"<plist><dict/></plist>", QVariantMap()},
        {"<plist><dict><key>a</key></dict></plist>", {}},
        {"<plist><dict><key>a</key><true/><string>b</string></dict></plist>", {}},
        {"<plist><dict><key>a</key><odd/></dict></plist>", {}},
        {"<plist><array><odd/></array></plist>", {}},
        {"<plist><array><true/><array/></array></plist>", QVariantList{true, QVariantList{}}},
        {"<plist><string>a<true/></string></plist>", {}}};
    for (const auto &row : rows) {
        ZQError error;
        EXPECT_EQ(ZQPropertyList::fromData(row.xml, &error).value_or(QVariant()), row.value) << row.xml;
        EXPECT_EQ(error.isNull(), row.value.isValid()) << row.xml;
    }
    ZQError error;
    EXPECT_FALSE(ZQPropertyList::fromData("<plist>\n<odd/></plist>", &error));
    EXPECT_EQ(error.localizedDescription(),
              QStringLiteral("The property list cannot be read. A value cannot be read. (line 2)"));
}

TEST(PropertyList, HoldsDatesNearItsOwnBeginningOnly)
{
    const QDateTime epoch = QDateTime::fromSecsSinceEpoch(978307200, Qt::UTC);
    const struct
    {
        qint64 seconds;
        bool isWritten;
    } rows[] = {{0, true},           {-1, true},          {2147483647, true},
                {2147483648, false}, {-2147483648, true}, {-2147483649, false}};
    for (const auto &row : rows) {
        const auto data = ZQPropertyList::toBinary(epoch.addSecs(row.seconds));
        ASSERT_EQ(data.has_value(), row.isWritten) << row.seconds;
        if (data) {
            EXPECT_EQ(ZQPropertyList::fromData(*data)->toDateTime(), epoch.addSecs(row.seconds));
        }
    }
    for (const QVariant &other : {QVariant(QDateTime()), QVariant(QVariantMap{{QString(QChar::Null), true}}),
                                  QVariant(QVariantMap{{QStringLiteral("a"), QVariant()}}), QVariant(QPoint())}) {
        ZQError error;
        EXPECT_FALSE(ZQPropertyList::toBinary(other, &error));
        EXPECT_EQ(error.localizedDescription(), QStringLiteral("The value cannot be written as a property list."));
    }
    for (const QVariant &number :
         {QVariant(7), QVariant(7U), QVariant::fromValue(short(7)), QVariant::fromValue(7L), QVariant(7LL)}) {
        EXPECT_EQ(ZQPropertyList::fromData(*ZQPropertyList::toBinary(number)), QVariant(qlonglong(7)));
    }
    EXPECT_EQ(ZQPropertyList::fromData(*ZQPropertyList::toBinary(0.5F)), QVariant(0.5));
    EXPECT_EQ(ZQPropertyList::fromData(*ZQPropertyList::toBinary(QStringList{QStringLiteral("a")})),
              QVariant(QVariantList{QStringLiteral("a")}));
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
    for (const bool isBinary : {true, false}) {
        const auto written = [&](int depth) {
            return isBinary ? ZQPropertyList::toBinary(nested(depth)) : ZQPropertyList::toXML(nested(depth));
        };
        EXPECT_EQ(ZQPropertyList::fromData(*written(ZQPropertyListReader::deepest)),
                  nested(ZQPropertyListReader::deepest));
        EXPECT_FALSE(written(ZQPropertyListReader::deepest + 1));
    }
    const auto arrays = [](int depth) {
        return "<plist>" + QByteArray("<array>").repeated(depth) + QByteArray("</array>").repeated(depth) + "</plist>";
    };
    EXPECT_TRUE(ZQPropertyList::fromData(arrays(ZQPropertyListReader::deepest + 1)));
    EXPECT_FALSE(ZQPropertyList::fromData(arrays(ZQPropertyListReader::deepest + 2)));
}

TEST(PropertyList, AListThatIsHeldTwiceIsNoDeeperThanTheDeeperPlace)
{
    // The root holds a list with `inside` others in it, and then the chain of `above` lists that ends with it.
    const auto shared = [](int above, int inside) -> QByteArray {
        QByteArray data = "bplist00";
        QByteArray offsets;
        const auto add = [&](const QByteArray &object) {
            offsets += char(data.size() >> 8);
            offsets += char(data.size() & 0xff);
            data += object;
        };
        const int count = above + inside;
        add(QByteArray("\xa2") + char(above) + char(1));
        for (int i = 1; i < count; ++i) {
            add(QByteArray("\xa1") + char(i + 1));
        }
        add(QByteArray("\x09"));
        const auto table = quint16(data.size());
        return data + offsets + QByteArray(6, '\0') + "\x02\x01" + QByteArray(7, '\0') + char(count + 1) +
               QByteArray(14, '\0') + char(table >> 8) + char(table & 0xff);
    };
    for (const int inside : {1, 40, ZQPropertyListReader::deepest - 1}) {
        const int above = ZQPropertyListReader::deepest - inside;
        EXPECT_TRUE(ZQPropertyList::fromData(shared(above, inside))) << inside;
        EXPECT_FALSE(ZQPropertyList::fromData(shared(above + 1, inside))) << inside;
    }
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
