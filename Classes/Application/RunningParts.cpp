#include "Classes/Application/RunningParts.h"

#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"

RunningParts::RunningParts(ApplicationParts parts) : m_parts(std::move(parts))
{
    Q_ASSERT(m_parts.userInteraction);
}

RunningParts::~RunningParts() = default;

void RunningParts::setKeepsCancelledImports(bool keeps) const
{
    if (m_parts.importManager) {
        m_parts.importManager->setKeepsCancelledImports(keeps);
    }
}

void RunningParts::makeWindow()
{
    if (m_parts.makeMainWindowController) {
        m_window = m_parts.makeMainWindowController();
        m_window->showWindow();
        m_window->activateIgnoringOtherApps();
    }
}

void RunningParts::closeWindow()
{
    endEdits();
    m_window.reset();
}

void RunningParts::makeCapture()
{
    if (!m_capture && m_parts.makeZeltoKunViewController) {
        m_capture = m_parts.makeZeltoKunViewController();
        m_capture->loadView();
    }
}

void RunningParts::closeCapture()
{
    m_capture.reset();
}

void RunningParts::makeProtocolManager()
{
    if (!m_protocolManager && m_parts.makeProtocolManager) {
        m_protocolManager = m_parts.makeProtocolManager();
    }
}

void RunningParts::closeProtocolManager()
{
    m_protocolManager.reset();
}

ZQOperationQueue &RunningParts::backgroundQueue()
{
    if (!m_backgroundQueue) {
        m_backgroundQueue = std::make_unique<ZQOperationQueue>(QStringLiteral("background"), 1);
    }
    return *m_backgroundQueue;
}

void RunningParts::endBackgroundQueue()
{
    setKeepsCancelledImports(true); // what ends with the process was not given up by anybody
    m_backgroundQueue.reset();
    setKeepsCancelledImports(false);
}

ZQOperationQueue &RunningParts::editQueue()
{
    if (!m_editQueue) {
        m_editQueue = std::make_unique<ZQOperationQueue>(QStringLiteral("Edits"), 1);
    }
    return *m_editQueue;
}

void RunningParts::cancelEdits()
{
    if (m_editQueue) {
        for (const auto &edit : m_editQueue->operations()) {
            edit->endSoon();
        }
        zqRunMainLoopUntil([this] { return m_editQueue->operationCount() == 0; });
    }
}

void RunningParts::endEdits()
{
    if (m_editQueue) {
        m_editQueue->cancelAllOperations();
        m_editQueue->waitUntilAllOperationsAreFinished();
    }
}
