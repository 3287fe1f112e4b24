#include "Classes/Interface/Browser/EmptyState.h"

#include "Classes/Interface/Browser/BrowserContent.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QBoxLayout>
#include <QPushButton>

EmptyState::EmptyState(QWidget *parent)
    : QWidget(parent), m_everything(new QPushButton(zqLocalized("Show All"), this)),
      m_import(new QPushButton(zqLocalized("Import…"), this)), m_enable(new QPushButton(zqLocalized("Enable"), this)),
      m_use(new QPushButton(zqLocalized("Use This Folder"), this))
{
    m_everything->setAccessibleName(zqLocalized("Show everything, without the search"));
    m_import->setAccessibleName(zqLocalized("Import files here"));
    m_enable->setAccessibleName(zqLocalized("Enable this live folder"));
    m_use->setAccessibleName(zqLocalized("Use the folder that is in the place of this one"));
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(16, 136, 16, 0);
    row->addStretch(1);
    for (QPushButton *button : {m_everything, m_import, m_enable, m_use}) {
        button->setAutoDefault(true); // Return presses it, as in a sheet
        row->addWidget(button);
    }
    row->addStretch(1);
    connect(m_everything, &QPushButton::clicked, this, &EmptyState::everythingRequested);
    connect(m_import, &QPushButton::clicked, this, &EmptyState::importRequested);
    connect(m_enable, &QPushButton::clicked, this, &EmptyState::enableRequested);
    connect(m_use, &QPushButton::clicked, this, &EmptyState::useRequested);
    hide();
}

void EmptyState::showFor(const BrowserContent &content)
{
    const bool isEmpty = content.count() == 0 && content.error().isNull() && !content.isLoading();
    const bool isSearched = !content.filter().isEmpty();
    const bool isAway = content.isFolderAway() || content.tab().hasDisabledWatchedFolders();
    const bool takesFiles = content.tab().canImportItems() && !isAway && !content.isFolderSyncing();
    const bool canEnable = content.isFolderOff() && !isSearched;
    const bool canUse = content.isFolderOfAnother() && !isSearched;
    m_everything->setVisible(isSearched);
    m_import->setVisible(!isSearched && takesFiles);
    m_enable->setVisible(canEnable);
    m_use->setVisible(canUse);
    setVisible(isEmpty && (takesFiles || canEnable || canUse || (isSearched && !content.isFolderAway())));
}
