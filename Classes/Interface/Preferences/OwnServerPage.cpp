#include "Classes/Interface/Preferences/OwnServerPage.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQSecret.h"

#include <QBoxLayout>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

OwnServerPage::OwnServerPage(QWidget *parent)
    : CloudAccountPage(QStringLiteral("webdav"), zqLocalized("Own server"), parent)
{
    addForm();
    QBoxLayout *row = addRow();
    m_connect = addButton(row, zqLocalized("Test and &Connect"), [this] { connectServer(); });
    m_cancel = addButton(row, zqLocalized("C&ancel"), [this] {
        m_check.cancel();
        end({});
    });
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
    m_user = addField(zqLocalized("&User"), {});
    m_password = addField(zqLocalized("&Password"), {}, FieldKind::Secret);
    m_folder = addField(zqLocalized("&Folder"), zqLocalized("Optional: Shared/Zelto"));
    m_publicAddress = addField(zqLocalized("Pu&blic address"), zqLocalized("Optional: https://files.example.org"));
    for (QLineEdit *field : {m_address, m_user, m_password, m_folder, m_publicAddress}) {
        connect(field, &QLineEdit::textChanged, this, &OwnServerPage::updateButtons);
        connect(field, &QLineEdit::returnPressed, this, [this] { m_connect->click(); });
    }
}

QStringList OwnServerPage::preferences() const
{
    return {QStringLiteral("SecretAccounts"), QStringLiteral("WebDAVAddress"), QStringLiteral("WebDAVUser")};
}

void OwnServerPage::refresh()
{
    const bool isConnected = WebDAVService().isReady();
    setFieldsShown({m_address, m_user, m_password, m_folder, m_publicAddress}, !isConnected);
    setShown({m_connect}, !isConnected);
    setShown({m_cancel}, m_busy == Busy::Connecting);
    setShown({m_disconnect}, isConnected);
    const QString account = WebDAVSettings::stored().account();
    showState(m_busy == Busy::Connecting ? zqLocalized("Asking the server…")
              : isConnected              ? zqFormat(zqLocalized("Connected as %@"), {account})
                                         : QString(),
              m_busy != Busy::No);
    updateButtons();
}

void OwnServerPage::updateButtons()
{
    const bool isIdle = m_busy == Busy::No;
    for (QLineEdit *field : {m_address, m_user, m_password, m_folder, m_publicAddress}) {
        field->setEnabled(isIdle);
    }
    m_connect->setEnabled(isIdle && !m_address->text().trimmed().isEmpty() && !m_user->text().trimmed().isEmpty() &&
                          !m_password->text().isEmpty());
    m_disconnect->setEnabled(isIdle);
}

WebDAVSettings OwnServerPage::entered() const
{
    WebDAVSettings settings;
    settings.address = m_address->text().trimmed();
    settings.user = m_user->text().trimmed();
    settings.folder = m_folder->text().trimmed();
    settings.publicAddress = m_publicAddress->text().trimmed();
    return settings;
}

void OwnServerPage::end(const ZQError &error)
{
    m_busy = Busy::No;
    showProblem(error.isNull() ? QString() : error.localizedDescription());
    refresh();
    Q_EMIT changed();
}

void OwnServerPage::connectServer()
{
    showProblem({});
    m_busy = Busy::Connecting;
    refresh();
    m_check.connectTo(entered(), ZQSecret(m_password->text()), [self = QPointer(this)](const ZQError &error) {
        if (self) {
            if (error.isNull()) {
                self->m_password->clear();
            }
            self->end(error);
        }
    });
}

void OwnServerPage::disconnectServer()
{
    showProblem({});
    m_busy = Busy::Disconnecting;
    refresh();
    WebDAVCheck::disconnect([self = QPointer(this)](const ZQError &error) {
        if (self) {
            self->end(error);
        }
    });
}
