#pragma once

#include "Classes/Interface/Preferences/CloudAccountPage.h"
#include "Classes/Sharing/WebDAVService.h"

// A WebDAV server of the person's own, with share links where it makes them. It is tried before it is kept; a try that
// is under way when the page goes is given up. Main thread.
class OwnServerPage : public CloudAccountPage
{
    Q_OBJECT
public:
    explicit OwnServerPage(QWidget *parent = nullptr);
    QStringList preferences() const override;
    void refresh() override;

private:
    void addForm();
    void connectServer();
    void disconnectServer();
    void end(const ZQError &error); // of what was under way
    void updateButtons();
    WebDAVSettings entered() const;

    enum class Busy { No, Connecting, Disconnecting };
    QLineEdit *m_address;
    QLineEdit *m_user;
    QLineEdit *m_password;
    QLineEdit *m_folder;
    QLineEdit *m_publicAddress;
    QPushButton *m_connect;
    QPushButton *m_cancel;
    QPushButton *m_disconnect;
    Busy m_busy = Busy::No;
    WebDAVCheck m_check;
};
