#include "Classes/Sharing/CloudAdapter.h"

#include "Kit/Operations/ZQMainThread.h"

#include <QFileInfo>

CloudAdapter::CloudAdapter(const QString &fileToUploadURL, const QString &fileToUploadName,
                           const QString &fileToUploadID, CloudAdapterDelegate *delegate)
    : m_fileToUploadURL(fileToUploadURL),
      m_fileToUploadName(fileToUploadName.isEmpty() ? QFileInfo(fileToUploadURL).fileName() : fileToUploadName),
      m_fileToUploadID(fileToUploadID), m_delegate(delegate)
{
}

void CloudAdapter::cancel()
{
    ZQOperation::cancel();
    if (m_waitsToTellEnd) { // the main thread may serve nobody any more
        finish();
    }
}

void CloudAdapter::finish()
{
    setFinished(true);
}

void CloudAdapter::uploadSuccessful(const QVariantMap &fileInformation)
{
    tell([this, fileInformation](CloudAdapterDelegate &delegate) { delegate.cloudAdapter(*this, fileInformation); },
         true);
}

void CloudAdapter::uploadFailed(const ZQError &error)
{
    tell([this, error](CloudAdapterDelegate &delegate) { delegate.cloudAdapter(*this, error); }, true);
}

void CloudAdapter::uploadProgess(double fraction)
{
    tell([this, fraction](CloudAdapterDelegate &delegate) { delegate.cloudAdapter(*this, fraction); }, false);
}

void CloudAdapter::tell(std::function<void(CloudAdapterDelegate &delegate)> what, bool isEnd)
{
    m_waitsToTellEnd = m_waitsToTellEnd || isEnd; // before the look at the cancel, which looks the other way round
    const auto block = [this, self = shared_from_this(), what = std::move(what), isEnd] {
        if (!isCancelled() && !isFinished() && m_delegate) {
            what(*m_delegate);
        }
        if (isEnd) {
            finish();
        }
    };
    if (isEnd && isCancelled()) {
        finish();
    } else if (zqIsMainThread()) {
        block();
    } else {
        zqOnMainThread(block);
    }
}
