#include "Classes/Services/ProtocolCommand.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Network/ZQPrivateAddress.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringDecoder>
#include <QUrl>

#include <algorithm>
#include <cmath>

namespace {

ZQError problem(ProtocolCommand::Error code, const QString &text)
{
    return ZQError::with(ProtocolCommand::errorDomain, code, text);
}

QString hostOf(const QString &address)
{
    return QUrl(address).host().toLower();
}

bool isWebAddress(const QString &address)
{
    const QUrl url(address);
    const QString scheme = url.scheme().toLower();
    return address.size() <= ProtocolCommand::longestAddress && url.isValid() && !url.host().isEmpty() &&
           (scheme == u"http" || scheme == u"https");
}

bool isImageInText(const QString &address)
{
    return address.startsWith(u"data:image/", Qt::CaseInsensitive) && address.contains(u',');
}

// Nothing when the bytes behind the percent signs are no UTF-8.
std::optional<QString> decoded(const QString &text)
{
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString result = decoder.decode(QByteArray::fromPercentEncoding(text.toUtf8()));
    return decoder.hasError() ? std::nullopt : std::optional(result);
}

std::optional<QJsonObject> objectIn(const QString &text)
{
    QString json = text.trimmed();
    while (json.endsWith(u"}/")) { // of a browser that takes the command for a place
        json.chop(1);
    }
    const QJsonDocument document = QJsonDocument::fromJson(json.toUtf8());
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

// As it was meant: encoded once. Who encodes what is encoded already leaves nothing that begins as JSON does, and who
// does not encode at all may leave percent signs that are no code.
std::optional<QJsonObject> objectOf(const QString &argument)
{
    if (const auto once = decoded(argument)) {
        if (const auto object = objectIn(*once)) {
            return object;
        }
        const auto twice = once->trimmed().startsWith(u'%') ? decoded(*once) : std::nullopt;
        if (const auto object = twice ? objectIn(*twice) : std::nullopt) {
            return object;
        }
    }
    return objectIn(argument);
}

// Reads the values of one command and keeps the first thing that is wrong with them.
class Values
{
public:
    explicit Values(const QJsonObject &object) : m_object(object) {}

    const ZQError &error() const { return m_error; }

    QString pageUrl()
    {
        const QString address = text(QStringLiteral("page_url"));
        if (m_error.isNull() && !isWebAddress(address)) {
            refuse(ProtocolCommand::ForbiddenAddress,
                   zqFormat(zqLocalized("“%@” is no page of the web, so nothing was taken from it. Only pages whose "
                                        "address begins with http or https can be."),
                            {address}));
        }
        return address;
    }

    QString title()
    {
        QString title = text(QStringLiteral("page_title")).simplified().left(ProtocolCommand::longestTitle);
        if (!title.isEmpty() && title.back().isHighSurrogate()) {
            title.chop(1);
        }
        return title;
    }

    QString importAll()
    {
        const QJsonValue value = m_object.value(QStringLiteral("import_all"));
        if (value.isBool()) {
            return value.toBool() ? QStringLiteral("true") : QString();
        }
        return text(QStringLiteral("import_all"));
    }

    QStringList images()
    {
        const QJsonValue value = m_object.value(QStringLiteral("urls"));
        const QJsonArray list = value.toArray();
        if (!value.isArray() || list.isEmpty()) {
            refuseValue(QStringLiteral("urls"));
            return {};
        }
        if (list.size() > ProtocolCommand::mostImages) {
            refuse(
                ProtocolCommand::TooLong,
                zqFormat(zqLocalized("A page asked for %d images at once; at most %d can be imported. Choose fewer."),
                         {list.size(), ProtocolCommand::mostImages}));
            return {};
        }
        QStringList addresses;
        for (const QJsonValue &each : list) {
            const QString address = each.toString();
            if (!each.isString()) {
                refuseValue(QStringLiteral("urls"));
            } else if (!isWebAddress(address) && !isImageInText(address)) {
                refuse(ProtocolCommand::ForbiddenAddress,
                       zqFormat(zqLocalized("“%@” is no address of an image on the web, so nothing was imported"),
                                {address}));
            }
            addresses.append(address);
        }
        addresses.removeDuplicates();
        return addresses;
    }

    QRect frame()
    {
        const auto has = [this](const char *key) { return m_object.contains(QLatin1String(key)); };
        if (!has("win_x") && !has("win_y") && !has("win_width") && !has("win_height")) {
            return {};
        }
        const int x = number(QStringLiteral("win_x"));
        const int y = number(QStringLiteral("win_y"));
        const int width = number(QStringLiteral("win_width"));
        const int height = number(QStringLiteral("win_height"));
        return width > 0 && height > 0 ? QRect(x, y - ProtocolCommand::frameOffset, width, height) : QRect();
    }

private:
    QString text(const QString &key)
    {
        const QJsonValue value = m_object.value(key);
        if (!value.isString() && !value.isNull() && !value.isUndefined()) {
            refuseValue(key);
        }
        return value.toString();
    }

    // A desktop that scales tells fractions of points.
    int number(const QString &key)
    {
        const QJsonValue value = m_object.value(key);
        const double amount = value.toDouble();
        if (!value.isDouble() || !(std::abs(amount) <= ProtocolCommand::farthestCoordinate)) {
            refuseValue(key);
            return 0;
        }
        return int(std::lround(amount));
    }

    void refuse(ProtocolCommand::Error code, const QString &why)
    {
        if (m_error.isNull()) {
            m_error = problem(code, why);
        }
    }

    void refuseValue(const QString &key)
    {
        refuse(ProtocolCommand::BadValue,
               zqFormat(zqLocalized("A page sent something that cannot be understood (the value of “%@”). Update what "
                                    "is installed in the browser, and try again."),
                        {key}));
    }

    const QJsonObject &m_object;
    ZQError m_error;
};

// Which command, and what follows its name. Slashes come from programs that expect a host behind every scheme.
std::optional<std::pair<QString, QString>> partsOf(const QString &url)
{
    qsizetype begin = ProtocolHandling::scheme.size() + 1;
    while (begin < url.size() && url[begin] == u'/') {
        ++begin;
    }
    const auto isLetter = [](QChar c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); };
    qsizetype end = begin;
    while (end < url.size() && isLetter(url[end])) {
        ++end;
    }
    QString rest = url.mid(end);
    if (rest.startsWith(u"%3A", Qt::CaseInsensitive)) {
        rest = u':' + rest.mid(3);
    }
    if (end == begin || (!rest.startsWith(u':') && !rest.startsWith(u'/'))) {
        return std::nullopt;
    }
    return std::pair(url.mid(begin, end - begin).toLower(), rest.mid(1));
}

// A page of the web has no business on this computer or in its own network.
ZQError intrusion(const ProtocolCommand &command)
{
    if (command.isPagePrivate()) {
        return {};
    }
    for (const QString &address : command.images.images) {
        if (const QString host = hostOf(address); !host.isEmpty() && zqIsPrivateHostName(host)) {
            return problem(
                ProtocolCommand::ForbiddenAddress,
                zqFormat(zqLocalized("The page at “%@” names an image on this computer or in its own network "
                                     "(“%@”), so nothing was imported"),
                         {command.pageHost(), host}));
        }
    }
    return {};
}

} // namespace

QString ProtocolCommand::pageHost() const
{
    return hostOf(images.pageUrl);
}

QStringList ProtocolCommand::otherHosts() const
{
    QStringList hosts;
    for (const QString &address : images.images) {
        hosts.append(hostOf(address));
    }
    hosts.removeDuplicates();
    hosts.removeAll(QString()); // of what is in the text itself
    hosts.removeAll(pageHost());
    return hosts;
}

bool ProtocolCommand::isPagePrivate() const
{
    return zqIsPrivateHostName(pageHost());
}

std::optional<ProtocolCommand> ProtocolCommand::fromURL(const QString &url, ZQError *error)
{
    if (url.size() > longestURL) {
        zqSetError(error, problem(TooLong, zqLocalized("What a page sent is too long. Choose fewer images.")));
        return std::nullopt;
    }
    const QString trimmed = url.trimmed();
    const auto parts = ProtocolHandling::isProtocolURL(trimmed) ? partsOf(trimmed) : std::nullopt;
    const bool isSnap = parts && parts->first == u"snap";
    if (!isSnap && (!parts || parts->first != u"import")) {
        zqSetError(error, problem(UnknownCommand,
                                  zqFormat(zqLocalized("“%@” is no address that Zelto knows; there are zelto:import: "
                                                       "and zelto:snap:"),
                                           {trimmed})));
        return std::nullopt;
    }
    const auto object = objectOf(parts->second);
    if (!object) {
        zqSetError(error,
                   problem(NotUnderstood, zqLocalized("A page sent something that cannot be understood. Update what is "
                                                      "installed in the browser, and try again.")));
        return std::nullopt;
    }
    Values values(*object);
    ProtocolCommand command;
    command.kind = isSnap ? Kind::Snap : Kind::Import;
    command.images.pageUrl = values.pageUrl();
    if (isSnap) {
        command.frame = values.frame();
    } else {
        command.images.pageTitle = values.title();
        command.images.importAll = values.importAll();
        command.images.images = values.images();
    }
    const ZQError wrong = values.error().isNull() ? intrusion(command) : values.error();
    if (!wrong.isNull()) {
        zqSetError(error, wrong);
        return std::nullopt;
    }
    return command;
}

QRect zqFrameOnScreens(const QRect &frame, const QList<QRect> &screens)
{
    const bool isSeen =
        std::any_of(screens.begin(), screens.end(), [&](const QRect &screen) { return screen.intersects(frame); });
    if (frame.isEmpty() || screens.isEmpty() || isSeen) {
        return frame;
    }
    const QRect &screen = screens.first();
    QRect moved(frame.topLeft(), frame.size().boundedTo(screen.size()));
    moved.moveLeft(qBound(screen.left(), frame.left(), screen.right() + 1 - moved.width()));
    moved.moveTop(qBound(screen.top(), frame.top(), screen.bottom() + 1 - moved.height()));
    return moved;
}
