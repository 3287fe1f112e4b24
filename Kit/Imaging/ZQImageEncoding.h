#pragma once

#include "Kit/Imaging/ZQImageExport.h"
#include "Kit/Imaging/ZQVips.h"

// Encoding for export, shared by the application and the worker. Writes into an open file, whatever it held. What the
// system refuses is an error of the domain "POSIX", the rest one of "zelto.imaging" that names no file. Private to the
// folders of imaging.

// Null, with the reason, when a picture of that size cannot be written as this type.
bool zqCheckEncoding(const ZQExportEncoding &encoding, QSize size, ZQError *error);
// Whether it can hold 16 bits a channel.
bool zqFileTypeKeepsDepth(int fileType);
// `image`: sRGB, 8 bits, or 16 where the type keeps them, with or without alpha; its rows may be computed on the way.
// As it is: the size asked for plays no part.
bool zqEncodeImage(VipsImage *image, const ZQExportEncoding &encoding, int output, ZQError *error);
// Scaled by the rule.
std::optional<ZQExportedImage> zqEncodeBitmap(const ZQBitmap &bitmap, const ZQExportEncoding &encoding, int output,
                                              ZQError *error);

// Scaled to the size, in the number of bits that it has.
bool zqScaleVips(ZQVipsImage &image, QSize size);

// One step of a pipeline: `image` replaced by what the operation makes of it.
template <class Operation, class... Arguments>
bool zqVipsStep(ZQVipsImage &image, Operation operation, Arguments... arguments)
{
    VipsImage *next = nullptr;
    const int failed = operation(image.get(), &next, arguments..., nullptr);
    image.reset(next);
    return failed == 0 && next;
}
