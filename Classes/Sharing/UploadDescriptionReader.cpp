#include "Classes/Sharing/LinedJSON.h"
#include "Classes/Sharing/ServiceAddress.h"
#include "Classes/Sharing/UploadDescription.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace {

using Type = LinedJSON::Type;

constexpr qsizetype longestName = 60;
constexpr qsizetype longestText = 4096;
constexpr qsizetype longestPlace = 500;
constexpr qsizetype mostPairs = 50;

bool isPrintable(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar each) { return each.isPrint() || each.isSurrogate(); });
}

bool isHeaderName(const QString &text)
{
    static const QString special = QStringLiteral("!#$%&'*+-.^_`|~");
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](QChar each) {
        return each.unicode() < 0x80 && (each.isLetterOrNumber() || special.contains(each));
    });
}

// What belongs to the connection, or would lead a request elsewhere than to the address that the person was shown.
bool isOwnHeader(const QString &name)
{
    static const QStringList own = {
        QStringLiteral("host"),       QStringLiteral("content-length"),  QStringLiteral("transfer-encoding"),
        QStringLiteral("connection"), QStringLiteral("expect"),          QStringLiteral("te"),
        QStringLiteral("trailer"),    QStringLiteral("upgrade"),         QStringLiteral("proxy-authorization"),
        QStringLiteral("keep-alive"), QStringLiteral("proxy-connection")};
    return own.contains(name.toLower());
}

bool hasOnlyKnownPlaceholders(const QString &text)
{
    const QString rest = UploadDescription::filledIn(text, {});
    return !rest.contains(u'{') && !rest.contains(u'}');
}

// Reads one after the other; the first error stays.
class Reader
{
public:
    explicit Reader(const LinedJSON &root) : m_root(root) {}

    std::optional<UploadDescription> whole(ZQError *error)
    {
        if (m_root.type != Type::Object) {
            fail(m_root, zqLocalized("A description begins with “{”."));
        } else {
            knowAll(m_root, {u"format", u"name", u"method", u"url", u"headers", u"fields", u"file", u"raw", u"link"});
            readFormat();
            readName();
            readMethod();
            readAddress();
            readPairs(QStringLiteral("headers"), m_read.headers);
            readPairs(QStringLiteral("fields"), m_read.fields);
            checkHeaders();
            readBody();
            readLink();
        }
        if (m_error.isNull()) {
            return m_read;
        }
        zqSetError(error, m_error);
        return {};
    }

private:
    void fail(const LinedJSON &at, const QString &problem)
    {
        if (m_error.isNull()) {
            m_error = LinedJSON::problem(at.line, problem);
        }
    }

    void knowAll(const LinedJSON &object, const QList<QStringView> &known)
    {
        for (const auto &[name, value] : object.members) {
            if (!known.contains(QStringView(name))) {
                fail(value, zqFormat(zqLocalized("“%@” is not known. Check how it is spelled."), {name}));
            }
        }
    }

    // Null, and a failure when it has to be there, unless it is a text.
    const LinedJSON *text(const LinedJSON &object, const QString &name, bool isNeeded, qsizetype longest)
    {
        const LinedJSON *const value = object.member(name);
        if (!value) {
            if (isNeeded) {
                fail(object, zqFormat(zqLocalized("“%@” is missing."), {name}));
            }
            return nullptr;
        }
        if (value->type != Type::String || value->text.isEmpty() || value->text.size() > longest) {
            fail(*value, zqFormat(zqLocalized("“%@” must be a text of 1 to %d characters."), {name, int(longest)}));
            return nullptr;
        }
        return value;
    }

    void readFormat()
    {
        const LinedJSON *const format = m_root.member(QStringLiteral("format"));
        if (!format) {
            fail(m_root, zqLocalized("“format” is missing; it is 1."));
        } else if (format->type != Type::Number || format->text != u"1") {
            fail(*format, zqLocalized("This format is not known; only 1 is. A newer version of Zelto may know it."));
        }
    }

    void readName()
    {
        if (const LinedJSON *const name = text(m_root, QStringLiteral("name"), true, longestName)) {
            m_read.name = name->text.trimmed();
            if (m_read.name.isEmpty() || !isPrintable(m_read.name) || m_read.name.contains(u'/')) {
                fail(*name, zqLocalized("The name must be one line of letters and signs, without “/”."));
            }
        }
    }

    void readMethod()
    {
        static const QStringList known = {QStringLiteral("POST"), QStringLiteral("PUT"), QStringLiteral("PATCH")};
        if (const LinedJSON *const method = text(m_root, QStringLiteral("method"), false, longestName)) {
            m_read.method = method->text.toUtf8();
            if (!known.contains(method->text)) {
                fail(*method, zqLocalized("The method must be “POST”, “PUT” or “PATCH”."));
            }
        }
    }

    void readAddress()
    {
        const LinedJSON *const address = text(m_root, QStringLiteral("url"), true, longestText);
        if (!address) {
            return;
        }
        const QUrl url(address->text, QUrl::StrictMode);
        const bool isWeb = url.scheme() == u"https" || url.scheme() == u"http";
        if (!isPrintable(address->text) || !url.isValid() || !isWeb || url.host().isEmpty() || url.hasFragment() ||
            address->text.contains(u'{')) {
            fail(*address, zqLocalized("This is not the address of an upload; it begins with https:// and has no "
                                       "placeholders."));
        } else if (!url.userInfo().isEmpty()) {
            fail(*address, zqLocalized("A login does not belong into the address. Write a header “Authorization” with "
                                       "a {secret:NAME}."));
        } else if (const ZQError refusal = ServiceAddress::refusalOf(url); !refusal.isNull()) {
            fail(*address, refusal.localizedDescription());
        }
        m_read.url = url;
    }

    void readPairs(const QString &name, UploadDescription::Pairs &pairs)
    {
        const LinedJSON *const object = m_root.member(name);
        if (!object) {
            return;
        }
        if (object->type != Type::Object || object->members.size() > mostPairs) {
            fail(*object, zqFormat(zqLocalized("“%@” must be names with texts in “{” and “}”, at most %d."),
                                   {name, int(mostPairs)}));
            return;
        }
        for (const auto &[key, value] : object->members) {
            const bool isText = value.type == Type::String && value.text.size() <= longestText;
            if (!isText || key.isEmpty() || key.size() > longestName) {
                fail(value, zqFormat(zqLocalized("“%@” must be a text of at most %d characters, and its name one of 1 "
                                                 "to %d."),
                                     {key, int(longestText), int(longestName)}));
            } else if (!hasOnlyKnownPlaceholders(value.text)) {
                fail(value, zqLocalized("“{” and “}” stand only around a secret: {secret:NAME}, with letters, digits, "
                                        "“-” and “_” in its name."));
            } else if (!isPrintable(key)) {
                fail(value, zqLocalized("A name must be one line of letters and signs."));
            }
            pairs.append({key, value.text});
        }
    }

    void checkHeaders()
    {
        const LinedJSON *const object = m_root.member(QStringLiteral("headers"));
        if (!object) {
            return;
        }
        QStringList seen;
        for (const auto &[name, value] : object->members) {
            const bool isASCII = std::all_of(value.text.begin(), value.text.end(), [](QChar each) {
                return each.unicode() >= 0x20 && each.unicode() < 0x7f;
            });
            if (!isHeaderName(name) || isOwnHeader(name)) {
                fail(value, zqFormat(zqLocalized("“%@” cannot be set as a header."), {name}));
            } else if (!isASCII) {
                fail(value, zqLocalized("A header holds only plain letters, digits and signs."));
            } else if (seen.contains(name, Qt::CaseInsensitive)) {
                fail(value, zqFormat(zqLocalized("“%@” appears twice."), {name}));
            }
            seen.append(name);
        }
    }

    void readBody()
    {
        const LinedJSON *const raw = m_root.member(QStringLiteral("raw"));
        const LinedJSON *const file = text(m_root, QStringLiteral("file"), false, longestName);
        if (raw && (raw->type != Type::Bool || raw->text != u"true")) {
            fail(*raw, zqLocalized("“raw” is true, or left out."));
        } else if (raw && (m_root.member(QStringLiteral("file")) || m_root.member(QStringLiteral("fields")))) {
            fail(*raw, zqLocalized("With “raw” there is no form: leave out “file” and “fields”."));
        } else if (!raw && !file) {
            fail(m_root, zqLocalized("“file” is missing: the name of the form field for the file."));
        } else if (file && !isPrintable(file->text)) {
            fail(*file, zqLocalized("A name must be one line of letters and signs."));
        }
        checkContentType(raw == nullptr);
        m_read.file = file ? file->text : QString();
    }

    void checkContentType(bool isForm)
    {
        const LinedJSON *const headers = m_root.member(QStringLiteral("headers"));
        for (const auto &[name, value] : isForm &&headers ? headers->members : decltype(m_root.members)()) {
            if (name.compare(u"content-type", Qt::CaseInsensitive) == 0) {
                fail(value, zqLocalized("A form has a content type of its own: leave out the header."));
            }
        }
    }

    void readLink()
    {
        struct Place
        {
            const char16_t *name;
            UploadDescription::LinkPlace place;
        };
        static constexpr std::array places = {Place{u"pointer", UploadDescription::LinkPlace::Pointer},
                                              Place{u"header", UploadDescription::LinkPlace::Header},
                                              Place{u"final", UploadDescription::LinkPlace::FinalAddress}};
        const LinedJSON *const link = m_root.member(QStringLiteral("link"));
        const bool isBetween =
            link && (link->member(QStringLiteral("before")) || link->member(QStringLiteral("after")));
        if (!link || link->type != Type::Object || link->members.isEmpty() ||
            link->members.size() > (isBetween ? 2 : 1)) {
            fail(link ? *link : m_root, zqLocalized("“link” must hold one of “pointer”, “header”, “final”, or both "
                                                    "“before” and “after”."));
            return;
        }
        if (isBetween) {
            readBetween(*link);
            return;
        }
        const auto &[name, value] = link->members.first();
        const auto place = std::find_if(places.begin(), places.end(),
                                        [&named = name](const Place &each) { return named == QStringView(each.name); });
        if (place == places.end()) {
            fail(value, zqFormat(zqLocalized("“%@” is not known. Check how it is spelled."), {name}));
            return;
        }
        m_read.linkPlace = place->place;
        if (place->place == UploadDescription::LinkPlace::FinalAddress) {
            if (value.type != Type::Bool || value.text != u"true") {
                fail(value, zqLocalized("“final” is true."));
            }
        } else if (const LinedJSON *const at = text(*link, name, true, longestPlace)) {
            m_read.linkAt = at->text;
            checkLink(*at);
        }
    }

    void readBetween(const LinedJSON &link)
    {
        const LinedJSON *const before = text(link, QStringLiteral("before"), true, longestPlace);
        const LinedJSON *const after = text(link, QStringLiteral("after"), true, longestPlace);
        m_read.linkPlace = UploadDescription::LinkPlace::Between;
        m_read.linkAt = before ? before->text : QString();
        m_read.linkEnd = after ? after->text : QString();
    }

    void checkLink(const LinedJSON &at)
    {
        static const QRegularExpression pointer(QStringLiteral("^(/([^~/]|~[01])*)+$"));
        switch (m_read.linkPlace) {
        case UploadDescription::LinkPlace::Pointer:
            if (!pointer.match(at.text).hasMatch()) {
                fail(at, zqLocalized("A pointer names the way to the link, as /data/url."));
            }
            break;
        case UploadDescription::LinkPlace::Header:
            if (!isHeaderName(at.text)) {
                fail(at, zqFormat(zqLocalized("“%@” is not the name of a header."), {at.text}));
            }
            break;
        case UploadDescription::LinkPlace::Between:
        case UploadDescription::LinkPlace::FinalAddress:
            break;
        }
    }

    const LinedJSON &m_root;
    UploadDescription m_read;
    ZQError m_error;
};

} // namespace

std::optional<UploadDescription> UploadDescription::from(const QByteArray &JSON, ZQError *error)
{
    if (JSON.size() > largest) {
        zqSetError(error, LinedJSON::problem(1, zqLocalized("This file is too large to be a description.")));
        return {};
    }
    const auto root = LinedJSON::from(JSON, error);
    auto description = root ? Reader(*root).whole(error) : std::nullopt;
    if (description) {
        description->source = JSON;
    }
    return description;
}
