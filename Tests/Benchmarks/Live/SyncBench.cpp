#include "Tests/Benchmarks/Live/SyncBench.h"

#include "Classes/Application/ApplicationParts.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/Import/ImportOperation.h"
#include "Classes/LiveFolders/LiveFolderManager.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Support/ScriptedUser.h"

#include <QDir>
#include <QImage>

#include <chrono>
#include <cstdio>
#include <memory>

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds step(1);

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

struct Library
{
    explicit Library(const QString &bundle)
    {
        ApplicationParts parts;
        parts.userInteraction = &user;
        parts.importManager = &AImportManager::sharedAImportManager();
        parts.liveFolderManager = &manager;
        delegate = std::make_unique<tamberin_AppDelegate>(parts);
        delegate->setLibraryBundleDirectory(bundle);
        isOpen = delegate->openLibraryForCommand(nullptr);
    }
    ~Library()
    {
        TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
        delegate.reset();
    }

    ZQObjectID add(const QString &folder)
    {
        const AddedLiveFolders added = manager.addNewWatchFolderFromPaths({folder}, ZQSidebarBaseItem::appendIndex);
        return (added.added + added.alreadyThere).value(0);
    }
    void wait(const ZQObjectID &folder)
    {
        zqRunMainLoopUntil([&] { return !manager.statusOfWatchedFolder(folder).isSyncing; }, step);
    }
    double sync(const ZQObjectID &folder)
    {
        const Clock::time_point start = Clock::now();
        manager.syncWatchedFolder(folder, false);
        manager.syncOperationQueue().waitUntilAllOperationsAreFinished();
        const double seconds = secondsSince(start);
        wait(folder);
        return seconds;
    }

    ScriptedUser user;
    LiveFolderManager manager;
    std::unique_ptr<tamberin_AppDelegate> delegate;
    bool isOpen = false;
};

bool makePictures(const QString &folder, int count)
{
    bool isMade = QDir().mkpath(folder);
    for (int i = 0; isMade && i < count; ++i) {
        QImage picture(160, 120, QImage::Format_RGB32);
        picture.fill(QColor::fromHsv(i % 360, 120 + i % 100, 200));
        picture.setText(QStringLiteral("Number"), QString::number(i));
        isMade = picture.save(folder + QStringLiteral("/%1.png").arg(i));
    }
    return isMade;
}

} // namespace

bool measureResync(const QString &folder)
{
    constexpr int runs = 5;
    Library library(folder + QStringLiteral(".ztlibrary"));
    const ZQObjectID root = library.isOpen ? library.add(folder) : ZQObjectID();
    if (root.isNull()) {
        return false;
    }
    library.wait(root);
    library.sync(root);
    double best = library.sync(root);
    for (int i = 1; i < runs; ++i) {
        best = std::min(best, library.sync(root));
    }
    std::printf("resync-s %f\n", best);
    return true;
}

bool measureMirror(const QString &folder)
{
    constexpr int pictures = 10000;
    const QString tree = folder + QStringLiteral("/pictures");
    if (!makePictures(tree, pictures)) {
        return false;
    }
    double mirrored = 0;
    {
        Library library(folder + QStringLiteral("/Mirrored.ztlibrary"));
        const Clock::time_point start = Clock::now();
        const ZQObjectID root = library.isOpen ? library.add(tree) : ZQObjectID();
        if (root.isNull()) {
            return false;
        }
        library.wait(root);
        mirrored = secondsSince(start);
    }
    Library library(folder + QStringLiteral("/Imported.ztlibrary"));
    const Clock::time_point start = Clock::now();
    const auto label =
        ZQSidebarBaseItem::projectsLabelInManagedObjectContext(*library.delegate->managedObjectContext());
    const auto operation = AImportManager::sharedAImportManager().importFilesAtPaths({tree}, label.get());
    zqRunMainLoopUntil([&] { return operation->isWhollyFinished(); }, step);
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    std::printf("mirror-s %f\nimport-s %f\n", mirrored, secondsSince(start));
    return operation->report().imported().size() == pictures;
}
