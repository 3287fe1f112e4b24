#include "Kit/Network/ZQDataAddress.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Network/ZQTransferError.h"

#include <QStringList>

namespace {
constexpr qsizetype longestHead = 1024;
}

bool ZQDataAddress::isOne(const QString &address)
{
    return address.trimmed().startsWith(u"data:", Qt::CaseInsensitive);
}

std::optional<ZQDataAddress> ZQDataAddress::from(const QString &address, qint64 maximumSize, ZQError *error)
{
    const QString text = address.trimmed();
    const qsizetype comma = text.left(longestHead).indexOf(u',');
    if (!isOne(text) || comma < 0) {
        zqSetError(error, zqNetworkError(ZQNetworkErrorCode::BadAddress,
                                         zqLocalized("The address says that it holds a picture and does not.")));
        return std::nullopt;
    }
    if ((text.size() - comma) / 4 > maximumSize) { // three of them can stand for a byte, four for three
        zqSetError(error, ZQTransferError::tooLarge(maximumSize));
        return std::nullopt;
    }
    const QStringList head = text.mid(5, comma - 5).toLower().split(u';');
    const QByteArray raw = QByteArray::fromPercentEncoding(QStringView(text).mid(comma + 1).toUtf8());
    ZQDataAddress result{.MIMEType =
                             head.first().trimmed().isEmpty() ? QStringLiteral("text/plain") : head.first().trimmed(),
                         .contents = raw};
    if (head.last().trimmed() == u"base64") {
        QByteArray packed = raw.simplified().replace(' ', "");
        packed.replace('-', '+').replace('_', '/');
        auto decoded = QByteArray::fromBase64Encoding(packed, QByteArray::AbortOnBase64DecodingErrors);
        if (!decoded) {
            zqSetError(error, zqNetworkError(ZQNetworkErrorCode::BadAddress,
                                             zqLocalized("The picture in the address is damaged.")));
            return std::nullopt;
        }
        result.contents = std::move(decoded.decoded);
    }
    if (result.contents.size() > maximumSize) {
        zqSetError(error, ZQTransferError::tooLarge(maximumSize));
        return std::nullopt;
    }
    return result;
}
