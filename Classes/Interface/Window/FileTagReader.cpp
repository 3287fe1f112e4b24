#include "Classes/Interface/Window/FileTagReader.h"

#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Widgets/ZQGridView.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"

#include <QEvent>

#include <algorithm>
#include <utility>

FileTagReader::FileTagReader(WindowContext &window, BrowserViewController &browser, QWidget *frontWindow)
    : QObject(frontWindow), m_window(window), m_browser(browser)
{
    m_selected.setSingleShot(true);
    m_selected.setInterval(200); // moving through items with a held key reads only where it stops
    connect(&m_selected, &QTimer::timeout, this, [this] {
        if (m_window.isBusy()) {
            m_selected.start(); // which may change the selection with each batch, and the files it is writing
        } else {
            read(m_browser.selectedItems());
        }
    });
    connect(&browser, &BrowserViewController::selectionChanged, this, [this] { m_selected.start(); });
    frontWindow->installEventFilter(this);
}

bool FileTagReader::eventFilter(QObject *object, QEvent *event)
{
    if (object == parent() && event->type() == QEvent::WindowActivate) {
        read(m_browser.content().libraryItemIDs(m_browser.grid().visibleIndexes()));
    }
    return QObject::eventFilter(object, event);
}

void FileTagReader::read(QList<ZQObjectID> items)
{
    items.resize(std::min(items.size(), mostAtOnce));
    const auto found = ZQLibraryBaseItem::itemsWithIDs(items, m_window.context);
    if (!found.isEmpty()) {
        ZQLibraryEnvironment::current().takeInTagsOfFiles(found);
    }
}
