#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Kit/Foundation/ZQError.h"
#include "Kit/Network/ZQHTTPRequest.h"
#include "Kit/Network/ZQPrivateAddress.h"

#include <QHostAddress>
#include <QList>
#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>

// Fetches the images of one page into files, one at a time. The page is a stranger's: only http, https and data:
// addresses, no servers of this machine or its network but for a page that lives there itself, no more than so many
// bytes, and nothing that says that it is something else than a picture. One thread.
//
// That a page lives there its address has to say by itself. What its name resolves to is the page's own word, which it
// may change from one moment to the next: only when a person named the page are those servers reached, too, that its
// name led to at the beginning.
class ImageFetch
{
public:
    using Asker = ImageDownloadRequest::Asker;
    struct Uses
    {
        // How much of the running one is there, from 0 to 1, of those whose server says how large it is. On the
        // network's thread, never after `fetch` has answered; it must be short.
        std::function<void(double part)> didReceive = {};
        std::function<QList<QHostAddress>(const QString &host)> lookUp = {}; // empty: asks the system, and waits
        std::function<qint64(const QString &folder)> freeBytes = {};         // empty: asks the system
        qint64 mostBytesTogether = qint64(2) << 30;                          // that a page may have come, kept or not
    };

    ImageFetch(const QString &pageUrl, Asker asker, const Uses &uses);

    // `path`: the file to make. The answer has the content type that the server, or the address, states.
    // A cancel of this thread's work ends the running request.
    ZQHTTPResponse fetch(const QString &address, const QString &path);

    static constexpr qint64 mostBytes = qint64(512) << 20;
    static constexpr qint64 mostBytesInAddress = qint64(64) << 20;
    static constexpr qint64 leastFree = qint64(256) << 20; // of the file system, which others need, too
    static constexpr std::chrono::minutes longestTime{30}; // of one; a server that trickles must not hold up the rest

private:
    ZQHTTPRequest requestFor(const QUrl &url, const QString &path, qint64 room) const;
    qint64 freeBytesFor(const QString &path) const;

    const Uses m_uses;
    const QString m_pageUrl;
    const ZQAddressReach m_pageReach;          // what the page's name says
    const QList<QHostAddress> m_pageAddresses; // of a person's page, as far as they are not for everybody
    qint64 m_bytesLeft;
};
