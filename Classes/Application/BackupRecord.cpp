#include "Classes/Application/BackupRecord.h"

#include "Classes/Application/LibraryLocation.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQFolderIdentity.h"
#include "Kit/Files/ZQRegularFile.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimeZone>

#include <fcntl.h>

namespace {

constexpr qint64 mostBytes = 1 << 16;
constexpr int version = 1;
const QString kind = QStringLiteral("zelto-backup");

QJsonValue milliseconds(const QDateTime &date)
{
    return date.isValid() ? QJsonValue(date.toMSecsSinceEpoch()) : QJsonValue();
}

QDateTime date(const QJsonValue &value)
{
    return value.isDouble() ? QDateTime::fromMSecsSinceEpoch(value.toInteger(), QTimeZone::utc()) : QDateTime();
}

} // namespace

std::optional<BackupRecord> BackupRecord::of(const QString &bundle)
{
    const QFileInfo folder(bundle);
    if (folder.isSymLink() || !folder.isDir()) {
        return std::nullopt;
    }
    const auto data = zqReadRegularFile(bundle + u'/' + fileName, mostBytes, nullptr, O_NOFOLLOW);
    const QJsonObject object = QJsonDocument::fromJson(data.value_or(QByteArray())).object();
    BackupRecord record;
    record.store = QUuid::fromString(object[u"store"].toString());
    if (object[u"kind"].toString() != kind || object[u"version"].toInt() != version || record.store.isNull()) {
        return std::nullopt;
    }
    record.library = object[u"library"].toString();
    record.place = object[u"place"].toString();
    record.number = object[u"number"].toInteger();
    record.began = date(object[u"began"]);
    record.ended = date(object[u"ended"]);
    record.opened = date(object[u"opened"]);
    record.items = object[u"items"].toInteger();
    record.files = object[u"files"].toInteger();
    record.bytes = object[u"bytes"].toInteger();
    record.newBytes = object[u"newBytes"].toInteger();
    record.problems = object[u"problems"].toInteger();
    return record;
}

bool BackupRecord::write(const QString &bundle, ZQError *error) const
{
    const QJsonObject object{{QStringLiteral("kind"), kind},
                             {QStringLiteral("version"), version},
                             {QStringLiteral("store"), store.toString(QUuid::WithoutBraces)},
                             {QStringLiteral("library"), library},
                             {QStringLiteral("place"), place},
                             {QStringLiteral("number"), number},
                             {QStringLiteral("began"), milliseconds(began)},
                             {QStringLiteral("ended"), milliseconds(ended)},
                             {QStringLiteral("opened"), milliseconds(opened)},
                             {QStringLiteral("items"), items},
                             {QStringLiteral("files"), files},
                             {QStringLiteral("bytes"), bytes},
                             {QStringLiteral("newBytes"), newBytes},
                             {QStringLiteral("problems"), problems}};
    return zqWriteFileAtomically(bundle + u'/' + fileName, QJsonDocument(object).toJson(), error);
}

QString BackupRecord::placeOf(const QString &bundle)
{
    const auto identity = ZQFolderIdentity::read(bundle);
    return identity ? identity->toString() : QString();
}

bool BackupRecord::isOf(const QString &otherPlace) const
{
    const auto one = ZQFolderIdentity::fromString(place);
    const auto other = ZQFolderIdentity::fromString(otherPlace);
    return one && other && one->isSamePlace(*other);
}

bool BackupRecord::noteOpening(const QString &bundle, ZQError *error)
{
    auto record = of(QFileInfo(bundle).canonicalFilePath());
    if (!record || record->isLibrary()) {
        return true;
    }
    record->opened = QDateTime::currentDateTimeUtc();
    ZQError cause;
    if (record->write(bundle, &cause)) {
        return true;
    }
    zqSetError(error, ZQError::with(LibraryLocation::errorDomain, cause.code,
                                    zqFormat(zqLocalized("“%@” is a backup that can't be written."), {bundle}),
                                    zqLocalized("Copy it to another place, and open the copy.")));
    return false;
}
