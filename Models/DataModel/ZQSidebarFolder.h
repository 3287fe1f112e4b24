#pragma once

#include "Models/DataModel/_ZQSidebarFolder.h"

// A folder of projects and folders; the PROJECTS and LIVE FOLDERS labels are folders too.
class ZQSidebarFolder : public _ZQSidebarFolder
{
public:
    // The memberships of several projects, those of one project after those of another.
    struct SubprojectItems
    {
        QList<ZQRef<ZQProjectItem>> sortedResults;
        QList<ZQRef<ZQSidebarBaseItem>> subprojects;
        QList<qint64> projectsCounts; // how many of `sortedResults` each of `subprojects` has, in order
    };
    // `subProjects` in order, a folder replaced by the projects below it; each project once.
    static std::optional<SubprojectItems>
    subprojectsChildsItemsWithSortDescriptors(const QList<ZQSortDescriptor> &sortDescriptors,
                                              const QList<ZQRef<ZQSidebarBaseItem>> &andSubProjects,
                                              ZQManagedObjectContext &inManagedObjectContext);
    static QList<ZQRef<ZQSidebarBaseItem>> expandedProjects(const QList<ZQRef<ZQSidebarBaseItem>> &items);

    bool isFolder() const override { return true; }
    QString typeString() const override;
    QString icon() const override { return QStringLiteral("folder"); }
};
