#include "Classes/Sharing/SecretStore.h"

#include "Classes/Sharing/KeychainSecretStore.h"

namespace {

std::unique_ptr<SecretStore> &current()
{
    static std::unique_ptr<SecretStore> store;
    return store;
}

} // namespace

SecretStore &SecretStore::shared()
{
    if (!current()) {
        current() = std::make_unique<KeychainSecretStore>();
    }
    return *current();
}

void SecretStore::setShared(std::unique_ptr<SecretStore> store)
{
    current() = std::move(store);
}
