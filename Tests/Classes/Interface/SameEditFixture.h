#pragma once

#include "Classes/Editing/EditContext.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Classes/Editing/EditQueueGate.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"

#include <QFile>
#include <QUndoStack>

#include <optional>

enum class EditWay { AtOnce, Queued };

// What compares an edit by each of its faces: at once, or while many items are being changed, so that it has to wait
// and is made on the edit queue.
class SameEditFixture : public MainWindowFixture, public testing::WithParamInterface<EditWay>
{
protected:
    EditContext editContext(QUndoStack *stack)
    {
        return {context(), person, delegate->editQueue(), [this] { return context().save(); }, stack};
    }
    void settleEdits()
    {
        for (int i = 0; i < 2; ++i) {
            settle();
            zqRunMainLoopUntil([this] { return delegate->editQueue().operationCount() == 0; });
            TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
        }
    }
    QByteArray journal()
    {
        QFile file(delegate->libraryBundleDirectory() + QStringLiteral("/pending-tags"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    bool isQueued() const { return GetParam() == EditWay::Queued; }
    // From here on edits wait. A command stays until its edit was made, so once one waits they may go on.
    void holdEdits()
    {
        if (isQueued() && !m_gate) {
            m_gate.emplace(delegate->editQueue());
            m_look.callOnTimeout([this] { letEditsGo(); });
            m_look.start(5);
        }
    }
    void expectEdited() // what was asked for since is made
    {
        if (m_gate) {
            EXPECT_TRUE(letEditsGo()) << "it was not put on the queue";
            m_gate.reset();
            m_look.stop();
            m_look.disconnect();
        }
        settleEdits();
    }
    void edit(const std::function<void()> &change)
    {
        holdEdits();
        change();
        expectEdited();
    }

    QUndoStack undoStack; // of what is edited without a window

private:
    bool letEditsGo()
    {
        if (delegate->editQueue().operationCount() > 1) {
            m_gate->open();
        }
        return m_gate->isOpen();
    }

    std::optional<EditQueueGate> m_gate;
    QTimer m_look;
};

inline std::string nameOfWay(const testing::TestParamInfo<EditWay> &way)
{
    return way.param == EditWay::Queued ? "Queued" : "AtOnce";
}
