#include "Classes/Editing/EditRun.h"

#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperation.h"

#include <algorithm>
#include <utility>

EditRun::EditRun(EditContext &edits, qsizetype perBatch)
    : m_edits(edits), m_context(edits.context), m_perBatch(perBatch), m_isQueued(false)
{
}

EditRun::EditRun(EditContext &edits, qsizetype perBatch, ZQManagedObjectContext &context,
                 std::weak_ptr<ZQOperation> operation, std::shared_ptr<UserProgress> progress)
    : m_edits(edits), m_context(context), m_operation(std::move(operation)), m_progress(std::move(progress)),
      m_perBatch(perBatch), m_isQueued(true)
{
}

bool EditRun::save()
{
    if (!m_isQueued) {
        return m_edits.save();
    }
    ZQError error;
    const bool isSaved = m_context.save(&error);
    if (!isSaved) {
        presentError(error);
    }
    return isSaved;
}

void EditRun::presentError(const ZQError &error)
{
    if (m_isQueued) {
        zqOnMainThread([&user = m_edits.user, error] { user.presentError(error); });
    } else {
        m_edits.user.presentError(error);
    }
}

bool EditRun::isCancelled() const
{
    const auto operation = m_operation.lock();
    return operation && operation->isCancelled();
}

qsizetype EditRun::inBatches(const QString &progressText, qsizetype count,
                             const std::function<bool(qsizetype first, qsizetype size)> &change)
{
    if (m_progress) {
        m_progress->setText(progressText);
        m_progress->setMaximum(double(count));
    }
    qsizetype position = 0;
    while (position < count && !isCancelled()) {
        const qsizetype size = std::min(m_perBatch, count - position);
        if (!change(position, size)) {
            break;
        }
        position += size;
        if (m_progress) {
            m_progress->advanceBy(double(size));
        }
    }
    return position;
}
