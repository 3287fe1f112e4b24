#pragma once

#include "Classes/Sharing/CloudAdapter.h"
#include "Classes/Sharing/ServiceRequests.h"

#include <QByteArray>
#include <QUrl>

#include <memory>
#include <optional>

class ZQHTTPConnections;

// The upload of one file to Imgur, nobody's: one form, which is sent from memory.
class ImgurAdapter : public CloudAdapter
{
public:
    static inline const QString errorDomain = QStringLiteral("imguruploader");
    static constexpr int refused = 10000;                    // the failure reason is what Imgur says
    static constexpr qint64 largestFile = qint64(200) << 20; // Imgur takes no larger one, of whatever kind

    struct Access
    {
        QUrl host;
        QString clientID;
        std::shared_ptr<ZQHTTPConnections> connections; // null: its own
    };
    ImgurAdapter(const QString &fileToUploadURL, const QString &fileToUploadName, const QString &fileToUploadID,
                 CloudAdapterDelegate *delegate, Access access);

    void start() override; // on whatever thread reads the file, and is on the main thread for the rest
    void cancel() override;

    static QString title(const QString &fileToUploadName, const QString &fileToUploadURL);
    static ZQHTTPRequest request(const Access &access, const QByteArray &file, const QString &title);

private:
    void read();
    void send();
    void abandon();
    void came(const ZQHTTPResponse &response);
    void refuse(ZQError error, const ZQHTTPResponse &response);

    const Access m_access;
    std::optional<ZQHTTPRequest> m_request; // with the file; nothing: not read yet, or sent
    ZQError m_readError;
    ServiceRequests m_requests;
};
