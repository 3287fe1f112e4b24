#include "Classes/Capture/DevToolsPage.h"

#include "Classes/Capture/WebCaptureErrors.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QJsonDocument>

#include <algorithm>

namespace {

using namespace std::chrono_literals;

constexpr qsizetype longestReason = 200;
constexpr auto servingStep = 20ms; // for what only the clock makes so

using Outcome = DevToolsPipe::Outcome;

ZQError tookTooLong()
{
    return WebCaptureErrors::with(WebCaptureErrors::TookTooLong,
                                  zqLocalized("The browser took too long with this page. Try again, or capture only "
                                              "the visible area."));
}

ZQError errorFor(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Cancelled:
        return WebCaptureErrors::with(WebCaptureErrors::Cancelled, zqLocalized("The capture was cancelled."));
    case Outcome::TimeIsUp:
        return tookTooLong();
    default:
        return WebCaptureErrors::with(
            WebCaptureErrors::BrowserEnded,
            zqLocalized("The browser that draws the page ended unexpectedly. Try again; if it happens each time, see "
                        "whether chromium starts by itself."));
    }
}

} // namespace

void DevToolsPage::fail(Outcome outcome)
{
    if (m_failure.isNull()) {
        m_failure = errorFor(outcome);
    }
}

std::optional<int> DevToolsPage::send(const QString &session, const QString &method, const QJsonObject &parameters,
                                      Time limit)
{
    if (!m_failure.isNull()) {
        return std::nullopt;
    }
    QJsonObject message{{QStringLiteral("id"), ++m_lastNumber},
                        {QStringLiteral("method"), method},
                        {QStringLiteral("params"), parameters}};
    if (!session.isEmpty()) {
        message.insert(QStringLiteral("sessionId"), session);
    }
    const Outcome outcome = m_pipe.send(QJsonDocument(message).toJson(QJsonDocument::Compact), limit);
    if (outcome != Outcome::Done) {
        fail(outcome); // half a message may be in the pipe
        return std::nullopt;
    }
    return m_lastNumber;
}

std::optional<QJsonObject> DevToolsPage::receive(Time limit)
{
    if (!m_failure.isNull()) {
        return std::nullopt;
    }
    QByteArray message;
    const Time end = std::min(limit, m_deadline);
    const Outcome outcome = m_pipe.receive(message, end);
    if (outcome != Outcome::Done) {
        if (outcome != Outcome::TimeIsUp || end == m_deadline) {
            fail(outcome);
        }
        return std::nullopt;
    }
    return QJsonDocument::fromJson(message).object();
}

void DevToolsPage::tell(const QString &method, const QJsonObject &parameters)
{
    send(m_session, method, parameters, m_deadline);
}

bool DevToolsPage::callBrowser(const QString &method, const QJsonObject &parameters, ZQError *error)
{
    return answerTo(send({}, method, parameters, m_deadline), m_deadline, error).has_value();
}

void DevToolsPage::tellBrowser(const QString &method, const QJsonObject &parameters)
{
    send({}, method, parameters, m_deadline);
}

void DevToolsPage::dispatch(const QJsonObject &message) const
{
    if (m_observer && message.contains(QStringLiteral("method"))) {
        m_observer(message[QStringLiteral("method")].toString(), message[QStringLiteral("params")].toObject());
    }
}

std::optional<QJsonObject> DevToolsPage::call(const QString &method, const QJsonObject &parameters, Time limit,
                                              ZQError *error)
{
    return answerTo(send(m_session, method, parameters, limit), limit, error);
}

std::optional<QJsonObject> DevToolsPage::answerTo(std::optional<int> number, Time limit, ZQError *error)
{
    std::optional<QJsonObject> answer = number ? receive(limit) : std::nullopt;
    while (answer && answer->value(QStringLiteral("id")).toInt() != *number) {
        dispatch(*answer);
        answer = receive(limit);
    }
    if (!answer) {
        zqSetError(error, m_failure.isNull() ? tookTooLong() : m_failure);
        return std::nullopt;
    }
    if (const QJsonValue refusal = answer->value(QStringLiteral("error")); refusal.isObject()) {
        zqSetError(error,
                   WebCaptureErrors::with(WebCaptureErrors::NoPage, zqLocalized("The browser can't capture this page."),
                                          refusal[QStringLiteral("message")].toString().left(longestReason)));
        return std::nullopt;
    }
    return answer->value(QStringLiteral("result")).toObject();
}

bool DevToolsPage::serveUntil(Time limit, const std::function<bool()> &isSo)
{
    while (!isSo()) {
        const Time now = std::chrono::steady_clock::now();
        if (!m_failure.isNull() || now >= limit) {
            return false;
        }
        if (const auto message = receive(std::min(limit, now + servingStep))) {
            dispatch(*message);
        }
    }
    return true;
}

bool DevToolsPage::attach(ZQError *error)
{
    const auto target =
        call(QStringLiteral("Target.createTarget"), {{QStringLiteral("url"), QStringLiteral("about:blank")}}, error);
    const auto attached = target ? call(QStringLiteral("Target.attachToTarget"),
                                        {{QStringLiteral("targetId"), target->value(QStringLiteral("targetId"))},
                                         {QStringLiteral("flatten"), true}},
                                        error)
                                 : std::nullopt;
    if (attached) {
        m_session = attached->value(QStringLiteral("sessionId")).toString();
    }
    return attached.has_value();
}

void DevToolsPage::setFrame(const QString &frame)
{
    m_frame = frame;
    m_world.reset();
}

QJsonValue DevToolsPage::evaluate(const QString &expression, Time limit, ZQError *error)
{
    if (!m_world) {
        const auto world =
            call(QStringLiteral("Page.createIsolatedWorld"),
                 {{QStringLiteral("frameId"), m_frame}, {QStringLiteral("worldName"), QStringLiteral("capture")}},
                 limit, error);
        if (!world) {
            return QJsonValue::Undefined;
        }
        m_world = world->value(QStringLiteral("executionContextId")).toInt();
    }
    const auto answer = call(QStringLiteral("Runtime.evaluate"),
                             {{QStringLiteral("expression"), expression},
                              {QStringLiteral("contextId"), *m_world},
                              {QStringLiteral("awaitPromise"), true},
                              {QStringLiteral("returnByValue"), true}},
                             limit, error);
    if (!answer) {
        return QJsonValue::Undefined;
    }
    if (answer->contains(QStringLiteral("exceptionDetails"))) {
        zqSetError(error, WebCaptureErrors::with(
                              WebCaptureErrors::NoPage, zqLocalized("The browser can't capture this page."),
                              answer
                                  ->value(QStringLiteral(
                                      "exceptionDetails"))[QStringLiteral("exception")][QStringLiteral("description")]
                                  .toString()
                                  .left(longestReason)));
        return QJsonValue::Undefined;
    }
    const QJsonValue value = answer->value(QStringLiteral("result"))[QStringLiteral("value")];
    return value.isUndefined() ? QJsonValue(QJsonValue::Null) : value;
}
