#include "Classes/Application/LiveFolderTally.h"
#include "Models/DataModel/ZQModel.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <gtest/gtest.h>

TEST(LiveFolderTally, NeverGoesBack)
{
    LiveFolderTally tally;
    const auto id = [](qint64 key) {
        return ZQObjectID{zqCurrentModel()->entity(ZQSidebarWatchedFolder::entityName()), key};
    };
    const ZQObjectID one = id(1);
    const ZQObjectID two = id(2);
    struct Step
    {
        const char *what;
        ZQObjectID root;
        bool isSyncing;
        qsizetype filesDone, filesTotal, done, total;
    };
    const Step steps[] = {
        {"looked through", one, true, 0, 0, 0, 0},
        {"read", one, true, 300, 1000, 300, 1000},
        {"another has its turn", two, true, 5, 10, 305, 1010},
        {"which ends", two, false, 0, 0, 305, 1005},
        {"goes on", one, true, 301, 1000, 306, 1005},
        {"begins anew", one, true, 0, 0, 306, 306},
        {"reads again", one, true, 2, 3, 308, 309},
    };
    for (const Step &step : steps) {
        LiveFolderStatus status;
        status.isSyncing = step.isSyncing;
        status.filesDone = step.filesDone;
        status.filesTotal = step.filesTotal;
        tally.note(step.root, status);
        EXPECT_EQ(tally.done(), step.done) << step.what;
        EXPECT_EQ(tally.total(), step.total) << step.what;
    }
}
