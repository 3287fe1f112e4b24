#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Operations/ZQOperation.h"

#include <QString>
#include <QVariantMap>

#include <atomic>
#include <functional>

class CloudAdapter;

// Who hears of uploads. Main thread.
class CloudAdapterDelegate
{
public:
    virtual ~CloudAdapterDelegate() = default;
    virtual void cloudAdapter(CloudAdapter &adapter, const QVariantMap &didUploadFile) = 0; // "url": the public link
    // A null error: no reason was given.
    virtual void cloudAdapter(CloudAdapter &adapter, const ZQError &didFailUpload) = 0;
    virtual void cloudAdapter(CloudAdapter &adapter, double didProgressUpload) = 0; // 0 to 1 of this file
};

// The upload of one file to one service, an operation that goes on after `start` returned and manages its state itself.
// Made and told of on the main thread; cancelled from any.
class CloudAdapter : public ZQOperation
{
public:
    // `delegate` outlives it; null: nobody is told.
    CloudAdapter(const QString &fileToUploadURL, const QString &fileToUploadName, const QString &fileToUploadID,
                 CloudAdapterDelegate *delegate);

    QString fileToUploadURL() const { return m_fileToUploadURL; } // a path
    // Of the file in the list of latest uploads; never empty.
    QString fileToUploadName() const { return m_fileToUploadName; }
    QString fileToUploadID() const { return m_fileToUploadID; }

    void start() override = 0; // a cancelled one finishes at once
    void cancel() override; // one that only waits to be heard finishes at once, also when nobody will listen any more
    void finish();          // is no longer executing; once

protected:
    // Each tells the delegate on the main thread; the first two finish the operation after that. A cancelled adapter
    // tells nobody, and finishes.
    void uploadSuccessful(const QVariantMap &fileInformation);
    void uploadFailed(const ZQError &error);
    void uploadProgess(double fraction);

private:
    void tell(std::function<void(CloudAdapterDelegate &delegate)> what, bool isEnd);

    const QString m_fileToUploadURL;
    const QString m_fileToUploadName;
    const QString m_fileToUploadID;
    CloudAdapterDelegate *const m_delegate; // main thread
    std::atomic<bool> m_waitsToTellEnd = false;
};
