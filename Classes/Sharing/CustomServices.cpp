#include "Classes/Sharing/CustomServices.h"

#include "Classes/Sharing/ForgetSecrets.h"
#include "Classes/Sharing/UploadProblem.h"
#include "Kit/Files/ZQRegularFile.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <algorithm>
#include <memory>

namespace {

QStringList texts()
{
    return ZQUserDefaults::standardUserDefaults().objectForKey(CustomServices::listKey).toStringList();
}

std::optional<QString> nameIn(const QString &text)
{
    const auto description = UploadDescription::from(text.toUtf8());
    return description ? std::optional(description->name) : std::nullopt;
}

// A secret is for one server: a description of the same name that leads elsewhere does not get it.
QString accountOf(const UploadDescription &description, const QString &secret)
{
    return description.name + u'/' + secret + u'@' + description.destination();
}

QStringList accountsOf(const QString &name)
{
    QStringList accounts = SecretStore::shared().accountsOfService(CustomServices::serviceOfSecrets);
    accounts.removeIf([&](const QString &each) { return !each.startsWith(name + u'/'); });
    return accounts;
}

bool isInHeader(const UploadDescription &description, const QString &secret)
{
    return std::any_of(description.headers.begin(), description.headers.end(),
                       [&](const auto &each) { return UploadDescription::secretsIn(each.second).contains(secret); });
}

ZQError problemOfSecret(const UploadDescription &description, const QString &name, const ZQSecret &value)
{
    const QByteArray bytes = value.UTF8();
    if (bytes.isEmpty()) {
        return UploadProblem::with(zqFormat(zqLocalized("“%@” needs a value for “%@”."), {description.name, name}),
                                   zqLocalized("Enter what the service gave you."));
    }
    const bool isForHeader = isInHeader(description, name);
    const bool canBeSent = std::all_of(bytes.begin(), bytes.end(), [&](char each) {
        const auto unit = static_cast<unsigned char>(each);
        return unit >= 0x20 && unit != 0x7f && (unit < 0x7f || !isForHeader);
    });
    return canBeSent ? ZQError()
                     : UploadProblem::with(zqFormat(zqLocalized("The value of “%@” cannot be sent."), {name}),
                                           zqLocalized("It must be one line of plain letters, digits and signs."));
}

struct Adding
{
    UploadDescription description;
    QHash<QString, ZQSecret> secrets;
    QStringList left;
    CustomServices::Done done;
};

// The list is written when all secrets are kept, so that nothing is listed that lacks one.
void addToList(const std::shared_ptr<Adding> &adding)
{
    QStringList list = texts();
    const QString text = QString::fromUtf8(adding->description.source);
    const auto same = std::find_if(list.begin(), list.end(),
                                   [&](const QString &each) { return nameIn(each) == adding->description.name; });
    if (same == list.end()) {
        list.append(text);
    } else {
        *same = text;
    }
    ZQError error;
    if (!ZQUserDefaults::standardUserDefaults().storeObjectForKey(list, CustomServices::listKey, &error)) {
        adding->done(error);
        return;
    }
    QStringList unused = accountsOf(adding->description.name);
    const QStringList names = adding->description.secrets();
    for (const QString &name : names) {
        unused.removeAll(accountOf(adding->description, name));
    }
    forgetSecrets(CustomServices::serviceOfSecrets, unused, adding->done);
}

void keepNextSecret(const std::shared_ptr<Adding> &adding)
{
    if (adding->left.isEmpty()) {
        addToList(adding);
        return;
    }
    const QString name = adding->left.takeFirst();
    SecretStore::shared().setPassword(
        adding->secrets.value(name).UTF8(), CustomServices::serviceOfSecrets, accountOf(adding->description, name),
        [adding](const ZQError &error) { error.isNull() ? keepNextSecret(adding) : adding->done(error); });
}

struct Asking
{
    UploadDescription description;
    QHash<QString, ZQSecret> secrets = {};
    QStringList left;
    std::function<void(const QHash<QString, ZQSecret> &secrets, const ZQError &error)> told;
};

void askForNextSecret(const std::shared_ptr<Asking> &asking)
{
    if (asking->left.isEmpty()) {
        asking->told(asking->secrets, {});
        return;
    }
    const QString name = asking->left.takeFirst();
    SecretStore::shared().password(
        CustomServices::serviceOfSecrets, accountOf(asking->description, name),
        [asking, name](const std::optional<QByteArray> &password, const ZQError &error) {
            if (password) {
                asking->secrets.insert(name, ZQSecret(*password));
                askForNextSecret(asking);
                return;
            }
            asking->told({}, error.isNull()
                                 ? UploadProblem::with(zqFormat(zqLocalized("“%@” of “%@” is not known any more."),
                                                                {name, asking->description.name}),
                                                       zqLocalized("Import the description again in the preferences, "
                                                                   "under Cloud."))
                                 : UploadProblem::of(error));
        });
}

} // namespace

QList<UploadDescription> CustomServices::all()
{
    QList<UploadDescription> descriptions;
    const QStringList list = texts();
    for (const QString &text : list) {
        if (auto description = UploadDescription::from(text.toUtf8())) {
            descriptions.append(std::move(*description));
        }
    }
    return descriptions;
}

std::optional<UploadDescription> CustomServices::named(const QString &name)
{
    const QList<UploadDescription> descriptions = all();
    const auto found = std::find_if(descriptions.begin(), descriptions.end(),
                                    [&](const UploadDescription &each) { return each.name == name; });
    return found == descriptions.end() ? std::nullopt : std::optional(*found);
}

std::optional<UploadDescription> CustomServices::read(const QString &path, ZQError *error)
{
    const auto contents = zqReadRegularFile(path, UploadDescription::largest, error);
    return contents ? UploadDescription::from(*contents, error) : std::nullopt;
}

void CustomServices::add(const UploadDescription &description, const QHash<QString, ZQSecret> &secrets, Done done)
{
    const QStringList names = description.secrets();
    for (const QString &name : names) {
        if (const ZQError problem = problemOfSecret(description, name, secrets.value(name)); !problem.isNull()) {
            done(problem);
            return;
        }
    }
    if (texts().size() >= most && !named(description.name)) {
        done(UploadProblem::with(zqFormat(zqLocalized("There are %d services already."), {int(most)}),
                                 zqLocalized("Remove one first.")));
        return;
    }
    keepNextSecret(std::make_shared<Adding>(Adding{description, secrets, names, std::move(done)}));
}

void CustomServices::remove(const QString &name, const Done &done)
{
    giveUpSecrets(serviceOfSecrets, accountsOf(name), [name, done](const ZQError &error) {
        ZQError problem = error;
        if (areSecretsGivenUp(error)) {
            QStringList list = texts();
            list.removeIf([&](const QString &each) { return nameIn(each) == name; });
            ZQUserDefaults::standardUserDefaults().storeObjectForKey(list, CustomServices::listKey, &problem);
        }
        done(problem);
    });
}

bool CustomServices::hasSecrets(const UploadDescription &description)
{
    const QStringList accounts = SecretStore::shared().accountsOfService(serviceOfSecrets);
    const QStringList names = description.secrets();
    return std::all_of(names.begin(), names.end(),
                       [&](const QString &each) { return accounts.contains(accountOf(description, each)); });
}

void CustomServices::secretsOf(const UploadDescription &description,
                               std::function<void(const QHash<QString, ZQSecret> &secrets, const ZQError &error)> told)
{
    askForNextSecret(std::make_shared<Asking>(
        Asking{.description = description, .left = description.secrets(), .told = std::move(told)}));
}
