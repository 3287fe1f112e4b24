#include "Kit/Files/ZQFreeName.h"

#include "Kit/Files/ZQFileAdvice.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace {

constexpr int mostNames = 10000;
constexpr qsizetype longestExtension = 32; // a longer one is part of the name

QString shortened(QString name, qsizetype bytes)
{
    while (name.toUtf8().size() > bytes) {
        name.chop(name.size() > 1 && name.back().isLowSurrogate() ? 2 : 1);
    }
    return name;
}

} // namespace

bool zqIsSafeInName(QChar character)
{
    constexpr std::array unsafe{QChar::Other_Control, QChar::Separator_Line, QChar::Separator_Paragraph};
    return character != u'/' && std::find(unsafe.begin(), unsafe.end(), character.category()) == unsafe.end();
}

QString zqSafeName(const QString &text, const QString &whenEmpty, ZQLeadingDots dots, QStringView alsoUnsafe)
{
    QString name = text;
    std::replace_if(
        name.begin(), name.end(),
        [alsoUnsafe](QChar character) { return !zqIsSafeInName(character) || alsoUnsafe.contains(character); }, u'-');
    name = name.trimmed();
    while (dots == ZQLeadingDots::Dropped && name.startsWith(u'.')) {
        name = name.mid(1).trimmed(); // more of them may follow the spaces
    }
    if (name.startsWith(u'.')) {
        name[0] = u'_';
    }
    return name.isEmpty() ? whenEmpty : name;
}

QString zqNumberedName(const QString &name, int number, qsizetype longest)
{
    if (number == 0 && name.toUtf8().size() <= longest) {
        return name;
    }
    const QString extension = zqPathExtension(name);
    const bool isExtension = !extension.isEmpty() && extension.size() <= longestExtension;
    const QString ending =
        (number == 0 ? QString() : QStringLiteral(" %1").arg(number)) + (isExtension ? u'.' + extension : QString());
    const QString stem = extension.size() > longestExtension ? name : zqBaseName(name);
    return shortened(stem, longest - ending.toUtf8().size()) + ending;
}

QString zqUnderFreeName(const QString &folder, const QString &name,
                        const std::function<bool(const QString &path, ZQError *error)> &put, ZQError *error)
{
    for (int number = 0; number <= mostNames; ++number) {
        const QString path = folder + u'/' + zqNumberedName(name, number);
        ZQError problem;
        if (put(path, &problem)) {
            return path;
        }
        if (problem.domain != ZQError::posixDomain || problem.code != EEXIST) {
            zqSetError(error, problem);
            return {};
        }
    }
    zqSetError(error,
               zqExplainedFileError(
                   EEXIST, zqFormat(zqLocalized("“%@” holds too many files named “%@”. Rename it, and try again."),
                                    {folder, name})));
    return {};
}
