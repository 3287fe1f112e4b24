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

} // namespace

ImageFetch::ImageFetch(const QString &pageUrl)
    : m_pageUrl(pageUrl),
      m_pageReach(QUrl(pageUrl).host().isEmpty() ? ZQAddressReach::Everybody : zqReachOfHostName(QUrl(pageUrl).host()))
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
    request.mayGoTo = [reach = m_pageReach](const QUrl &each) {
        return zqReachOfHostName(each.host()) <= reach ? ZQError() : ZQTransferError::notAllowed(each.host());
    };
    request.mayConnectTo = [reach = m_pageReach](const QHostAddress &address) {
        return zqReachOfAddress(address) <= reach;
    };
    return request;
}

// A page may live in this network under a name that does not say so. Looked up only when that makes a difference.
bool ImageFetch::isPageElsewhereAfterAll()
{
    const QString host = QUrl(m_pageUrl).host();
    const bool isName = !host.isEmpty() && QHostAddress(host).isNull();
    if (m_isPageResolved || !isName || m_pageReach != ZQAddressReach::Everybody) {
        return false;
    }
    m_isPageResolved = true;
    const QList<QHostAddress> addresses = QHostInfo::fromName(host).addresses();
    for (const QHostAddress &address : addresses) {
        m_pageReach = std::max(m_pageReach, zqReachOfAddress(address));
    }
    return m_pageReach != ZQAddressReach::Everybody;
}

ZQHTTPResponse ImageFetch::fetch(const QString &address, const QString &path)
{
    if (ZQDataAddress::isOne(address)) {
        return fromAddress(address, path);
    }
    const QUrl url = urlOfImage(address, m_pageUrl);
    const ZQHTTPResponse response = ZQHTTPTask::perform(requestFor(url, path));
    if (zqIsNetworkError(response.error, ZQNetworkErrorCode::NotAllowed) && isPageElsewhereAfterAll()) {
        return ZQHTTPTask::perform(requestFor(url, path));
    }
    return response;
}
