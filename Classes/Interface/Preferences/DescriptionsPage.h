#pragma once

#include "Classes/Interface/Preferences/CloudAccountPage.h"
#include "Classes/Sharing/UploadDescription.h"

#include <optional>

class DescriptionReview;
class QListWidget;
class UserInteraction;

// Other upload addresses, each of which a description file brought. What a file says is shown, and the secrets it needs
// are asked for, before it is added. What one looks like is there to be read and to begin with. Main thread.
class DescriptionsPage : public CloudAccountPage
{
    Q_OBJECT
public:
    explicit DescriptionsPage(UserInteraction &user, QWidget *parent = nullptr);
    QStringList preferences() const override;
    void refresh() override;
    QString serviceToUse() const override;

    void importFile();
    void saveExample();

private:
    void review(const UploadDescription &description);
    void add(const UploadDescription &description, const QHash<QString, ZQSecret> &secrets);
    void endReview();
    void removeSelected();
    void setBusy(bool isBusy);
    void updateButtons();

    UserInteraction &m_user;
    QListWidget *m_list;
    QPushButton *m_import = nullptr;
    QPushButton *m_remove = nullptr;
    QPushButton *m_example = nullptr;
    DescriptionReview *m_review = nullptr; // while one is shown
    bool m_isBusy = false;
};
