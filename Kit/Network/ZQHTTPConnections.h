#pragma once

#include "Kit/Network/ZQHTTPChallenge.h"

#include <QHash>
#include <QString>

#include <memory>
#include <optional>

class QUrl;
class ZQTransferLoop;

// Connections that the requests of one piece of work use one after the other, so that not each of them begins anew; and
// what servers asked for before they let somebody in, so that they need not ask each time. No password is kept, and
// all of it goes with the last who holds it. Made and held on any thread; the rest is of the network's thread.
class ZQHTTPConnections
{
public:
    static std::shared_ptr<ZQHTTPConnections> make();
    ~ZQHTTPConnections();

    ZQTransferLoop &loop();
    bool haveBeenUsedFor(const QUrl &url) const;
    void noteUseOf(const QUrl &url);
    std::optional<ZQHTTPChallenge> &challengeOf(const QUrl &url, const QString &user);

private:
    ZQHTTPConnections() = default;
    struct Held;
    Held &held();
    std::shared_ptr<Held> m_held; // null: not used yet
};
