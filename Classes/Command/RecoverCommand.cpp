#include "Classes/Application/ApplicationParts.h"
#include "Classes/Application/LibraryLock.h"
#include "Classes/Application/LibraryRecovery.h"
#include "Classes/Application/PreferencesController.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Command/CommandUserInteraction.h"
#include "Classes/Command/Commands.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QJsonObject>

namespace {

int refuse(const ZQError &error, CommandContext &context)
{
    context.fail(error.localizedDescription());
    return 1;
}

void report(const LibraryRecovery &recovery, CommandContext &context)
{
    if (!context.json) {
        context.print(recovery.text());
        return;
    }
    const QJsonObject unreadable{{QStringLiteral("items"), recovery.unreadableItems},
                                 {QStringLiteral("sidebarEntries"), recovery.unreadableEntries},
                                 {QStringLiteral("memberships"), recovery.unreadableMemberships}};
    context.printJSON(QJsonObject{{QStringLiteral("damaged"), true},
                                  {QStringLiteral("items"), recovery.items},
                                  {QStringLiteral("sidebarEntries"), recovery.sidebarEntries},
                                  {QStringLiteral("tags"), recovery.tags},
                                  {QStringLiteral("memberships"), recovery.memberships},
                                  {QStringLiteral("unreadable"), unreadable},
                                  {QStringLiteral("damagedStore"), recovery.keptPath}});
}

} // namespace

int zqRunRecover(const QString &library, CommandContext &context)
{
    if (context.delegate) {
        return refuse(ZQError::with(LibraryLock::errorDomain, LibraryLock::InUse, zqLocalized("The library is open."),
                                    zqLocalized("Quit Zelto, then recover it.")),
                      context);
    }
    CommandUserInteraction user;
    ApplicationParts parts;
    parts.userInteraction = &user;
    tamberin_AppDelegate delegate(parts);
    PreferencesController::registerDefaultPreferences();
    const QString given = library.isEmpty() ? delegate.libraryBundleDirectory() : context.absolutePath(library);
    const QString store = given + QStringLiteral("/storedata");
    if (!QFileInfo(store).isFile()) {
        return context.fail(zqFormat(zqLocalized("there is no library database “%@”; name the library with --library, "
                                                 "or put back a copy from a backup"),
                                     {store}));
    }
    delegate.setLibraryBundleDirectory(given);
    ZQError error;
    if (!delegate.lockLibrary(&error)) {
        return refuse(error, context);
    }
    if (ZQPersistentStoreCoordinator::checkStoreAtPath(store).isSound()) {
        if (context.json) {
            context.printJSON(QJsonObject{{QStringLiteral("damaged"), false}});
        } else {
            context.print(zqLocalized("Nothing is damaged; the library was left as it is."));
        }
        return 0;
    }
    const auto recovery = delegate.recoverLibrary(&error);
    if (!recovery) {
        return context.fail(error.localizedDescription());
    }
    report(*recovery, context);
    return 0;
}
