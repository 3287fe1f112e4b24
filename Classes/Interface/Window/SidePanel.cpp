#include "Classes/Interface/Window/SidePanel.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQSwitch.h"

#include <QBoxLayout>
#include <QStackedWidget>

SidePanel::SidePanel(QWidget *parent)
    : QWidget(parent), m_switch(new ZQSwitch({zqLocalized("Info"), zqLocalized("Quick export")}, this)),
      m_stack(new QStackedWidget(this))
{
    setObjectName(QStringLiteral("SidePanel"));
    setAttribute(Qt::WA_StyledBackground);
    auto *bar = new QHBoxLayout;
    bar->setContentsMargins(16, 14, 16, 0);
    bar->addWidget(m_switch);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(bar);
    column->addWidget(m_stack, 1);
    connect(m_switch, &ZQSwitch::currentIndexChanged, this, [this](int index) {
        m_stack->setCurrentIndex(index);
        Q_EMIT pageChanged();
    });
}

void SidePanel::setPages(QWidget *info, QWidget *exportPanel)
{
    m_stack->addWidget(info);
    m_stack->addWidget(exportPanel);
    m_stack->setCurrentIndex(m_switch->currentIndex());
}

SidePanel::Page SidePanel::page() const
{
    return Page(m_switch->currentIndex());
}

void SidePanel::setPage(Page page)
{
    m_switch->setCurrentIndex(int(page));
}
