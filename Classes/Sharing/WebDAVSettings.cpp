#include "Classes/Sharing/WebDAVSettings.h"

#include "Classes/Sharing/ServiceAddress.h"
#include "Classes/Sharing/UploadProblem.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Network/ZQServer.h"

#include <algorithm>
#include <array>

namespace {

struct Field
{
    const QString &key;
    QString WebDAVSettings::*value;
};

constexpr std::array fields = {
    Field{WebDAVSettings::addressKey, &WebDAVSettings::address},
    Field{WebDAVSettings::userKey, &WebDAVSettings::user},
    Field{WebDAVSettings::folderKey, &WebDAVSettings::folder},
    Field{WebDAVSettings::publicAddressKey, &WebDAVSettings::publicAddress},
};

constexpr qsizetype mostFolders = 20;

std::optional<QString> plainFolder(const QString &text, ZQError *error)
{
    QString plain;
    const QStringList parts = text.trimmed().split(u'/', Qt::SkipEmptyParts);
    const bool isOdd = parts.size() > mostFolders || std::any_of(parts.begin(), parts.end(), [](const QString &each) {
                           return each == u"." || each == u".." ||
                                  std::any_of(each.begin(), each.end(), [](QChar c) { return !c.isPrint(); });
                       });
    if (isOdd) {
        zqSetError(error, UploadProblem::with(zqFormat(zqLocalized("“%@” cannot be a folder on a server."), {text}),
                                              zqLocalized("Enter names with “/” between them.")));
        return {};
    }
    for (const QString &each : parts) {
        plain += u'/' + each;
    }
    return plain;
}

} // namespace

QStringList WebDAVSettings::keys()
{
    QStringList all;
    for (const Field &field : fields) {
        all.append(field.key);
    }
    return all;
}

WebDAVSettings WebDAVSettings::stored()
{
    WebDAVSettings settings;
    for (const Field &field : fields) {
        settings.*field.value = ZQUserDefaults::standardUserDefaults().stringForKey(field.key);
    }
    return settings;
}

bool WebDAVSettings::store(ZQError *error) const
{
    if (!addresses(error)) {
        return false;
    }
    return std::all_of(fields.begin(), fields.end(), [&](const Field &field) {
        return ZQUserDefaults::standardUserDefaults().storeObjectForKey(this->*field.value, field.key, error);
    });
}

std::optional<WebDAVSettings::Addresses> WebDAVSettings::addresses(ZQError *error) const
{
    const auto given = ServiceAddress::from(address, error);
    const auto plain = given ? plainFolder(folder, error) : std::nullopt;
    if (!plain) {
        return {};
    }
    if (user.trimmed().isEmpty()) {
        zqSetError(error, UploadProblem::with(zqLocalized("Your server needs the name of a user."),
                                              zqLocalized("Enter it in the preferences, under Cloud.")));
        return {};
    }
    if (!publicAddress.trimmed().isEmpty()) {
        const auto open = ServiceAddress::from(publicAddress, error);
        return open ? std::optional(Addresses{*given, *plain, {}, {}, *open}) : std::nullopt;
    }
    QUrl base = *given;
    const QString path = base.path(QUrl::FullyEncoded);
    const qsizetype files = path.indexOf(u"/remote.php");
    base.setPath(files < 0 ? path : path.first(files), QUrl::StrictMode);
    const QString account = QStringLiteral("/remote.php/dav/files/");
    const bool isWhole = files >= 0 && path.mid(files).startsWith(account);
    const QString within = isWhole ? path.mid(files + account.size()) : QString(); // "ann/Pictures"
    const qsizetype slash = within.indexOf(u'/');
    return Addresses{isWhole ? *given : ServiceAddress::below(base, account + user.trimmed()), *plain,
                     ServiceAddress::below(base, QStringLiteral("/ocs/v2.php/apps/files_sharing/api/v1/shares")),
                     slash < 0 ? QString() : QUrl::fromPercentEncoding(within.mid(slash).toLatin1()), QUrl()};
}

QString WebDAVSettings::account() const
{
    const auto given = ServiceAddress::from(address);
    const QString server = given ? given->host() + u':' + QString::number(zqPortOf(*given)) : address;
    return user.trimmed() + u'@' + server;
}
