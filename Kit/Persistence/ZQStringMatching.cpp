#include "Kit/Persistence/ZQStringMatching.h"

#include "Kit/Persistence/ZQPredicate.h"

#include <QCache>

#include <unicode/ustring.h>

#include <algorithm>

namespace {

bool isASCII(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

QString withoutCombiningMarks(const QString &text)
{
    const QString decomposed = text.normalized(QString::NormalizationForm_D);
    QString stripped;
    stripped.reserve(decomposed.size());
    for (qsizetype i = 0; i < decomposed.size(); ++i) {
        const QChar unit = decomposed[i];
        const bool isPair = unit.isHighSurrogate() && i + 1 < decomposed.size() && decomposed[i + 1].isLowSurrogate();
        const char32_t codePoint = isPair ? QChar::surrogateToUcs4(unit, decomposed[i + 1]) : char32_t(unit.unicode());
        // Marks of class 0 are the vowels of Indic scripts: letters of their own, not accents.
        const bool isAccent =
            QChar::category(codePoint) == QChar::Mark_NonSpacing && QChar::combiningClass(codePoint) != 0;
        if (!isAccent) {
            stripped.append(unit);
            if (isPair) {
                stripped.append(decomposed[i + 1]);
            }
        }
        i += isPair ? 1 : 0;
    }
    return stripped.normalized(QString::NormalizationForm_C);
}

QString caseFolded(const QString &text)
{
    QString folded;
    qsizetype capacity = text.size() + text.size() / 2 + 8;
    for (int attempt = 0; attempt < 2; ++attempt) {
        folded.resize(capacity);
        UErrorCode status = U_ZERO_ERROR;
        const int32_t length =
            u_strFoldCase(reinterpret_cast<UChar *>(folded.data()), static_cast<int32_t>(capacity),
                          reinterpret_cast<const UChar *>(text.utf16()), static_cast<int32_t>(text.size()), 0, &status);
        if (U_SUCCESS(status)) {
            folded.resize(length);
            return folded;
        }
        if (status != U_BUFFER_OVERFLOW_ERROR) {
            break;
        }
        capacity = length + 1;
    }
    return text;
}

// The length in UTF-16 units of the character at `index`.
qsizetype characterLength(QStringView text, qsizetype index)
{
    return text[index].isHighSurrogate() && index + 1 < text.size() && text[index + 1].isLowSurrogate() ? 2 : 1;
}

} // namespace

QString zqFold(const QString &text, bool caseInsensitive, bool diacriticInsensitive)
{
    if (text.isEmpty() || !(caseInsensitive || diacriticInsensitive)) {
        return text;
    }
    if (isASCII(text)) {
        return caseInsensitive ? text.toLower() : text;
    }
    const QString base = diacriticInsensitive ? withoutCombiningMarks(text) : text;
    if (base.isEmpty()) {
        return QStringLiteral(""); // not null: a text of accents only is still a text
    }
    return caseInsensitive ? caseFolded(base) : base;
}

bool zqMatchesWildcards(QStringView text, QStringView pattern)
{
    qsizetype t = 0;
    qsizetype p = 0;
    qsizetype resumePattern = -1; // after the last *, where to go on when a later part fails
    qsizetype resumeText = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == u'*') {
            resumePattern = ++p;
            resumeText = t;
            continue;
        }
        if (p < pattern.size()) {
            const bool isEscape = pattern[p] == u'\\' && p + 1 < pattern.size();
            if (pattern[p] == u'?') {
                t += characterLength(text, t);
                ++p;
                continue;
            }
            const qsizetype literal = isEscape ? p + 1 : p;
            if (text[t] == pattern[literal]) {
                ++t;
                p = literal + 1;
                continue;
            }
        }
        if (resumePattern < 0) {
            return false;
        }
        resumeText += characterLength(text, resumeText);
        t = resumeText;
        p = resumePattern;
    }
    while (p < pattern.size() && pattern[p] == u'*') {
        ++p;
    }
    return p == pattern.size();
}

QRegularExpression zqWholeStringExpression(const QString &pattern, ZQFoldOptions options)
{
    const QString folded = zqFold(pattern, false, options.diacriticInsensitive);
    // Compiled alone first, so that a stray ")" cannot close the group that anchors it.
    QRegularExpression::PatternOptions flags = QRegularExpression::UseUnicodePropertiesOption;
    flags.setFlag(QRegularExpression::CaseInsensitiveOption, options.caseInsensitive);
    const QRegularExpression alone(folded, flags);
    if (!alone.isValid()) {
        return alone;
    }
    return QRegularExpression(QStringLiteral("(*LIMIT_MATCH=100000)(*LIMIT_DEPTH=10000)(*LIMIT_HEAP=20000)") +
                                  QRegularExpression::anchoredPattern(folded),
                              flags);
}

bool zqMatchesExpression(const QString &text, const QString &pattern, ZQFoldOptions options)
{
    using Key = std::pair<QString, int>;
    thread_local QCache<Key, QRegularExpression> cache(32);
    const Key key(pattern, options.flags());
    QRegularExpression *expression = cache.object(key);
    if (!expression) {
        expression = new QRegularExpression(zqWholeStringExpression(pattern, options));
        cache.insert(key, expression);
    }
    if (!expression->isValid()) {
        return false;
    }
    return expression->match(zqFold(text, false, options.diacriticInsensitive)).hasMatch();
}
