#pragma once

#include "Classes/Import/PendingImport.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Classes/Import/ImportFixture.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

inline constexpr int continueButton = 0;
inline constexpr int forgetButton = 1;

// What an earlier process left, and a person who is asked about it.
class ResumeTest : public ImportFixture
{
protected:
    QString folder() const { return path(QStringLiteral("Zelto.ztlibrary/pending-imports")); }
    QStringList pendingFiles() const { return QDir(folder()).entryList(QDir::Files); }

    // What a killed process leaves: a request, and the sources among `saved` that are items already, by title.
    void cutOff(const PendingImport &request, const QStringList &saved, const QString &moved = {})
    {
        const auto file = PendingImportFile::create(folder(), request);
        ASSERT_TRUE(file);
        QList<PendingImportFile::Source> sources;
        for (const QString &source : saved) {
            const auto made = item(QFileInfo(source).completeBaseName());
            sources.append({made ? made->bundleID() : QStringLiteral("NEVER-SAVED"), source,
                            source == moved ? moved : QString(), QFileInfo(source).lastModified().toMSecsSinceEpoch()});
        }
        ASSERT_TRUE(file->addSources(sources));
        if (sources.isEmpty()) {
            return;
        }
        QFile torn(QDir(folder()).filePath(QDir(folder()).entryList({QStringLiteral("*.sources")}).value(0)));
        EXPECT_TRUE(torn.open(QIODevice::Append) && torn.write("[\"HALF A LI") > 0);
    }

    static PendingImport request(const QStringList &paths, const QString &target = {})
    {
        return {.paths = paths,
                .target = target,
                .index = ImportOperation::appendIndex,
                .metadata = {},
                .archivePath = {},
                .archiveRoot = {},
                .groups = {}};
    }

    QStringList projectTitles() const
    {
        QStringList found;
        for (const auto &child : projectsLabel()->orderedChildren()) {
            found.append(child->title());
        }
        return found;
    }

    void offer(int button)
    {
        user.answerQuestion = [button](const UserQuestion &question) {
            return button < 0 ? int(question.buttons.size()) - 1 : button;
        };
        AImportManager::sharedAImportManager().offerToResumeImports();
        zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
        QCoreApplication::processEvents();
    }
};
