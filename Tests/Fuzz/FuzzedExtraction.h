#pragma once

#include "Kit/Files/ZQArchiveReader.h"
#include "Tests/Fuzz/FuzzedFolder.h"

#include <QDir>
#include <QDirIterator>

// Unpacks what the source says, and looks at what came of it: nothing beside the folder, no link, no device, and
// nothing at all after a failure.
inline void fuzzExtraction(ZQArchiveSource &source, const QString &archive)
{
    static const QString place = fuzzedFolder().filePath(QStringLiteral("place"));
    const QString folder = place + QStringLiteral("/out");
    if (!QDir().mkpath(place)) {
        std::abort();
    }
    constexpr ZQArchiveLimits limits{.totalSize = 1 << 20, .entryCount = 300, .ratio = 250, .ratioFreeSize = 1 << 19};
    ZQArchiveReader reader(source, limits);
    ZQError error;
    const bool isWhole = reader.extractArchive(archive, folder, 0, &error);
    if (isWhole != error.isNull() || (!isWhole && QFileInfo::exists(folder)) ||
        reader.extractedSize() > limits.totalSize + (1 << 19)) {
        std::abort();
    }
    if (QDir(place).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System | QDir::Hidden) !=
        (isWhole ? QStringList{QStringLiteral("out")} : QStringList())) {
        std::abort();
    }
    QDirIterator walk(folder, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System | QDir::Hidden,
                      QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        const QFileInfo info = walk.nextFileInfo();
        if (info.isSymLink() || (!info.isFile() && !info.isDir())) {
            std::abort();
        }
    }
    QDir(folder).removeRecursively();
}
