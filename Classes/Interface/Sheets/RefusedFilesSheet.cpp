#include "Classes/Interface/Sheets/RefusedFilesSheet.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"

#include <QBoxLayout>
#include <QDesktopServices>
#include <QFileInfo>
#include <QListWidget>
#include <QPushButton>
#include <QUrl>

namespace {
constexpr int closeCode = 1;
constexpr qsizetype longestReason = 600;
} // namespace

RefusedFilesSheet::RefusedFilesSheet(QWidget *window, const QString &title, const QList<RefusedFile> &files, Way way)
    : Sheet(window, title), m_list(new QListWidget(this))
{
    setWidth(600);
    m_list->setAccessibleName(zqLocalized("Files that were not imported"));
    m_list->setMinimumHeight(220);
    m_list->setWordWrap(true);
    m_list->setSpacing(3);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    for (const RefusedFile &file : files) {
        auto *row = new QListWidgetItem(
            QFileInfo(file.path).fileName() + u'\n' + zqShortened(file.reason, longestReason), m_list);
        row->setData(Qt::UserRole, file.path);
        row->setToolTip(file.path);
    }
    m_list->setCurrentRow(0);
    connect(m_list, &QListWidget::itemActivated, this, &RefusedFilesSheet::reveal);
    content()->addWidget(m_list);
    auto *button = new QPushButton(zqLocalized("Show in Folder"), this);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, &RefusedFilesSheet::reveal);
    footer()->insertWidget(0, button);
    if (way == Way::ToImported) {
        auto *imported = new QPushButton(zqLocalized("Show Imported"), this);
        imported->setAutoDefault(false);
        connect(imported, &QPushButton::clicked, this, [this] { done(showCode); });
        footer()->insertWidget(1, imported);
    }
    addButton(zqLocalized("Close"), closeCode, true);
}

QString RefusedFilesSheet::folderToShow(const QString &path)
{
    QFileInfo info(path);
    do {
        info = QFileInfo(info.absolutePath());
    } while (!info.isDir() && !info.isRoot());
    return info.absoluteFilePath();
}

void RefusedFilesSheet::reveal() const
{
    if (const QListWidgetItem *row = m_list->currentItem()) {
        QDesktopServices::openUrl(QUrl::fromLocalFile(folderToShow(row->data(Qt::UserRole).toString())));
    }
}
