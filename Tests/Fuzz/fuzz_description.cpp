#include "Classes/Sharing/UploadDescription.h"

#include <cstdint>
#include <cstdlib>

// A description, and after a NUL what a server answers to it.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), qsizetype(size));
    const qsizetype end = input.indexOf('\0');
    const auto description = UploadDescription::from(input.left(end < 0 ? input.size() : end));
    if (!description) {
        return 0;
    }
    const bool isSafe = description->url.scheme() == u"https" || description->url.scheme() == u"http";
    if (!isSafe || description->url.host().isEmpty() || description->name.isEmpty() ||
        description->name.contains(u'\n')) {
        std::abort();
    }
    for (const auto &[name, value] : description->headers) {
        const QString sent = UploadDescription::filledIn(value, {});
        if (sent.contains(u'\r') || sent.contains(u'\n') || sent.contains(u'{')) {
            std::abort();
        }
    }
    ZQHTTPResponse response;
    response.statusCode = 200;
    response.url = description->url;
    response.body = end < 0 ? QByteArray() : input.mid(end + 1);
    response.headers = {{"Location", response.body.left(200)}};
    const QString link = description->linkIn(response);
    if (!link.isEmpty() && !link.startsWith(u"http")) {
        std::abort();
    }
    return 0;
}
