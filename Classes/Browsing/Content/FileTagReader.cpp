#include "Classes/Browsing/Content/FileTagReader.h"

#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"

#include <algorithm>
#include <utility>

FileTagReader::FileTagReader(const EditContext &edits, Items selected, Items onScreen, QObject *parent)
    : QObject(parent), m_edits(edits), m_selected(std::move(selected)), m_onScreen(std::move(onScreen))
{
    m_rest.setSingleShot(true);
    m_rest.setInterval(200); // moving through items with a held key reads only where it stops
    connect(&m_rest, &QTimer::timeout, this, [this] {
        if (m_edits.isBusy()) {
            m_rest.start(); // which may change the selection with each batch, and the files it is writing
        } else {
            read(m_selected());
        }
    });
}

void FileTagReader::selectionDidChange()
{
    m_rest.start();
}

void FileTagReader::windowDidActivate()
{
    read(m_onScreen());
}

void FileTagReader::read(QList<ZQObjectID> items)
{
    items.resize(std::min(items.size(), mostAtOnce));
    const auto found = ZQLibraryBaseItem::itemsWithIDs(items, m_edits.context);
    if (!found.isEmpty()) {
        ZQLibraryEnvironment::current().takeInTagsOfFiles(found);
    }
}
