#pragma once

#include "Classes/Import/BaseImportOperation.h"
#include "Classes/Import/UnfoldedArchive.h"
#include "Kit/Files/ZQArchiveReader.h"

// Unpacks an archive, and the archives in it, into the temporary area, and hands the folder to the batch, which imports
// it by a request of its own. Makes no item itself. An archive that cannot be unpacked as a whole gives nothing.
class ArchiveImportOperation : public BaseImportOperation
{
public:
    explicit ArchiveImportOperation(const QString &filePath);

    // What the person allows: the defaults "ArchiveMaximumTotalSize" (bytes), "ArchiveMaximumEntryCount",
    // "ArchiveMaximumRatio" and "ArchiveMaximumNestingDepth".
    static ZQArchiveLimits limits();

    void main() override;

protected:
    QString itemClass() const override { return {}; }

private:
    void unpack();
    // Every archive below `folder` becomes a folder beside it.
    bool unfoldZipsAtPath(const QString &folder, ZQArchiveReader &reader, int depth, ZQError *error);
    void finish(const QString &root, std::shared_ptr<TemporaryFolder> holder);

    QString m_unreadableArchive; // why the first archive in it was left out
};
