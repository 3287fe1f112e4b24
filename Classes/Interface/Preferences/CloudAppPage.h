#pragma once

#include "Classes/Interface/Preferences/CloudAccountPage.h"

#include <memory>

class CloudAppAccount;
class UserInteraction;

// The CloudApp account: its e-mail address and password, which are tried before they are kept. A try that is under way
// when the page goes ends without it. Main thread.
class CloudAppPage : public CloudAccountPage
{
    Q_OBJECT
public:
    explicit CloudAppPage(UserInteraction &user, QWidget *parent = nullptr);
    QStringList preferences() const override;
    void refresh() override;

private:
    void connectAccount();
    void disconnectAccount();
    void end(const ZQError &error); // of what was under way
    void updateButtons();

    enum class Busy { No, Connecting, Disconnecting };
    UserInteraction &m_user;
    std::shared_ptr<CloudAppAccount> m_account;
    QLineEdit *m_email;
    QLineEdit *m_password;
    QPushButton *m_connect;
    QPushButton *m_cancel;
    QPushButton *m_disconnect;
    Busy m_busy = Busy::No;
};
