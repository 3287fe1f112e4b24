#include "Classes/Import/BaseImportOperation.h"

#include "Classes/Application/LibraryBundleManager.h"
#include "Classes/Import/ColorFinder.h"
#include "Classes/Import/ImportBatch.h"
#include "Classes/Import/ImportErrors.h"
#include "Classes/Import/ImportKind.h"
#include "Classes/Import/ImportQueries.h"
#include "Classes/Import/ImportedFile.h"
#include "Classes/Tags/FileTags.h"
#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/OpenMetaBackup.h"
#include "Classes/Tags/WhereFroms.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Models/DataModel/ZQItemTitle.h"
#include "Models/DataModel/ZQModelFetch.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>

namespace {

const QString titleKey = QStringLiteral("title");

bool isPackage(const QString &path)
{
    const ImportKind *kind = importKindForPath(path);
    return kind && kind->takesPackages();
}

QDateTime dateFromMilliseconds(qint64 milliseconds)
{
    return QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC);
}

} // namespace

bool BaseImportOperation::isFoundOut(const QString &attribute)
{
    static const QStringList attributes{
        QStringLiteral("originalExtension"), QStringLiteral("managed"),     QStringLiteral("bundleID"),
        QStringLiteral("thumbName"),         QStringLiteral("itemURLData"), QStringLiteral("SHA1"),
    };
    return attributes.contains(attribute);
}

BaseImportOperation::BaseImportOperation(const QString &filePath)
    : m_fileData(QVariantMap{{QStringLiteral("tags"), QStringList()}}), m_sourcePath(filePath), m_filePath(filePath),
      m_readPath(filePath)
{
}

BaseImportOperation::~BaseImportOperation() = default;

// A batch has them for all its files: each look at the defaults looks whether their file has changed.
const ImportSettings &BaseImportOperation::settings()
{
    if (!m_settings) {
        m_settings = ImportSettings::current();
    }
    return *m_settings;
}

void BaseImportOperation::main()
{
    using Step = void (BaseImportOperation::*)();
    static constexpr Step steps[] = {
        &BaseImportOperation::fillTitle, &BaseImportOperation::addFileToLibrary, &BaseImportOperation::fillDates,
        &BaseImportOperation::fillSHA1,  &BaseImportOperation::fillExtension,    &BaseImportOperation::fillMetadata,
    };
    const bool isPrepared = !isCancelled() && prepare();
    for (const Step step : steps) {
        if (!isPrepared || isCancelled() || !m_fileData) {
            break;
        }
        (this->*step)();
    }
    finish();
}

void BaseImportOperation::finish()
{
    collect();
    if (m_fileData && !isCancelled()) {
        m_fileData->insert({{QStringLiteral("itemClass"), itemClass()},
                            {QStringLiteral("bundleID"), zqBaseName(m_libraryItemBundlePath)}});
        if (m_slot) {
            *m_slot = {.fileData = *m_fileData,
                       .sourcePath = m_sourcePath,
                       .filePath = m_filePath,
                       .movedPath = m_isMove ? m_readPath : QString(), // of a package, only what was taken from it
                       .movedModification = m_sourceDates.modification};
        }
    } else {
        removeItemBundle();
    }
    m_picture.release();
    tellBatchOfEnd();
}

void BaseImportOperation::tellBatchOfEnd()
{
    if (m_batch) {
        m_batch->fileDidFinish();
    }
}

void BaseImportOperation::setFilePath(const QString &path)
{
    m_filePath = path;
    m_readPath = path;
}

void BaseImportOperation::setItemDirectory(const QString &directory)
{
    m_libraryItemBundlePath = directory;
    m_isInPlace = true;
}

void BaseImportOperation::collect()
{
    using Step = void (BaseImportOperation::*)();
    static constexpr Step steps[] = {
        &BaseImportOperation::createThumbForItem,  &BaseImportOperation::fillCustomMetadata,
        &BaseImportOperation::importIPTCTags,      &BaseImportOperation::importOpenMetaTags,
        &BaseImportOperation::importOpenMetaNotes, &BaseImportOperation::fillColors,
        &BaseImportOperation::fillFingerprint,     &BaseImportOperation::fillSize,
        &BaseImportOperation::fillWebURLAsNotes,
    };
    for (const Step step : steps) {
        if (isCancelled() || !m_fileData) {
            return;
        }
        (this->*step)();
    }
}

void BaseImportOperation::drop(const QString &reason)
{
    m_fileData.reset();
    if (isCancelled()) {
        return; // the batch says so; what failed is that nobody wanted it any more
    }
    tell(reason, DroppedFile::Telling::InWindow);
}

void BaseImportOperation::tell(const QString &reason, DroppedFile::Telling telling)
{
    if (m_batch && !m_isTold && !isCancelled()) {
        m_isTold = telling != DroppedFile::Telling::InWindowIncomplete; // it may be dropped yet
        m_batch->fileDidDrop({m_sourcePath, reason, telling});
    }
}

// The item stays: what is there of the picture may be all that a person has of it.
void BaseImportOperation::tellIfIncomplete()
{
    if (m_picture.isIncomplete()) {
        tell(zqLocalized("It is incomplete: only a part of it can be drawn. Import it again from where it came."),
             DroppedFile::Telling::InWindowIncomplete);
    }
}

void BaseImportOperation::dropForError(const ZQError &error)
{
    if (isFullDisk(error) && m_batch) {
        m_batch->setRefusal(fullDiskReason());
    }
    drop(importReasonForError(error));
}

void BaseImportOperation::removeItemBundle()
{
    if (!m_isInPlace && !m_libraryItemBundlePath.isEmpty() && !QDir(m_libraryItemBundlePath).removeRecursively()) {
        qCWarning(zqLogImport).noquote() << "Error while deleting unused bundle item" << m_libraryItemBundlePath;
    }
}

void BaseImportOperation::fillTitle()
{
    m_fileData->insert(titleKey, zqBaseName(m_filePath));
}

// What could make the copy hang, or what no one can want in a library, is told apart before anything is made.
bool BaseImportOperation::checkSource()
{
    const QString refusal = m_batch ? m_batch->refusal() : QString();
    if (!refusal.isEmpty()) {
        drop(refusal);
        return false;
    }
    const QFileInfo info(m_filePath);
    if (!info.exists()) {
        dropForError(ZQError::posix(ENOENT, m_filePath));
    } else if (info.isDir() ? !isPackage(m_filePath) : !info.isFile()) {
        drop(zqLocalized("It is no regular file. Import a copy of what it gives."));
    } else if (info.isFile() && info.size() == 0) {
        drop(zqLocalized("The file is empty. Save it again in the program that made it."));
    }
    if (m_fileData && info.isSymLink()) {
        m_readPath = info.canonicalFilePath();
    }
    return m_fileData.has_value();
}

namespace {
// A link there, or on the way, may lead to somebody's only copy, which is neither taken away nor shared with the
// library.
bool isReallyTemporary(const QString &path)
{
    const QFileInfo info(path);
    return ImportQueries::fileIsInsideTemporaryDirectory(path) && !info.isSymLink() &&
           ImportQueries::fileIsInsideTemporaryDirectory(info.canonicalFilePath());
}
} // namespace

// Its title is made of it, so that what is asked for as a title has to be a name first.
QString BaseImportOperation::nameInLibrary() const
{
    const QString title = m_metadata.value(titleKey).toString();
    const QString extension = zqPathExtension(m_filePath);
    return title.isEmpty() || extension.isEmpty()
               ? QFileInfo(m_filePath).fileName()
               : zqItemTitleForText(title, extension, zqBaseName(m_filePath)) + u'.' + extension;
}

bool BaseImportOperation::copyFile()
{
    ZQError error;
    const QString target = m_libraryItemBundlePath + u'/' + nameInLibrary();
    m_isMove = !m_keepsSource && m_readPath == m_filePath && isReallyTemporary(m_filePath) &&
               !m_filePath.contains(QStringLiteral("zttemplate"));
    const auto cancelled = [this] { return isCancelled(); };
    // A move that can be interrupted anywhere: the source stays until the item has been saved.
    const auto result = m_isMove ? zqLinkOrCopyFile(m_readPath, target, &error, cancelled)
                                 : zqCopyFile(m_readPath, target, &error, cancelled);
    if (!result) {
        dropForError(error);
        return false;
    }
    if (m_SHA1.isEmpty()) {
        m_SHA1 = QString::fromLatin1(result->SHA1);
    }
    m_filePath = target;
    fillTitle();
    lookForAttributes();
    if (m_hasAttributes && !m_isMove) {
        // The record of an item of another library would say that this one had been saved once.
        ZQExtendedAttributes::remove(target, SeenFileTags::attributeName);
    }
    return true;
}

// Most files carry none, and each name that is looked for takes a call.
void BaseImportOperation::lookForAttributes()
{
    ZQError error;
    m_hasAttributes = !ZQExtendedAttributes::list(m_filePath, &error).isEmpty() || !error.isNull();
}

void BaseImportOperation::addFileToLibrary()
{
    if (!checkSource()) {
        return;
    }
    // The copy's own dates are those of the copying.
    m_sourceDates = zqFileDates(m_readPath).value_or(ZQFileDates());
    if (!m_isInPlace) {
        m_libraryItemBundlePath = LibraryBundleManager::newLibraryItemBundlePath();
    }
    if (m_libraryItemBundlePath.isEmpty()) {
        drop(zqLocalized(
            "No item directory can be made in the library. Check that the library can be written and has space left."));
        return;
    }
    m_fileData->insert(QStringLiteral("managed"), !m_referenceImage);
    if (m_referenceImage || m_isInPlace) {
        lookForAttributes();
    } else if (!copyFile()) {
        return;
    }
    // Nobody else saves the library's own copy.
    const QByteArray reference = zqDataForPersistentURL(m_filePath, m_referenceImage ? ZQReferenceContents::Noted
                                                                                     : ZQReferenceContents::NotNoted);
    if (reference.isEmpty()) {
        qCWarning(zqLogImport).noquote() << zqFormat(
            QStringLiteral("%@ couldn't be imported because it's locked or user doesn't have the right permission"),
            {m_filePath});
        drop(zqLocalized("It is locked, or you have no permission to read it. Unlock it and import it again."));
        return;
    }
    m_fileData->insert(QStringLiteral("itemURLData"), reference);
}

void BaseImportOperation::fillDates()
{
    const QDateTime now = m_importDate.isValid() ? m_importDate : zqNow();
    const auto date = [](qint64 milliseconds, const QDateTime &otherwise) {
        return milliseconds ? dateFromMilliseconds(milliseconds) : otherwise;
    };
    const QDateTime creation = date(m_sourceDates.birth, now);
    const QDateTime modification = date(m_sourceDates.modification, creation);
    m_fileData->insert(
        {{QStringLiteral("creation_date"), creation},
         {QStringLiteral("modification_date"), modification},
         {QStringLiteral("import_date"), now},
         // Files keep the order of their import; only one from the future sorts by its own date.
         {QStringLiteral("sort_date"), std::max(modification, now)},
         {QStringLiteral("attributes_modification_date"), date(m_sourceDates.attributeModification, modification)}});
}

void BaseImportOperation::fillSHA1()
{
    if (m_SHA1.isEmpty()) {
        const bool isPackage =
            zqPathExtension(m_filePath).compare(u"sketch", Qt::CaseInsensitive) == 0 && !QFileInfo(m_filePath).isFile();
        const QString digested = isPackage ? m_filePath + QStringLiteral("/Data") : m_filePath;
        if (QFileInfo(digested).isFile()) {
            m_SHA1 = QString::fromLatin1(zqSHA1OfFile(digested));
        }
    }
    if (!m_SHA1.isEmpty()) {
        m_fileData->insert(QStringLiteral("SHA1"), m_SHA1);
    }
}

void BaseImportOperation::fillExtension()
{
    const QString extension = zqPathExtension(m_filePath);
    m_fileData->insert(
        {{QStringLiteral("extension"), extension.toLower()}, {QStringLiteral("originalExtension"), extension}});
}

void BaseImportOperation::fillMetadata()
{
    if (!m_hasAttributes) {
        return;
    }
    const WhereFroms origin = WhereFroms::urlsOfFile(m_filePath);
    if (!origin.webURL.isEmpty()) {
        m_fileData->insert(QStringLiteral("webURL"), origin.webURL);
    }
    if (!origin.webPageURL.isEmpty()) {
        m_fileData->insert(QStringLiteral("webPageURL"), origin.webPageURL);
    }
}

bool BaseImportOperation::writeRepresentationBitmap(const ZQBitmap &bitmap, const char *invalidMessage,
                                                    const ZQError &error)
{
    if (bitmap.isNull()) {
        const QString reason = error.isNull()
                                   ? zqFormat(zqLocalized(invalidMessage), {QFileInfo(m_sourcePath).fileName()})
                                   : importReasonForError(error);
        qCWarning(zqLogImport).noquote() << zqFormat(QLatin1String(invalidMessage), {m_filePath}) << reason;
        drop(reason);
        return false;
    }
    ZQError writeError;
    if (!m_picture.writeRepresentation(bitmap, m_libraryItemBundlePath, &writeError)) {
        dropForError(writeError);
        return false;
    }
    return true;
}

std::optional<ZQImageProperties> BaseImportOperation::readPicture()
{
    return m_picture.drawWithProperties(m_filePath);
}

void BaseImportOperation::createThumbForItem()
{
    createRepresentationBitmap();
    if (!m_fileData) {
        return;
    }
    ZQError error;
    m_picture.finish(m_filePath, m_libraryItemBundlePath, &error);
    tellIfIncomplete();
    if (m_picture.isShownByItself()) {
        return;
    }
    const QString thumbName = m_picture.thumbnailName();
    if (thumbName.isEmpty()) {
        const QString reason =
            error.isNull()
                ? zqLocalized("No picture can be made of it. Open it in another program to see whether it is damaged.")
                : importReasonForError(error);
        qCWarning(zqLogImport).noquote() << zqFormat(QStringLiteral("can't create thumb for %@: %@"),
                                                     {m_filePath, reason});
        drop(reason);
    } else if (isFullDisk(error)) {
        dropForError(error);
    } else {
        m_fileData->insert(QStringLiteral("thumbName"), thumbName);
    }
}

void BaseImportOperation::fillCustomMetadata()
{
    for (auto entry = m_metadata.constBegin(); entry != m_metadata.constEnd(); ++entry) {
        if (entry.key() == u"tags") {
            addTags(entry.value().toStringList());
        } else if (entry.key() != titleKey && !isFoundOut(entry.key())) {
            m_fileData->insert(entry.key(), entry.value());
        }
    }
}

void BaseImportOperation::addTags(const QStringList &tags)
{
    QStringList all = m_fileData->value(QStringLiteral("tags")).toStringList();
    for (const QString &tag : tags) {
        if (!tag.isEmpty() && !all.contains(tag)) {
            all.append(tag);
        }
    }
    m_fileData->insert(QStringLiteral("tags"), all);
}

void BaseImportOperation::setPixelSize(QSize size)
{
    m_fileData->insert({{QStringLiteral("pixelWidth"), size.width()}, {QStringLiteral("pixelHeight"), size.height()}});
}

bool BaseImportOperation::addSizeTag()
{
    const int width = m_fileData->value(QStringLiteral("pixelWidth")).toInt();
    const int height = m_fileData->value(QStringLiteral("pixelHeight")).toInt();
    if (width <= 0 || height <= 0) {
        return false;
    }
    if (settings().useAutoTagging) {
        addTags({zqLocalized(settings().sizeTag(width, height))});
    }
    return true;
}

void BaseImportOperation::addVectorTag()
{
    if (settings().useAutoTagging) {
        addTags({zqLocalized("vector")});
    }
}

void BaseImportOperation::importIPTCTags()
{
    if (settings().importIPTCTags) {
        addTags(embeddedKeywords());
    }
}

void BaseImportOperation::importOpenMetaTags()
{
    if (!settings().importOpenMetaTags) {
        return;
    }
    // A file that stays where it is may have lost its own when a program replaced it.
    if (!m_hasAttributes && (m_referenceImage || m_isInPlace)) {
        OpenMetaBackup::restoreMetadata(m_filePath);
        lookForAttributes();
    }
    if (m_hasAttributes) {
        addTags(OpenMeta::getUserTags(m_filePath).value_or(QStringList()));
        importOpenMetaRating();
    }
}

void BaseImportOperation::importOpenMetaRating()
{
    const int rating = OpenMeta::starsForRating(OpenMeta::getRating(m_filePath));
    if (rating > 0) {
        m_fileData->insert(QStringLiteral("rating"), rating);
    }
}

void BaseImportOperation::importOpenMetaNotes()
{
    const QVariant comment =
        m_hasAttributes ? OpenMeta::getXAttrMetaData(OpenMeta::finderCommentKey, m_filePath) : QVariant();
    if (comment.typeId() == QMetaType::QString) {
        m_fileData->insert(QStringLiteral("notes"), comment);
    }
}

QStringList BaseImportOperation::findColors()
{
    return m_picture.colors(m_filePath);
}

void BaseImportOperation::fillColors()
{
    if (!settings().useAutoTagging) {
        return;
    }
    const QStringList colors = findColors();
    addTags(colors);
    if (!colors.isEmpty()) {
        m_fileData->insert(QStringLiteral("mainColor"), ColorFinder::colorValueForName(colors.first()));
    }
}

void BaseImportOperation::fillFingerprint()
{
    const ZQPictureFingerprint fingerprint = m_picture.fingerprint();
    m_fileData->insert(
        {{QStringLiteral("pictureHash"), fingerprint.pictureHash}, {QStringLiteral("palette"), fingerprint.palette}});
}

void BaseImportOperation::fillWebURLAsNotes()
{
    QString url = m_fileData->value(QStringLiteral("webPageURL")).toString();
    if (url.isEmpty()) {
        url = m_fileData->value(QStringLiteral("webURL")).toString();
    }
    const QString notes = m_fileData->value(QStringLiteral("notes")).toString();
    const bool wereFilledBefore = m_isInPlace && notes.startsWith(url); // by its first import
    if (url.isEmpty() || notes == url || wereFilledBefore) {
        return;
    }
    m_fileData->insert(QStringLiteral("notes"),
                       notes.isEmpty() ? url : url + zqFormat(QStringLiteral("\n %@"), {notes}));
}
