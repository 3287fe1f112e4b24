#pragma once

#include "Classes/Sharing/CloudService.h"

#include <QList>
#include <QString>

#include <functional>
#include <memory>

// The places that files can be uploaded to, and the one that they are. Main thread.
class CloudServices
{
public:
    using List = QList<std::shared_ptr<CloudService>>;
    using Source = std::function<List()>;

    // The user default that names the service the person chose; empty: the rule below does.
    static inline const QString choiceKey = QStringLiteral("CloudService");
    static inline const QString errorDomain = QStringLiteral("zelto.sharing");

    static CloudServices &sharedCloudServices();

    List services() const; // in the order in which one is chosen where the person chose none
    // Those that are always there; in their order.
    void setServices(const List &services) { m_services = services; }
    // Asked each time for those that come and go, which stand behind the others.
    void setSource(Source source) { m_source = std::move(source); }

    std::shared_ptr<CloudService> serviceNamed(const QString &identifier) const; // null: there is none
    // The one the person chose, else the first of `services` that is ready; when none is, Imgur. Never another one than
    // was chosen, since files would go where nobody wants them: null when it is not there any more. It may not be
    // ready.
    std::shared_ptr<CloudService> adapterClassForUpload() const;
    // Why nothing can be uploaded to it, with what to do; null: it can. `service` null: the chosen one is gone.
    static ZQError problemOf(const CloudService *service);

private:
    List m_services;
    Source m_source;
};
