#pragma once

#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"

// What a recovery brought back, in the words of a library. What is unreadable is "at least so many".
struct LibraryRecovery
{
    qint64 items = 0;
    qint64 sidebarEntries = 0; // without tags
    qint64 tags = 0;
    qint64 memberships = 0; // of items in projects and of tags on items
    qint64 unreadableItems = 0;
    qint64 unreadableEntries = 0; // tags included
    qint64 unreadableMemberships = 0;
    QString keptPath; // the damaged store

    static LibraryRecovery of(const ZQStoreRecovery &report, const ZQManagedObjectModel &model);
    QString text() const; // a few lines for a person

private:
    QString lossText() const;
};
