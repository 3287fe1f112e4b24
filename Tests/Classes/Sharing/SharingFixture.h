#pragma once

#include "Classes/Application/TemporaryArea.h"
#include "Classes/Sharing/CloudServices.h"
#include "Classes/Sharing/CloudUploader.h"
#include "Classes/Sharing/LatestUploads.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Tests/Classes/Export/ExportFixture.h"
#include "Tests/Classes/Sharing/FakeCloudService.h"

class CountedCloudMenu : public CloudMenuControlling
{
public:
    void createSharedSession() override {}
    void updateCloudMenu() override { ++updates; }
    int updates = 0;
};

// An application without a window, with a service that does as the test says and a pasteboard of its own.
class SharingFixture : public ExportFixture
{
protected:
    void SetUp() override
    {
        CloudServices::sharedCloudServices().setServices({service});
        for (const QString &key : {CloudServices::choiceKey, LatestUploads::storageKey}) {
            ZQUserDefaults::standardUserDefaults().removeObjectForKey(key);
        }
        ApplicationParts parts;
        parts.userInteraction = &user;
        parts.importManager = &AImportManager::sharedAImportManager();
        parts.liveFolderManager = &liveFolders;
        parts.cloudMenuViewController = &menu;
        parts.cloudUploading = &uploader;
        parts.isEndWanted = [this] { return isEndWanted; };
        delegate = std::make_unique<tamberin_AppDelegate>(parts);
        delegate->setLibraryBundleDirectory(path(QStringLiteral("Zelto.ztlibrary")));
        ZQError error;
        ASSERT_TRUE(delegate->openLibraryForCommand(&error)) << error.localizedDescription().toStdString();
        uploader.setPasteboard([this](const QString &text) { pasteboard.append(text); });
        for (const QString &name : {CloudUploader::didStart, CloudUploader::didUpdate, CloudUploader::didFinish}) {
            m_observers.append(
                ZQNotificationCenter::defaultCenter().addObserver(name, nullptr, [this](const ZQNotification &said) {
                    const QString number = said.userInfo.value(CloudUploader::numberKey).toString();
                    told.append(said.name.mid(11) + (number.isEmpty() ? number : u' ' + number));
                }));
        }
    }
    void TearDown() override
    {
        uploader.cancelUploads();
        waitForUploads();
    }

    void waitForUploads() const
    {
        zqRunMainLoopUntil([this] { return !uploader.hasUploadsLeft(); }, std::chrono::milliseconds(1));
    }
    QList<ZQRef<ZQLibraryBaseItem>> items(int count)
    {
        QList<ZQRef<ZQLibraryBaseItem>> items;
        for (const ZQObjectID &id : importImages(count)) {
            items.append(item(id));
        }
        return items;
    }
    // In a folder of their own in the temporary area, as an export writes them.
    static QStringList temporaryFiles(int count)
    {
        const QString folder = TemporaryArea::newFolder();
        QStringList paths;
        for (int i = 1; i <= count; ++i) {
            QFile file(QStringLiteral("%1/f%2.png").arg(folder).arg(i));
            EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write("picture") == 7);
            paths.append(file.fileName());
        }
        return paths;
    }
    static QStringList latest()
    {
        QStringList urls;
        for (const LatestUpload &upload : LatestUploads::all()) {
            urls.append(upload.url);
        }
        return urls;
    }
    QStringList alerts() const
    {
        QStringList texts;
        for (const ZQError &error : user.errors) {
            texts.append(error.localizedDescription());
        }
        return texts;
    }

    const std::shared_ptr<FakeCloudService> service = std::make_shared<FakeCloudService>();
    CloudUploader uploader;
    CountedCloudMenu menu;
    QStringList pasteboard;
    bool isEndWanted = false; // of the whole process
    QStringList told;         // "DidStart 3"

private:
    QList<ZQNotificationCenter::Token> m_observers;
};
