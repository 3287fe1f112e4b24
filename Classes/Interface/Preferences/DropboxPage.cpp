#include "Classes/Interface/Preferences/DropboxPage.h"

#include "Classes/Sharing/DBSession.h"
#include "Classes/Sharing/SecretStore.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QBoxLayout>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

DropboxPage::DropboxPage(UserInteraction &user, QWidget *parent)
    : CloudAccountPage(QStringLiteral("dropbox"), QStringLiteral("Dropbox"), parent), m_user(user)
{
    m_key = addPreference(zqLocalized("App &key"), DBSession::appKeyKey, {});
    connect(m_key, &QLineEdit::textChanged, this, [this] { m_link->setEnabled(!m_key->text().trimmed().isEmpty()); });
    QBoxLayout *row = addRow();
    m_link = addButton(row, zqLocalized("&Link…"), [this] { link(); });
    m_cancel = addButton(row, zqLocalized("&Cancel"), [] { DBSession::sharedSession().cancelLink(); });
    m_unlink = addButton(row, zqLocalized("&Unlink"), [this] { unlink(); });
    addState(row);
    addNote(DBSession::howToGetAppKey());
    addLink(zqLocalized("Make an app at dropbox.com"), QUrl(QStringLiteral("https://www.dropbox.com/developers/apps")));
    addNote(zqLocalized("Each upload goes into a folder of its own in your Dropbox. What lets Zelto in is kept in the "
                        "desktop's keyring and nowhere else."));
    DropboxPage::refresh();
}

DropboxPage::~DropboxPage()
{
    DBSession::sharedSession().cancelLink();
}

QStringList DropboxPage::preferences() const
{
    return CloudAccountPage::preferences() + QStringList{SecretStore::accountsKey};
}

void DropboxPage::refresh()
{
    CloudAccountPage::refresh();
    const DBSession &session = DBSession::sharedSession();
    const bool isLinked = session.isLinked();
    const bool isLinking = session.isLinking();
    m_key->setEnabled(!isLinked && !isLinking);
    m_link->setEnabled(!m_key->text().trimmed().isEmpty());
    setShown({m_link}, !isLinked && !isLinking);
    setShown({m_cancel}, isLinking);
    setShown({m_unlink}, isLinked && !isLinking);
    m_unlink->setEnabled(!m_isUnlinking);
    const QStringList accounts = SecretStore::shared().accountsOfService(DBSession::serviceOfSecrets);
    if (isLinking) {
        showState(orKeyring(zqLocalized("Waiting for you to allow it in the web browser…")), true);
    } else if (isLinked) {
        showState(zqFormat(zqLocalized("Linked with %@"), {accounts.last()}), m_isUnlinking);
    } else {
        showState({}, m_isUnlinking);
    }
}

void DropboxPage::link()
{
    showProblem({});
    storeFields(); // a key that was pressed leaves the focus in the field
    DBSession::sharedSession().link([self = QPointer(this)](const ZQError &error) {
        if (!self) {
            return;
        }
        const bool isCancelled = error.domain == DBSession::errorDomain && error.code == DBSession::Cancelled;
        self->showEnd(isCancelled ? ZQError() : error);
        self->moveFocusTo(error.isNull() ? self->m_unlink : self->m_link);
    });
    refresh();
    if (DBSession::sharedSession().isLinking()) {
        moveFocusTo(m_cancel);
    }
}

void DropboxPage::unlink()
{
    if (!isSureToDisconnect(m_user, title())) {
        return;
    }
    showProblem({});
    m_isUnlinking = true;
    refresh();
    DBSession::sharedSession().unlink([self = QPointer(this)](const ZQError &error) {
        if (self) {
            self->m_isUnlinking = false;
            self->showEnd(error);
            self->moveFocusTo(self->m_unlink->isVisible() ? self->m_unlink : self->m_link);
        }
    });
}
