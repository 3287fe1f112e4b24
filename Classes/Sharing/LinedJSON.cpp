#include "Classes/Sharing/LinedJSON.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QStringDecoder>

#include <algorithm>

namespace {

class Reader
{
public:
    explicit Reader(QString text) : m_text(std::move(text)) {}

    std::optional<LinedJSON> whole(ZQError *error)
    {
        LinedJSON value;
        skipBlanks();
        if (read(value, 0)) {
            skipBlanks();
            if (m_at == m_text.size()) {
                return value;
            }
            fail(zqLocalized("Something follows the end."));
        }
        zqSetError(error, LinedJSON::problem(m_line, m_problem));
        return {};
    }

private:
    QChar next() const { return m_at < m_text.size() ? m_text.at(m_at) : QChar(); }

    bool fail(const QString &problem)
    {
        if (m_problem.isEmpty()) {
            m_problem = problem;
        }
        return false;
    }

    bool take(QChar wanted)
    {
        if (m_at < m_text.size() && m_text.at(m_at) == wanted) {
            ++m_at;
            return true;
        }
        return false;
    }

    void skipBlanks()
    {
        while (m_at < m_text.size()) {
            const QChar each = m_text.at(m_at);
            if (each != u' ' && each != u'\t' && each != u'\r' && each != u'\n') {
                return;
            }
            m_line += each == u'\n' ? 1 : 0;
            ++m_at;
        }
    }

    bool read(LinedJSON &value, int level)
    {
        value.line = m_line;
        if (level > LinedJSON::mostLevels) {
            return fail(zqLocalized("There are too many brackets in brackets."));
        }
        switch (next().unicode()) {
        case u'{':
            return readObject(value, level);
        case u'[':
            return readList(value, level);
        case u'"':
            value.type = LinedJSON::Type::String;
            return readString(value.text);
        default:
            return readWord(value);
        }
    }

    bool readObject(LinedJSON &value, int level)
    {
        value.type = LinedJSON::Type::Object;
        ++m_at;
        skipBlanks();
        if (take(u'}')) {
            return true;
        }
        do {
            skipBlanks();
            QString name;
            if (next() != u'"') {
                return fail(zqLocalized("A name in quotation marks is missing."));
            }
            if (!readString(name)) {
                return false;
            }
            if (value.member(name)) {
                return fail(zqFormat(zqLocalized("“%@” appears twice."), {name}));
            }
            skipBlanks();
            if (!take(u':')) {
                return fail(zqFormat(zqLocalized("A colon is missing behind “%@”."), {name}));
            }
            skipBlanks();
            LinedJSON member;
            if (!read(member, level + 1)) {
                return false;
            }
            value.members.append({name, std::move(member)});
            skipBlanks();
        } while (take(u','));
        return take(u'}') || fail(zqLocalized("A comma or “}” is missing."));
    }

    bool readList(LinedJSON &value, int level)
    {
        value.type = LinedJSON::Type::List;
        ++m_at;
        skipBlanks();
        if (take(u']')) {
            return true;
        }
        do {
            skipBlanks();
            LinedJSON element;
            if (!read(element, level + 1)) {
                return false;
            }
            value.elements.append(std::move(element));
            skipBlanks();
        } while (take(u','));
        return take(u']') || fail(zqLocalized("A comma or “]” is missing."));
    }

    bool readString(QString &text)
    {
        ++m_at;
        while (m_at < m_text.size()) {
            const QChar each = m_text.at(m_at++);
            if (each == u'"') {
                return text.isValidUtf16() || fail(zqLocalized("There is half a character in a text."));
            }
            if (each.unicode() < 0x20) {
                return fail(zqLocalized("A text must end on its line; write \\n for a new one."));
            }
            if (each != u'\\') {
                text += each;
            } else if (!readEscape(text)) {
                return false;
            }
        }
        return fail(zqLocalized("A quotation mark is missing at the end of a text."));
    }

    bool readEscape(QString &text)
    {
        static const QString written = QStringLiteral("\"\\/bfnrt");
        static const QString meant = QStringLiteral("\"\\/\b\f\n\r\t");
        const QChar kind = next();
        ++m_at;
        if (const qsizetype index = kind.isNull() ? -1 : written.indexOf(kind); index >= 0) {
            text += meant.at(index);
            return true;
        }
        bool isNumber = false;
        const QString digits = kind == u'u' ? m_text.mid(m_at, 4) : QString();
        const bool isHex =
            digits.size() == 4 && std::all_of(digits.begin(), digits.end(), [](QChar each) {
                return each.unicode() < 0x80 && (each.isDigit() || (each.toLower() >= u'a' && each.toLower() <= u'f'));
            });
        const ushort unit = isHex ? digits.toUShort(&isNumber, 16) : ushort(0);
        if (!isNumber || unit == 0) {
            return fail(zqLocalized("There is a “\\” that means nothing."));
        }
        m_at += 4;
        text += QChar(unit);
        return true;
    }

    bool readWord(LinedJSON &value)
    {
        const qsizetype start = m_at;
        while (m_at < m_text.size() &&
               (next().isLetterOrNumber() || next() == u'-' || next() == u'+' || next() == u'.')) {
            ++m_at;
        }
        value.text = m_text.mid(start, std::min<qsizetype>(m_at - start, 64));
        if (value.text == u"true" || value.text == u"false") {
            value.type = LinedJSON::Type::Bool;
        } else if (value.text == u"null") {
            value.type = LinedJSON::Type::Null;
        } else if (isNumber(value.text)) {
            value.type = LinedJSON::Type::Number;
        } else {
            return fail(value.text.isEmpty() ? zqLocalized("A value is missing.")
                                             : zqFormat(zqLocalized("“%@” is no value."), {value.text}));
        }
        return true;
    }

    static bool takeDigits(const QString &text, qsizetype &at)
    {
        const qsizetype start = at;
        while (at < text.size() && text.at(at) >= u'0' && text.at(at) <= u'9') {
            ++at;
        }
        return at > start;
    }

    static bool isNumber(const QString &text)
    {
        qsizetype at = text.startsWith(u'-') ? 1 : 0;
        const bool isZero = at < text.size() && text.at(at) == u'0';
        const qsizetype first = at;
        if (!takeDigits(text, at) || (isZero && at > first + 1)) {
            return false;
        }
        if (at < text.size() && text.at(at) == u'.' && !takeDigits(text, ++at)) {
            return false;
        }
        if (at < text.size() && text.at(at).toLower() == u'e') {
            ++at;
            at += at < text.size() && (text.at(at) == u'-' || text.at(at) == u'+') ? 1 : 0;
            if (!takeDigits(text, at)) {
                return false;
            }
        }
        return at == text.size();
    }

    const QString m_text;
    qsizetype m_at = 0;
    int m_line = 1;
    QString m_problem;
};

} // namespace

const LinedJSON *LinedJSON::member(const QString &name) const
{
    const auto found =
        std::find_if(members.begin(), members.end(), [&](const auto &each) { return each.first == name; });
    return found == members.end() ? nullptr : &found->second;
}

ZQError LinedJSON::problem(int line, const QString &description)
{
    return ZQError::with(errorDomain, 1, zqFormat(zqLocalized("Line %d: %s"), {line, description}));
}

std::optional<LinedJSON> LinedJSON::from(const QByteArray &UTF8, ZQError *error)
{
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder.decode(UTF8);
    if (decoder.hasError()) {
        zqSetError(error, problem(1, zqLocalized("This is no text in UTF-8.")));
        return {};
    }
    return Reader(text).whole(error);
}
