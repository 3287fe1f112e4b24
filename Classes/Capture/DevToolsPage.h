#pragma once

#include "Classes/Capture/DevToolsPipe.h"
#include "Kit/Foundation/ZQError.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <functional>
#include <optional>
#include <utility>

// The conversation with one page of a browser: commands that are answered, and events in between. Nothing takes longer
// than until the deadline; the thread's ZQCancellation ends it. What goes wrong with the browser itself stays so, and
// is every later command's error. One thread.
class DevToolsPage
{
public:
    using Time = DevToolsPipe::Time;
    using Observer = std::function<void(const QString &method, const QJsonObject &parameters)>;

    // The pipe outlives it.
    DevToolsPage(DevToolsPipe &pipe, Time deadline) : m_pipe(pipe), m_deadline(deadline) {}

    void setObserver(Observer observer) { m_observer = std::move(observer); }
    // Makes the page, an empty one.
    bool attach(ZQError *error = nullptr);

    // The result. Nothing, with an error, when the browser refuses, is gone, or has not answered at `limit`; an answer
    // that comes later is passed over.
    std::optional<QJsonObject> call(const QString &method, const QJsonObject &parameters, ZQError *error = nullptr)
    {
        return call(method, parameters, m_deadline, error);
    }
    std::optional<QJsonObject> call(const QString &method, const QJsonObject &parameters, Time limit,
                                    ZQError *error = nullptr);
    // Sends without waiting, for answers that nobody needs. Also within an observer.
    void tell(const QString &method, const QJsonObject &parameters);
    // The same to the browser itself, about the page with all its frames and workers, also those of other sites.
    bool callBrowser(const QString &method, const QJsonObject &parameters, ZQError *error = nullptr);
    void tellBrowser(const QString &method, const QJsonObject &parameters);
    // Serves events until it is so; false at `limit` and when the browser is gone.
    bool serveUntil(Time limit, const std::function<bool()> &isSo);

    // The value of an expression of JavaScript, in a world that the page's own scripts do not see. A promise is waited
    // for. Undefined, with an error, when there is none.
    QJsonValue evaluate(const QString &expression, Time limit, ZQError *error = nullptr);
    QJsonValue evaluate(const QString &expression, ZQError *error = nullptr)
    {
        return evaluate(expression, m_deadline, error);
    }
    void setFrame(const QString &frame); // the page's own; its world is made anew

    Time deadline() const { return m_deadline; }
    const ZQError &failure() const { return m_failure; } // of the browser

private:
    // `session` empty: to the browser.
    std::optional<int> send(const QString &session, const QString &method, const QJsonObject &parameters, Time limit);
    std::optional<QJsonObject> answerTo(std::optional<int> number, Time limit, ZQError *error);
    // The next message; nothing at `limit`, or with `m_failure`.
    std::optional<QJsonObject> receive(Time limit);
    void dispatch(const QJsonObject &message) const;
    void fail(DevToolsPipe::Outcome outcome);

    DevToolsPipe &m_pipe;
    const Time m_deadline;
    Observer m_observer;
    QString m_session;
    QString m_frame;
    std::optional<int> m_world;
    int m_lastNumber = 0;
    ZQError m_failure;
};
