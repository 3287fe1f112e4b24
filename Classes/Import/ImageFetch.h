#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Network/ZQHTTPRequest.h"
#include "Kit/Network/ZQPrivateAddress.h"

#include <QString>
#include <QUrl>

#include <chrono>

// Fetches the images of one page into files, one at a time. The page is a stranger's: only http, https and data:
// addresses, no servers of this machine or its network but for a page that lives there itself, no more than so many
// bytes, and nothing that says that it is something else than a picture. One thread.
class ImageFetch
{
public:
    explicit ImageFetch(const QString &pageUrl);

    // `path`: the file to make. The answer has the content type that the server, or the address, states.
    // A cancel of this thread's work ends the running request.
    ZQHTTPResponse fetch(const QString &address, const QString &path);

    static constexpr qint64 mostBytes = qint64(512) << 20;
    static constexpr qint64 mostBytesInAddress = qint64(64) << 20;
    static constexpr std::chrono::minutes longestTime{30}; // of one; a server that trickles must not hold up the rest

private:
    ZQHTTPRequest requestFor(const QUrl &url, const QString &path) const;
    bool isPageElsewhereAfterAll();

    const QString m_pageUrl;
    ZQAddressReach m_pageReach; // what the page's name says, and later what it resolves to
    bool m_isPageResolved = false;
};
