#pragma once

#include "Classes/Interface/Preferences/CloudAccountPage.h"

// The person's Dropbox: the key of the app they made there, and linking it in the browser. What is being linked when
// the page goes is given up. Main thread.
class DropboxPage : public CloudAccountPage
{
    Q_OBJECT
public:
    explicit DropboxPage(UserInteraction &user, QWidget *parent = nullptr);
    ~DropboxPage() override;
    QStringList preferences() const override;
    void refresh() override;

private:
    void link();
    void unlink();

    UserInteraction &m_user;
    QLineEdit *m_key;
    QPushButton *m_link;
    QPushButton *m_cancel;
    QPushButton *m_unlink;
    bool m_isUnlinking = false;
};
