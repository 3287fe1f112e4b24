#pragma once

#include "Classes/Application/CloudUploading.h"
#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Application/UserInteraction.h"

#include <chrono>
#include <functional>
#include <memory>

// The other parts of the application, made by `main`. A null one is absent.
struct ApplicationParts
{
    UserInteraction *userInteraction = nullptr; // required
    ImportManaging *importManager = nullptr;
    ImageDownloading *imageDownloading = nullptr;
    CloudUploading *cloudUploading = nullptr;
    LiveFolderManaging *liveFolderManager = nullptr;
    SoftwareUpdating *softwareUpdater = nullptr;
    CrashReporting *crashReporter = nullptr;
    CloudMenuControlling *cloudMenuViewController = nullptr;
    std::function<std::unique_ptr<MainWindowControlling>()> makeMainWindowController;
    std::function<std::unique_ptr<ScreenCaptureControlling>()> makeZeltoKunViewController;
    std::function<std::unique_ptr<ProtocolHandling>()> makeProtocolManager = {};
    // Whether this process was asked to end, also while nobody serves the main loop. Null: never.
    std::function<bool()> isEndWanted = {};
    std::chrono::milliseconds windowFirst{500}; // for its first picture, before anything beside it begins
};
