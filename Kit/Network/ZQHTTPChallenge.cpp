#include "Kit/Network/ZQHTTPChallenge.h"

#include <QCryptographicHash>
#include <QHash>
#include <QList>
#include <QRandomGenerator>

#include <algorithm>
#include <array>

// Several challenges in a row, each a scheme and its parameters, all of them divided by commas.
struct ZQHTTPChallengeReader
{
    struct Challenge
    {
        QByteArray scheme;
        QHash<QByteArray, QByteArray> parameters; // names in lower case
    };

    const QByteArray &text;
    qsizetype at = 0;

    bool isAtEnd() const { return at >= text.size(); }
    void skip(const char *characters)
    {
        while (!isAtEnd() && QByteArrayView(characters).contains(text.at(at))) {
            ++at;
        }
    }
    QByteArray token()
    {
        const qsizetype start = at;
        while (!isAtEnd() && !QByteArrayView(" \t\r\n,=\"").contains(text.at(at))) {
            ++at;
        }
        return text.mid(start, at - start);
    }
    QByteArray value()
    {
        if (isAtEnd() || text.at(at) != '"') {
            return token();
        }
        QByteArray result;
        for (++at; !isAtEnd() && text.at(at) != '"'; ++at) {
            if (text.at(at) == '\\' && at + 1 < text.size()) {
                ++at;
            }
            result += text.at(at);
        }
        ++at;
        return result;
    }

    QList<Challenge> all()
    {
        QList<Challenge> found;
        while (true) {
            skip(" \t\r\n,");
            if (isAtEnd()) {
                return found;
            }
            const qsizetype start = at;
            const QByteArray word = token().toLower();
            skip(" \t");
            if (!isAtEnd() && text.at(at) == '=') {
                skip("= \t");
                const QByteArray stated = value();
                if (!found.isEmpty() && !found.last().parameters.contains(word)) {
                    found.last().parameters.insert(word, stated);
                }
            } else if (!word.isEmpty()) {
                found.append({word, {}});
            }
            at = std::max(at, start + 1);
        }
    }

    static std::optional<ZQHTTPChallenge> challengeOf(const Challenge &read)
    {
        ZQHTTPChallenge challenge;
        challenge.m_realm = read.parameters.value("realm");
        if (read.scheme == "basic") {
            return challenge;
        }
        QByteArray algorithm = read.parameters.value("algorithm").toUpper();
        challenge.m_isSession = algorithm.endsWith("-SESS");
        algorithm.chop(challenge.m_isSession ? 5 : 0);
        const bool isKnown = algorithm.isEmpty() || algorithm == "MD5" || algorithm == "SHA-256";
        QList<QByteArray> qualities = read.parameters.value("qop").toLower().split(',');
        std::for_each(qualities.begin(), qualities.end(), [](QByteArray &each) { each = each.trimmed(); });
        challenge.m_hasQuality = qualities.contains("auth");
        const bool canBeAnswered = isKnown && (challenge.m_hasQuality || qualities == QList<QByteArray>{QByteArray()});
        if (read.scheme != "digest" || !canBeAnswered || !read.parameters.contains("nonce")) {
            return std::nullopt;
        }
        challenge.m_scheme = ZQHTTPChallenge::Scheme::Digest;
        challenge.m_nonce = read.parameters.value("nonce");
        challenge.m_opaque = read.parameters.value("opaque");
        challenge.m_algorithm = read.parameters.value("algorithm");
        challenge.m_isSHA256 = algorithm == "SHA-256";
        challenge.m_isStale = read.parameters.value("stale").toLower() == "true";
        return challenge;
    }
};

namespace {

QByteArray quoted(QByteArray text)
{
    return '"' + text.replace('\\', "\\\\").replace('"', "\\\"") + '"';
}

QByteArray drawNonce()
{
    std::array<quint32, 4> random = {};
    QRandomGenerator::system()->fillRange(random.data(), qsizetype(random.size()));
    return QByteArray(reinterpret_cast<const char *>(random.data()), qsizetype(sizeof(random))).toHex();
}

} // namespace

std::optional<ZQHTTPChallenge> ZQHTTPChallenge::strongestIn(const QByteArray &headers)
{
    std::optional<ZQHTTPChallenge> best;
    for (const auto &each : ZQHTTPChallengeReader{headers}.all()) {
        const auto challenge = ZQHTTPChallengeReader::challengeOf(each);
        if (challenge && (!best || challenge->strength() > best->strength())) {
            best = challenge;
        }
    }
    return best;
}

QByteArray ZQHTTPChallenge::digest(const QByteArray &text) const
{
    return QCryptographicHash::hash(text, m_isSHA256 ? QCryptographicHash::Sha256 : QCryptographicHash::Md5).toHex();
}

QByteArray ZQHTTPChallenge::answer(const QString &user, const ZQSecret &password, const QByteArray &method,
                                   const QByteArray &target, QByteArray clientNonce)
{
    const QByteArray name = user.toUtf8();
    if (std::any_of(name.begin(), name.end(), [](char each) { return uchar(each) < 0x20 || each == 0x7f; })) {
        return {};
    }
    if (isDigest()) {
        return digestAnswer(name, password.UTF8(), method, target, clientNonce.isEmpty() ? drawNonce() : clientNonce);
    }
    QByteArray words = name + ':' + password.UTF8();
    const QByteArray value = name.contains(':') ? QByteArray() : "Basic " + words.toBase64();
    zqWipe(words);
    return value;
}

QByteArray ZQHTTPChallenge::digestAnswer(const QByteArray &user, const QByteArray &password, const QByteArray &method,
                                         const QByteArray &target, const QByteArray &clientNonce)
{
    const QByteArray count = QByteArray::number(++m_count, 16).rightJustified(8, '0');
    QByteArray words = user + ':' + m_realm + ':' + password;
    QByteArray first = digest(words);
    zqWipe(words);
    if (m_isSession) {
        first = digest(first + ':' + m_nonce + ':' + clientNonce);
    }
    const QByteArray middle = m_hasQuality ? count + ':' + clientNonce + ":auth:" : QByteArray();
    const QByteArray response = digest(first + ':' + m_nonce + ':' + middle + digest(method + ':' + target));
    QByteArray value = "Digest username=" + quoted(user) + ", realm=" + quoted(m_realm) + ", nonce=" + quoted(m_nonce) +
                       ", uri=" + quoted(target) + ", response=\"" + response + '"';
    if (!m_algorithm.isEmpty()) {
        value += ", algorithm=" + m_algorithm;
    }
    if (!m_opaque.isEmpty()) {
        value += ", opaque=" + quoted(m_opaque);
    }
    if (m_hasQuality) {
        value += ", qop=auth, nc=" + count;
    }
    if (m_hasQuality || m_isSession) {
        value += ", cnonce=" + quoted(clientNonce);
    }
    return value;
}
