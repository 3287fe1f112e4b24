#pragma once

#include "Classes/Application/ApplicationParts.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Command/CommandLine.h"
#include "Classes/Command/CommandUserInteraction.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/LiveFolders/LiveFolderManager.h"
#include "Kit/Files/ZQPaths.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Tests/Support/UserWorld.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <functional>

// One library, and commands run on it as from a shell.
class CommandTest : public testing::Test
{
protected:
    void SetUp() override
    {
        preferencesPath(); // one for the process, of its first world
        open();
    }
    static const QString &preferencesPath()
    {
        static const QString path = ZQPaths::configHome() + QStringLiteral("/Zelto/defaults.json");
        return path;
    }
    void TearDown() override
    {
        index.reset();
        delegate.reset();
        ZQUserDefaults::standardUserDefaults().synchronize(); // not once its world is gone
    }
    void open(const std::function<void(ApplicationParts &parts)> &change = {})
    {
        ApplicationParts parts;
        parts.userInteraction = &user;
        parts.importManager = &AImportManager::sharedAImportManager();
        parts.liveFolderManager = &liveFolders;
        if (change) {
            change(parts);
        }
        delegate = std::make_unique<tamberin_AppDelegate>(parts);
        delegate->setLibraryBundleDirectory(world.filePath(QStringLiteral("Test.ztlibrary")));
        ZQError error;
        ASSERT_TRUE(delegate->openLibraryForCommand(&error)) << qPrintable(error.localizedDescription());
    }

    int run(const QStringList &arguments)
    {
        context = {};
        context.delegate = delegate.get();
        context.index = index;
        context.workingDirectory = world.path();
        CommandLine commandLine;
        int status = 0;
        if (!commandLine.parse(arguments, context, &status)) {
            return status;
        }
        user.setPolicies(commandLine.duplicatePolicy(), commandLine.unreadablePolicy());
        return commandLine.run(context);
    }
    int run(const char *arguments) { return run(QString::fromUtf8(arguments).split(u' ')); }
    QJsonObject object() const { return QJsonDocument::fromJson(context.output).object(); }
    QJsonArray array() const { return QJsonDocument::fromJson(context.output).array(); }

    QString picture(const QString &name, QRgb color)
    {
        const QString path = world.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QImage image(300, 200, QImage::Format_RGB32);
        image.fill(color);
        image.save(path, "PNG");
        return path;
    }

    // Not in the temporary area: what lies there is moved into the library.
    UserWorld world{"command"};
    CommandUserInteraction user;
    LiveFolderManager liveFolders;
    std::unique_ptr<tamberin_AppDelegate> delegate;
    std::shared_ptr<LibraryIndex> index; // as where a window is open; null for none
    CommandContext context;
};
