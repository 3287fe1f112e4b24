#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Foundation/ZQSecret.h"

#include <QString>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>

class ServiceRequests;
class UserInteraction;

// The account of CloudApp that uploads go to: an e-mail address and, in the secret store, its password. Main thread.
class CloudAppAccount
{
public:
    static inline const QString service = QStringLiteral("ZeltoCloudAppAccount");
    static inline const QString APIHostKey = QStringLiteral("CloudAppAPIHost"); // in the user defaults, as the next
    static inline const QString webHostKey = QStringLiteral("CloudAppWebHost");
    enum class Outcome {
        Connected,
        Refused,   // the person was told
        Cancelled, // by `cancel`, or by a check after it
    };

    explicit CloudAppAccount(UserInteraction &user);
    ~CloudAppAccount();

    static QString current(); // e-mail address; empty: there is none
    // Where requests go. Nothing, with an error, for what the person set and is no address.
    static std::optional<QUrl> APIHost(ZQError *error = nullptr);
    static QUrl webHost(); // where a person makes an account

    // Asks CloudApp whether it knows them, and keeps them in the secret store when it does. Whoever shows that it is
    // being asked does so until `ended` is called, once, or this goes. What is being stored by then stays.
    void testCloudAppCredentials(const QString &email, const ZQSecret &password,
                                 std::function<void(Outcome outcome)> ended);
    void cancel();
    // Removes the current account with its password. The error, where it could not be, is logged too.
    void disconnect(std::function<void(const ZQError &error)> ended);

private:
    struct Check;
    void answered(const std::weak_ptr<Check> &check, int statusCode, bool isWhole);
    void store(const Check &check);
    void refuse(const std::weak_ptr<Check> &check, const std::function<void(UserInteraction &user)> &tell);
    void end(const std::shared_ptr<Check> &check, Outcome outcome);

    UserInteraction &m_user;
    std::unique_ptr<ServiceRequests> m_requests;
    std::shared_ptr<Check> m_check; // held here only; null: none is under way
};
