#include "Kit/Imaging/Worker/ZQArchiveLoop.h"

#include "Kit/Imaging/Worker/ZQArchiveFile.h"
#include "Kit/Imaging/ZQRenderProtocol.h"

namespace {

ZQArchiveAnswer nextEntry(ZQArchiveFile &file)
{
    ZQArchiveAnswer out;
    const auto entry = file.nextEntry(&out.end);
    if (entry) {
        out.kind = ZQArchiveAnswer::Kind::Entry;
        out.entry = *entry;
    }
    return out;
}

ZQArchiveAnswer nextBlock(ZQArchiveFile &file, char *area)
{
    ZQArchiveAnswer out;
    const qint64 size = file.read(area, zqArchiveBlockBytes, &out.isLast, &out.end);
    if (size >= 0) {
        out.kind = ZQArchiveAnswer::Kind::Block;
        out.size = qint32(size);
    }
    return out;
}

} // namespace

void zqRunArchiveLoop(char *area, void (*interception)(const ZQArchiveQuestion &question, ZQArchiveAnswer &answer))
{
    std::unique_ptr<ZQArchiveFile> file;
    for (;;) {
        ZQRenderMessage message = zqReceiveMessage(ZQRenderDescriptor::socket);
        const std::optional<ZQArchiveQuestion> question = zqDecodeArchiveQuestion(message.bytes);
        const bool opens = question && question->kind == ZQArchiveQuestion::Kind::Open;
        if (!question || (!opens && !file)) {
            return;
        }
        ZQArchiveAnswer answer;
        if (opens) {
            file = std::make_unique<ZQArchiveFile>(std::move(message.descriptor));
            answer.kind = ZQArchiveAnswer::Kind::Opened;
        } else {
            answer = question->kind == ZQArchiveQuestion::Kind::Entry ? nextEntry(*file) : nextBlock(*file, area);
        }
        if (interception) {
            interception(*question, answer);
        }
        if (!zqSendMessage(ZQRenderDescriptor::socket, zqEncode(answer))) {
            return;
        }
    }
}
