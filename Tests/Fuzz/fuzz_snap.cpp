#include "Kit/Files/ZQSnapInfo.h"

#include <QDir>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString package = QStringLiteral("/nowhere/a.snap");
    const auto info = ZQSnapInfo::fromData(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)));
    if (info && info->isPictureInside(package)) {
        const QString picture = QDir::cleanPath(package + u'/' + info->picture);
        if (picture != package && !picture.startsWith(package + u'/')) {
            std::abort();
        }
    }
    return 0;
}
