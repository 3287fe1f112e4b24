#include "Classes/Interface/Preferences/CloudAppPage.h"

#include "Classes/Sharing/CloudAppAccount.h"
#include "Classes/Sharing/SecretStore.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QBoxLayout>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

#include <utility>

CloudAppPage::CloudAppPage(UserInteraction &user, QWidget *parent)
    : CloudAccountPage(QStringLiteral("cloudapp"), QStringLiteral("CloudApp"), parent), m_user(user),
      m_account(std::make_shared<CloudAppAccount>(user))
{
    m_email = addField(zqLocalized("&E-mail"), {});
    m_email->setInputMethodHints(Qt::ImhEmailCharactersOnly);
    m_password = addField(zqLocalized("&Password"), {}, FieldKind::Secret);
    for (QLineEdit *field : {m_email, m_password}) {
        connect(field, &QLineEdit::textChanged, this, &CloudAppPage::updateButtons);
    }
    QBoxLayout *row = addRow();
    m_connect = addButton(row, zqLocalized("&Connect"), [this] { connectAccount(); });
    for (const QLineEdit *field : {m_email, m_password}) {
        pressOnReturn(field, m_connect);
    }
    m_cancel = addButton(row, zqLocalized("C&ancel"), [this] { m_account->cancel(); });
    m_disconnect = addButton(row, zqLocalized("&Disconnect"), [this] { disconnectAccount(); });
    addState(row);
    addNote(zqLocalized("The password is kept in the desktop's keyring and nowhere else."));
    CloudAppPage::refresh();
}

QStringList CloudAppPage::preferences() const
{
    return {SecretStore::accountsKey};
}

void CloudAppPage::refresh()
{
    const QString account = CloudAppAccount::current();
    const bool isConnected = !account.isEmpty();
    setFieldsShown({m_email, m_password}, !isConnected);
    setShown({m_connect}, !isConnected);
    setShown({m_cancel}, m_busy == Busy::Connecting);
    setShown({m_disconnect}, isConnected);
    showState(m_busy == Busy::Connecting ? orKeyring(zqLocalized("Asking CloudApp…"))
              : isConnected              ? zqFormat(zqLocalized("Connected as %@"), {account})
                                         : QString(),
              m_busy != Busy::No);
    updateButtons();
}

void CloudAppPage::updateButtons()
{
    const bool isIdle = m_busy == Busy::No;
    m_email->setEnabled(isIdle);
    m_password->setEnabled(isIdle);
    m_connect->setEnabled(isIdle && !m_email->text().trimmed().isEmpty() && !m_password->text().isEmpty());
    m_disconnect->setEnabled(isIdle);
}

void CloudAppPage::end(const ZQError &error)
{
    const bool wasConnecting = std::exchange(m_busy, Busy::No) == Busy::Connecting;
    showEnd(error);
    moveFocusTo(!CloudAppAccount::current().isEmpty() ? static_cast<QWidget *>(m_disconnect)
                : wasConnecting                       ? m_password
                                                      : m_email);
}

void CloudAppPage::connectAccount()
{
    showProblem({});
    m_busy = Busy::Connecting;
    refresh();
    moveFocusTo(m_cancel);
    m_account->testCloudAppCredentials(m_email->text(), m_password->text(),
                                       [self = QPointer(this), account = m_account](CloudAppAccount::Outcome outcome) {
                                           zqOnMainThread(
                                               [account] {}); // it is still asked when the page has gone meanwhile
                                           if (!self) {
                                               return;
                                           }
                                           if (outcome == CloudAppAccount::Outcome::Connected) {
                                               self->m_password->clear();
                                               self->m_email->clear();
                                           }
                                           self->end({});
                                       });
}

void CloudAppPage::disconnectAccount()
{
    if (!isSureToDisconnect(m_user, CloudAppAccount::current())) {
        return;
    }
    showProblem({});
    m_busy = Busy::Disconnecting;
    refresh();
    m_account->disconnect([self = QPointer(this), account = m_account](const ZQError &error) {
        if (self) {
            self->end(error);
        }
    });
}
