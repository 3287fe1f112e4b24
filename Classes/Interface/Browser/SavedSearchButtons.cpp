#include "Classes/Interface/Browser/SavedSearchButtons.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QBoxLayout>
#include <QToolButton>

SavedSearchButtons::SavedSearchButtons(QWidget *parent)
    : QWidget(parent), m_update(makeButton(zqLocalized("Update Search"),
                                           zqLocalized("Have the smart folder find what is shown (Ctrl+Shift+S)"))),
      m_save(makeButton(zqLocalized("Save Search"), zqLocalized("Save the search as a smart folder (Ctrl+S)")))
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 12, 0);
    row->setSpacing(12);
    row->addWidget(m_update);
    row->addWidget(m_save);
    connect(m_update, &QToolButton::clicked, this, &SavedSearchButtons::updateRequested);
    connect(m_save, &QToolButton::clicked, this, &SavedSearchButtons::saveRequested);
    setOffers(false, false);
}

QToolButton *SavedSearchButtons::makeButton(const QString &title, const QString &tip)
{
    auto *button = new QToolButton(this);
    button->setObjectName(QStringLiteral("Link"));
    button->setText(title);
    button->setAccessibleName(title);
    button->setToolTip(tip);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

void SavedSearchButtons::setOffers(bool save, bool update)
{
    m_save->setVisible(save);
    m_update->setVisible(update);
    setVisible(save || update);
}
