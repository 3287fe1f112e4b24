#pragma once

#include "Kit/Imaging/Decoders/ZQSourceFile.h"
#include "Kit/Imaging/ZQRenderProtocol.h"

// What a worker does instead of decoding, for programs that test what its crash costs. Answers whether it did.
using ZQRenderInterception = bool (*)(const ZQRenderRequest &request, const ZQSourceFile &file);

// The whole life of a worker process: gives up what it does not need, then answers requests on the socket it was born
// with until the other side closes it. `argv` is what ZQRenderProcess passes: the folder it may write in, the process
// that started it, the memory it may take, and "files" or "thumbnailer".
int zqRunRenderLoop(int argc, char *argv[], ZQRenderInterception interception = nullptr);
