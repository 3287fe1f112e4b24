#pragma once

#include "Kit/Imaging/Decoders/ZQImageDecoding.h"

#include <cstdint>
#include <cstdlib>
#include <sys/mman.h>

// Runs both functions of a decoder over bytes in memory.
inline void fuzzDecoder(const ZQDecoder &decoder, const uint8_t *data, size_t size)
{
    // Larger pictures are as interesting, but slow.
    constexpr qint64 mostPixels = qint64(1) << 22;
    ZQFileDescriptor descriptor(::memfd_create("fuzzed", MFD_CLOEXEC));
    if (!descriptor.isOpen() || !zqWriteAll(descriptor.get(), reinterpret_cast<const char *>(data), qint64(size))) {
        std::abort();
    }
    const ZQSourceFile file(std::move(descriptor), QStringLiteral("fuzzed"));
    ZQError error;
    const std::optional<ZQImageProperties> properties = decoder.properties(file, &error);
    if (properties.has_value() == !error.isNull()) {
        std::abort(); // neither an answer nor a reason
    }
    if (properties && qint64(properties->pixelWidth) * properties->pixelHeight <= mostPixels) {
        decoder.decode({file, QSize(64, 64)}, nullptr);
        decoder.decode({file, QSize()}, nullptr);
    }
}
