#pragma once

#include <QMenu>
#include <QPointer>

#include <memory>

class CloudButton;
class UserInteraction;

// The menu of the cloud button: what goes up and a way to cancel it, the latest uploads, each of which copies its link
// (with Ctrl: opens it), the service to share to, and the way to its accounts. Made anew whenever it opens or the list
// changes. Main thread.
class CloudMenu : public QMenu
{
    Q_OBJECT
public:
    CloudMenu(CloudButton &button, UserInteraction &user, QWidget *parent);

    void fill();

Q_SIGNALS:
    void preferencesRequested();

protected:
    void initStyleOption(QStyleOptionMenuItem *option, const QAction *action) const override;
    void paintEvent(QPaintEvent *event) override;

private:
    void fillSoon(); // when it is open
    void addProgress();
    void addUploads();
    void addServices();
    void addCaption(const QString &text);
    void showProgress();
    void take(const QString &url, const QString &name);
    void takeAll(const QStringList &links);
    QString shortLink(const QString &url) const;
    void choose(const QString &service); // empty: whichever is there

    class Bar;
    CloudButton &m_button;
    UserInteraction &m_user;
    QAction *m_progress = nullptr; // the two are there while files go up
    Bar *m_bar = nullptr;
    QPointer<QMenu> m_services;
    std::shared_ptr<void> m_token;
};
