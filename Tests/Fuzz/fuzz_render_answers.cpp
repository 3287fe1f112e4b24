// What the application makes of the answers, the pixels and the descriptors of a worker that has been taken over.

#include "Kit/Imaging/ZQRenderProcess.h"
#include "Tests/Fuzz/FuzzedFolder.h"

#include <QFileInfo>

#include <fcntl.h>

namespace {

using Kind = ZQRenderRequest::Kind;

void check(bool isTrue)
{
    if (!isTrue) {
        std::abort();
    }
}

void checkReply(const ZQRenderRequest &request, const ZQRenderProcess::Reply &reply)
{
    if (reply.outcome != ZQRenderProcess::Outcome::Answered || reply.answer.kind == ZQRenderAnswer::Kind::Error) {
        check(reply.bitmap.isNull() && reply.bytes.isEmpty());
        return;
    }
    const bool wantsPixels =
        request.kind != Kind::Properties && request.kind != Kind::EmbeddedPicture && request.kind != Kind::Export;
    check(wantsPixels != reply.bitmap.isNull());
    check((request.kind == Kind::EmbeddedPicture) != reply.bytes.isEmpty());
    if (wantsPixels && request.box.isValid()) {
        check(reply.bitmap.width() <= request.box.width() && reply.bitmap.height() <= request.box.height());
    }
    // Every pixel is there to be read.
    unsigned sum = 0;
    for (int y = 0; y < reply.bitmap.height(); ++y) {
        for (int x = 0; x < reply.bitmap.width() * 4; ++x) {
            sum += reply.bitmap.constScanLine(y)[x];
        }
    }
    check(sum <= 255U * 4U * unsigned(reply.bitmap.width()) * unsigned(reply.bitmap.height()));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    const QString worker =
        QFileInfo(QStringLiteral("/proc/self/exe")).canonicalPath() + QStringLiteral("/hostile_worker");
    check(QFileInfo(worker).isExecutable());
    qputenv("ZELTO_RENDER", QFile::encodeName(worker));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace std::chrono_literals;
    FuzzedInput input(data, size);
    ZQRenderRequest request;
    request.kind = Kind(input.byte() % (int(Kind::Export) + 1));
    request.box = input.byte() % 2 ? QSize(64, 64) : QSize();
    const QString path = fuzzedFolder().filePath(QStringLiteral("answers"));
    const QByteArray answers = input.rest();
    fuzzedWrite(path, answers.constData(), answers.size());
    const ZQFileDescriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC));
    QString failure;
    const auto process = ZQRenderProcess::start({}, -1, &failure);
    check(process && process->send(request, file.get()));
    checkReply(request, process->receive(request, 10s));
    return 0;
}
