#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QString>

#include <optional>

// What stands in an address itself, as "data:image/png;base64,…". Any thread.
struct ZQDataAddress
{
    QString MIMEType; // in lower case, without parameters; "text/plain" where none is stated
    QByteArray contents;

    static bool isOne(const QString &address);
    // Nothing, with an error of the domain of networks, for what cannot be read, and for more than `maximumSize` bytes.
    static std::optional<ZQDataAddress> from(const QString &address, qint64 maximumSize, ZQError *error = nullptr);
};
