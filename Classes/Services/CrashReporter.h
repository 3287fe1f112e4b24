#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Services/CrashReports.h"
#include "Kit/Network/ZQHTTPRequest.h"

#include <QObject>
#include <QUrl>

#include <functional>

// Tells the person of crashes that nobody has told them of yet, at the next launch: each report is shown whole, and it
// is theirs to send, copy, keep or remove. Nothing is sent by itself, and nothing can be sent where no address is set.
// Asks for the application's log once, when the event loop is next free after `start`. Main thread.
class CrashReporter : public QObject, public CrashReporting
{
    Q_OBJECT
public:
    explicit CrashReporter(CrashReports reports = CrashReports());
    // Shows `text` and calls `seen` once the person has seen it. Without one, reports wait.
    using Presenter = std::function<void(const QString &text, std::function<void()> seen)>;
    void setPresenter(Presenter presenter) { m_presenter = std::move(presenter); }

    // `automaticSubmission`: reports are offered by themselves; otherwise who wants one looks for it.
    void start(Callbacks callbacks, bool automaticSubmission) override;

    // Where reports go: the preference "CrashReportAddress", which is not set at first. Invalid: nowhere.
    static QUrl address();
    // `done` is called on the main thread, with nothing or with what went wrong.
    static void send(const QString &text, std::function<void(const ZQError &error)> done);
    static ZQHTTPRequest requestFor(const QString &text); // that sends it

private:
    void showNew();

    CrashReports m_reports;
    Callbacks m_callbacks;
    Presenter m_presenter;
};
