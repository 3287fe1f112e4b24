#include "Classes/LiveFolders/SyncRun.h"

#include "Classes/Import/ImportErrors.h"

bool SyncRun::save()
{
    ZQError error;
    moc->processPendingChanges();
    if (!didFail && !moc->save(&error)) {
        logImportSaveError(error);
        refusal = error.localizedDescription();
        moc->rollback();
        didFail = true;
    }
    return !didFail;
}
