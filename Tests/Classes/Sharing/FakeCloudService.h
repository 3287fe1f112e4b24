#pragma once

#include "Classes/Sharing/CloudAdapter.h"
#include "Classes/Sharing/CloudService.h"

#include <QStringList>

#include <functional>
#include <mutex>

// An upload that goes as the test says.
class FakeAdapter : public CloudAdapter
{
public:
    using Script = std::function<void(FakeAdapter &)>; // on the thread of the queue
    FakeAdapter(const QString &url, const QString &name, const QString &id, CloudAdapterDelegate *delegate,
                Script script)
        : CloudAdapter(url, name, id, delegate), m_script(std::move(script))
    {
    }
    void start() override
    {
        if (isCancelled()) {
            finish();
            return;
        }
        setExecuting(true);
        m_script(*this);
        if (isCancelled()) { // before it was executing
            finish();
        }
    }
    void cancel() override
    {
        CloudAdapter::cancel();
        if (isExecuting()) {
            finish();
        }
    }
    using CloudAdapter::uploadFailed;
    using CloudAdapter::uploadProgess;
    using CloudAdapter::uploadSuccessful;
    static QString link(const QString &name) { return QStringLiteral("https://example.org/") + name; }
    void succeed() { uploadSuccessful({{QStringLiteral("url"), link(fileToUploadName())}}); }

private:
    const Script m_script;
};

// A service without a server.
class FakeCloudService : public CloudService
{
public:
    explicit FakeCloudService(const QString &identifier = QStringLiteral("imgur")) : m_identifier(identifier) {}
    QString identifier() const override { return m_identifier; }
    QString title() const override { return m_identifier; }
    QString whatIsMissing() const override { return ready ? QString() : QStringLiteral("Enter a key."); }
    std::shared_ptr<CloudAdapter> makeAdapter(const QString &fileURL, const QString &fileName, const QString &fileID,
                                              CloudAdapterDelegate *delegate) override
    {
        return std::make_shared<FakeAdapter>(fileURL, fileName, fileID, delegate, [this](FakeAdapter &adapter) {
            {
                const std::lock_guard lock(m_mutex);
                m_started.append(adapter.fileToUploadName());
            }
            script(adapter);
        });
    }
    QStringList started() const
    {
        const std::lock_guard lock(m_mutex);
        return m_started;
    }

    bool ready = true;
    FakeAdapter::Script script = [](FakeAdapter &adapter) { adapter.succeed(); };

private:
    const QString m_identifier;
    mutable std::mutex m_mutex;
    QStringList m_started; // names
};
