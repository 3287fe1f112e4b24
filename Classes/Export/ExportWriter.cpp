#include "Classes/Export/ExportWriter.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Export/ExportReport.h"
#include "Classes/Export/ExportRequest.h"
#include "Kit/Files/ZQFileAdvice.h"
#include "Kit/Files/ZQPlainCopy.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageExport.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QFileInfo>
#include <QThread>

#include <algorithm>
#include <cerrno>

namespace {
constexpr int fewestAtOnce = 2;
constexpr int mostAtOnce = 4; // as many as there are workers that draw

// Where the folder takes files, so that it is the item's own that is wrong.
QString reasonOf(const ZQError &error)
{
    const bool isForbidden = error.domain == ZQError::posixDomain && (error.code == EACCES || error.code == EPERM);
    return isForbidden ? zqLocalized("Its file may not be read. Change its permissions, and export it again.")
                       : zqAdviceForFileError(error);
}

QStringList notesOf(const ZQExportedImage &image)
{
    QStringList notes;
    if (image.isFirstOfSeveral) {
        notes.append(zqLocalized("Only the first frame of it. Export it as it is to keep all."));
    }
    if (image.isReduced) {
        notes.append(zqLocalized("Reduced to 8 bits a channel. Export it as it is to keep all."));
    }
    return notes;
}
} // namespace

ExportWriter::ExportWriter(const ExportRequest &request, const QString &folder, UserProgress *progress)
    : m_request(request), m_folder(folder), m_progress(progress)
{
}

std::vector<ExportOutcome> ExportWriter::write(const std::vector<ExportSource> &sources, const QStringList &paths,
                                               ZQOperation &operation)
{
    std::vector<ExportOutcome> outcomes(sources.size());
    const int count = std::clamp(QThread::idealThreadCount(), fewestAtOnce, mostAtOnce);
    ZQOperationQueue queue(QStringLiteral("Export"), count);
    const auto cancellation = ZQCancellation::current();
    for (int i = 0; i < count; ++i) {
        queue.addOperationWithBlock([&, cancellation] {
            const ZQCancellation::Scope scope(cancellation);
            writeNext(sources, paths, operation, outcomes);
        });
    }
    queue.waitUntilAllOperationsAreFinished();
    return outcomes;
}

void ExportWriter::writeNext(const std::vector<ExportSource> &sources, const QStringList &paths, ZQOperation &operation,
                             std::vector<ExportOutcome> &outcomes)
{
    for (qsizetype i = m_next++; i < qsizetype(sources.size()); i = m_next++) {
        if (operation.isCancelled()) {
            return;
        }
        ExportOutcome &outcome = outcomes[std::size_t(i)];
        if (isRefused()) {
            outcome.reason = refusal();
        } else if (i < paths.size()) {
            outcome = exportItem(sources[std::size_t(i)], paths.at(i));
        } else if (sources[std::size_t(i)].hasFile()) {
            outcome.reason = zqLocalized("Files before it are missing, and took the names. Export it by itself.");
        }
        if (m_progress && !operation.isCancelled()) {
            m_progress->advanceBy(1);
        }
    }
}

ExportOutcome ExportWriter::exportItem(const ExportSource &source, const QString &destinationURL)
{
    return m_request.fileFormat ? convert(source, destinationURL) : copy(source, destinationURL);
}

ExportOutcome ExportWriter::copy(const ExportSource &source, const QString &path)
{
    if (!source.hasFile()) {
        return {};
    }
    if (m_request.archive) { // which is made of the files themselves
        const QFileInfo file(source.file);
        // An archive keeps links as they are, and this one leads out of it.
        return file.isReadable() ? ExportOutcome{path, file.isSymLink() ? file.canonicalFilePath() : source.file, {}}
                                 : ExportOutcome{{}, {}, reasonOf(ZQError::posix(EACCES, source.file))};
    }
    return put(path, [&source](const QString &free, ZQError *error) {
        return zqCopyPlainly(source.file, free, error, [] { return ZQCancellation::isCurrentCancelled(); });
    });
}

ExportOutcome ExportWriter::convert(const ExportSource &source, const QString &path)
{
    if (source.picture.path.isEmpty()) {
        return {{}, {}, source.hasFile() ? zqLocalized("There is no picture of it. Export it as it is.") : QString()};
    }
    std::optional<ZQExportedImage> image;
    ExportOutcome outcome = put(path, [&](const QString &free, ZQError *error) {
        image = encode(source, free, error);
        return image.has_value();
    });
    outcome.isIncomplete = image && image->isIncomplete;
    outcome.notes = image ? notesOf(*image) : QStringList();
    if (!outcome.path.isEmpty() && !m_request.archive) { // whose members carry no attributes
        ZQLibraryEnvironment::current().writeTagsToFile(outcome.path, source.tags);
    }
    return outcome;
}

std::optional<ZQExportedImage> ExportWriter::encode(const ExportSource &source, const QString &path,
                                                    ZQError *error) const
{
    const ZQExportEncoding encoding{
        *m_request.fileFormat, m_request.imageQuality, {m_request.imageSizePercentage, m_request.imageSize}};
    const ZQExportRepresentation &picture = source.picture;
    if (picture.drawing != ZQExportRepresentation::Drawing::Page) {
        ZQError problem;
        if (const auto image = zqExportImageFile(picture.path, encoding, path, &problem)) {
            return image;
        }
        const bool isOfPicture = problem.domain != ZQError::posixDomain;
        const bool mayBeDrawn = picture.drawing == ZQExportRepresentation::Drawing::PictureOrPreview && isOfPicture;
        if (!mayBeDrawn || ZQCancellation::isCurrentCancelled()) {
            zqSetError(error, problem);
            return std::nullopt;
        }
    }
    const ZQBitmap drawn = picture.preview(error);
    return drawn.isNull() ? std::nullopt : zqExportBitmap(drawn, encoding, path, error);
}

ExportOutcome ExportWriter::put(const QString &path,
                                const std::function<bool(const QString &path, ZQError *error)> &write)
{
    constexpr int attempts = 100;
    QString free = path;
    ZQError error;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        error = {};
        if (write(free, &error)) {
            return {free, free, {}};
        }
        if (error.domain != ZQError::posixDomain || error.code != EEXIST) {
            break;
        }
        free = ExportNames::safeNameForFile(free); // somebody took it meanwhile
    }
    if (ZQCancellation::isCurrentCancelled()) {
        return {};
    }
    const QString refusal = ExportReport::refusalAfterError(m_folder, error);
    if (!refusal.isNull()) {
        refuse(refusal);
    }
    return {{}, {}, refusal.isNull() ? reasonOf(error) : refusal};
}

void ExportWriter::refuse(const QString &reason)
{
    const ZQLockGuard lock(m_mutex);
    if (m_refusal.isNull()) {
        m_refusal = reason;
    }
}

bool ExportWriter::isRefused() const
{
    const ZQLockGuard lock(m_mutex);
    return !m_refusal.isNull();
}

QString ExportWriter::refusal() const
{
    const ZQLockGuard lock(m_mutex);
    return m_refusal;
}
