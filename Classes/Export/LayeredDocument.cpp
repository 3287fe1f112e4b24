#include "Classes/Export/LayeredDocument.h"

#include "Classes/Export/PSDWriter.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQNewFile.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageSource.h"

#include <QFile>
#include <QFileInfo>

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <deque>
#include <future>
#include <optional>
#include <utility>

namespace {

constexpr int firstTurned = 5; // from here on an orientation changes width and height

bool fail(LayeredDocument::Code code, const QString &description, ZQError *error, const QString &reason = {})
{
    zqSetError(error, ZQError::with(LayeredDocument::errorDomain, code, description, reason));
    return false;
}

bool alreadyThere(const QString &path, ZQError *error)
{
    return fail(LayeredDocument::AlreadyThere, zqFormat(zqLocalized("There is a file “%@” already."), {path}), error);
}

QString line(const LayeredPicture &picture, const QString &text)
{
    return QStringLiteral("%1: %2").arg(picture.name, text);
}

struct Drawn
{
    std::optional<ZQPackedPicture> planes; // or else
    ZQBitmap bitmap;
    ZQError reason; // why there is none

    bool isNull() const { return !planes && bitmap.isNull(); }
    bool isIncomplete() const { return planes ? planes->isIncomplete() : bitmap.isIncomplete(); }
};

// What of a picture lies on the canvas.
QRect windowOf(const LayeredPicture &picture, QSize canvas)
{
    constexpr int farthest = 1 << 30; // no picture is as large
    const QPoint offset = picture.offset;
    const bool isNear = qAbs(qint64(offset.x())) < farthest && qAbs(qint64(offset.y())) < farthest;
    return isNear ? QRect(-offset, canvas) : QRect();
}

Drawn draw(const LayeredPicture &picture, QSize canvas)
{
    using Drawing = ZQExportRepresentation::Drawing;
    Drawn drawn;
    if (picture.picture.drawing != Drawing::Page) {
        drawn.planes = ZQImageSource::planesOfFile(picture.picture.path, windowOf(picture, canvas), &drawn.reason);
    }
    if (!drawn.planes && picture.picture.drawing != Drawing::Picture) {
        drawn.bitmap = picture.picture.preview(&drawn.reason);
    }
    return drawn;
}

// Pictures in their order; the next ones are drawn and packed by the processes that decode while one is taken into the
// document. What these have made ready takes memory of the machine: none is drawn ahead for a huge canvas.
class Drawings
{
public:
    Drawings(const QList<LayeredPicture> &pictures, QSize canvas)
        : m_pictures(pictures), m_canvas(canvas), m_ahead(aheadFor(canvas))
    {
        begin(m_ahead);
    }

    Drawn next()
    {
        begin(1); // also where none is drawn ahead
        Drawn drawn = m_begun.front().get();
        m_begun.pop_front();
        begin(m_ahead);
        return drawn;
    }

private:
    static std::size_t aheadFor(QSize canvas)
    {
        constexpr qint64 mostPixelsWaiting = qint64(1) << 26;
        constexpr qint64 most = 2;
        const qint64 pixels = std::max<qint64>(1, qint64(canvas.width()) * canvas.height());
        return std::size_t(std::min(most, mostPixelsWaiting / pixels));
    }

    void begin(std::size_t count)
    {
        for (; m_begun.size() < count && m_index < m_pictures.size(); ++m_index) {
            // By itself it falls back to drawing in `get` where no thread is to be had.
            m_begun.push_back(std::async(
                [picture = m_pictures[m_index], canvas = m_canvas, cancellation = ZQCancellation::current()] {
                    const ZQCancellation::Scope scope(cancellation);
                    return draw(picture, canvas);
                }));
        }
    }

    const QList<LayeredPicture> &m_pictures;
    const QSize m_canvas;
    const std::size_t m_ahead;
    qsizetype m_index = 0;
    std::deque<std::future<Drawn>> m_begun;
};

// Whether it is a layer. If not, `error` says why, unless `gaps` takes it.
bool accepts(const LayeredPicture &picture, const Drawn &drawn, LayeredDocument::Gaps *gaps, ZQError *error)
{
    const bool isNull = drawn.isNull();
    if (!isNull && !drawn.isIncomplete()) {
        return true;
    }
    if (gaps) {
        if (isNull) {
            gaps->leftOut.append(line(picture, drawn.reason.localizedDescription()));
        } else {
            gaps->incomplete.append(line(picture, zqLocalized("Only a part of the picture is there.")));
        }
        return !isNull;
    }
    const QString format = isNull ? zqLocalized("“%@” can't be read as a picture.")
                                  : zqLocalized("“%@” is damaged: only a part of the picture is there.");
    return fail(LayeredDocument::CannotRead, zqFormat(format, {picture.picture.path}), error,
                drawn.reason.localizedDescription());
}

// As it will be drawn; nothing when it cannot be.
QSize sizeOf(const LayeredPicture &picture, ZQError *error)
{
    if (picture.picture.path.isEmpty()) {
        zqSetError(error, ZQError::with(LayeredDocument::errorDomain, LayeredDocument::CannotRead,
                                        zqLocalized("The file is missing.")));
        return {};
    }
    const auto properties = picture.picture.drawing == ZQExportRepresentation::Drawing::Page
                                ? std::nullopt
                                : ZQImageSource::propertiesOfFile(picture.picture.path);
    if (!properties || properties->isVector) {
        return picture.picture.bitmap(error).size();
    }
    const QSize size(properties->pixelWidth, properties->pixelHeight);
    return properties->orientation >= firstTurned ? size.transposed() : size;
}

std::optional<QByteArray> documentOf(const QList<LayeredPicture> &pictures, QSize canvas,
                                     const std::function<void()> &didAdd, LayeredDocument::Gaps *gaps, ZQError *error)
{
    PSDWriter writer(canvas);
    writer.setShouldUnpremultiplyLayerData(true); // as programs that open documents read the colours of layers
    bool hasLayers = pictures.isEmpty();          // of none at all the writer tells
    Drawings drawings(pictures, canvas);
    for (const LayeredPicture &picture : pictures) {
        const Drawn drawn = drawings.next();
        if (ZQCancellation::isCurrentCancelled()) {
            fail(LayeredDocument::Cancelled, zqLocalized("The export was cancelled."), error);
            return std::nullopt;
        }
        if (accepts(picture, drawn, gaps, error)) {
            if (!drawn.planes ||
                !writer.addLayerWithPlanes(*drawn.planes, picture.name, picture.opacity, picture.offset)) {
                writer.addLayerWithCGImage(drawn.bitmap, picture.name, picture.opacity, picture.offset);
            }
            hasLayers = true;
        } else if (!gaps) {
            return std::nullopt;
        }
        if (didAdd) {
            didAdd();
        }
    }
    if (!hasLayers) {
        fail(LayeredDocument::CannotRead, zqLocalized("None of these can be read as a picture."), error,
             gaps->leftOut.join(u'\n'));
        return std::nullopt;
    }
    return writer.createPSDData();
}

bool writeNew(const QString &path, const QByteArray &document, ZQError *error)
{
    auto file = ZQNewFile::make(path, error);
    if (!file) {
        return false;
    }
    if (!zqWriteAll(file->descriptor(), document.constData(), document.size()) || fsync(file->descriptor()) != 0) {
        return zqFailWithErrno(error, QFile::encodeName(path));
    }
    ZQError failure;
    if (!file->place(&failure)) {
        zqSetError(error, failure);
        return failure.code == EEXIST ? alreadyThere(path, error) : false;
    }
    zqSyncFolder(QFileInfo(path).absolutePath());
    return true;
}

} // namespace

QSize LayeredDocument::largestSize(QList<LayeredPicture> &pictures, QStringList *leftOut)
{
    QSize largest(0, 0);
    QList<LayeredPicture> readable;
    for (const LayeredPicture &picture : std::as_const(pictures)) {
        ZQError error;
        const QSize size = sizeOf(picture, &error);
        if (size.isEmpty()) {
            if (leftOut) {
                leftOut->append(line(picture, error.localizedDescription()));
            }
            continue;
        }
        largest = largest.expandedTo(size);
        readable.append(picture);
    }
    pictures = readable;
    return largest;
}

bool LayeredDocument::write(const QList<LayeredPicture> &pictures, QSize canvas, const QString &path, bool replaces,
                            const std::function<void()> &didAdd, ZQError *error, Gaps *gaps)
{
    const QFileInfo target(path);
    if (target.isDir() || (!replaces && (target.exists() || target.isSymLink()))) {
        return alreadyThere(path, error);
    }
    for (const LayeredPicture &picture : pictures) {
        for (const QString &file : {picture.picture.path, picture.file}) {
            const QString source = file.isEmpty() ? QString() : QFileInfo(file).canonicalFilePath();
            if (!source.isEmpty() && source == target.canonicalFilePath()) {
                return fail(AlreadyThere,
                            zqFormat(zqLocalized("“%@” is one of the layers: choose another name."), {path}), error);
            }
        }
    }
    try {
        if (const auto refused = PSDWriter::refusal(canvas, pictures.size())) {
            return fail(DoesNotFit, refused->reason(), error);
        }
        const auto document = documentOf(pictures, canvas, didAdd, gaps, error);
        if (!document) {
            return false;
        }
        return replaces ? zqWriteFileAtomically(path, *document, error) : writeNew(path, *document, error);
    } catch (const PSDException &refused) {
        return fail(DoesNotFit, refused.reason(), error);
    }
}
