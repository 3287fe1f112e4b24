#include "Classes/Interface/Window/MainToolbar.h"

#include "Classes/Browsing/Search/SearchManager.h"
#include "Classes/Interface/Cloud/CloudButton.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQIcon.h"
#include "Kit/Widgets/ZQTabStrip.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QBoxLayout>
#include <QLineEdit>
#include <QToolButton>

MainToolbar::MainToolbar(QWidget *parent) : QWidget(parent), m_tabStrip(new ZQTabStrip(this))
{
    setObjectName(QStringLiteral("Toolbar"));
    setAttribute(Qt::WA_StyledBackground);
    setFixedHeight(ZQMeasure::toolbarHeight);
    m_sidebarButton = makeButton(QStringLiteral("sidebar"), zqLocalized("Sidebar (Ctrl+B)"));
    m_sidebarButton->setCheckable(true);
    connect(m_sidebarButton, &QToolButton::clicked, this, &MainToolbar::sidebarRequested);
    m_menuButton = makeButton(QStringLiteral("menu"), zqLocalized("Menu (F10)"));
    m_menuButton->setPopupMode(QToolButton::InstantPopup);
    m_addButton = makeButton(QStringLiteral("plus"), zqLocalized("New Project (Ctrl+N)"));
    connect(m_addButton, &QToolButton::clicked, this, &MainToolbar::newProjectRequested);
    auto *import = makeButton(QStringLiteral("import"), zqLocalized("Import… (Ctrl+I)"));
    connect(import, &QToolButton::clicked, this, &MainToolbar::importRequested);
    m_infoButton = makeButton(QStringLiteral("info"), zqLocalized("Info Panel (Ctrl+Shift+I)"));
    m_infoButton->setCheckable(true);
    connect(m_infoButton, &QToolButton::clicked, this, &MainToolbar::infoPanelRequested);
    m_exportButton = makeButton(QStringLiteral("export"), zqLocalized("Quick Export (Ctrl+E)"));
    m_exportButton->setCheckable(true);
    connect(m_exportButton, &QToolButton::clicked, this, &MainToolbar::exportPanelRequested);
    m_cloudButton = new CloudButton(this);
    m_search = new QLineEdit(this);
    m_search->setObjectName(QStringLiteral("Search"));
    m_search->setPlaceholderText(zqLocalized("Search or #token"));
    m_search->setAccessibleName(zqLocalized("Search"));
    m_search->addAction(ZQIcon::icon(QStringLiteral("search")), QLineEdit::LeadingPosition);
    m_search->setFixedSize(320, 30);
    m_search->setMaxLength(int(SearchManager::longestText));
    m_search->setClearButtonEnabled(false);

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(10, 0, 10, 0);
    row->setSpacing(6);
    row->addWidget(m_sidebarButton);
    row->addWidget(m_addButton);
    row->addWidget(import);
    row->addSpacing(8);
    row->addWidget(m_tabStrip, 1, Qt::AlignBottom);
    row->addWidget(m_search);
    row->addWidget(m_exportButton);
    row->addWidget(m_cloudButton);
    row->addWidget(m_infoButton);
    row->addWidget(m_menuButton);
    const QList<QWidget *> stops =
        QList<QWidget *>{m_sidebarButton, m_addButton, import} + m_tabStrip->focusStops() +
        QList<QWidget *>{m_search, m_exportButton, m_cloudButton, m_infoButton, m_menuButton};
    for (qsizetype i = 1; i < stops.size(); ++i) { // Tab goes as they stand
        setTabOrder(stops[i - 1], stops[i]);
    }
}

QToolButton *MainToolbar::makeButton(const QString &icon, const QString &name)
{
    auto *made = new QToolButton(this);
    made->setIcon(ZQIcon::icon(icon));
    made->setIconSize({ZQMeasure::iconSize, ZQMeasure::iconSize});
    made->setFixedSize(30, 28);
    made->setAccessibleName(name);
    made->setToolTip(name);
    made->setFocusPolicy(Qt::TabFocus);
    return made;
}

void MainToolbar::showAdds(bool tags)
{
    const QString name = tags ? zqLocalized("New Tag") : zqLocalized("New Project (Ctrl+N)");
    m_addButton->setAccessibleName(name);
    m_addButton->setToolTip(name);
}

void MainToolbar::showPanes(bool isSidebarShown, bool isInfoPanelShown, bool isExportPanelShown)
{
    m_sidebarButton->setChecked(isSidebarShown);
    m_infoButton->setChecked(isInfoPanelShown);
    m_exportButton->setChecked(isExportPanelShown);
}
