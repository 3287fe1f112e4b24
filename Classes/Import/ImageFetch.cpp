#include "Classes/Import/ImageFetch.h"

#include "Classes/Import/ImageAddress.h"
#include "Kit/Files/ZQNewFile.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Network/ZQDataAddress.h"
#include "Kit/Network/ZQHTTPTask.h"
#include "Kit/Network/ZQTransferError.h"

#include <QFileInfo>
#include <QHostInfo>
#include <QLocale>
#include <QStorageInfo>

#include <algorithm>
#include <limits>

namespace {

// Servers that do not know a design file call it plain bytes, and vector drawings text. An empty one: none is stated.
QStringList acceptedTypes()
{
    return {QStringLiteral("image/*"),
            QStringLiteral("application/pdf"),
            QStringLiteral("application/postscript"),
            QStringLiteral("application/illustrator"),
            QStringLiteral("application/photoshop"),
            QStringLiteral("application/x-photoshop"),
            QStringLiteral("application/zip"),
            QStringLiteral("application/x-zip-compressed"),
            QStringLiteral("application/octet-stream"),
            QStringLiteral("binary/octet-stream"),
            QStringLiteral("application/xml"),
            QStringLiteral("text/xml"),
            QStringLiteral("text/plain"),
            QString()};
}

ZQHTTPResponse fromAddress(const QString &address, const QString &path, qint64 room)
{
    ZQHTTPResponse response;
    const auto data = ZQDataAddress::from(address, room, &response.error);
    if (!data) {
        return response;
    }
    if (ZQError error; !zqWriteNewFile(path, data->contents, &error)) {
        response.error = ZQTransferError::cannotWrite(path, error);
        return response;
    }
    response.headers = {{"Content-Type", data->MIMEType.toLatin1()}};
    response.destination = path;
    response.size = data->contents.size();
    return response;
}

ZQError tooMuchTogether(qint64 most)
{
    const QString size = QLocale().formattedDataSize(most, 1, QLocale::DataSizeTraditionalFormat);
    return zqNetworkError(
        ZQNetworkErrorCode::TooLarge,
        zqFormat(zqLocalized("The images that a page has imported at once may have %@ together."), {size}),
        zqLocalized("Choose fewer at once."));
}

ZQError noFreeSpace(const QString &path)
{
    return zqNetworkError(ZQNetworkErrorCode::CannotWrite,
                          zqFormat(zqLocalized("There is too little free space in “%@”."), {QFileInfo(path).path()}),
                          zqLocalized("Remove what is not needed there, then try again."));
}

ZQAddressReach reachOfPage(const QString &pageUrl)
{
    const QString host = QUrl(pageUrl).host();
    return host.isEmpty() ? ZQAddressReach::Everybody : zqReachOfHostName(host);
}

// Only a name can lead elsewhere than it says.
QList<QHostAddress> privateAddressesOf(const QString &host, const ImageFetch::Uses &uses)
{
    if (host.isEmpty() || !QHostAddress(host).isNull() || zqIsPrivateHostName(host)) {
        return {};
    }
    QList<QHostAddress> addresses = uses.lookUp ? uses.lookUp(host) : QHostInfo::fromName(host).addresses();
    addresses.removeIf(
        [](const QHostAddress &each) { return each.isNull() || zqReachOfAddress(each) == ZQAddressReach::Everybody; });
    return addresses;
}

} // namespace

ImageFetch::ImageFetch(const QString &pageUrl, Asker asker, const Uses &uses)
    : m_uses(uses), m_pageUrl(pageUrl), m_pageReach(reachOfPage(pageUrl)),
      m_pageAddresses(asker == Asker::Person ? privateAddressesOf(QUrl(pageUrl).host(), uses) : QList<QHostAddress>()),
      m_bytesLeft(asker == Asker::Person ? std::numeric_limits<qint64>::max() : uses.mostBytesTogether)
{
}

ZQHTTPRequest ImageFetch::requestFor(const QUrl &url, const QString &path, qint64 room) const
{
    ZQHTTPRequest request{.url = url};
    request.headers = {{"Accept", "image/png,image/jpeg,image/*;q=0.9,*/*;q=0.5"}};
    if (const QByteArray referer = refererFor(url, m_pageUrl); !referer.isEmpty()) {
        request.headers.append({"Referer", referer});
    }
    request.destination = path;
    request.maximumSize = room;
    request.wholeTime = longestTime;
    request.acceptedTypes = acceptedTypes();
    request.mayGoTo = [reach = m_pageReach, own = m_pageAddresses](const QUrl &each) {
        const bool isAllowed = zqReachOfHostName(each.host()) <= reach || own.contains(QHostAddress(each.host()));
        return isAllowed ? ZQError() : ZQTransferError::notAllowed(each.host());
    };
    request.mayConnectTo = [reach = m_pageReach, own = m_pageAddresses](const QHostAddress &address) {
        return zqReachOfAddress(address) <= reach || own.contains(address);
    };
    if (m_uses.didReceive) {
        request.didReceiveBytes = [didReceive = m_uses.didReceive](qint64 received, qint64 expected) {
            if (expected > 0) {
                didReceive(double(received) / double(expected));
            }
        };
    }
    return request;
}

qint64 ImageFetch::freeBytesFor(const QString &path) const
{
    const QString folder = QFileInfo(path).path();
    if (m_uses.freeBytes) {
        return m_uses.freeBytes(folder);
    }
    const QStorageInfo storage(folder);
    return storage.isValid() ? storage.bytesAvailable() : std::numeric_limits<qint64>::max();
}

ZQHTTPResponse ImageFetch::fetch(const QString &address, const QString &path)
{
    const qint64 freeRoom = freeBytesFor(path) - leastFree;
    const bool isInAddress = ZQDataAddress::isOne(address);
    const qint64 most = isInAddress ? mostBytesInAddress : mostBytes;
    const qint64 room = std::min({most, m_bytesLeft, freeRoom});
    const ZQError outOfRoom = m_bytesLeft <= freeRoom ? tooMuchTogether(m_uses.mostBytesTogether) : noFreeSpace(path);
    ZQHTTPResponse response;
    if (room <= 0) {
        response.error = outOfRoom;
        return response;
    }
    response = isInAddress ? fromAddress(address, path, room)
                           : ZQHTTPTask::perform(requestFor(urlOfImage(address, m_pageUrl), path, room));
    m_bytesLeft -= response.size; // also of what is not kept: its disk was written to
    if (room < most && zqIsNetworkError(response.error, ZQNetworkErrorCode::TooLarge)) {
        response.error = outOfRoom;
    }
    return response;
}
