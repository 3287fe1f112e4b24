#pragma once

#include "Classes/Browsing/Search/SearchContext.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <QList>

// What a search has to ask of the store, as it was saved.
class StoreSearch
{
public:
    // A search of `rows` in a content that consists of `requests`. Only on the context's thread, and while it lives.
    static SearchContext context(ZQListRows rows, const QList<ZQFetchRequest> &requests,
                                 ZQManagedObjectContext &inManagedObjectContext);

    // How many items of the content have each SHA-1; an item that is in it twice is one.
    static QMap<QString, qint64> hashCounts(const QList<ZQFetchRequest> &requests,
                                            ZQManagedObjectContext &inManagedObjectContext);
    // What the active picture of this bundleID looks like; none where it is not known.
    static QList<ZQPictureHash> picturesIdentified(const QString &bundleID,
                                                   ZQManagedObjectContext &inManagedObjectContext);
    // The same, or, where there is none, those whose title, with or without the extension, is `name`; at most
    // `mostPictures`.
    static QList<ZQPictureHash> picturesNamed(const QString &name, ZQManagedObjectContext &inManagedObjectContext);
    static ZQPredicate titledPictures(const QString &name); // the condition on those of this title
    static constexpr int mostPictures = 16;
    // Of the picture of this bundleID; of what is no bundleID, `name` itself.
    static QString titleOfPicture(const QString &name, ZQManagedObjectContext &inManagedObjectContext);
    // How many active live folders lie in each other at most; 1 for none.
    static int liveFolderDepth(ZQManagedObjectContext &inManagedObjectContext);
};
