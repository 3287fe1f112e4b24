#include "Classes/Sharing/ServiceRequests.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Network/ZQHTTPConnections.h"
#include "Kit/Network/ZQHTTPTask.h"
#include "Kit/Network/ZQNetworkError.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QTimer>

namespace {

constexpr int mostTimesBusy = 3;
constexpr std::chrono::seconds usualWait{1};
constexpr std::chrono::seconds longestWait{60};
constexpr std::chrono::seconds longestSilence{90}; // servers put large files together before they answer
constexpr std::chrono::minutes longestExchange{2};
constexpr std::chrono::minutes longestAnswer{5}; // what systems still hold of a file counts, too
constexpr qint64 largestAnswer = qint64(1) << 20;

ZQError tooLarge(const QString &host)
{
    return zqNetworkError(ZQNetworkErrorCode::TooLarge,
                          zqFormat(zqLocalized("The answer of %@ is larger than one that tells of an upload."), {host}),
                          zqLocalized("Look whether its address in the preferences, under Cloud, is the right one."));
}

} // namespace

struct ServiceRequests::UnderWay
{
    ZQHTTPRequest request;
    Answered answered;
    std::shared_ptr<ZQHTTPTask> task;
    QTimer wait;
    int timesBusy = 0;
};

ServiceRequests::ServiceRequests(std::shared_ptr<ZQHTTPConnections> connections)
    : m_connections(connections ? std::move(connections) : ZQHTTPConnections::make())
{
}

ZQHTTPRequest ServiceRequests::withinLimits(ZQHTTPRequest request)
{
    request.maximumSize = largestAnswer;
    request.stallTime = longestSilence;
    request.answerTime = longestAnswer;
    request.wholeTime = request.makeBody ? std::chrono::minutes::zero() : longestExchange;
    return request;
}

void ServiceRequests::perform(const ZQHTTPRequest &request, Answered answered, Sent sent)
{
    cancel();
    m_underWay = std::make_shared<UnderWay>();
    m_underWay->request = withinLimits(request);
    m_underWay->answered = std::move(answered);
    m_underWay->request.connections = m_connections;
    const std::weak_ptr<UnderWay> weak = m_underWay;
    if (sent) {
        m_underWay->request.didSendBytes = [weak, sent](qint64 count, qint64 total) {
            zqOnMainThread([weak, sent, count, total] {
                if (weak.lock()) {
                    sent(count, total);
                }
            });
        };
    }
    m_underWay->wait.setSingleShot(true);
    QObject::connect(&m_underWay->wait, &QTimer::timeout, [this, weak] {
        if (const auto underWay = weak.lock()) {
            send(underWay);
        }
    });
    send(m_underWay);
}

void ServiceRequests::send(const std::shared_ptr<UnderWay> &underWay)
{
    underWay->task =
        ZQHTTPTask::start(underWay->request, [this, weak = std::weak_ptr(underWay)](const ZQHTTPResponse &response) {
            zqOnMainThread([this, weak, response] {
                if (const auto current = weak.lock()) {
                    came(current, response);
                }
            });
        });
}

void ServiceRequests::came(const std::shared_ptr<UnderWay> &underWay, const ZQHTTPResponse &response)
{
    const bool isBusy = response.statusCode == 429 || response.statusCode == 503;
    const std::chrono::milliseconds pause = response.retryAfter().value_or(usualWait);
    if (isBusy && pause <= longestWait && underWay->timesBusy < mostTimesBusy) {
        ++underWay->timesBusy;
        underWay->wait.start(pause);
        return;
    }
    const Answered answered = underWay->answered;
    const QString host = underWay->request.url.host();
    m_underWay.reset();
    if (zqIsNetworkError(response.error, ZQNetworkErrorCode::TooLarge)) {
        ZQHTTPResponse told = response;
        told.error = tooLarge(host);
        answered(told);
    } else {
        answered(response);
    }
}

void ServiceRequests::cancel()
{
    if (const auto underWay = std::exchange(m_underWay, nullptr); underWay && underWay->task) {
        underWay->task->cancel();
    }
}
