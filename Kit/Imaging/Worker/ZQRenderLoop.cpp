#include "Kit/Imaging/Worker/ZQRenderLoop.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/Decoders/ZQChildProcess.h"
#include "Kit/Imaging/Decoders/ZQExporting.h"
#include "Kit/Imaging/Decoders/ZQImageDecoding.h"
#include "Kit/Imaging/Decoders/ZQPlanes.h"
#include "Kit/Imaging/Decoders/ZQThumbnailers.h"
#include "Kit/Imaging/Worker/ZQArchiveLoop.h"
#include "Kit/Imaging/Worker/ZQRenderSandbox.h"
#include "Kit/Imaging/ZQImagingLibraries.h"
#include "Kit/Imaging/ZQVips.h"

#include <QCoreApplication>
#include <QImageReader>

#include <glib.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

// GLib ends the process when memory is short; this says so in a way the other side understands.
void endWhenGLibFails(const gchar *, GLogLevelFlags level, const gchar *, gpointer)
{
    if (level & G_LOG_LEVEL_ERROR) {
        ::_exit(zqRenderExitOutOfMemory);
    }
}

// Bytes that nobody can change any more, in a file without a name, as `write` writes them.
template <class Write>
ZQFileDescriptor sealedFile(Write write)
{
    ZQFileDescriptor file(::memfd_create("picture", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    const bool made = file.isOpen() && write(file.get()) &&
                      ::fcntl(file.get(), F_ADD_SEALS, F_SEAL_WRITE | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) == 0;
    return made ? std::move(file) : ZQFileDescriptor();
}

bool writeRows(int descriptor, const ZQBitmap &bitmap)
{
    for (int y = 0; y < bitmap.height(); ++y) {
        const auto *row = reinterpret_cast<const char *>(bitmap.constScanLine(y));
        if (!zqWriteAll(descriptor, row, qint64(bitmap.width()) * 4)) {
            return false;
        }
    }
    return true;
}

class RenderLoop
{
public:
    RenderLoop(const ZQRenderLoopOptions &options, const QString &refusal)
        : m_options(options), m_refusal(refusal),
          m_area(static_cast<uchar *>(::mmap(nullptr, size_t(zqRenderAreaBytes), PROT_READ | PROT_WRITE, MAP_SHARED,
                                             ZQRenderDescriptor::area, 0)))
    {
    }

    char *area() const { return reinterpret_cast<char *>(m_area); }
    bool isReady() const { return m_area != MAP_FAILED; }

    void run()
    {
        for (;;) {
            ZQRenderMessage message = zqReceiveMessage(ZQRenderDescriptor::socket);
            const std::optional<ZQRenderRequest> request = zqDecodeRequestMessage(message.bytes);
            m_output = std::move(message.second);
            if (!request || !answer(*request, ZQSourceFile(std::move(message.descriptor), request->name))) {
                return;
            }
        }
    }

private:
    bool answer(const ZQRenderRequest &request, const ZQSourceFile &file)
    {
        m_properties.reset();
        if (!m_refusal.isEmpty()) {
            return sendError(zqImagingError(ZQImagingErrorCode::ToolFailed, request.name, m_refusal), false);
        }
        if (m_options.interception && m_options.interception(request, file)) {
            return true;
        }
        if (request.kind == ZQRenderRequest::Kind::Properties) {
            ZQError error;
            const std::optional<ZQImageProperties> properties = zqPropertiesOfFile(file, &error);
            if (!properties) {
                return sendError(error, false);
            }
            ZQRenderAnswer out;
            out.kind = ZQRenderAnswer::Kind::Properties;
            out.properties = *properties;
            return send(out);
        }
        if (request.kind == ZQRenderRequest::Kind::Export) {
            return sendExported(request, file);
        }
        if (request.kind == ZQRenderRequest::Kind::Planes) {
            return sendPlanes(request, file);
        }
        if (request.withProperties) {
            ZQError error; // the picture may be readable all the same
            m_properties = zqPropertiesOfFile(file, &error);
        }
        return request.kind == ZQRenderRequest::Kind::EmbeddedPicture ? sendEmbedded(file) : sendBitmap(request, file);
    }

    bool sendEmbedded(const ZQSourceFile &file)
    {
        ZQError error;
        const QByteArray bytes = zqAcornComposite(file, &error);
        if (bytes.isEmpty()) {
            return sendError(error, false);
        }
        const ZQFileDescriptor copy =
            sealedFile([&](int out) { return zqWriteAll(out, bytes.constData(), bytes.size()); });
        if (!copy.isOpen()) {
            ::_exit(zqRenderExitOutOfMemory);
        }
        ZQRenderAnswer out;
        out.kind = ZQRenderAnswer::Kind::BytesInFile;
        return send(out, copy.get());
    }

    bool sendExported(const ZQRenderRequest &request, const ZQSourceFile &file)
    {
        ZQError error;
        const auto exported = zqExportFile(file, request.encoding, m_output.get(), &error);
        m_output = ZQFileDescriptor(); // whoever made it may expect that nobody else writes to it
        ZQRenderAnswer out;
        if (exported) {
            out.kind = ZQRenderAnswer::Kind::Exported;
            out.size = exported->pixelSize;
            out.isIncomplete = exported->isIncomplete;
            out.isFirstOfSeveral = exported->isFirstOfSeveral;
            out.isReduced = exported->isReduced;
            return send(out);
        }
        if (error.domain == ZQError::posixDomain) {
            out.kind = ZQRenderAnswer::Kind::CannotWrite;
            out.systemError = error.code;
            return send(out);
        }
        return sendError(error, false);
    }

    bool sendPlanes(const ZQRenderRequest &request, const ZQSourceFile &file)
    {
        ZQError error;
        const std::optional<ZQPlanes> planes = zqPlanesOfFile(file, request.window, &error);
        if (!planes) {
            if (zqTakeVipsMemoryShortage()) {
                error.code = int(ZQImagingErrorCode::TooMuchMemory);
            }
            return sendError(error, false);
        }
        const ZQFileDescriptor packed = sealedFile([&planes](int memory) { return planes->write(memory); });
        if (!packed.isOpen()) {
            ::_exit(zqRenderExitOutOfMemory);
        }
        ZQRenderAnswer out;
        out.kind = ZQRenderAnswer::Kind::PlanesInFile;
        out.size = planes->size();
        out.isIncomplete = planes->isIncomplete();
        return send(out, packed.get());
    }

    static ZQBitmap draw(const ZQRenderRequest &request, const ZQSourceFile &file, ZQError *error)
    {
        using Kind = ZQRenderRequest::Kind;
        switch (request.kind) {
        case Kind::Preview:
            return zqPreviewOfFile(file, request.box, request.frame, error);
        case Kind::Thumbnailer:
            return zqThumbnailerPreview(request.name, request.box);
        case Kind::Bitmap:
        case Kind::Properties:
        case Kind::EmbeddedPicture:
        case Kind::Export:
        case Kind::Planes:
            break;
        }
        return zqDecodeFile({file, request.box, request.frame, false, zqPaperOfName(request.name)}, error);
    }

    bool sendBitmap(const ZQRenderRequest &request, const ZQSourceFile &file)
    {
        ZQError error;
        ZQBitmap bitmap = draw(request, file, &error);
        if (request.box.isValid()) {
            bitmap = bitmap.scaledToFit(request.box);
        }
        if (zqTakeVipsMemoryShortage() && bitmap.isNull()) {
            error.code = int(ZQImagingErrorCode::TooMuchMemory);
        }
        if (bitmap.isNull()) {
            const bool isUnknown = error.code == int(ZQImagingErrorCode::UnknownFormat);
            const bool hasThumbnailer =
                isUnknown && request.kind == ZQRenderRequest::Kind::Preview && zqHasThumbnailer(file);
            if (hasThumbnailer && !zqMayRunDrawingPrograms()) {
                return sendError(zqNoDrawingProgramsError(request.name), false);
            }
            return sendError(error, hasThumbnailer);
        }
        ZQRenderAnswer out;
        out.size = bitmap.size();
        out.isIncomplete = bitmap.isIncomplete();
        const qsizetype rowBytes = qsizetype(bitmap.width()) * 4;
        if (rowBytes * bitmap.height() <= zqRenderAreaBytes) {
            for (int y = 0; y < bitmap.height(); ++y) {
                std::memcpy(m_area + rowBytes * y, bitmap.constScanLine(y), size_t(rowBytes));
            }
            out.kind = ZQRenderAnswer::Kind::PixelsInArea;
            return send(out);
        }
        const ZQFileDescriptor pixels = sealedFile([&](int memory) { return writeRows(memory, bitmap); });
        if (!pixels.isOpen()) {
            ::_exit(zqRenderExitOutOfMemory);
        }
        out.kind = ZQRenderAnswer::Kind::PixelsInFile;
        return send(out, pixels.get());
    }

    bool sendError(const ZQError &error, bool hasThumbnailer) const
    {
        ZQRenderAnswer out;
        out.code = error.code > 0 ? ZQImagingErrorCode(error.code) : ZQImagingErrorCode::Damaged;
        out.reason = error.userInfo.value(ZQError::failureReasonKey).toString();
        out.hasThumbnailer = hasThumbnailer;
        return send(out);
    }

    bool send(ZQRenderAnswer answer, int descriptor = -1) const
    {
        if (m_properties) {
            answer.hasProperties = true;
            answer.properties = *m_properties;
        }
        return zqSendMessage(ZQRenderDescriptor::socket, zqEncode(answer), descriptor);
    }

    const ZQRenderLoopOptions m_options;
    const QString m_refusal; // empty: files are read
    uchar *m_area;
    ZQFileDescriptor m_output;                     // of the request at hand, when it exports
    std::optional<ZQImageProperties> m_properties; // that come with the answer at hand
};

} // namespace

int zqRunRenderLoop(int argc, char *argv[], const ZQRenderLoopOptions &options)
{
    if (argc != 5) {
        return EXIT_FAILURE;
    }
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != std::atoi(argv[2])) {
        return EXIT_FAILURE; // the other side ended before it could take this one along
    }
    std::signal(SIGTTOU, SIG_IGN); // a log line is no reason to stop
    std::signal(SIGXFSZ, SIG_IGN); // a file that gets too large fails to be written, which can be said
    const bool forThumbnailer = std::strcmp(argv[4], "thumbnailer") == 0;
    const bool forArchives = std::strcmp(argv[4], "archives") == 0;
    const ZQRenderRestrictions restrictions =
        zqEnterRenderSandbox({.folder = forArchives ? nullptr : argv[1],
                              .memory = std::atoll(argv[3]),
                              .thumbnailed = forThumbnailer ? ZQRenderDescriptor::thumbnailed : -1,
                              .useFileRules = options.useFileRules,
                              .useCallRules = options.useCallRules});
    if (!restrictions.areWhole()) {
        zqForbidDrawingPrograms();
        qputenv("VIPS_DISC_THRESHOLD", "1t"); // large pictures stay in memory: no file can be written
    }
    QCoreApplication::setApplicationName(QStringLiteral("Zelto"));
    const QCoreApplication application(argc, argv);
    if (!forArchives) {
        zqInitializeImagingLibraries("zelto-render");
        QImageReader::setAllocationLimit(2048); // megabytes: a picture of the most pixels there may be
    }
    g_log_set_handler("GLib", GLogLevelFlags(G_LOG_LEVEL_ERROR | G_LOG_FLAG_FATAL | G_LOG_FLAG_RECURSION),
                      endWhenGLibFails, nullptr);
    ZQRenderAnswer hello;
    hello.kind = ZQRenderAnswer::Kind::Hello;
    hello.restrictsFiles = restrictions.files;
    hello.restrictsCalls = restrictions.calls;
    const QString refusal =
        restrictions.files || restrictions.calls
            ? QString()
            : zqLocalized("This system has neither Landlock nor seccomp to keep what reads it from your files. Use a "
                          "Linux kernel that has them.");
    RenderLoop loop(options, refusal);
    if (!loop.isReady() || !zqSendMessage(ZQRenderDescriptor::socket, zqEncode(hello))) {
        return EXIT_FAILURE;
    }
    try {
        forArchives ? zqRunArchiveLoop(loop.area(), refusal, options.archiveInterception) : loop.run();
    } catch (const std::bad_alloc &) {
        ::_exit(zqRenderExitOutOfMemory);
    }
    ::_exit(EXIT_SUCCESS); // nothing is worth tidying up for
}
