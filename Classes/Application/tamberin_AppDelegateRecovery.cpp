// A damaged store: what is offered, and what comes back.

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQStoreCheck.h"

std::optional<LibraryRecovery> tamberin_AppDelegate::recoverLibrary(ZQError *error)
{
    if (m_coordinator) {
        zqSetError(error, ZQError::with(QStringLiteral("zelto.library"), 4, zqLocalized("The library is open."),
                                        zqLocalized("Quit Zelto, then recover it.")));
        return std::nullopt;
    }
    if (!lockLibrary(error)) {
        return std::nullopt;
    }
    const QString path = libraryBundleDirectory() + QStringLiteral("/storedata");
    const auto report = ZQPersistentStoreCoordinator::recoverStoreAtPath(managedObjectModel(), path, error);
    return report ? std::optional(LibraryRecovery::of(*report, *managedObjectModel())) : std::nullopt;
}

bool tamberin_AppDelegate::offerRecovery(const ZQError &damage)
{
    const bool isAgreed = damage.userInfo.value(QStringLiteral("recoveryWanted")).toBool();
    if (!isAgreed && userInteraction().ask(
                         {zqLocalized("The library is damaged"),
                          zqLocalized("Zelto can copy everything that can still be read into a new store. The damaged "
                                      "one is kept beside it."),
                          {zqLocalized("Recover"), zqLocalized("Cancel")},
                          {},
                          false}) != 0) {
        return false;
    }
    ZQError error;
    const auto recovery = recoverLibrary(&error);
    if (!recovery) {
        userInteraction().presentError(error);
        return false;
    }
    userInteraction().ask({zqLocalized("The library was recovered"), recovery->text(), {zqLocalized("OK")}, {}, false});
    return true;
}

void tamberin_AppDelegate::reportDamage(const QStringList &problems)
{
    zqLogDamage(problems);
    const int answer = userInteraction().ask(
        {zqLocalized("The library is damaged"),
         zqLocalized("Zelto can quit, open again and copy everything that can still be read into a new store. The "
                     "damaged one is kept beside it. Until then some items cannot be shown."),
         {zqLocalized("Recover"), zqLocalized("Later")},
         {},
         false});
    if (answer == 0 && m_coordinator) {
        m_coordinator->requestRecovery();
        m_reopensAfterQuit = true;
        terminate();
    }
}
