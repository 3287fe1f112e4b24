#include "Kit/Files/ZQLegacyText.h"

#include <gtest/gtest.h>

namespace {

struct Case
{
    const char *what;
    QList<QByteArray> texts;
    QLocale::Language language;
    QStringList expected;
};

} // namespace

TEST(LegacyTextTest, TheEncodingIsFoundFromTheTextsThemselves)
{
    const Case cases[] = {
        {"plain", {"photo.png"}, QLocale::English, {u"photo.png"_qs}},
        {"UTF-8",
         {"\xE5\x86\x99\xE7\x9C\x9F.png", "caf\xC3\xA9.png"},
         QLocale::English,
         {u"写真.png"_qs, u"café.png"_qs}},
        {"CP437", {"caf\x82.png", "M\x81ller.png"}, QLocale::English, {u"café.png"_qs, u"Müller.png"_qs}},
        {"CP437 that CP932 could read",
         {"Gr\x94\xE1"
          "e.png",
          "Cr\x8Ame.png"},
         QLocale::Japanese,
         {u"Größe.png"_qs, u"Crème.png"_qs}},
        {"CP932 kana", {"\x83\x65\x83\x58\x83\x67.png"}, QLocale::English, {u"テスト.png"_qs}},
        {"CP932 with a backslash inside", {"\x83\x5C\x83\x74\x83\x67.png"}, QLocale::English, {u"ソフト.png"_qs}},
        {"CP932 ideographs", {"\x8E\xCA\x90\x5E.png"}, QLocale::English, {u"写真.png"_qs}},
        {"GBK",
         {"\xB2\xE2\xCA\xD4.png", "\xCD\xBC\xC6\xAC/\xB1\xEA\xD6\xBE.png"},
         QLocale::English,
         {u"测试.png"_qs, u"图片/标志.png"_qs}},
        {"CP949, by the language", {"\xBB\xE7\xC1\xF8.png"}, QLocale::Korean, {u"사진.png"_qs}},
        {"CP949, everyday signs", {"\xB0\xA1\xB3\xAA\xB4\xD9.png"}, QLocale::Korean, {u"가나다.png"_qs}},
        {"CP737, by the language", {"\x98\x99.png"}, QLocale::Greek, {u"αβ.png"_qs}},
        {"CP852, by the language", {"\xA5\x88.png"}, QLocale::Polish, {u"ął.png"_qs}},
        {"CP932, the first everyday one", {"\x88\x9F"}, QLocale::Japanese, {u"亜"_qs}},
        {"CP932, one of the last everyday ones", {"\x97\x9F"}, QLocale::Japanese, {u"痢"_qs}},
        {"CP437, which is a rare one in CP932", {"\x98\x9F"}, QLocale::Japanese, {u"ÿƒ"_qs}},
        {"signs between the first and the last letter", {"a\x94\xE1z.png"}, QLocale::Japanese, {u"aößz.png"_qs}},
        {"signs between capitals", {"A\x94\xE1Z.png"}, QLocale::Japanese, {u"AößZ.png"_qs}},
        {"an accent between letters", {"d\x82j\x85.png"}, QLocale::Japanese, {u"déjà.png"_qs}},
        {"nothing", {}, QLocale::English, {}},
        {"CP866, by the language", {"\x94\xAE\xE2\xAE.png"}, QLocale::Russian, {u"Фото.png"_qs}},
    };
    for (const Case &row : cases) {
        const QByteArray encoding = ZQLegacyText::likelyEncoding(row.texts, row.language);
        for (qsizetype i = 0; i < row.expected.size(); ++i) {
            EXPECT_EQ(ZQLegacyText::decoded(row.texts.at(i), encoding), row.expected.at(i))
                << row.what << " as " << encoding.constData();
        }
    }
}

TEST(LegacyTextTest, NoBytesAreTooOddToDecode)
{
    QByteArray all;
    for (int byte = 1; byte < 256; ++byte) {
        all += char(byte);
    }
    for (const QByteArray &encoding :
         {ZQLegacyText::likelyEncoding({all}), QByteArray("windows-31j"), QByteArray("UTF-8"), QByteArray("nothing")}) {
        const QString text = ZQLegacyText::decoded(all, encoding);
        EXPECT_TRUE(text.startsWith(u'\1')) << encoding.constData();
        EXPECT_TRUE(text.contains(QStringLiteral("ABC"))) << encoding.constData();
    }
    EXPECT_TRUE(ZQLegacyText::decoded({}, "UTF-8").isEmpty());
    EXPECT_EQ(ZQLegacyText::decoded("\xC3\xA9", "no encoding"), u"é"_qs);
    EXPECT_EQ(ZQLegacyText::likelyEncoding({}), "UTF-8");
    EXPECT_NE(ZQLegacyText::likelyEncoding({"caf\xC3"}, QLocale::English), "UTF-8") << "half a character at its end";
}
