#include "Models/DataModel/ZQMisnamedFile.h"

#include "Kit/Files/ZQOwnMove.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Models/DataModel/ZQItemTitle.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQModelFetch.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>

namespace {

bool canBeFileOf(const ZQLibraryBaseItem &item, const QString &name)
{
    return zqPathExtension(name) == item.originalExtension() && name != item.thumbName() &&
           name != ZQLibraryBaseItem::representationBitmapName && !zqBaseName(name).endsWith(QStringLiteral("_thumb"));
}

bool isAloneInDirectory(const ZQLibraryBaseItem &item)
{
    ZQManagedObjectContext *const context = item.managedObjectContext();
    const auto all = context ? zqFetch<ZQLibraryBaseItem>(*context, QStringLiteral("bundleID == %@"), {item.bundleID()})
                             : ZQFetched<ZQLibraryBaseItem>();
    return all && all->size() == 1;
}

} // namespace

QString zqMisnamedFileOf(const ZQLibraryBaseItem &item)
{
    const QString expected = item.managedItemURL();
    const QString directory = item.bundleURL();
    if (!item.managed() || directory.isEmpty() || item.originalExtension().isEmpty() ||
        (!expected.isEmpty() && QFileInfo::exists(expected))) {
        return {};
    }
    QStringList found;
    const QStringList names =
        QDir(directory).entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks);
    for (const QString &name : names) {
        if (canBeFileOf(item, name)) {
            found.append(directory + u'/' + name);
        }
    }
    return found.size() == 1 && isAloneInDirectory(item) ? found.first() : QString();
}

bool zqNameFileAfterItem(ZQLibraryBaseItem &item, ZQError *error)
{
    const QString path = zqMisnamedFileOf(item);
    if (path.isEmpty()) {
        zqSetError(error, ZQError::posix(ENOENT, item.title()));
        return false;
    }
    const QString extension = item.originalExtension();
    const QString title = zqItemTitleForText(item.title(), extension, zqBaseName(path));
    const QString named = item.bundleURL() + u'/' + title + u'.' + extension;
    if (named != path && !zqMoveNoted(path, named, error)) {
        return false;
    }
    item.updateFileURLsForURL(named);
    item.setTitle(title);
    return true;
}
