#include "Models/DataModel/ZQAcornDocument.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QTemporaryDir folder(QStringLiteral("/dev/shm/zelto-fuzz-XXXXXX"));
    QFile file(folder.filePath(QStringLiteral("fuzzed.acorn")));
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(reinterpret_cast<const char *>(data), qint64(size)) != qint64(size)) {
        std::abort();
    }
    file.close();
    zqAcornCompositeData(file.fileName());
    return 0;
}
