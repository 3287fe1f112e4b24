#pragma once

#include "Classes/Application/ApplicationParts.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Export/ExportManager.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/LiveFolders/LiveFolderManager.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQPaths.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Tests/Support/ScriptedUser.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <mutex>

// A person at whose exports something happens after so many steps.
class SteppedUser : public ScriptedUser
{
public:
    std::function<void(int step, const std::function<void()> &cancel)> onStep; // on the threads that work, one by one

    std::shared_ptr<UserProgress> beginProgress(const QString &text, double maximum,
                                                std::function<void()> cancel) override
    {
        return std::make_shared<Stepped>(*this, ScriptedUser::beginProgress(text, maximum, cancel), cancel);
    }

private:
    class Stepped : public UserProgress
    {
    public:
        Stepped(SteppedUser &user, std::shared_ptr<UserProgress> progress, std::function<void()> cancel)
            : m_user(user), m_progress(std::move(progress)), m_cancel(std::move(cancel))
        {
        }
        void setMaximum(double maximum) override { m_progress->setMaximum(maximum); }
        void setText(const QString &text) override { m_progress->setText(text); }
        void advanceBy(double amount) override
        {
            const std::lock_guard lock(m_mutex);
            m_progress->advanceBy(amount);
            ++m_step;
            if (m_user.onStep) {
                m_user.onStep(m_step, m_cancel);
            }
        }

    private:
        SteppedUser &m_user;
        std::shared_ptr<UserProgress> m_progress;
        std::function<void()> m_cancel;
        std::mutex m_mutex;
        int m_step = 0;
    };
};

// Live folders that are only asked for.
class AskedLiveFolders : public LiveFolderManager
{
public:
    void syncFolderAtPath(const QString &path) override { synced.append(path); }
    QStringList synced;
};

// An application without a window on a library of its own, beside the test program: what lies in the temporary area
// would be moved by imports.
class ExportFixture : public testing::Test
{
protected:
    ExportFixture() : m_folder(QCoreApplication::applicationDirPath() + QStringLiteral("/export-test-XXXXXX"))
    {
        for (const char *name : {"XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR", "TMPDIR"}) {
            const QString folder = path(QString::fromLatin1(name));
            QDir().mkpath(folder);
            QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
            qputenv(name, QFile::encodeName(folder));
        }
        QDir().mkpath(out);
    }
    ~ExportFixture() override
    {
        TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
        delegate.reset();
    }
    void SetUp() override
    {
        ApplicationParts parts;
        parts.userInteraction = &user;
        parts.importManager = &AImportManager::sharedAImportManager();
        parts.liveFolderManager = &liveFolders;
        delegate = std::make_unique<tamberin_AppDelegate>(parts);
        delegate->setLibraryBundleDirectory(path(QStringLiteral("Zelto.ztlibrary")));
        ZQError error;
        ASSERT_TRUE(delegate->openLibraryForCommand(&error)) << error.localizedDescription().toStdString();
        for (const QString &name : {ExportManager::didFinishExportOperation, ExportManager::didCancelExportOperation}) {
            m_observers.append(ZQNotificationCenter::defaultCenter().addObserver(
                name, nullptr, [this](const ZQNotification &notification) { ends.append(notification.name); }));
        }
    }

    QString path(const QString &relative) const { return m_folder.filePath(relative); }
    QString writeImage(const QString &relative, QSize size) const
    {
        QImage image(size, QImage::Format_RGB32);
        static int number = 0;
        image.fill(QColor::fromHsv(++number * 37 % 360, 200, 200));
        image.setText(QStringLiteral("Number"), QString::number(number)); // no two files are the same
        QDir().mkpath(QFileInfo(path(relative)).path());
        EXPECT_TRUE(image.save(path(relative)));
        return path(relative);
    }
    // Items of these files, in their order.
    QList<ZQObjectID> import(const QStringList &paths)
    {
        AImportManager::sharedAImportManager().importFilesAtPaths(paths, nullptr);
        wait();
        QList<ZQObjectID> ids;
        for (const QString &path : paths) {
            const auto found = zqFetchFirst<ZQLibraryBaseItem>(
                *delegate->managedObjectContext(), QStringLiteral("title == %@"), {QFileInfo(path).completeBaseName()});
            EXPECT_TRUE(found) << path.toStdString();
            ids.append(found ? found->objectID() : ZQObjectID());
        }
        return ids;
    }
    QList<ZQObjectID> importImages(int count)
    {
        QStringList paths;
        for (int i = 1; i <= count; ++i) {
            paths.append(writeImage(QStringLiteral("in/p%1.png").arg(i), {20 + i, 20}));
        }
        return import(paths);
    }
    ZQRef<ZQLibraryBaseItem> item(const ZQObjectID &id) const
    {
        return zqCast<ZQLibraryBaseItem>(delegate->managedObjectContext()->existingObjectWithID(id));
    }
    void wait() const
    {
        zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
        zqRunMainLoopFor(std::chrono::milliseconds(1)); // what was said at the end
    }
    ExportResult run(ExportRequest request)
    {
        if (request.destinationURL.isEmpty()) {
            request.destinationURL = out;
        }
        const auto operation = ExportManager::sharedExportManager().exportItems(request);
        wait();
        return operation->result();
    }
    // All that lies there, hidden files too.
    static QStringList namesIn(const QString &folder)
    {
        return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                      QDir::Name);
    }
    QStringList written() const { return namesIn(out); }
    QStringList temporaryFolders() const
    {
        return namesIn(ZQPaths::temporaryDir() + QStringLiteral("/ZeltoTemporaryFolder")).filter(QStringLiteral("t."));
    }
    static QByteArray bytes(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    // As another program reads it; empty when it cannot.
    static QSize sizeSeenByOthers(const QString &path)
    {
        QProcess program;
        program.start(QStringLiteral("identify"), {QStringLiteral("-format"), QStringLiteral("%w %h"), path});
        const bool isRead = program.waitForFinished() && program.exitCode() == 0;
        const QList<QByteArray> sides = isRead ? program.readAllStandardOutput().split(' ') : QList<QByteArray>();
        return sides.size() == 2 ? QSize(sides[0].toInt(), sides[1].toInt()) : QSize();
    }

    SteppedUser user;
    AskedLiveFolders liveFolders;
    std::unique_ptr<tamberin_AppDelegate> delegate;
    QStringList ends; // notifications

private:
    QTemporaryDir m_folder;
    QList<ZQNotificationCenter::Token> m_observers;

protected:
    const QString out = path(QStringLiteral("out"));
};
