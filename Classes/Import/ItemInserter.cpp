#include "Classes/Import/ItemInserter.h"

#include "Kit/Foundation/ZQLog.h"
#include "Models/DataModel/ZQProjectItem.h"

#include <utility>

ItemInserter::Inserted ItemInserter::insert(const QVariantMap &fileData)
{
    QVariantMap values = fileData;
    const QStringList tags = values.take(QStringLiteral("tags")).toStringList();
    const QString itemClass = values.take(QStringLiteral("itemClass")).toString();
    Inserted inserted{.item = zqCast<ZQLibraryBaseItem>(m_context.insertNewObjectForEntityForName(itemClass)),
                      .tags = {}};
    if (!inserted.item) {
        qCWarning(zqLogImport) << "There is no item class" << itemClass;
        return inserted;
    }
    for (auto value = values.constBegin(); value != values.constEnd(); ++value) {
        inserted.item->setValueForKey(value.value(), value.key());
    }
    tag(inserted, tags);
    return inserted;
}

void ItemInserter::tag(Inserted &inserted, const QStringList &names)
{
    for (const QString &name : names) {
        const ZQRef<ZQSidebarTag> tag = tagWithName(name);
        if (tag && !inserted.tags.contains(tag->title())) { // two spellings in the file are one tag
            inserted.item->addTagsObject(tag.get());
            inserted.tags.append(tag->title());
        }
    }
}

ZQRef<ZQSidebarTag> ItemInserter::tagWithName(const QString &text)
{
    const QString name = ZQSidebarTag::tagNameForText(text);
    if (const auto known = m_tags.constFind(name); known != m_tags.constEnd()) {
        return *known;
    }
    bool isNew = false;
    const ZQRef<ZQSidebarTag> tag = ZQSidebarTag::getOrCreateTagWithName(name, m_context, &isNew);
    if (tag && isNew) {
        m_newTags.append(tag);
    }
    m_tags.insert(name, tag);
    return tag;
}

void ItemInserter::removeNewTags()
{
    for (const ZQRef<ZQSidebarTag> &tag : std::as_const(m_newTags)) {
        if (tag->managedObjectContext() && !tag->isDeleted()) {
            tag->deletePermanently();
        }
    }
}

void ItemInserter::put(Inserted &inserted, Place &place)
{
    if (const auto tag = zqCast<ZQSidebarTag>(place.project)) {
        inserted.item->addTagsObject(tag.get());
        inserted.tags.append(tag->title());
    } else if (place.isExplicit && !place.project->isLibrary()) {
        place.waiting.append(inserted.item);
        place.waitingPositions.append(place.position++);
    } else if (!place.project->isLibrary()) {
        const auto membership = m_context.insertNewObject<ZQProjectItem>();
        membership->setProject(place.project.get());
        membership->setItem(inserted.item.get());
        membership->setOrder(qint32(place.position++));
    }
}

void ItemInserter::putWaiting(Place &place)
{
    if (!place.waiting.isEmpty()) {
        place.project->addItems(place.waiting, place.waitingPositions);
    }
    place.waiting.clear();
    place.waitingPositions.clear();
}
