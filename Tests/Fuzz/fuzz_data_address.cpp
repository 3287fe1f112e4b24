#include "Kit/Network/ZQDataAddress.h"

#include <cstdint>
#include <cstdlib>

// An address that a page names: as much as was asked for at most, and a type that can be a header's.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    constexpr qint64 most = 4096;
    const QString address = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto read = ZQDataAddress::from(address, most);
    const bool isKnown = !read || ZQDataAddress::isOne(address);
    const bool isFit = !read || (read->contents.size() <= most && !read->MIMEType.isEmpty() &&
                                 read->MIMEType == read->MIMEType.toLower() && !read->MIMEType.contains(u';'));
    if (!isKnown || !isFit) {
        std::abort();
    }
    return 0;
}
