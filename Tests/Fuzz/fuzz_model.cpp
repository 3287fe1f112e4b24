#include "Kit/Persistence/ZQModelReader.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    ZQModelReader reader;
    if (!reader.read(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size))) && reader.problem().isEmpty()) {
        std::abort(); // refused without a reason
    }
    return 0;
}
