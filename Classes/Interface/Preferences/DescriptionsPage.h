#pragma once

#include "Classes/Interface/Preferences/CloudAccountPage.h"

class QListWidget;
class UserInteraction;

// Other upload addresses, each of which a description file brought: where files go, and the passwords it asks for.
// Main thread.
class DescriptionsPage : public CloudAccountPage
{
    Q_OBJECT
public:
    explicit DescriptionsPage(UserInteraction &user, QWidget *parent = nullptr);
    QStringList preferences() const override;
    void refresh() override;

private:
    void importFile();
    void removeSelected();
    void showSelected();

    UserInteraction &m_user;
    QListWidget *m_list;
    QLabel *m_where;
    QPushButton *m_remove;
};
