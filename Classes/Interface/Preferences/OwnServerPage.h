#pragma once

#include "Classes/Interface/Preferences/CloudAccountPage.h"

// A WebDAV server of the person's own, with share links where it makes them. Main thread.
class OwnServerPage : public CloudAccountPage
{
    Q_OBJECT
public:
    explicit OwnServerPage(QWidget *parent = nullptr);
    QStringList preferences() const override;
    void refresh() override;

private:
    void test();

    QLineEdit *m_address;
    QLineEdit *m_user;
    QLineEdit *m_password;
    QPushButton *m_test;
    bool m_isBusy = false;
};
