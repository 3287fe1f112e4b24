#include "Classes/Services/UpdateFeed.h"

#include "Kit/Files/ZQSignature.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Network/ZQPrivateAddress.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr qsizetype longestNotes = 8000; // characters

ZQError failure(UpdateFeed::Error code)
{
    QString text;
    switch (code) {
    case UpdateFeed::NotAFeed:
        text = zqLocalized("What came is no announcement of versions. If you are in a network that asks for a login "
                           "first, log in and check again.");
        break;
    case UpdateFeed::WrongSignature:
        text = zqLocalized("The announcement of versions is not signed by Zelto's makers, so nothing it says was "
                           "believed. Check again from another network; if that changes nothing, tell the makers.");
        break;
    case UpdateFeed::OtherChannel:
        text = zqLocalized("The announcement of versions is for another program or channel. Check again later.");
        break;
    case UpdateFeed::Older:
        text = zqLocalized("The announcement of versions is older than the last one that came, so nothing it says was "
                           "believed. Check again later, or from another network.");
        break;
    }
    return ZQError::with(UpdateFeed::errorDomain, code, text);
}

std::optional<QByteArray> bytesOf(const QJsonObject &object, const char *key)
{
    const auto decoded = QByteArray::fromBase64Encoding(object.value(QLatin1StringView(key)).toString().toLatin1(),
                                                        QByteArray::AbortOnBase64DecodingErrors);
    return decoded.decodingStatus == QByteArray::Base64DecodingStatus::Ok && !decoded.decoded.isEmpty()
               ? std::optional(decoded.decoded)
               : std::nullopt;
}

std::optional<UpdateFeed> announced(const QJsonObject &said)
{
    const auto text = [&said](const char *key) { return said.value(QLatin1StringView(key)).toString(); };
    const auto number = UpdateVersion::parse(text("version"));
    const QDateTime date = QDateTime::fromString(text("date"), Qt::ISODate).toUTC();
    const QUrl page(text("page"), QUrl::StrictMode);
    if (!number || !date.isValid() || !zqIsSafeOnTheWay(page)) {
        return std::nullopt;
    }
    return UpdateFeed{*number, text("version"), date, page, text("notes").left(longestNotes)};
}

} // namespace

std::optional<UpdateFeed> UpdateFeed::read(const QByteArray &bytes, const Expected &expected, ZQError *error)
{
    const auto fail = [error](Error code) {
        zqSetError(error, failure(code));
        return std::nullopt;
    };
    const QJsonObject envelope = bytes.size() <= largest ? QJsonDocument::fromJson(bytes).object() : QJsonObject();
    const auto announcement = bytesOf(envelope, "announcement");
    const auto signature = bytesOf(envelope, "signature");
    if (!announcement || !signature) {
        return fail(NotAFeed);
    }
    if (!zqIsSignedBy(expected.publicKey, *announcement, *signature)) {
        return fail(WrongSignature);
    }
    const QJsonObject said = QJsonDocument::fromJson(*announcement).object();
    const auto feed = announced(said);
    if (!feed) {
        return fail(NotAFeed);
    }
    if (said.value(QStringLiteral("program")) != QStringLiteral("zelto") ||
        said.value(QStringLiteral("channel")) != expected.channel) {
        return fail(OtherChannel);
    }
    if (expected.newestSeen.isValid() && feed->date < expected.newestSeen) {
        return fail(Older);
    }
    return feed;
}
