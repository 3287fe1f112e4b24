#pragma once

#include "Classes/Interface/Preferences/CloudAccountPage.h"
#include "Classes/Sharing/WebDAVService.h"

// A WebDAV server of the person's own, with share links where it makes them. It is tried before it is kept, also when
// something of it is changed; a try that is under way when the page goes is given up. Main thread.
class OwnServerPage : public CloudAccountPage
{
    Q_OBJECT
public:
    explicit OwnServerPage(UserInteraction &user, QWidget *parent = nullptr);
    QStringList preferences() const override;
    void refresh() override;

private:
    void addForm();
    void change();
    void connectServer();
    void connectWith(const ZQSecret &password);
    void cancel();
    void disconnectServer();
    void end(const ZQError &error); // of what was under way
    void updateButtons();
    WebDAVSettings entered() const;

    enum class Busy { No, Connecting, Disconnecting };
    bool keepsPassword() const; // the stored one belongs to what is entered, and no other is
    UserInteraction &m_user;
    QLineEdit *m_address;
    QLineEdit *m_name;
    QLineEdit *m_password;
    QLineEdit *m_folder;
    QLineEdit *m_publicAddress;
    QPushButton *m_connect;
    QPushButton *m_cancel;
    QPushButton *m_change;
    QPushButton *m_disconnect;
    Busy m_busy = Busy::No;
    bool m_isChanging = false; // what is connected
    int m_attempt = 0;
    WebDAVCheck m_check;
};
