#include "Kit/Network/ZQHTTPChallenge.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

// What a server asks for before it lets somebody in: the answer has to stay one header.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    auto challenge = ZQHTTPChallenge::strongestIn(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)));
    if (!challenge) {
        return 0;
    }
    const QByteArray answer =
        challenge->answer(QStringLiteral("me"), QStringLiteral("secret"), "POST", "/a?b", "nonce");
    const bool breaks =
        std::any_of(answer.begin(), answer.end(), [](char each) { return uchar(each) < 0x20 || each == 0x7f; });
    const bool isOne =
        challenge->isDigest() ? answer.startsWith("Digest username=\"me\", realm=\"") : answer == "Basic bWU6c2VjcmV0";
    if (breaks || !isOne) {
        std::abort();
    }
    return 0;
}
