// A worker that a stranger's file has taken over: whatever it is asked, it says what the file tells it to, and ends.
// The file is a row of answers: a byte with `Flag`s, the size of what comes with it (two bytes, times 64), the size of
// the message (two bytes) and the message.

#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int socketDescriptor = 3;
enum Flag : uint8_t { BringsMemory = 1, SealsIt = 2, BringsTheFile = 4 };

alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))];
char script[1 << 16];

int fileOfRequest()
{
    static char request[1 << 16];
    iovec part{request, sizeof request};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    header.msg_control = control;
    header.msg_controllen = sizeof control;
    int file = -1;
    if (::recvmsg(socketDescriptor, &header, 0) > 0 && CMSG_FIRSTHDR(&header)) {
        std::memcpy(&file, CMSG_DATA(CMSG_FIRSTHDR(&header)), sizeof file);
    }
    return file;
}

int memoryOf(long size, bool isSealed)
{
    const int memory = ::memfd_create("answer", MFD_ALLOW_SEALING);
    if (::ftruncate(memory, size) == 0 && isSealed) {
        ::fcntl(memory, F_ADD_SEALS, F_SEAL_WRITE | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL);
    }
    return memory;
}

void say(const char *message, size_t size, int descriptor)
{
    iovec part{const_cast<char *>(message), size};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    if (descriptor >= 0) {
        header.msg_control = control;
        header.msg_controllen = sizeof control;
        cmsghdr *rights = CMSG_FIRSTHDR(&header);
        rights->cmsg_level = SOL_SOCKET;
        rights->cmsg_type = SCM_RIGHTS;
        rights->cmsg_len = CMSG_LEN(sizeof(int));
        std::memcpy(CMSG_DATA(rights), &descriptor, sizeof descriptor);
    }
    ::sendmsg(socketDescriptor, &header, MSG_NOSIGNAL);
}

size_t twoBytes(const char *at)
{
    return size_t(uint8_t(at[0])) + 256 * size_t(uint8_t(at[1]));
}

} // namespace

int main()
{
    const int file = fileOfRequest();
    const ssize_t got = ::pread(file, script, sizeof script, 0);
    for (ssize_t at = 0; at + 5 <= got;) {
        const auto flags = uint8_t(script[at]);
        const long memory = long(twoBytes(script + at + 1)) * 64;
        const auto said = ssize_t(twoBytes(script + at + 3));
        const ssize_t size = said < got - at - 5 ? said : got - at - 5;
        const int brought = flags & BringsMemory    ? memoryOf(memory, flags & SealsIt)
                            : flags & BringsTheFile ? file
                                                    : -1;
        say(script + at + 5, size_t(size), brought);
        at += 5 + size;
    }
    ::_exit(0);
}
