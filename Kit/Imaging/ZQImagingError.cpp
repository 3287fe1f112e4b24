#include "Kit/Imaging/ZQImagingError.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QFileInfo>

ZQError zqImagingError(ZQImagingErrorCode code, const QString &path, const QString &reason)
{
    const QString description =
        zqFormat(zqLocalized("The picture \"%@\" can't be opened."), {QFileInfo(path).fileName()});
    return ZQError::with(QStringLiteral("zelto.imaging"), int(code), description, reason);
}

ZQError zqExportError(ZQImagingErrorCode code, const QString &path, const QString &reason)
{
    const QString description =
        zqFormat(zqLocalized("The picture \"%@\" can't be converted."), {QFileInfo(path).fileName()});
    return ZQError::with(QStringLiteral("zelto.imaging"), int(code), description, reason);
}
