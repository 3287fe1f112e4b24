#pragma once

#include "Classes/Interface/Preferences/CloudAccountPage.h"

// Imgur, which takes pictures without an account but not without an application's identifier. Main thread.
class ImgurPage : public CloudAccountPage
{
    Q_OBJECT
public:
    explicit ImgurPage(QWidget *parent = nullptr);
    void refresh() override;

private:
    QLineEdit *m_client;
};
