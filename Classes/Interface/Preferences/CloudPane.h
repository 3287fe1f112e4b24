#pragma once

#include "Classes/Interface/Preferences/PreferencesPane.h"

class CloudAccountPage;
class QComboBox;
class QStackedWidget;
class UserInteraction;
class ZQSwitch;

// Where shared files go: the service, and the accounts of each. Main thread.
class CloudPane : public PreferencesPane
{
    Q_OBJECT
public:
    explicit CloudPane(UserInteraction &user, QWidget *parent = nullptr);

    QComboBox &serviceMenu() { return *m_service; }
    CloudAccountPage *page(const QString &service) const; // by the service's identifier; null: there is none
    void showPage(const QString &service);

private:
    void addService();
    void addAccounts(const QList<CloudAccountPage *> &pages);
    void showServices(); // those there are, and the one that is chosen
    void choose(int index);
    void use(const QString &service); // empty: whichever is there

    QComboBox *m_service;
    QLabel *m_inUse;
    QLabel *m_missing;
    ZQSwitch *m_switch = nullptr;
    QStackedWidget *m_pages;
};
