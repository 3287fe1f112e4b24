#include "Kit/Files/ZQPropertyList.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    ZQPropertyList::fromData(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)));
    return 0;
}
