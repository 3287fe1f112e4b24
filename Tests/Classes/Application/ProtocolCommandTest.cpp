#include "Classes/Services/ProtocolCommand.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

#include <gtest/gtest.h>

namespace {

const QString plain = QStringLiteral(
    R"({"page_url":"https://a.example/x y?q=ü","page_title":" Ü\n title ","urls":["https://a.example/1.png"],"import_all":""})");

QString encoded(const QString &text)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

QString import(const QJsonObject &changed)
{
    QJsonObject object = QJsonDocument::fromJson(plain.toUtf8()).object();
    for (auto it = changed.begin(); it != changed.end(); ++it) {
        object.insert(it.key(), it.value());
    }
    return QStringLiteral("zelto:import:") +
           encoded(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
}

QJsonArray many(int count)
{
    QJsonArray list;
    for (int i = 0; i < count; ++i) {
        list.append(QStringLiteral("https://a.example/%1").arg(i));
    }
    return list;
}

} // namespace

TEST(ProtocolCommand, TakesEverySpellingThatBrowsersAndDesktopsMakeOfOne)
{
    QString quotesOnly = plain;
    quotesOnly.replace(u'"', QStringLiteral("%22"));
    for (const QString &url : {
             QStringLiteral("zelto:import:") + encoded(plain),
             QStringLiteral("zelto:import:") + plain,
             QStringLiteral("zelto:import:") + quotesOnly,
             QStringLiteral("zelto:import:") + encoded(encoded(plain)),
             QStringLiteral("ZELTO:Import:  ") + encoded(plain) + u'\n',
             QStringLiteral("zelto://import/") + encoded(plain),
             QStringLiteral("zelto://import:") + encoded(plain) + u'/',
             QStringLiteral("zelto:///import:") + encoded(plain),
             QStringLiteral("zelto:import%3A") + encoded(plain),
             QStringLiteral("zelto:import:") + encoded(QStringLiteral(" \t") + plain + u'\n'),
         }) {
        ZQError error;
        const auto command = ProtocolCommand::fromURL(url, &error);
        ASSERT_TRUE(command) << qPrintable(url) << qPrintable(error.localizedDescription());
        EXPECT_EQ(command->kind, ProtocolCommand::Kind::Import);
        EXPECT_EQ(command->images.pageUrl, QStringLiteral("https://a.example/x y?q=ü"));
        EXPECT_EQ(command->images.pageTitle, QStringLiteral("Ü title"));
        EXPECT_EQ(command->images.images, QStringList{QStringLiteral("https://a.example/1.png")});
        EXPECT_TRUE(command->images.importAll.isEmpty());
    }
    // Percent signs that are no code, in what nobody encoded.
    const auto raw = ProtocolCommand::fromURL(
        QStringLiteral(R"(zelto:import:{"page_url":"http://a.example/","urls":["http://a.example/100%22"]})"));
    ASSERT_TRUE(raw);
    EXPECT_EQ(raw->images.images, QStringList{QStringLiteral("http://a.example/100%22")});
}

TEST(ProtocolCommand, RefusesWhatIsNotClearlyACommandOfThePagesOwn)
{
    const QString deep = QString(20000, u'[');
    const struct
    {
        QString url;
        ProtocolCommand::Error error;
    } cases[] = {
        {QString(), ProtocolCommand::UnknownCommand},
        {QStringLiteral("zelto:"), ProtocolCommand::UnknownCommand},
        {QStringLiteral("zelto:import"), ProtocolCommand::UnknownCommand},
        {QStringLiteral("zelto:purge:{}"), ProtocolCommand::UnknownCommand},
        {QStringLiteral("zelto:imports:{}"), ProtocolCommand::UnknownCommand},
        {QStringLiteral("file:import:{}"), ProtocolCommand::UnknownCommand},
        {QStringLiteral("zelto:import:"), ProtocolCommand::NotUnderstood},
        {QStringLiteral("zelto:import:[]"), ProtocolCommand::NotUnderstood},
        {QStringLiteral("zelto:import:%7B%22page_url%22:%22%FF%22%7D"), ProtocolCommand::NotUnderstood},
        {QStringLiteral("zelto:import:") + encoded(plain).chopped(9), ProtocolCommand::NotUnderstood},
        {QStringLiteral("zelto:import:{\"urls\":") + deep, ProtocolCommand::NotUnderstood},
        {QStringLiteral("zelto:import:") + QString(ProtocolCommand::longestURL, u' '), ProtocolCommand::TooLong},
        {import({{"urls", many(501)}}), ProtocolCommand::TooLong},
        {import({{"urls", many(0)}}), ProtocolCommand::BadValue},
        {import({{"urls", "https://a.example/1.png"}}), ProtocolCommand::BadValue},
        {import({{"urls", QJsonArray{1}}}), ProtocolCommand::BadValue},
        {import({{"urls", QJsonArray{many(1)}}}), ProtocolCommand::BadValue},
        {import({{"page_title", 7}}), ProtocolCommand::BadValue},
        {import({{"import_all", QJsonObject()}}), ProtocolCommand::BadValue},
        {import({{"page_url", QJsonArray{"https://a.example/"}}}), ProtocolCommand::BadValue},
        {import({{"page_url", QJsonValue::Null}}), ProtocolCommand::ForbiddenAddress},
        {import({{"page_url", "file:///etc/passwd"}}), ProtocolCommand::ForbiddenAddress},
        {import({{"page_url", "https://"}}), ProtocolCommand::ForbiddenAddress},
        {import({{"urls", QJsonArray{"file:///etc/passwd"}}}), ProtocolCommand::ForbiddenAddress},
        {import({{"urls", QJsonArray{"/etc/passwd"}}}), ProtocolCommand::ForbiddenAddress},
        {import({{"urls", QJsonArray{"ftp://a.example/1.png"}}}), ProtocolCommand::ForbiddenAddress},
        {import({{"urls", QJsonArray{"javascript:alert(1)"}}}), ProtocolCommand::ForbiddenAddress},
        {import({{"urls", QJsonArray{"data:text/html,<p>"}}}), ProtocolCommand::ForbiddenAddress},
        {import({{"urls", QJsonArray{"https://a.example/" + QString(8192, u'x')}}}), ProtocolCommand::ForbiddenAddress},
        {import({{"urls", QJsonArray{"http://127.0.0.1:631/x.png"}}}), ProtocolCommand::ForbiddenAddress},
        {import({{"urls", QJsonArray{"https://a.example/1.png", "http://LOCALHOST/"}}}),
         ProtocolCommand::ForbiddenAddress},
        {QStringLiteral(R"(zelto:snap:{"page_url":"about:blank"})"), ProtocolCommand::ForbiddenAddress},
        {QStringLiteral(R"(zelto:snap:{"page_url":"https://a.example/","win_x":"1"})"), ProtocolCommand::BadValue},
        {QStringLiteral(R"(zelto:snap:{"page_url":"https://a.example/","win_x":1})"), ProtocolCommand::BadValue},
        {QStringLiteral(R"(zelto:snap:{"page_url":"https://a.example/","win_x":1,"win_y":1,"win_width":1e99,)"
                        R"("win_height":1})"),
         ProtocolCommand::BadValue},
    };
    for (const auto &each : cases) {
        ZQError error;
        EXPECT_FALSE(ProtocolCommand::fromURL(each.url, &error)) << qPrintable(each.url.left(300));
        EXPECT_EQ(error.code, each.error) << qPrintable(each.url.left(300));
        EXPECT_FALSE(error.localizedDescription().isEmpty());
        EXPECT_LT(error.localizedDescription().size(), 700);
    }
}

TEST(ProtocolCommand, TakesAsManyImagesAsItSaysInTheTextToo)
{
    QJsonArray images = many(499);
    images.append(QStringLiteral("data:image/png;base64,") + QString(100000, u'A'));
    const auto command = ProtocolCommand::fromURL(import({{"urls", images}, {"import_all", true}}));
    ASSERT_TRUE(command);
    EXPECT_EQ(command->images.images.size(), 500);
    EXPECT_FALSE(command->images.importAll.isEmpty());
    EXPECT_TRUE(command->otherHosts().isEmpty());
}

TEST(ProtocolCommand, KnowsWhoseImagesAPageNames)
{
    const auto own =
        ProtocolCommand::fromURL(import({{"page_url", "http://LocalHost:8080/"},
                                         {"urls", QJsonArray{"http://localhost/1", "http://192.168.1.2/2",
                                                             "http://B.example/3", "http://b.example/4"}}}));
    ASSERT_TRUE(own); // a page on this computer may name what is on it
    EXPECT_TRUE(own->isPagePrivate());
    EXPECT_EQ(own->otherHosts(), (QStringList{QStringLiteral("192.168.1.2"), QStringLiteral("b.example")}));
}

TEST(ProtocolCommand, ACaptureIsFramedAsTheBrowsersWindowIs)
{
    const auto framed = ProtocolCommand::fromURL(QStringLiteral(
        R"(zelto:snap:{"page_url":"https://a.example/","win_x":-5,"win_y":100,"win_width":800.4,"win_height":600})"));
    ASSERT_TRUE(framed);
    EXPECT_EQ(framed->kind, ProtocolCommand::Kind::Snap);
    EXPECT_EQ(framed->frame, QRect(-5, 78, 800, 600));
    const auto unframed = ProtocolCommand::fromURL(QStringLiteral(R"(zelto:snap:{"page_url":"https://a.example/"})"));
    ASSERT_TRUE(unframed);
    EXPECT_TRUE(unframed->frame.isNull());
}

TEST(ProtocolCommand, AFrameThatNobodyCouldSeeIsBroughtOntoAScreen)
{
    const QList<QRect> screens = {QRect(0, 0, 1000, 800), QRect(1000, 0, 500, 800)};
    const struct
    {
        QRect frame;
        QRect shown;
    } cases[] = {
        {{-50, -22, 300, 200}, {-50, -22, 300, 200}}, // a part is seen
        {{1200, 100, 300, 200}, {1200, 100, 300, 200}},
        {{-5000, 100, 300, 200}, {0, 100, 300, 200}},
        {{9000, 9000, 300, 200}, {700, 600, 300, 200}},
        {{0, -9000, 5000, 4000}, {0, 0, 1000, 800}},
        {{}, {}},
    };
    for (const auto &each : cases) {
        EXPECT_EQ(zqFrameOnScreens(each.frame, screens), each.shown);
    }
    EXPECT_EQ(zqFrameOnScreens({5, 5, 5, 5}, {}), QRect(5, 5, 5, 5));
}
