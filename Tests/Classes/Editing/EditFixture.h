#pragma once

#include "Classes/Editing/EditContext.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/ZQSidebarSeed.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Tests/Support/ScratchLibrary.h"
#include "Tests/Support/ScriptedUser.h"

#include <QUndoStack>

#include <gtest/gtest.h>

// A scratch library with the fixed sidebar, and what edits work with on it.
class EditFixture : public testing::Test
{
protected:
    using Item = ZQRef<ZQSidebarBaseItem>;

    EditFixture()
    {
        zqSeedFixedSidebar(library.context());
        library.context().save();
        projects = ZQSidebarBaseItem::projectsLabelInManagedObjectContext(library.context());
        for (const Item &sample : projects->childsItems()) {
            sample->deletePermanently();
        }
        library.context().save();
        for (const char *key : {"removeFromSidebarAlertSuppress", "removeFromSidebarAndContentAlertSuppress"}) {
            ZQUserDefaults::standardUserDefaults().removeObjectForKey(QLatin1StringView(key));
        }
    }
    template <class T>
    Item add(const QString &title, const Item &father)
    {
        const auto item = library.context().insertNewObject<T>();
        item->setTitle(title);
        item->setActive(true);
        father->appendChild(item.get());
        library.context().save();
        return item;
    }
    Item addProject(const QString &title, const Item &father = {})
    {
        return add<ZQSidebarProject>(title, father ? father : projects);
    }
    Item addFolder(const QString &title, const Item &father = {})
    {
        return add<ZQSidebarFolder>(title, father ? father : projects);
    }
    static QStringList titles(const Item &father)
    {
        QStringList result;
        for (const Item &child : father->orderedChildren()) {
            result.append(child->title());
        }
        return result;
    }

    ScratchLibrary library;
    ScriptedUser user;
    QUndoStack undoStack;
    ZQOperationQueue editQueue{QStringLiteral("Edits"), 1};
    EditContext editing{library.context(), user, editQueue,
                        [this] {
                            library.context().save();
                            return true;
                        },
                        &undoStack};
    Item projects;
};
