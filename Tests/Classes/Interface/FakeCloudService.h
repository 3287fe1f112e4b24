#pragma once

#include "Classes/Sharing/CloudService.h"
#include "Classes/Sharing/WebBrowser.h"

#include <QStringList>
#include <QUrl>

#include <atomic>

// An upload that goes as far as the test lets it.
class HeldUpload : public CloudAdapter
{
public:
    using CloudAdapter::CloudAdapter;
    std::atomic<bool> hasBegun = false;

    void start() override
    {
        if (isCancelled()) {
            finish();
            return;
        }
        setExecuting(true);
        hasBegun = true;
    }
    void cancel() override
    {
        CloudAdapter::cancel();
        if (hasBegun) {
            finish();
        }
    }
    void sent(double fraction) { uploadProgess(fraction); }
    void succeed(const QString &url) { uploadSuccessful({{QStringLiteral("url"), url}}); }
};

// Main thread, but for its uploads.
class FakeCloudService : public CloudService
{
public:
    explicit FakeCloudService(QString name, bool ready = true) : isSetUp(ready), m_name(std::move(name)) {}

    QString identifier() const override { return m_name.toLower(); }
    QString title() const override { return m_name; }
    QString whatIsMissing() const override { return isSetUp ? QString() : QStringLiteral("Set it up."); }
    std::shared_ptr<CloudAdapter> makeAdapter(const QString &fileURL, const QString &fileName, const QString &fileID,
                                              CloudAdapterDelegate *delegate) override
    {
        uploads.append(std::make_shared<HeldUpload>(fileURL, fileName, fileID, delegate));
        return uploads.last();
    }

    bool isSetUp;
    QList<std::shared_ptr<HeldUpload>> uploads;

private:
    const QString m_name;
};

// Remembers where it was sent.
class FakeBrowser : public WebBrowser
{
public:
    FakeBrowser(QList<QUrl> &opened, bool isThere) : m_opened(opened), m_isThere(isThere) {}
    bool open(const QUrl &url) override
    {
        m_opened.append(url);
        return m_isThere;
    }

private:
    QList<QUrl> &m_opened;
    const bool m_isThere;
};
