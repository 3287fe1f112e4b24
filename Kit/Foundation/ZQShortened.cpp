#include "Kit/Foundation/ZQShortened.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace {

constexpr qsizetype context = 256; // units beyond a cut that tell whether characters combine there
constexpr qsizetype longestRun = 32;

// The last place at or before `wanted` where a character begins; 0 when there is none.
qsizetype boundaryBefore(const QString &text, qsizetype wanted)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.setPosition(wanted);
    return finder.isAtBoundary() ? wanted : std::max<qsizetype>(0, finder.toPreviousBoundary());
}

qsizetype boundaryAfter(const QString &text, qsizetype wanted)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.setPosition(wanted);
    const qsizetype next = finder.isAtBoundary() ? wanted : finder.toNextBoundary();
    return next < 0 ? text.size() : next;
}

} // namespace

QString zqShortened(const QString &text, qsizetype longest)
{
    if (text.size() <= longest) {
        return text;
    }
    const qsizetype behind = std::max<qsizetype>(0, longest - 1) / 2;
    const qsizetype before = std::max<qsizetype>(0, longest - 1) - behind;
    const QString head = text.left(before + context);
    const QString tail = text.right(behind + context);
    return head.left(boundaryBefore(head, before)) + u'…' + tail.mid(boundaryAfter(tail, tail.size() - behind));
}

QString zqForLabel(const QString &text, qsizetype longest)
{
    QString label = zqShortened(text, longest);
    qsizetype run = 0;
    for (qsizetype i = 0; i < label.size(); ++i) {
        run = label.at(i).isSpace() ? 0 : run + 1;
        if (run > longestRun && i + 1 < label.size()) {
            const qsizetype place = boundaryAfter(label, i);
            label.insert(place, QChar(0x200B));
            i = place;
            run = 0;
        }
    }
    return label;
}

QString zqSentence(const QString &text)
{
    const QString plain = text.trimmed();
    constexpr QStringView ends = u".!?…。";
    return plain.isEmpty() || ends.contains(plain.back()) ? plain : plain + u'.';
}
