#pragma once

#include "Classes/Import/ImportReport.h"
#include "Classes/Import/ImportSettings.h"
#include "Classes/Import/ItemPicture.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Operations/ZQOperation.h"
#include "Kit/Persistence/ZQObjectID.h"

#include <QDateTime>
#include <QSize>
#include <QVariantMap>

#include <optional>

class ImportBatch;
struct ImportedFile;

// Brings one file into the library: copies it into an item directory of its own and collects what the item will say.
// Touches no store. A file that fails is reported to the batch and leaves nothing behind. Kinds override the steps.
class BaseImportOperation : public ZQOperation
{
public:
    explicit BaseImportOperation(const QString &filePath);
    ~BaseImportOperation() override;

    // Before the start.
    // Attribute values for the item. A "title" is what the file in the library is called, as nearly as a file can be;
    // one that stays where it is keeps its name.
    void setMetadata(const QVariantMap &metadata) { m_metadata = metadata; }
    void setImportData(ImportedFile *slot) { m_slot = slot; }                          // outlives the operation's run
    void setFatherOperation(ImportBatch *batch) { m_batch = batch; }                   // outlives the operation's run
    void setReferenceImage(bool referenceImage) { m_referenceImage = referenceImage; } // leave the file where it is
    void setKeepsSource(bool keeps) { m_keepsSource = keeps; } // even in the temporary area: it is in use there
    void setSHA1(const QString &SHA1) { m_SHA1 = SHA1; }
    void setSidebarItem(const ZQObjectID &sidebarItem) { m_sidebarItem = sidebarItem; } // the batch's target for it
    void setSettings(const ImportSettings &settings) { m_settings = settings; }
    // The file lies in this item directory already: it becomes an item where it is, and stays whatever happens.
    void setItemDirectory(const QString &directory);
    void setImportDate(const QDateTime &date) { m_importDate = date; } // instead of the moment it is read

    // Whether the import finds this attribute out of the file and says nothing else of it: an item's file would not be
    // found under what somebody else says.
    static bool isFoundOut(const QString &attribute);

    QString filePath() const { return m_filePath; }
    const std::optional<QVariantMap> &fileData() const { return m_fileData; } // nothing after a failure

    void main() override;

protected:
    // Before everything else. False ends this file's import, which was dropped.
    virtual bool prepare() { return true; }
    virtual QString itemClass() const = 0; // an entity's name
    virtual void fillExtension();
    virtual void fillMetadata();
    virtual void fillSize() {}
    virtual QStringList findColors();
    // Puts a picture of a file that the image decoder cannot show into the item directory.
    virtual void createRepresentationBitmap() {}
    virtual QStringList embeddedKeywords() const { return {}; }

    void fillTitle();
    void addFileToLibrary();
    void fillDates();
    void fillSHA1();
    void createThumbForItem();
    // What the file in the library says of itself. Its thumbnail is drawn along with that, and kept for later.
    std::optional<ZQImageProperties> readPicture();
    void fillCustomMetadata();
    void importIPTCTags();
    void importOpenMetaTags();
    void importOpenMetaRating();
    void importOpenMetaNotes();
    void fillColors();
    void fillFingerprint();
    void fillWebURLAsNotes();

    void addTags(const QStringList &tags);
    void setPixelSize(QSize size);
    bool addSizeTag(); // for the pixel size, if the person wants it; false when that is not known
    void addVectorTag();
    // Adds to the report without ending this file's import.
    void tell(const QString &reason, DroppedFile::Telling telling);
    void tellBatchOfEnd();
    // Ends this file's import.
    void drop(const QString &reason);
    void dropForError(const ZQError &error);
    // Writes "___itemBitmap.png" and keeps the bitmap for the thumbnail. False when that dropped the file.
    bool writeRepresentationBitmap(const ZQBitmap &bitmap, const char *invalidMessage, const ZQError &error);

    const ImportSettings &settings(); // those that were set, else the person's
    QString sourcePath() const { return m_sourcePath; }
    const QVariantMap &metadata() const { return m_metadata; }
    const ZQObjectID &sidebarItem() const { return m_sidebarItem; }
    ImportBatch *batch() const { return m_batch; }
    void setFilePath(const QString &path); // imports another file in place of the one asked for

    std::optional<QVariantMap> m_fileData;

private:
    void finish();
    void collect();
    bool checkSource();
    bool copyFile();
    QString nameInLibrary() const;
    void lookForAttributes();
    void removeItemBundle();
    void tellIfIncomplete();

    QString m_sourcePath;
    QString m_filePath;
    QString m_readPath; // the source, links followed
    QString m_libraryItemBundlePath;
    ItemPicture m_picture;
    QVariantMap m_metadata;
    ZQObjectID m_sidebarItem;
    QString m_SHA1;
    std::optional<ImportSettings> m_settings;
    ZQFileDates m_sourceDates;
    QDateTime m_importDate;
    ImportedFile *m_slot = nullptr;
    ImportBatch *m_batch = nullptr;
    bool m_referenceImage = false;
    bool m_isInPlace = false;
    bool m_isMove = false;
    bool m_keepsSource = false;
    bool m_hasAttributes = true; // or might have
    bool m_isTold = false;
};
