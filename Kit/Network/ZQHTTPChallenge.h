#pragma once

#include "Kit/Foundation/ZQSecret.h"

#include <QByteArray>
#include <QString>

#include <optional>

// What a server asks for before it lets somebody in, and the answer: Basic, or Digest with MD5 or SHA-256 and the
// quality "auth" or none. Of the network's thread.
class ZQHTTPChallenge
{
public:
    // The strongest of those in the values of the headers "WWW-Authenticate"; nothing when none can be answered.
    static std::optional<ZQHTTPChallenge> strongestIn(const QByteArray &headers);

    bool isDigest() const { return m_scheme == Scheme::Digest; }
    bool isStale() const { return m_isStale; } // the last answer was right, and too old

    // The value of the header "Authorization" for a request of `target`, the path and query as they are sent. Each
    // answer counts. `clientNonce`: drawn anew where it is empty. Empty for a name that cannot be sent.
    QByteArray answer(const QString &user, const ZQSecret &password, const QByteArray &method, const QByteArray &target,
                      QByteArray clientNonce = {});

private:
    enum class Scheme { Basic, Digest };
    Scheme m_scheme = Scheme::Basic;
    QByteArray m_realm;
    QByteArray m_nonce;
    QByteArray m_opaque;
    QByteArray m_algorithm; // as the server wrote it; empty: it did not
    bool m_isSHA256 = false;
    bool m_isSession = false; // the first digest has the nonces in it
    bool m_hasQuality = false;
    bool m_isStale = false;
    quint32 m_count = 0;

    friend struct ZQHTTPChallengeReader;
    int strength() const { return isDigest() ? (m_isSHA256 ? 2 : 1) : 0; }
    QByteArray digest(const QByteArray &text) const;
    QByteArray digestAnswer(const QByteArray &user, const QByteArray &password, const QByteArray &method,
                            const QByteArray &target, const QByteArray &clientNonce);
};
