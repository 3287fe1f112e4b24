#include "Classes/Sharing/ImgurService.h"

#include "Classes/Sharing/ImgurAdapter.h"
#include "Classes/Sharing/ServiceAddress.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Network/ZQHTTPConnections.h"

#include <algorithm>

QString ImgurService::clientID()
{
    constexpr qsizetype longest = 100;
    const QString id = ZQUserDefaults::standardUserDefaults().stringForKey(clientIDKey).trimmed();
    const bool isOne = id.size() <= longest && std::all_of(id.begin(), id.end(), [](QChar each) {
                           return each.unicode() < 128 && each.isLetterOrNumber(); // it becomes a header
                       });
    return isOne ? id : QString();
}

QString ImgurService::whatIsMissing() const
{
    if (clientID().isEmpty()) {
        return zqLocalized(
            "Imgur wants to know which program uploads. Register one of your own at "
            "api.imgur.com/oauth2/addclient, as “OAuth 2 authorization without a callback URL”, and enter "
            "the Client ID that you get in the preferences, under Cloud.");
    }
    ZQError error;
    return ServiceAddress::ofDefault(hostKey, usualHost, &error) ? QString() : error.localizedDescription();
}

std::shared_ptr<CloudAdapter> ImgurService::makeAdapter(const QString &fileURL, const QString &fileName,
                                                        const QString &fileID, CloudAdapterDelegate *delegate)
{
    auto connections = m_connections.lock();
    if (!connections) {
        connections = ZQHTTPConnections::make();
        m_connections = connections;
    }
    const auto host = ServiceAddress::ofDefault(hostKey, usualHost);
    return std::make_shared<ImgurAdapter>(fileURL, fileName, fileID, delegate,
                                          ImgurAdapter::Access{host.value_or(QUrl()), clientID(), connections});
}
