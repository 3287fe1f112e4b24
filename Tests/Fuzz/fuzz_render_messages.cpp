// The messages between the application and the programs that draw, both ways, over a socket as they come.

#include "Kit/Imaging/ZQRenderProtocol.h"

#include <array>
#include <cstdlib>
#include <sys/socket.h>

namespace {

struct Sockets
{
    Sockets()
    {
        std::array<int, 2> both{};
        if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, both.data()) != 0) {
            std::abort();
        }
        here = ZQFileDescriptor(both[0]);
        there = ZQFileDescriptor(both[1]);
    }
    ZQFileDescriptor here;
    ZQFileDescriptor there;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const Sockets sockets;
    const QByteArray sent(reinterpret_cast<const char *>(data), qsizetype(size));
    if (!zqSendMessage(sockets.there.get(), sent, size % 2 ? sockets.there.get() : -1)) {
        return -1;
    }
    const ZQRenderMessage message = zqReceiveMessage(sockets.here.get());
    if (message.bytes != (sent.size() <= zqRenderMaximumMessage ? sent : QByteArray())) {
        std::abort();
    }
    // What is believed once is believed again when it is handed on.
    const auto answer = zqDecodeAnswerMessage(message.bytes);
    const auto request = zqDecodeRequestMessage(message.bytes);
    if ((answer && !zqDecodeAnswerMessage(zqEncode(*answer))) ||
        (request && !zqDecodeRequestMessage(zqEncode(*request)))) {
        std::abort();
    }
    if (answer && answer->kind == ZQRenderAnswer::Kind::PixelsInArea &&
        qsizetype(answer->size.width()) * answer->size.height() * 4 > zqRenderAreaBytes) {
        std::abort();
    }
    return 0;
}
