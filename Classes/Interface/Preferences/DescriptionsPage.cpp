#include "Classes/Interface/Preferences/DescriptionsPage.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Interface/Preferences/DescriptionGuide.h"
#include "Classes/Interface/Preferences/DescriptionReview.h"
#include "Classes/Sharing/CustomService.h"
#include "Classes/Sharing/CustomServices.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"

#include <QBoxLayout>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>

#include <utility>

namespace {
constexpr int listHeight = 110;
} // namespace

DescriptionsPage::DescriptionsPage(UserInteraction &user, QWidget *parent)
    : CloudAccountPage(QStringLiteral("custom"), zqLocalized("Others"), parent), m_user(user),
      m_list(new QListWidget(this))
{
    m_list->setObjectName(QStringLiteral("Descriptions"));
    m_list->setAccessibleName(zqLocalized("Other services"));
    m_list->setFixedHeight(listHeight);
    column()->addWidget(m_list);
    connect(m_list, &QListWidget::currentRowChanged, this, [this] {
        updateButtons();
        Q_EMIT changed(); // of which there is to be told whether it is in use
    });
    QBoxLayout *row = addRow();
    m_import = addButton(row, zqLocalized("&Import…"), [this] { importFile(); });
    m_remove = addButton(row, zqLocalized("&Remove"), [this] { removeSelected(); });
    m_example = addButton(row, zqLocalized("Save an &Example…"), [this] { saveExample(); });
    addState(row);
    addNote(zqLocalized("Any other service that takes files over the web, as a description file says: its address, "
                        "headers and form fields, and where the link is found in its answer."));
    addLink(zqLocalized("What a description says"), zqLocalized("Shows every name and what it means."),
            [this] { (new DescriptionGuide(window()))->open([](std::optional<int>) {}); });
    DescriptionsPage::refresh();
}

QStringList DescriptionsPage::preferences() const
{
    return {CustomServices::listKey, SecretStore::accountsKey};
}

void DescriptionsPage::refresh()
{
    const QListWidgetItem *const current = m_list->currentItem();
    const QString selected = current ? current->data(Qt::UserRole).toString() : QString();
    const QSignalBlocker blocker(m_list);
    m_list->clear();
    for (const UploadDescription &each : CustomServices::all()) {
        const QString format = CustomServices::hasSecrets(each)
                                   ? zqLocalized("%@, to %@")
                                   : zqLocalized("%@, to %@. A password is missing: import it again.");
        auto *item = new QListWidgetItem(zqFormat(format, {each.name, each.destination()}), m_list);
        item->setData(Qt::UserRole, each.name);
        item->setToolTip(each.url.toString());
        if (each.name == selected) {
            m_list->setCurrentItem(item);
        }
    }
    updateButtons();
}

QString DescriptionsPage::serviceToUse() const
{
    const QListWidgetItem *const one = m_list->count() == 1 ? m_list->item(0) : m_list->currentItem();
    return one ? CustomService::identifierOf(one->data(Qt::UserRole).toString()) : QString();
}

void DescriptionsPage::updateButtons()
{
    m_import->setEnabled(!m_isBusy && !m_review);
    m_remove->setEnabled(!m_isBusy && m_list->currentItem());
}

void DescriptionsPage::setBusy(bool isBusy)
{
    m_isBusy = isBusy;
    showState({}, isBusy);
    updateButtons();
}

void DescriptionsPage::importFile()
{
    FileChoice choice;
    choice.title = zqLocalized("Choose a Description");
    choice.prompt = zqLocalized("Import");
    choice.extensions = {QStringLiteral("json")};
    const QPointer self(this); // the dialog runs the main loop
    const QStringList files = m_user.chooseFilesToOpen(choice);
    if (!self || files.isEmpty()) {
        return;
    }
    ZQError error;
    const auto description = CustomServices::read(files.first(), &error);
    showProblem(description ? QString() : error.localizedDescription());
    if (description) {
        review(*description);
    }
}

void DescriptionsPage::saveExample()
{
    FileChoice choice;
    choice.title = zqLocalized("Save an Example");
    choice.prompt = zqLocalized("Save");
    choice.suggestedName = QStringLiteral("description.json");
    choice.extensions = {QStringLiteral("json")};
    const QPointer self(this); // the dialog runs the main loop
    const std::optional<QString> path = m_user.chooseFileToSave(choice);
    if (!self || !path) {
        return;
    }
    const QByteArray text = UploadDescription::example();
    QFile file(*path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        showProblem(QFileInfo::exists(*path)
                        ? zqFormat(zqLocalized("“%@” is there already. Choose another name."), {*path})
                        : zqFormat(zqLocalized("“%@” cannot be written: %@"), {*path, zqSentence(file.errorString())}));
        return;
    }
    const bool isWritten = file.write(text) == text.size() && file.flush();
    showProblem(isWritten
                    ? QString()
                    : zqFormat(zqLocalized("“%@” cannot be written: %@"), {*path, zqSentence(file.errorString())}));
}

void DescriptionsPage::review(const UploadDescription &description)
{
    endReview();
    m_review = new DescriptionReview(description, CustomServices::named(description.name).has_value(), this);
    column()->addWidget(m_review);
    connect(m_review, &DescriptionReview::accepted, this,
            [this, description] { add(description, m_review->secrets()); });
    connect(m_review, &DescriptionReview::rejected, this, &DescriptionsPage::endReview);
    m_review->takeFocus();
    updateButtons();
}

void DescriptionsPage::endReview()
{
    if (m_review) {
        std::exchange(m_review, nullptr)->deleteLater();
        showProblem({});
        updateButtons();
        m_import->setFocus();
    }
}

// The review stays until the secrets are kept, so that nothing has to be entered twice.
void DescriptionsPage::add(const UploadDescription &description, const QHash<QString, ZQSecret> &secrets)
{
    showProblem({});
    setBusy(true);
    m_review->setEnabled(false);
    CustomServices::add(description, secrets, [self = QPointer(this)](const ZQError &error) {
        if (!self) {
            return;
        }
        self->setBusy(false);
        if (error.isNull()) {
            self->endReview();
        } else if (self->m_review) {
            self->m_review->setEnabled(true);
        }
        self->showEnd(error);
    });
}

void DescriptionsPage::removeSelected()
{
    const QString name = m_list->currentItem()->data(Qt::UserRole).toString();
    const int answer = m_user.ask({zqFormat(zqLocalized("Remove “%@”?"), {name}),
                                   zqLocalized("The passwords that were entered for it are forgotten, too. What was "
                                               "uploaded stays where it is."),
                                   {zqLocalized("Remove"), zqLocalized("Cancel")},
                                   {},
                                   true});
    if (answer != 0) {
        return;
    }
    showProblem({});
    setBusy(true);
    CustomServices::remove(name, [self = QPointer(this)](const ZQError &error) {
        if (self) {
            self->setBusy(false);
            self->showEnd(error);
        }
    });
}
