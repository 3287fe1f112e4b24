#include "Classes/Import/ImageFetch.h"

#include "Classes/Import/ImageAddress.h"
#include "Kit/Files/ZQNewFile.h"
#include "Kit/Network/ZQDataAddress.h"
#include "Kit/Network/ZQHTTPTask.h"
#include "Kit/Network/ZQTransferError.h"

#include <QHostInfo>

#include <unistd.h>

#include <algorithm>

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

bool writeWhole(const QByteArray &contents, const QString &path, ZQError *error)
{
    auto file = ZQNewFile::make(path, error);
    qint64 written = 0;
    while (file && written < contents.size()) {
        const ssize_t count =
            ::write(file->descriptor(), contents.constData() + written, std::size_t(contents.size() - written));
        if (count < 0 && errno != EINTR) {
            zqSetError(error, ZQError::posix(errno, path));
            return false;
        }
        written += std::max<ssize_t>(count, 0);
    }
    return file && file->place(error);
}

ZQHTTPResponse fromAddress(const QString &address, const QString &path)
{
    ZQHTTPResponse response;
    const auto data = ZQDataAddress::from(address, ImageFetch::mostBytesInAddress, &response.error);
    if (!data) {
        return response;
    }
    if (ZQError error; !writeWhole(data->contents, path, &error)) {
        response.error = ZQTransferError::cannotWrite(path, error);
        return response;
    }
    response.headers = {{"Content-Type", data->MIMEType.toLatin1()}};
    response.destination = path;
    response.size = data->contents.size();
    return response;
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
    addresses.removeIf([](const QHostAddress &each) { return each.isNull() || !zqIsPrivateAddress(each); });
    return addresses;
}

} // namespace

ImageFetch::ImageFetch(const QString &pageUrl, Asker asker, const Uses &uses)
    : m_pageUrl(pageUrl), m_pageReach(reachOfPage(pageUrl)),
      m_pageAddresses(asker == Asker::Person ? privateAddressesOf(QUrl(pageUrl).host(), uses) : QList<QHostAddress>())
{
}

ZQHTTPRequest ImageFetch::requestFor(const QUrl &url, const QString &path) const
{
    ZQHTTPRequest request{.url = url};
    request.headers = {{"Accept", "image/png,image/jpeg,image/*;q=0.9,*/*;q=0.5"}};
    if (const QByteArray referer = refererFor(url, m_pageUrl); !referer.isEmpty()) {
        request.headers.append({"Referer", referer});
    }
    request.destination = path;
    request.maximumSize = mostBytes;
    request.wholeTime = longestTime;
    request.acceptedTypes = acceptedTypes();
    request.mayGoTo = [reach = m_pageReach, own = m_pageAddresses](const QUrl &each) {
        const bool isAllowed = zqReachOfHostName(each.host()) <= reach || own.contains(QHostAddress(each.host()));
        return isAllowed ? ZQError() : ZQTransferError::notAllowed(each.host());
    };
    request.mayConnectTo = [reach = m_pageReach, own = m_pageAddresses](const QHostAddress &address) {
        return zqReachOfAddress(address) <= reach || own.contains(address);
    };
    return request;
}

ZQHTTPResponse ImageFetch::fetch(const QString &address, const QString &path)
{
    if (ZQDataAddress::isOne(address)) {
        return fromAddress(address, path);
    }
    return ZQHTTPTask::perform(requestFor(urlOfImage(address, m_pageUrl), path));
}
