#include "Tests/Fuzz/FuzzedFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzzDecoder(zqJPEGXLDecoder, data, size);
    return 0;
}
