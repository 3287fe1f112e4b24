#pragma once

#include "Classes/Sharing/CloudService.h"

class ZQHTTPConnections;

// Imgur, where anybody may put images without an account. It asks each program for an identifier, which the person gets
// there and enters in the preferences: one that everybody used would soon have used up what Imgur grants it.
class ImgurService : public CloudService
{
public:
    // User defaults.
    static inline const QString clientIDKey = QStringLiteral("ImgurClientID");
    static inline const QString hostKey = QStringLiteral("ImgurAPIHost"); // may name scheme and port
    static inline const QString usualHost = QStringLiteral("api.imgur.com");

    static QString clientID(); // empty: none that could be one

    QString identifier() const override { return QStringLiteral("imgur"); }
    QString title() const override { return QStringLiteral("Imgur"); }
    QString whatIsMissing() const override;
    std::shared_ptr<CloudAdapter> makeAdapter(const QString &fileURL, const QString &fileName, const QString &fileID,
                                              CloudAdapterDelegate *delegate) override;

private:
    std::weak_ptr<ZQHTTPConnections> m_connections; // of the adapters that are there
};
