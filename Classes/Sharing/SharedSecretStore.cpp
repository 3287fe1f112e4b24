#include "Classes/Sharing/SecretStore.h"

#include "Classes/Sharing/KeychainSecretStore.h"
#include "Kit/Operations/ZQNotificationCenter.h"

namespace {

std::unique_ptr<SecretStore> &current()
{
    static std::unique_ptr<SecretStore> store;
    return store;
}

int &waits()
{
    static int count = 0;
    return count;
}

void addToWaits(int number)
{
    const bool was = SecretStore::isWaiting();
    waits() += number;
    if (SecretStore::isWaiting() != was) {
        ZQNotificationCenter::defaultCenter().postNotification(SecretStore::waitingDidChange, nullptr, {});
    }
}

} // namespace

bool SecretStore::isWaiting()
{
    return waits() > 0;
}

std::shared_ptr<void> SecretStore::wait()
{
    addToWaits(1);
    return {nullptr, [](void *) { addToWaits(-1); }};
}

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
