#include "Classes/Interface/Preferences/CloudAccountPage.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Interface/Preferences/TurningIcon.h"
#include "Classes/Sharing/CloudService.h"
#include "Classes/Sharing/CloudServices.h"
#include "Classes/Sharing/SecretStore.h"
#include "Classes/Sharing/WebBrowser.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQNotificationCenter.h"

#include <QAccessible>
#include <QBoxLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>

namespace {

constexpr int nameWidth = 120;
constexpr int longestText = 2000;

ZQUserDefaults &defaults()
{
    return ZQUserDefaults::standardUserDefaults();
}

} // namespace

CloudAccountPage::CloudAccountPage(const QString &service, const QString &title, QWidget *parent)
    : QWidget(parent), m_column(new QVBoxLayout), m_use(new QPushButton(zqLocalized("Use It for Sharin&g"), this)),
      m_problem(new QLabel(this))
{
    setObjectName(service);
    setAccessibleName(title);
    auto *all = new QVBoxLayout(this);
    all->setContentsMargins(0, 6, 0, 0);
    all->addLayout(m_column);
    all->addWidget(m_use, 0, Qt::AlignLeft);
    all->addWidget(m_problem);
    all->addStretch(1);
    m_column->setSpacing(8);
    m_problem->setObjectName(QStringLiteral("Problem"));
    m_problem->setWordWrap(true);
    m_problem->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_problem->hide();
    m_use->setAutoDefault(false);
    m_use->hide();
    connect(m_use, &QPushButton::clicked, this, [this] { Q_EMIT useRequested(serviceToUse()); });
    m_token = ZQNotificationCenter::defaultCenter().addObserver(SecretStore::waitingDidChange, nullptr,
                                                                [this](const ZQNotification &) { refresh(); });
}

void CloudAccountPage::pressOnReturn(const QLineEdit *field, QPushButton *button)
{
    connect(field, &QLineEdit::returnPressed, button, &QAbstractButton::click, Qt::QueuedConnection);
}

QString CloudAccountPage::orKeyring(const QString &otherwise)
{
    return SecretStore::isWaiting() ? zqLocalized("Waiting for the keyring…") : otherwise;
}

bool CloudAccountPage::isSureToDisconnect(UserInteraction &user, const QString &account)
{
    return user.ask({zqFormat(zqLocalized("Disconnect “%@”?"), {account}),
                     zqLocalized("Its stored password is forgotten. What was uploaded stays where it is, and its links "
                                 "go on working."),
                     {zqLocalized("Disconnect"), zqLocalized("Cancel")},
                     {},
                     true}) == 0;
}

void CloudAccountPage::moveFocusTo(QWidget *widget)
{
    if (isVisible() && window()->isActiveWindow()) {
        widget->setFocus();
    }
}

void CloudAccountPage::showEnd(const ZQError &error)
{
    showProblem(error.isNull() ? QString() : error.localizedDescription());
    refresh();
    Q_EMIT changed();
}

void CloudAccountPage::showUse(const QString &serviceInUse)
{
    const QString own = serviceToUse();
    const auto ready = CloudServices::sharedCloudServices().serviceNamed(own);
    m_use->setVisible(own != serviceInUse && ready && ready->isReady());
}

QLineEdit *CloudAccountPage::addField(const QString &text, const QString &example, FieldKind kind)
{
    if (!m_form) {
        m_form = new QGridLayout;
        m_form->setHorizontalSpacing(16);
        m_form->setVerticalSpacing(8);
        m_form->setColumnMinimumWidth(0, nameWidth);
        m_form->setColumnStretch(1, 1);
        m_column->addLayout(m_form);
    }
    auto *field = new QLineEdit(this);
    field->setPlaceholderText(example);
    field->setMaxLength(longestText);
    field->setAccessibleName(QString(text).remove(u'&'));
    if (kind == FieldKind::Secret) {
        field->setEchoMode(QLineEdit::Password);
        field->setInputMethodHints(Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText |
                                   Qt::ImhNoAutoUppercase);
    }
    auto *label = new QLabel(text, this);
    label->setObjectName(QStringLiteral("Muted"));
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label->setBuddy(field);
    m_names.insert(field, label);
    const int row = m_form->rowCount();
    m_form->addWidget(label, row, 0);
    m_form->addWidget(field, row, 1);
    return field;
}

QLineEdit *CloudAccountPage::addPreference(const QString &text, const QString &key, const QString &example)
{
    QLineEdit *field = addField(text, example);
    m_keys.append(key);
    m_fields.append(field);
    connect(field, &QLineEdit::editingFinished, this, [this, field, key] { store(field, key); });
    return field;
}

void CloudAccountPage::store(QLineEdit *field, const QString &key)
{
    const QString text = field->text().trimmed();
    ZQError error;
    if (text != defaults().stringForKey(key) &&
        !defaults().storeObjectForKey(text.isEmpty() ? QVariant() : QVariant(text), key, &error)) {
        Q_EMIT refused(error);
    }
    refresh();
}

void CloudAccountPage::storeFields()
{
    for (qsizetype i = 0; i < m_fields.size(); ++i) {
        store(m_fields[i], m_keys[i]);
    }
}

void CloudAccountPage::refresh()
{
    for (qsizetype i = 0; i < m_fields.size(); ++i) {
        const QString stored = defaults().stringForKey(m_keys[i]);
        // What is being typed is not taken away by what changed elsewhere.
        if (!(m_fields[i]->hasFocus() && m_fields[i]->isModified()) && m_fields[i]->text() != stored) {
            m_fields[i]->setText(stored);
        }
    }
}

QLabel *CloudAccountPage::addNote(const QString &text)
{
    auto *label = new QLabel(text, this);
    label->setObjectName(QStringLiteral("SmallMuted"));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse); // addresses to be copied
    m_column->addWidget(label);
    return label;
}

void CloudAccountPage::addLink(const QString &text, const QUrl &url)
{
    addLink(text, url.toString(), [this, url] {
        const bool isOpen = WebBrowser::shared().open(url);
        showProblem(isOpen
                        ? QString()
                        : zqFormat(zqLocalized("No web browser could be opened. The address is %@"), {url.toString()}));
    });
}

void CloudAccountPage::addLink(const QString &text, const QString &toolTip, std::function<void()> run)
{
    auto *link = new QToolButton(this);
    link->setObjectName(QStringLiteral("Link"));
    link->setText(text);
    link->setToolTip(toolTip);
    link->setCursor(Qt::PointingHandCursor);
    link->setFocusPolicy(Qt::TabFocus);
    connect(link, &QToolButton::clicked, this, std::move(run));
    m_column->addWidget(link, 0, Qt::AlignLeft);
}

QBoxLayout *CloudAccountPage::addRow()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(10);
    m_column->addLayout(row);
    return row;
}

QPushButton *CloudAccountPage::addButton(QBoxLayout *row, const QString &text, std::function<void()> run)
{
    auto *button = new QPushButton(text, this);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, std::move(run));
    row->addWidget(button);
    return button;
}

void CloudAccountPage::addState(QBoxLayout *row)
{
    m_turning = new TurningIcon(this);
    m_turning->hide();
    m_state = new QLabel(this);
    m_state->setObjectName(QStringLiteral("SmallMuted"));
    m_state->setTextFormat(Qt::PlainText);
    m_state->setWordWrap(true);
    row->addWidget(m_turning);
    row->addWidget(m_state, 1);
}

void CloudAccountPage::showState(const QString &text, bool isUnderWay)
{
    m_turning->setVisible(isUnderWay);
    if (m_state->text() != text) {
        m_state->setText(text);
        m_state->setAccessibleName(text);
        QAccessibleEvent event(m_state, QAccessible::Alert);
        QAccessible::updateAccessibility(&event);
    }
}

void CloudAccountPage::showProblem(const QString &text)
{
    m_problem->setText(text);
    m_problem->setTextFormat(Qt::PlainText);
    m_problem->setVisible(!text.isEmpty());
    if (!text.isEmpty()) {
        m_problem->setAccessibleName(text);
        QAccessibleEvent event(m_problem, QAccessible::Alert);
        QAccessible::updateAccessibility(&event);
    }
}

void CloudAccountPage::setShown(std::initializer_list<QWidget *> widgets, bool isShown)
{
    for (QWidget *widget : widgets) {
        widget->setVisible(isShown);
    }
}

void CloudAccountPage::setFieldsShown(std::initializer_list<QLineEdit *> fields, bool isShown)
{
    for (QLineEdit *field : fields) {
        setShown({field, m_names.value(field)}, isShown);
    }
}
