#include "Kit/Files/ZQKeyedArchive.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (const auto value =
            ZQKeyedArchive::fromData(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)))) {
        ZQKeyedArchive::toData(*value);
    }
    return 0;
}
