#pragma once

#include <QString>
#include <QVariantMap>

// What went wrong, as a value that can cross threads and reach a person.
//
// Functions that can fail take a trailing `ZQError *error`, fill it when they fail and leave it alone otherwise; a null
// pointer is always allowed. `userInfo` holds the texts under the keys below and whatever else the domain documents.
struct ZQError
{
    QString domain;
    int code = 0;
    QVariantMap userInfo;

    static inline const QString descriptionKey = QStringLiteral("description");
    static inline const QString failureReasonKey = QStringLiteral("failureReason");
    static inline const QString posixDomain = QStringLiteral("POSIX");

    bool isNull() const { return domain.isEmpty() && code == 0; }

    // The text to show: the description with the failure reason after it, or domain and code when there is neither.
    QString localizedDescription() const;

    static ZQError with(const QString &domain, int code, const QString &description, const QString &failureReason = {});

    // An error of the POSIX domain whose description is `what` followed by the system's message for `errnoValue`.
    static ZQError posix(int errnoValue, const QString &what);
};

// Stores `value` where `error` points, when it points anywhere.
inline void zqSetError(ZQError *error, const ZQError &value)
{
    if (error) {
        *error = value;
    }
}
