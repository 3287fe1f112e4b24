#pragma once

#include "Classes/Browsing/Index/SizeClasses.h"
#include "Kit/Imaging/ZQPictureHash.h"
#include "Models/DataModel/ZQListRows.h"

#include <QDate>
#include <QList>
#include <QMap>
#include <QString>

#include <functional>

// What a search is about: the rows it is applied to, and what it has to ask of them. The functions are called on the
// thread that searches, once for each token that needs them, and not at all for most texts.
struct SearchContext
{
    ZQListRows rows = ZQListRows::Memberships;
    // How many items of the content have each SHA-1. Those of one item may be left out. Null: none has a double.
    std::function<QMap<QString, qint64>()> hashCounts = nullptr;
    // Not to write out those of more than one item: "%@" stands for the condition that a digest is among them.
    bool leavesOutDigests = false;
    // How many live folders lie in each other at most; 1 when none holds another. Null: 1.
    std::function<int()> liveFolderDepth = nullptr;
    // What the pictures look like that a name or bundleID means; those without a picture are left out. Null: none is
    // known.
    std::function<QList<ZQPictureHash>(const QString &name)> picturesNamed = nullptr;
    // The title of the picture that a bundleID means, for the sentence; what is no bundleID as it is. Null: so is all.
    std::function<QString(const QString &name)> titleOfPicture = nullptr;
    QDate today = QDate::currentDate();
    SizeClasses::Limits sizes = SizeClasses::Limits::current();
};
