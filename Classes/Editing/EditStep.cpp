#include "Classes/Editing/EditStep.h"

#include "Classes/Editing/QueuedEdit.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QUndoCommand>
#include <QUndoStack>

#include <memory>
#include <utility>

namespace {

class StepCommand : public QUndoCommand
{
public:
    // `redo` answers whether there is anything to take back.
    StepCommand(const QString &name, std::function<bool()> redo, std::function<void()> undo)
        : QUndoCommand(name), m_redo(std::move(redo)), m_undo(std::move(undo))
    {
    }
    void redo() override
    {
        if (!std::exchange(m_isPushed, true)) {
            return; // it was done before
        }
        setObsolete(!m_redo());
    }
    void undo() override { m_undo(); }

private:
    std::function<bool()> m_redo;
    std::function<void()> m_undo;
    bool m_isPushed = false;
};

EditContext::Brought whoIsTold(const EditContext &edits)
{
    return edits.whenStepBrings ? edits.whenStepBrings() : EditContext::Brought();
}

EditPass telling(const EditContext &edits, const EditPass &pass)
{
    const EditContext::Brought tell = whoIsTold(edits);
    if (!tell) {
        return pass;
    }
    return {[tell, apply = pass.apply](EditRun &run) {
                const bool result = apply(run);
                if (const QList<ZQObjectID> brought = run.brought(); run.isQueued()) {
                    zqOnMainThread([tell, brought] { tell(brought); });
                } else {
                    tell(brought);
                }
                return result;
            },
            pass.progressText, pass.isWhole};
}

} // namespace

bool EditContext::isBusy() const
{
    return editQueue.operationCount() > 0;
}

bool zqPerformEdit(EditContext &edits, EditSize size, const EditPass &pass)
{
    if (size.rows > size.mostAtOnce || edits.isBusy()) {
        QueuedEdit::begin(
            edits, pass.progressText, size, [pass](EditRun &run) { pass.apply(run); }, pass.isWhole);
        return true;
    }
    EditRun run(edits, size.perBatch);
    return pass.apply(run);
}

void zqPushEdit(EditContext &edits, const QString &name, EditSize size, EditPass redo, EditPass undo)
{
    if (zqPerformEdit(edits, size, redo) && edits.undoStack) {
        edits.undoStack->push(new StepCommand(
            name, [&edits, size, redo = std::move(redo)] { return zqPerformEdit(edits, size, telling(edits, redo)); },
            [&edits, size, undo = std::move(undo)] { zqPerformEdit(edits, size, telling(edits, undo)); }));
    }
}

void zqPushBlocks(EditContext &edits, const QString &name, std::function<void()> redo, std::function<void()> undo)
{
    redo();
    if (edits.undoStack) {
        edits.undoStack->push(new StepCommand(
            name,
            [redo = std::move(redo)] {
                redo();
                return true;
            },
            std::move(undo)));
    }
}

void zqTellOfRows(const EditContext &edits, const QList<ZQObjectID> &rows)
{
    if (const EditContext::Brought tell = whoIsTold(edits)) {
        tell(rows);
    }
}
