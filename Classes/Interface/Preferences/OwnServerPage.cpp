#include "Classes/Interface/Preferences/OwnServerPage.h"

#include "Classes/Sharing/SecretStore.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQSecret.h"

#include <QBoxLayout>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

OwnServerPage::OwnServerPage(UserInteraction &user, QWidget *parent)
    : CloudAccountPage(QStringLiteral("webdav"), zqLocalized("Own server"), parent), m_user(user)
{
    addForm();
    QBoxLayout *row = addRow();
    m_connect = addButton(row, zqLocalized("Test and &Connect"), [this] { connectServer(); });
    for (const QLineEdit *field : {m_address, m_name, m_password, m_folder, m_publicAddress}) {
        pressOnReturn(field, m_connect);
    }
    m_cancel = addButton(row, zqLocalized("C&ancel"), [this] { cancel(); });
    m_change = addButton(row, zqLocalized("C&hange…"), [this] { change(); });
    m_disconnect = addButton(row, zqLocalized("&Disconnect"), [this] { disconnectServer(); });
    addState(row);
    addNote(zqLocalized("A Nextcloud makes the links itself, and wants an app password where a second factor is used. "
                        "Any other WebDAV folder needs the address at which everybody can read what lies in it. The "
                        "password is kept in the desktop's keyring and nowhere else."));
    OwnServerPage::refresh();
}

void OwnServerPage::addForm()
{
    m_address = addField(zqLocalized("A&ddress"), QStringLiteral("https://cloud.example.org"));
    m_name = addField(zqLocalized("&User"), {});
    m_password = addField(zqLocalized("&Password"), {}, FieldKind::Secret);
    m_folder = addField(zqLocalized("&Folder"), zqLocalized("Optional: Shared/Zelto"));
    m_publicAddress = addField(zqLocalized("Pu&blic address"), zqLocalized("Optional: https://files.example.org"));
    for (QLineEdit *field : {m_address, m_name, m_password, m_folder, m_publicAddress}) {
        connect(field, &QLineEdit::textChanged, this, &OwnServerPage::updateButtons);
    }
}

QStringList OwnServerPage::preferences() const
{
    return {SecretStore::accountsKey, WebDAVSettings::addressKey, WebDAVSettings::userKey};
}

void OwnServerPage::refresh()
{
    const bool isConnected = WebDAVService().isReady();
    m_isChanging = m_isChanging && isConnected;
    const bool hasForm = !isConnected || m_isChanging;
    setFieldsShown({m_address, m_name, m_password, m_folder, m_publicAddress}, hasForm);
    setShown({m_connect}, hasForm);
    setShown({m_cancel}, m_busy == Busy::Connecting || m_isChanging);
    setShown({m_change, m_disconnect}, !hasForm);
    m_password->setPlaceholderText(m_isChanging ? zqLocalized("As it is") : QString());
    const QString account = WebDAVSettings::stored().account();
    showState(m_busy == Busy::Connecting ? orKeyring(zqLocalized("Asking the server…"))
              : m_busy != Busy::No       ? orKeyring({})
              : isConnected              ? zqFormat(zqLocalized("Connected as %@"), {account})
                                         : QString(),
              m_busy != Busy::No);
    updateButtons();
}

void OwnServerPage::updateButtons()
{
    const bool isIdle = m_busy == Busy::No;
    for (QLineEdit *field : {m_address, m_name, m_password, m_folder, m_publicAddress}) {
        field->setEnabled(isIdle);
    }
    m_connect->setEnabled(isIdle && !m_address->text().trimmed().isEmpty() && !m_name->text().trimmed().isEmpty() &&
                          (!m_password->text().isEmpty() || keepsPassword()));
    m_disconnect->setEnabled(isIdle);
    m_change->setEnabled(isIdle);
}

WebDAVSettings OwnServerPage::entered() const
{
    WebDAVSettings settings;
    settings.address = m_address->text().trimmed();
    settings.user = m_name->text().trimmed();
    settings.folder = m_folder->text().trimmed();
    settings.publicAddress = m_publicAddress->text().trimmed();
    return settings;
}

bool OwnServerPage::keepsPassword() const
{
    return m_isChanging && m_password->text().isEmpty() && entered().account() == WebDAVSettings::stored().account();
}

void OwnServerPage::change()
{
    const WebDAVSettings stored = WebDAVSettings::stored();
    m_address->setText(stored.address);
    m_name->setText(stored.user);
    m_folder->setText(stored.folder);
    m_publicAddress->setText(stored.publicAddress);
    m_password->clear();
    m_isChanging = true;
    showProblem({});
    refresh();
    moveFocusTo(m_password);
}

void OwnServerPage::cancel()
{
    ++m_attempt;
    m_check.cancel();
    if (m_busy == Busy::No) {
        m_isChanging = false;
        m_password->clear();
    }
    end({});
}

void OwnServerPage::end(const ZQError &error)
{
    m_busy = Busy::No;
    showEnd(error);
    moveFocusTo(m_change->isVisible() ? static_cast<QWidget *>(m_change) : m_password);
}

void OwnServerPage::connectServer()
{
    showProblem({});
    const bool keeps = keepsPassword();
    m_busy = Busy::Connecting;
    refresh();
    moveFocusTo(m_cancel);
    if (!keeps) {
        connectWith(ZQSecret(m_password->text()));
        return;
    }
    SecretStore::shared().password(
        WebDAVSettings::serviceOfSecrets, entered().account(),
        [self = QPointer(this), attempt = m_attempt](const std::optional<QByteArray> &password, const ZQError &error) {
            if (self && attempt == self->m_attempt) {
                password ? self->connectWith(ZQSecret(*password)) : self->end(error);
            }
        });
}

void OwnServerPage::connectWith(const ZQSecret &password)
{
    m_check.connectTo(entered(), password, [self = QPointer(this)](const ZQError &error) {
        if (self) {
            if (error.isNull()) {
                self->m_password->clear();
                self->m_isChanging = false;
            }
            self->end(error);
        }
    });
}

void OwnServerPage::disconnectServer()
{
    if (!isSureToDisconnect(m_user, WebDAVSettings::stored().account())) {
        return;
    }
    showProblem({});
    m_busy = Busy::Disconnecting;
    refresh();
    WebDAVCheck::disconnect([self = QPointer(this)](const ZQError &error) {
        if (self) {
            self->end(error);
        }
    });
}
