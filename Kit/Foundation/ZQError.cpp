#include "Kit/Foundation/ZQError.h"

#include <cstring>

QString ZQError::localizedDescription() const
{
    const QString description = userInfo.value(descriptionKey).toString();
    const QString reason = userInfo.value(failureReasonKey).toString();
    if (description.isEmpty() && reason.isEmpty()) {
        return QStringLiteral("%1 %2").arg(domain).arg(code);
    }
    return reason.isEmpty() ? description : (description.isEmpty() ? reason : description + u' ' + reason);
}

ZQError ZQError::with(const QString &domain, int code, const QString &description, const QString &failureReason)
{
    ZQError error{domain, code, {}};
    error.userInfo.insert(descriptionKey, description);
    if (!failureReason.isEmpty()) {
        error.userInfo.insert(failureReasonKey, failureReason);
    }
    return error;
}

ZQError ZQError::posix(int errnoValue, const QString &what)
{
    return with(posixDomain, errnoValue,
                what + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(errnoValue)));
}
