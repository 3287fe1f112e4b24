#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Services/UpdateCheck.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <memory>

class UserInteraction;

// Looks for new versions, once a day where the person has agreed to it, and when they ask. Nothing is installed: what
// is new is shown, and its page is opened. Where a package manager installed the program nothing is looked for. One at
// a time; main thread.
class SoftwareUpdater : public QObject, public SoftwareUpdating
{
    Q_OBJECT
public:
    struct Uses
    {
        std::function<UserInteraction *()> user;        // null: nobody can be told now
        std::function<void(const QUrl &page)> openPage; // in the person's browser
        QString executable;                             // empty: this program's
        std::chrono::milliseconds firstLook{20'000};    // after the launch
    };
    SoftwareUpdater();
    explicit SoftwareUpdater(Uses uses);
    ~SoftwareUpdater() override;
    static SoftwareUpdater *current(); // null: there is none

    bool areTestKeysHeld() const override;
    void configure(const QString &appCastURL) override { m_appCastURL = appCastURL; }
    void setAutomaticChecks(bool automatic) override;

    QString appCastURL() const { return m_appCastURL; }
    bool checksAutomatically() const { return m_timer.isActive(); }

    // The person asks, and hears what came of it in any case.
    void checkForUpdates();
    // Calls `then` with why there are no checks, localized, or with nothing where there are. Now or a moment later.
    void findWhyNot(std::function<void(const QString &whyNot)> then);
    static QString whyNot(const UpdateCheck::Settings &settings, const QString &executable); // reads the disk

    static inline const QString checksKey = QStringLiteral("ChecksForUpdates"); // not set: nobody was asked
    static inline const QString skippedKey = QStringLiteral("UpdateSkippedVersion");
    static inline const QString lastCheckKey = QStringLiteral("UpdateLastCheck");

private:
    void checkIfDue();
    bool isAgreedTo();
    void check(bool isAsked);
    void show(const UpdateAnswer &answer, bool isAsked);
    void showNewer(const UpdateAnswer &answer, UserInteraction &user);

    Uses m_uses;
    QString m_appCastURL;
    QTimer m_timer;
    bool m_isAsking = false;
    bool m_isAsked = false;        // the check that goes on is the person's
    std::shared_ptr<void> m_check; // null: none goes on
};
