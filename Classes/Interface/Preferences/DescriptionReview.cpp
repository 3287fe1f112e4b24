#include "Classes/Interface/Preferences/DescriptionReview.h"

#include "Classes/Interface/Preferences/CloudAccountPage.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>

#include <algorithm>

namespace {
constexpr int longestSecret = 4000;
} // namespace

DescriptionReview::DescriptionReview(const UploadDescription &description, bool replaces, QWidget *parent)
    : QWidget(parent), m_add(new QPushButton(zqLocalized("&Add"), this))
{
    setObjectName(QStringLiteral("Card"));
    setAttribute(Qt::WA_StyledBackground);
    QString text =
        zqFormat(zqLocalized("“%@” sends what you share to %@."), {description.name, description.destination()});
    if (description.url.scheme() != u"https") {
        text += u' ' + zqLocalized("It is not encrypted on its way.");
    }
    if (replaces) {
        text += u' ' + zqLocalized("It takes the place of the one of that name.");
    }
    auto *says = new QLabel(text, this);
    says->setTextFormat(Qt::PlainText);
    says->setWordWrap(true);
    auto *form = new QGridLayout;
    form->setHorizontalSpacing(16);
    addSecrets(description, form);
    auto *cancel = new QPushButton(zqLocalized("&Cancel"), this);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    for (QPushButton *button : {cancel, m_add}) {
        button->setAutoDefault(false);
        buttons->addWidget(button);
    }
    m_add->setProperty("primary", true);
    m_add->setEnabled(isComplete());
    connect(m_add, &QPushButton::clicked, this, &DescriptionReview::accepted);
    connect(cancel, &QPushButton::clicked, this, &DescriptionReview::rejected);
    auto *escape = new QShortcut(QKeySequence::Cancel, this);
    escape->setContext(Qt::WidgetWithChildrenShortcut);
    connect(escape, &QShortcut::activated, this, &DescriptionReview::rejected);
    auto *column = new QVBoxLayout(this);
    column->setSpacing(10);
    column->addWidget(says);
    column->addLayout(form);
    column->addLayout(buttons);
}

void DescriptionReview::addSecrets(const UploadDescription &description, QGridLayout *form)
{
    for (const QString &name : description.secrets()) {
        auto *field = new QLineEdit(this);
        field->setEchoMode(QLineEdit::Password);
        field->setMaxLength(longestSecret);
        field->setAccessibleName(name);
        auto *label = new QLabel(name, this);
        label->setTextFormat(Qt::PlainText);
        label->setObjectName(QStringLiteral("Muted"));
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        const int row = form->rowCount();
        form->addWidget(label, row, 0);
        form->addWidget(field, row, 1);
        connect(field, &QLineEdit::textChanged, this, [this] { m_add->setEnabled(isComplete()); });
        CloudAccountPage::pressOnReturn(field, m_add);
        m_fields.insert(name, field);
        m_first = m_first ? m_first : field;
    }
}

bool DescriptionReview::isComplete() const
{
    return std::none_of(m_fields.begin(), m_fields.end(),
                        [](const QLineEdit *field) { return field->text().isEmpty(); });
}

QHash<QString, ZQSecret> DescriptionReview::secrets() const
{
    QHash<QString, ZQSecret> secrets;
    for (auto each = m_fields.begin(); each != m_fields.end(); ++each) {
        secrets.insert(each.key(), ZQSecret(each.value()->text()));
    }
    return secrets;
}

void DescriptionReview::takeFocus()
{
    m_first ? m_first->setFocus() : m_add->setFocus();
}
