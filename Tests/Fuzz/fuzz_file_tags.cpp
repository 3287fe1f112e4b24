// What other programs may have put into a file's attributes, as the library reads and answers it.

#include "Classes/Tags/DesktopMirror.h"
#include "Classes/Tags/FileTags.h"
#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/WhereFroms.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Tests/Fuzz/FuzzedFolder.h"

#include <cstdio>

namespace {

// Each attribute that is read; an input says which ones a file has, and what they hold.
const QStringList &names()
{
    static const QStringList all{OpenMeta::spotlightKey(OpenMeta::userTagsKey),
                                 OpenMeta::openmetaKey(OpenMeta::userTagsKey),
                                 OpenMeta::openmetaTimeKey(OpenMeta::userTagsKey),
                                 OpenMeta::spotlightKey(OpenMeta::olderUserTagsKey),
                                 OpenMeta::openmetaKey(OpenMeta::olderUserTagsKey),
                                 OpenMeta::spotlightKey(OpenMeta::userTagTimeKey),
                                 OpenMeta::spotlightKey(OpenMeta::starRatingKey),
                                 OpenMeta::openmetaKey(OpenMeta::starRatingKey),
                                 OpenMeta::spotlightKey(OpenMeta::finderCommentKey),
                                 OpenMeta::spotlightKey(OpenMeta::whereFromsKey),
                                 OpenMeta::spotlightKey(WhereFroms::ownKey),
                                 OpenMeta::openmetaKey(WhereFroms::ownKey),
                                 SeenFileTags::attributeName,
                                 DesktopMirror::tagsName,
                                 DesktopMirror::commentName,
                                 DesktopMirror::ratingName,
                                 DesktopMirror::recordName,
                                 WhereFroms::originName,
                                 WhereFroms::referrerName};
    return all;
}

void check(bool isTrue)
{
    if (!isTrue) {
        std::abort();
    }
}

void checkRecord(const QByteArray &text)
{
    const auto seen = SeenFileTags::fromText(text);
    check(!seen || SeenFileTags::fromText(seen->text()) == seen);
}

void checkMerge(const QString &path, bool ignoresSeen)
{
    const FileTags library{QStringList{QStringLiteral("Logo"), QStringLiteral("red")},
                           QStringLiteral("noted"),
                           3,
                           {QStringLiteral("red")}};
    ZQError error;
    for (const auto unknown : {FileTagsMerge::Unknown::KeepsBoth, FileTagsMerge::Unknown::TakesFile}) {
        const auto merge = FileTagsMerge::ofFile(path, library, unknown, ignoresSeen, &error);
        check(merge.has_value() == error.isNull());
        check(!merge || (merge->merged.rating >= 0 && merge->merged.rating <= 5));
        check(!merge || merge->merged.tags.contains(QStringLiteral("red"))); // no file takes a measured one away
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    const QString path = fuzzedFolder().filePath(QStringLiteral("probe"));
    fuzzedWrite(path, "", 0);
    ZQError error;
    if (!ZQExtendedAttributes::set(path, QStringLiteral("probe"), "1", &error)) {
        std::fprintf(stderr, "TMPDIR lies where files keep no attributes: %s\n",
                     qPrintable(error.localizedDescription()));
        std::exit(EXIT_FAILURE);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString path = fuzzedFolder().filePath(QStringLiteral("picture"));
    QFile::remove(path);
    fuzzedWrite(path, "a picture", 9);
    FuzzedInput input(data, size);
    while (!input.isAtEnd()) {
        const QString &name = names().at(input.byte() % names().size());
        const QByteArray value = input.piece();
        ZQExtendedAttributes::set(path, name, value);
        checkRecord(value);
    }
    OpenMeta::getValues(path);
    OpenMeta::getNSArrayMetaData(OpenMeta::whereFromsKey, path);
    WhereFroms::urlsOfFile(path);
    DesktopMirror::newer(path);
    checkMerge(path, false);
    checkMerge(path, true);
    OpenMeta::getUserTags(path);
    OpenMeta::getValues(path);
    return 0;
}
