#pragma once

#include "Classes/Sharing/CloudAdapter.h"
#include "Classes/Sharing/UploadProblem.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Network/ZQNetworkError.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Support/LocalHTTPServer.h"
#include "Tests/Support/MemorySecretStore.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>

// A server of the test's own on this machine, secrets in memory, a file to upload, and who hears what becomes of it.
class ServicesFixture : public testing::Test, public CloudAdapterDelegate
{
protected:
    using Answer = LocalHTTPServer::Answer;
    using Request = LocalHTTPServer::Request;

    ServicesFixture()
    {
        auto store = std::make_unique<MemorySecretStore>();
        secrets = store.get();
        SecretStore::setShared(std::move(store));
        QFile file(path());
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size());
    }
    ~ServicesFixture() override
    {
        SecretStore::setShared(nullptr);
        for (const QString &key : std::as_const(keys)) {
            defaults.removeObjectForKey(key);
        }
    }

    void cloudAdapter(CloudAdapter &, const QVariantMap &didUploadFile) override
    {
        link = didUploadFile.value(QStringLiteral("url")).toString();
    }
    void cloudAdapter(CloudAdapter &, const ZQError &didFailUpload) override { error = didFailUpload; }
    void cloudAdapter(CloudAdapter &, double didProgressUpload) override
    {
        progress = didProgressUpload;
        onProgress();
    }

    QString path() const { return folder.filePath(QStringLiteral("file.png")); }
    void set(const QString &key, const QVariant &value)
    {
        keys.append(key);
        defaults.setObjectForKey(value, key);
    }
    void run(const std::shared_ptr<CloudAdapter> &adapter)
    {
        link.clear();
        error.reset();
        adapter->start();
        zqRunMainLoopUntil([&] { return adapter->isFinished(); });
    }
    std::string problem() const { return error.value_or(ZQError()).localizedDescription().toStdString(); }
    static Answer json(const QByteArray &text, int status = 200)
    {
        return {.status = status, .headers = {{"Content-Type", "application/json"}}, .body = text};
    }
    static Answer busy() { return {.status = 429, .headers = {{"Retry-After", "0"}}}; }
    QList<QByteArray> targets() const
    {
        QList<QByteArray> all;
        for (const Request &each : server.requests()) {
            all.append(each.method + ' ' + each.target.toUtf8());
        }
        return all;
    }

    const QString uploadID = QStringLiteral("0b8a0c1e-5a0b-4b57-9a39-6a3f4a0a7c11"); // as uploads have
    const QByteArray contents = QByteArray("\x89PNG\r\n\0", 7) + QByteArray(100'000, 'x');
    LocalHTTPServer server;
    QTemporaryDir folder;
    MemorySecretStore *secrets; // of SecretStore
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    QStringList keys; // that the test set
    QString link;
    std::optional<ZQError> error;
    double progress = 0;
    std::function<void()> onProgress = [] {};
};
