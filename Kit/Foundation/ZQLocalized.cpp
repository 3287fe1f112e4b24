#include "Kit/Foundation/ZQLocalized.h"

#include "Kit/Foundation/ZQShortened.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>

QString zqLocalized(const QString &key)
{
    return zqLocalized(key.toUtf8().constData());
}

QString zqLocalized(const char *key)
{
    return QCoreApplication::translate("Zelto", key);
}

QString zqCounted(const ZQCountedKey &key, qint64 count, const QVariantList &more)
{
    // The forms stand under `several`. Qt counts in int; what is above it has the form of large numbers.
    const int form = int(std::min<qint64>(count, 1'000'000'000));
    QString format = QCoreApplication::translate("Zelto", key.several, "counted", form);
    if (count == 1 && format == QString::fromUtf8(key.several)) {
        format = zqLocalized(key.one);
    }
    const QVariant shown =
        format.contains(QStringLiteral("%@")) ? QVariant(QLocale().toString(count)) : QVariant(count);
    return zqFormat(format, QVariantList{shown} + more);
}

namespace {
// Whether what lies from `begin` up to `end` in a format is all that two quotation marks hold.
bool isQuoted(const QString &format, qsizetype begin, qsizetype end)
{
    if (begin == 0 || end >= format.size()) {
        return false;
    }
    const auto opens = format.at(begin - 1).category();
    const auto closes = format.at(end).category();
    return (opens == QChar::Punctuation_InitialQuote && closes == QChar::Punctuation_FinalQuote) ||
           (format.at(begin - 1) == u'„' && format.at(end) == u'“') ||
           (format.at(begin - 1) == u'»' && format.at(end) == u'«');
}
} // namespace

QString zqFormat(const QString &format, const QVariantList &arguments)
{
    QString out;
    out.reserve(format.size() + 32);
    qsizetype next = 0;
    qsizetype named = 0; // 1 for the first; 0: the next in order
    const auto take = [&] {
        const qsizetype index = named > 0 ? named - 1 : next++;
        return index < arguments.size() ? arguments.at(index) : QVariant();
    };
    for (qsizetype i = 0; i < format.size(); ++i) {
        if (format.at(i) != u'%' || i + 1 >= format.size()) {
            out += format.at(i);
            continue;
        }
        qsizetype kind = i + 1;
        named = 0;
        if (kind + 2 < format.size() && format.at(kind) >= u'1' && format.at(kind) <= u'9' &&
            format.at(kind + 1) == u'$') {
            named = format.at(kind).digitValue();
            kind += 2;
        }
        while (kind + 1 < format.size() && format.at(kind) == u'l') {
            ++kind;
        }
        const QChar code = format.at(kind);
        if (code == u'%' && kind == i + 1) {
            out += u'%';
        } else if (code == u'@' || code == u's') {
            const QString text = take().toString();
            out += isQuoted(format, i, kind + 1) ? zqShortened(text) : text;
        } else if (code == u'd' || code == u'i' || code == u'u') {
            out += QString::number(take().toLongLong());
        } else if (code == u'f') {
            out += QString::number(take().toDouble(), 'f', 6);
        } else {
            out += format.at(i);
            continue;
        }
        i = kind;
    }
    return out;
}
