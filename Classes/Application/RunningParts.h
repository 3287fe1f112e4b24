#pragma once

#include "Classes/Application/ApplicationParts.h"

#include <memory>

class ZQOperationQueue;

// The parts that `main` handed over and what lives only while the application runs: the window, the capture controller,
// the queue of imports and the queue of edits. Main thread, except `userInteraction` and the queues themselves.
class RunningParts
{
public:
    explicit RunningParts(ApplicationParts parts);
    ~RunningParts();

    const ApplicationParts &parts() const { return m_parts; }
    UserInteraction &userInteraction() const { return *m_parts.userInteraction; } // any thread may ask for it
    ImportManaging *importManager() const { return m_parts.importManager; }
    ImageDownloading *imageDownloading() const { return m_parts.imageDownloading; }
    CloudUploading *cloudUploading() const { return m_parts.cloudUploading; }
    LiveFolderManaging *liveFolderManager() const { return m_parts.liveFolderManager; }
    void setKeepsCancelledImports(bool keeps) const;

    MainWindowControlling *window() const { return m_window.get(); } // null: none, or not yet
    void makeWindow();                                               // and brings it to the front
    void closeWindow();                                              // after the edits, which report to it
    ScreenCaptureControlling *capture() const { return m_capture.get(); }
    void makeCapture(); // once
    void closeCapture();
    ProtocolHandling *protocolManager() const { return m_protocolManager.get(); } // null: none
    void makeProtocolManager();                                                   // once
    void closeProtocolManager();

    ZQOperationQueue &backgroundQueue();
    void endBackgroundQueue(); // cancels what is left and waits for what runs, keeping what was asked for
    // Changes of many items, one after the other.
    ZQOperationQueue &editQueue();
    // Ends what the edit queue does. The first lets what is short come to its end, ends the rest at the batch it is at,
    // and serves the main loop until then; the second cancels everything and blocks.
    void cancelEdits();
    void endEdits();

private:
    ApplicationParts m_parts;
    std::unique_ptr<ZQOperationQueue> m_backgroundQueue;
    std::unique_ptr<ZQOperationQueue> m_editQueue;
    std::unique_ptr<MainWindowControlling> m_window;
    std::unique_ptr<ScreenCaptureControlling> m_capture;
    std::unique_ptr<ProtocolHandling> m_protocolManager;
};
