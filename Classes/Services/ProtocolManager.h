#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Services/ProtocolCommand.h"

#include <QList>
#include <QObject>
#include <QRect>
#include <QTimer>

#include <chrono>
#include <functional>
#include <optional>

class UserInteraction;

// Does what addresses of this application's scheme ask for, once the launch is done. Whoever shows a page can send
// them, as many as they like and with whatever in them: what is refused is said in a notification, the person is asked
// before the first import from a page that names other hosts than its own and before each from one that lies on this
// computer or in its own network, and a flood is cut off.
//
// Main thread. Nothing is done while `handleURL` runs. What waits when this goes is dropped.
class ProtocolManager : public QObject, public ProtocolHandling
{
    Q_OBJECT
public:
    struct Uses
    {
        UserInteraction &user;
        std::function<bool()> isLaunched;                    // with the window; and not about to quit
        std::function<ScreenCaptureControlling *()> capture; // null: not yet
        std::function<ImageDownloading *()> downloads;       // null: not yet
        std::function<QList<QRect>()> screens;               // in points of the desktop, the main one first
        std::function<std::chrono::milliseconds()> now = {}; // that passed since some moment; null: the clock's
    };

    static constexpr std::chrono::milliseconds retryInterval{200};
    static constexpr int mostRetries = 300;     // of a command whose part never comes, once the launch is done
    static constexpr qsizetype mostAtOnce = 20; // in `burst`, or waiting
    static constexpr std::chrono::milliseconds burst{10'000};
    static constexpr std::chrono::milliseconds quietAfterNo{10'000}; // in which nothing is asked
    static constexpr qsizetype mostKnownPages = 1000;                // the oldest is forgotten
    // The user default: hosts of pages of the internet from which the person lets images come.
    static inline const QString knownPagesKey = QStringLiteral("ProtocolKnownPages");

    explicit ProtocolManager(Uses uses, QObject *parent = nullptr);

    void handleURL(const QString &url) override;

    // Why the person is to be asked before this is done, in sentences; nothing where it needs no word.
    static std::optional<QString> reasonToAsk(const ProtocolCommand &command);

private:
    struct Waiting
    {
        std::optional<ProtocolCommand> command;
        QString problem; // without a command
        int retries = 0;
    };
    bool isTooMuch();
    void work();
    bool isReady(const ProtocolCommand &command) const;
    std::optional<Waiting> takeReady();
    void run(const Waiting &waiting);
    bool isAllowed(const ProtocolCommand &command);
    void tell(const QString &text) const;

    Uses m_uses;
    QList<Waiting> m_waiting;
    QList<std::chrono::milliseconds> m_arrivals; // in the last `burst`
    QTimer m_timer;
    std::optional<std::chrono::milliseconds> m_lastNo;
    bool m_isWorking = false;  // and perhaps asks, while others come
    bool m_hasDropped = false; // commands that were too many, which nobody was told of
};
