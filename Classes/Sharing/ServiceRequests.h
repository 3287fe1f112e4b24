#pragma once

#include "Kit/Network/ZQHTTPRequest.h"

#include <functional>
#include <memory>

// The requests of one piece of work, one after the other over the same connections, answered on the main thread. When
// it goes, or is cancelled, the one under way is too, and nobody is told. Main thread.
class ServiceRequests
{
public:
    using Answered = std::function<void(const ZQHTTPResponse &response)>;
    using Sent = std::function<void(qint64 sent, qint64 total)>;

    // Null: over connections of their own.
    explicit ServiceRequests(std::shared_ptr<ZQHTTPConnections> connections = nullptr);
    ~ServiceRequests() { cancel(); }
    ServiceRequests(const ServiceRequests &) = delete;
    ServiceRequests &operator=(const ServiceRequests &) = delete;

    // A server that is too busy for it (429 and 503) is asked again after the time that it names, three times, and no
    // more where that is over 60 s. `sent` is told on the main thread, as long as the request is under way.
    //
    // Of `request` these are set here, whatever they are: `connections`, `didSendBytes` and what `withinLimits` does.
    void perform(const ZQHTTPRequest &request, Answered answered, Sent sent = {});
    void cancel();

    // Answers of 1 MiB (`maximumSize`), silences of 90 s (`stallTime`), 5 min for an answer (`answerTime`), and 2 min
    // for the whole (`wholeTime`), but for a request with `makeBody`, which takes as long as its bytes keep flowing.
    // Whoever sends a file uses that, even for one that is in memory.
    static ZQHTTPRequest withinLimits(ZQHTTPRequest request);

private:
    struct UnderWay;
    void send(const std::shared_ptr<UnderWay> &underWay);
    void came(const std::shared_ptr<UnderWay> &underWay, const ZQHTTPResponse &response);

    std::shared_ptr<ZQHTTPConnections> m_connections;
    std::shared_ptr<UnderWay> m_underWay; // null: there is none
};
