#pragma once

#include "Kit/Imaging/Decoders/ZQSourceFile.h"
#include "Kit/Imaging/ZQArchiveProtocol.h"
#include "Kit/Imaging/ZQRenderProtocol.h"

// For programs that test what a worker's faults cost, and what it does on other systems.
struct ZQRenderLoopOptions
{
    // Asked before decoding; answers whether it did something instead.
    bool (*interception)(const ZQRenderRequest &request, const ZQSourceFile &file) = nullptr;
    // Asked before an answer about an archive is sent, which it may change.
    void (*archiveInterception)(const ZQArchiveQuestion &question, ZQArchiveAnswer &answer) = nullptr;
    bool useFileRules = true; // false: as where the system has none
};

// The whole life of a worker process: gives up what it does not need, then answers requests on the socket it was born
// with until the other side closes it. `argv` is what ZQRenderProcess passes: the folder it may write in, the process
// that started it, the memory it may take, and "files", "thumbnailer" or "archives".
//
// A worker that could not give up everything starts no other program, and says why where that costs a picture.
int zqRunRenderLoop(int argc, char *argv[], const ZQRenderLoopOptions &options = {});
