#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Imaging/Decoders/ZQImageDecoding.h"
#include "Kit/Imaging/Decoders/ZQImageFormat.h"

#include <archive.h>
#include <archive_entry.h>

#include <cstring>
#include <memory>

// A Sketch document in one file is a zip archive, in which the program keeps a picture of the page that was shown last.

namespace {

using Reader = std::unique_ptr<archive, int (*)(archive *)>;

constexpr const char *previewName = "previews/preview.png";

ZQError noPreviewError(const QString &name)
{
    return zqImagingError(ZQImagingErrorCode::UnknownFormat, name,
                          zqLocalized("It holds no preview. Open it in Sketch, save it again and import it anew, or "
                                      "export it as PNG, SVG or PDF and import that."));
}

// At the front of the preview; false, with `error` filled, when there is none.
bool findPreview(archive *reader, const QString &name, ZQError *error)
{
    archive_entry *entry = nullptr;
    int result = ARCHIVE_OK;
    while ((result = archive_read_next_header(reader, &entry)) == ARCHIVE_OK || result == ARCHIVE_WARN) {
        const char *path = archive_entry_pathname(entry);
        if (path && std::strcmp(path, previewName) == 0 && archive_entry_filetype(entry) == AE_IFREG) {
            return true;
        }
    }
    zqSetError(error, result == ARCHIVE_EOF ? noPreviewError(name) : zqDamagedError(name));
    return false;
}

// What is unpacked is counted, whatever the archive says of it.
QByteArray contentOfPreview(archive *reader, const QString &name, ZQError *error)
{
    constexpr qsizetype mostBytes = qsizetype(64) << 20;
    constexpr qsizetype blockBytes = 256 * 1024;
    QByteArray content;
    for (;;) {
        const qsizetype before = content.size();
        content.resize(before + blockBytes);
        const la_ssize_t got = archive_read_data(reader, content.data() + before, size_t(blockBytes));
        content.truncate(before + qMax<qsizetype>(got, 0));
        if (got < 0) {
            qCDebug(zqLogImaging, "%s: %s", qUtf8Printable(name), archive_error_string(reader));
            zqSetError(error, zqDamagedError(name));
            return {};
        }
        if (content.size() > mostBytes) {
            zqSetError(error, zqImagingError(ZQImagingErrorCode::TooBig, name,
                                             zqLocalized("Its preview is too large. Export it from Sketch as PNG, SVG "
                                                         "or PDF and import that.")));
            return {};
        }
        if (got == 0) {
            return content;
        }
    }
}

// A file of its own under the document's name; not open, with `error` filled, when there is none.
ZQSourceFile previewFile(const ZQSourceFile &document, ZQError *error)
{
    const ZQSourceFile::Bytes bytes(document);
    const Reader reader(archive_read_new(), archive_read_free);
    // The way from the end of the file skips what is not asked for without unpacking it.
    const bool isOpen = bytes.data() && reader &&
                        archive_read_support_format_zip_seekable(reader.get()) == ARCHIVE_OK &&
                        archive_read_open_memory(reader.get(), bytes.data(), bytes.size()) == ARCHIVE_OK;
    if (!isOpen) {
        zqSetError(error, zqDamagedError(document.name()));
        return {};
    }
    ZQError failure;
    const QByteArray content = findPreview(reader.get(), document.name(), &failure)
                                   ? contentOfPreview(reader.get(), document.name(), &failure)
                                   : QByteArray();
    if (!failure.isNull()) {
        zqSetError(error, failure);
        return {};
    }
    ZQSourceFile file = ZQSourceFile::ofBytes(content, document.name());
    // Nothing but what belongs there: documents in documents could go on for ever.
    if (zqImageFormatOfFile(file) != ZQImageFormat::PNG) {
        zqSetError(error, noPreviewError(document.name()));
        return {};
    }
    return file;
}

std::optional<ZQImageProperties> properties(const ZQSourceFile &document, ZQError *error)
{
    const ZQSourceFile file = previewFile(document, error);
    return file.isOpen() ? zqPNGDecoder.properties(file, error) : std::nullopt;
}

ZQBitmap decode(const ZQDecodeRequest &request, ZQError *error)
{
    if (request.frame > 0) {
        zqSetError(error, zqNoSuchFrameError(request.file.name(), request.frame));
        return {};
    }
    ZQDecodeRequest preview = request;
    preview.file = previewFile(request.file, error);
    return preview.file.isOpen() ? zqPNGDecoder.decode(preview, error) : ZQBitmap();
}

} // namespace

const ZQDecoder zqSketchDecoder{properties, decode};
