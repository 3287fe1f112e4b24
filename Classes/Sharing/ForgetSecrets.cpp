#include "Classes/Sharing/ForgetSecrets.h"

#include <memory>

void forgetSecrets(const QString &service, const QStringList &accounts, SecretStore::Stored done)
{
    struct Ends
    {
        qsizetype left;
        ZQError first = {};
    };
    const auto ends = std::make_shared<Ends>(Ends{.left = accounts.size()});
    if (accounts.isEmpty()) {
        done({});
    }
    for (const QString &account : accounts) {
        SecretStore::shared().deletePassword(service, account, [ends, done](const ZQError &error) {
            ends->first = ends->first.isNull() ? error : ends->first;
            if (--ends->left == 0) {
                done(ends->first);
            }
        });
    }
}
