#include "Classes/Tags/DesktopMirror.h"

#include "Classes/Tags/AttributeStore.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQText.h"

#include <QCryptographicHash>
#include <QHash>
#include <QMap>
#include <QSet>
#include <QStringDecoder>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

using Kind = DesktopMirror::Kind;

struct Mirror
{
    Kind kind;
    char letter; // in the record
    const QString &name;
};

constexpr int digestLength = 16;

const std::array<Mirror, 3> &mirrors()
{
    static const std::array<Mirror, 3> all{{{Kind::Tags, 't', DesktopMirror::tagsName},
                                            {Kind::Comment, 'c', DesktopMirror::commentName},
                                            {Kind::Rating, 'r', DesktopMirror::ratingName}}};
    return all;
}

const Mirror &mirrorOf(Kind kind)
{
    return mirrors()[static_cast<size_t>(kind)];
}

// A missing mirror and an empty one mean the same.
QByteArray digestOf(const QByteArray &text)
{
    return QCryptographicHash::hash(text, QCryptographicHash::Sha1).toHex().left(digestLength);
}

using Record = QMap<char, QByteArray>; // digests by letter

// Nothing: it could not be read, and what is not known must not be taken for none.
std::optional<Record> recordOf(const QString &path)
{
    Record record;
    ZQError error;
    const auto data = ZQExtendedAttributes::get(path, DesktopMirror::recordName, &error);
    if (!error.isNull()) {
        return std::nullopt;
    }
    for (const QByteArray &field : data ? data->split(' ') : QList<QByteArray>()) {
        if (field.size() == digestLength + 1) {
            record.insert(field.at(0), field.mid(1));
        }
    }
    return record;
}

bool writeRecord(const Record &record, const QString &path)
{
    if (record.isEmpty()) {
        return ZQExtendedAttributes::remove(path, DesktopMirror::recordName);
    }
    QByteArrayList fields;
    for (auto it = record.cbegin(); it != record.cend(); ++it) {
        fields.append(it.key() + it.value());
    }
    return ZQExtendedAttributes::set(path, DesktopMirror::recordName, fields.join(' '));
}

QByteArray present(const Mirror &mirror, const QString &path, ZQError *error = nullptr)
{
    return ZQExtendedAttributes::get(path, mirror.name, error).value_or(QByteArray());
}

bool canBeMirrored(const QString &tag)
{
    return !tag.isEmpty() && !tag.contains(u',') && tag == tag.trimmed();
}

std::optional<QString> decoded(const QByteArray &text)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString string = decoder(text);
    return decoder.hasError() ? std::nullopt : std::optional(string);
}

QSet<QString> keysOf(const QStringList &tags)
{
    QSet<QString> keys;
    for (const QString &tag : tags) {
        keys.insert(zqPlainLine(tag));
    }
    return keys;
}

// `theirs` in place of what of `ours` the mirror can show; nothing when both have the same tags.
std::optional<QStringList> mergedTags(const QStringList &ours, const QStringList &theirs, bool wasMirrored)
{
    QHash<QString, QString> ourSpelling;
    QStringList shown;
    QStringList hidden;
    for (const QString &tag : ours) {
        ourSpelling.insert(zqPlainLine(tag), tag);
        (canBeMirrored(tag) ? shown : hidden).append(tag);
    }
    if (keysOf(shown) == keysOf(theirs)) {
        return std::nullopt;
    }
    QStringList result = wasMirrored ? QStringList() : ours;
    for (const QString &tag : theirs) {
        result.append(ourSpelling.value(zqPlainLine(tag), tag));
    }
    result = AttributeStore::removeDuplicateTags(result + hidden);
    return result == AttributeStore::removeDuplicateTags(ours) ? std::nullopt : std::optional(result);
}

// What the mirror says, where it counts. A value of ours that cannot be read is not replaced.
void takeNewer(DesktopMirror::Newer &newer, Kind kind, const QString &text, bool wasMirrored, const QString &path)
{
    ZQError error;
    if (kind == Kind::Tags) {
        const auto ours = AttributeStore::getUserTagsNoRestore(path, &error);
        const auto merged =
            mergedTags(ours.value_or(QStringList()), DesktopMirror::tagsOfText(text.toUtf8()), wasMirrored);
        newer.tags = error.isNull() ? merged : std::nullopt;
    } else if (kind == Kind::Comment) {
        const QString ours = AttributeStore::getString(AttributeStore::finderCommentKey, path, &error);
        if (error.isNull() && ours != text && (wasMirrored || ours.isEmpty())) {
            newer.comment = text;
        }
    } else {
        const double ours = AttributeStore::getXAttrMetaData(AttributeStore::starRatingKey, path, &error).toDouble();
        const std::optional<double> theirs = DesktopMirror::ratingOfText(text.toUtf8());
        const bool isChange = theirs && DesktopMirror::textForRating(ours) != DesktopMirror::textForRating(*theirs);
        if (error.isNull() && isChange && (wasMirrored || ours <= 0)) {
            newer.rating = theirs;
        }
    }
}

} // namespace

bool DesktopMirror::isOn()
{
    return ZQUserDefaults::standardUserDefaults().boolForKey(preferenceKey);
}

QByteArray DesktopMirror::textForTags(const QStringList &tags)
{
    QStringList shown;
    for (const QString &tag : tags) {
        if (canBeMirrored(tag)) {
            shown.append(tag.normalized(QString::NormalizationForm_C)); // as this desktop's keyboards write
        }
    }
    return shown.join(u',').toUtf8();
}

QByteArray DesktopMirror::textForRating(double rating)
{
    const long halves = std::isnan(rating) ? 0 : std::lround(std::clamp(rating, 0.0, 5.0) * 2);
    return halves > 0 ? QByteArray::number(static_cast<int>(halves)) : QByteArray();
}

QStringList DesktopMirror::tagsOfText(const QByteArray &text)
{
    QStringList tags;
    for (const QString &part : QString::fromUtf8(text).split(u',')) {
        const QString tag = part.trimmed();
        if (!tag.isEmpty()) {
            tags.append(tag);
        }
    }
    return AttributeStore::removeDuplicateTags(tags);
}

std::optional<double> DesktopMirror::ratingOfText(const QByteArray &text)
{
    bool isNumber = true;
    const int halves = text.isEmpty() ? 0 : text.trimmed().toInt(&isNumber);
    return isNumber && halves >= 0 && halves <= 10 ? std::optional(halves / 2.0) : std::nullopt;
}

// The record is read before the mirrors and these before the file's own values, in the opposite order of writing: what
// another thread or process is just writing then looks like what it is, ours.
DesktopMirror::Newer DesktopMirror::newer(const QString &path)
{
    Newer newer;
    const QStringList names = ZQExtendedAttributes::list(path);
    const std::optional<Record> record = names.contains(recordName) ? recordOf(path) : std::optional(Record());
    if (!record) {
        return newer;
    }
    for (const Mirror &mirror : mirrors()) {
        const QByteArray base = record->value(mirror.letter);
        const bool isThere = names.contains(mirror.name);
        if (!isThere && base.isEmpty()) {
            continue;
        }
        ZQError error;
        const QByteArray text = isThere ? present(mirror, path, &error) : QByteArray();
        const bool wasMirrored = !base.isEmpty();
        if (!error.isNull() || (wasMirrored && digestOf(text) == base) || (!wasMirrored && text.isEmpty())) {
            continue;
        }
        if (const std::optional<QString> string = decoded(text)) {
            takeNewer(newer, mirror.kind, *string, wasMirrored, path);
        }
    }
    return newer;
}

bool DesktopMirror::isAmong(const QStringList &names)
{
    return names.contains(recordName) || names.contains(tagsName) || names.contains(commentName) ||
           names.contains(ratingName);
}

void DesktopMirror::write(Kind kind, const QByteArray &text, const QString &path)
{
    if (!isOn()) {
        return;
    }
    const Mirror &mirror = mirrorOf(kind);
    std::optional<Record> known = recordOf(path);
    if (!known) {
        return; // writing it anew would forget the other mirrors
    }
    Record &record = *known;
    const QByteArray digest = digestOf(text);
    if (text.isEmpty()) {
        const bool isThere = ZQExtendedAttributes::get(path, mirror.name).has_value();
        if (!isThere && !record.contains(mirror.letter)) {
            return; // nothing was ever mirrored, and nothing is to be
        }
        if (isThere && !ZQExtendedAttributes::remove(path, mirror.name)) {
            return;
        }
    } else if (!ZQExtendedAttributes::set(path, mirror.name, text)) {
        // The record goes first: a mirror that is recorded and missing would say that its value was taken away.
        if (record.remove(mirror.letter) == 0 || writeRecord(record, path)) {
            ZQExtendedAttributes::remove(path, mirror.name);
        }
        return;
    }
    if (record.value(mirror.letter) == digest) {
        return;
    }
    record.insert(mirror.letter, digest);
    if (!writeRecord(record, path)) {
        // Without a record the mirror would be taken for another program's later.
        record.remove(mirror.letter);
        if (writeRecord(record, path)) {
            ZQExtendedAttributes::remove(path, mirror.name);
        }
    }
}

QStringList DesktopMirror::attributesOfOurs(const QString &path)
{
    const Record record = recordOf(path).value_or(Record());
    QStringList names{recordName};
    for (const Mirror &mirror : mirrors()) {
        const QByteArray text = present(mirror, path);
        if (!text.isEmpty() && digestOf(text) == record.value(mirror.letter)) {
            names.append(mirror.name);
        }
    }
    return names;
}
