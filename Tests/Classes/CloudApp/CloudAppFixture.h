#pragma once

#include "Classes/Sharing/CloudAppAccount.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Network/ZQNetworkError.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Support/LocalHTTPServer.h"
#include "Tests/Support/MemorySecretStore.h"

#include <gtest/gtest.h>

// A CloudApp of the test's own on this machine, and a secret store in memory.
class CloudAppFixture : public testing::Test
{
protected:
    using Answer = LocalHTTPServer::Answer;
    using Request = LocalHTTPServer::Request;

    CloudAppFixture()
    {
        auto store = std::make_unique<MemorySecretStore>();
        secrets = store.get();
        SecretStore::setShared(std::move(store));
        ZQUserDefaults::standardUserDefaults().setObjectForKey(api.address({}), CloudAppAccount::APIHostKey);
    }
    ~CloudAppFixture() override
    {
        SecretStore::setShared(nullptr);
        ZQUserDefaults::standardUserDefaults().removeObjectForKey(CloudAppAccount::APIHostKey);
    }

    // `answer` for who logs in as me, with the password that is in the store.
    static LocalHTTPServer::Handler forMe(const Answer &answer)
    {
        return [answer](const Request &asked) {
            return asked.headers.value("authorization") == "Basic " + QByteArray("me@example.org:pässword").toBase64()
                       ? answer
                       : Answer{.status = 401, .headers = {{"WWW-Authenticate", "Basic realm=\"CloudApp\""}}};
        };
    }
    void storeAccount()
    {
        secrets->entries = {{CloudAppAccount::service, QStringLiteral("me@example.org"), "pässword"}};
    }

    LocalHTTPServer api;
    MemorySecretStore *secrets; // of SecretStore
};
