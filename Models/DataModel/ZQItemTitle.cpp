#include "Models/DataModel/ZQItemTitle.h"

#include "Kit/Files/ZQFreeName.h"
#include "Kit/Foundation/ZQLocalized.h"

namespace {

const QString errorDomain = QStringLiteral("zelto.model");

enum ErrorCode { EmptyTitle = 2, ForbiddenCharacter, LeadingDot, TitleTooLong };

// The longest name made of a title is that of the thumbnail between the two moves of a renaming.
qsizetype longestTitle(const QString &extension)
{
    const QString rest =
        QStringLiteral("_thumb") + (extension.isEmpty() ? QString() : u'.' + extension) + QStringLiteral(".tmp");
    return zqLongestName - rest.toUtf8().size();
}

} // namespace

ZQError zqErrorForItemTitle(const QString &title, const QString &extension)
{
    if (title.isEmpty()) {
        return ZQError::with(errorDomain, EmptyTitle, zqLocalized("The name is empty. Please type a name."));
    }
    if (title.contains(QLatin1Char('/')) || title.contains(QChar())) {
        return ZQError::with(errorDomain, ForbiddenCharacter,
                             zqLocalized("A name cannot contain \"/\" or a null character. Please use another name."));
    }
    if (title.startsWith(QLatin1Char('.'))) {
        return ZQError::with(
            errorDomain, LeadingDot,
            zqLocalized("A name that starts with a dot would hide the file. Please use another name."));
    }
    if (title.toUtf8().size() > longestTitle(extension)) {
        return ZQError::with(errorDomain, TitleTooLong,
                             zqLocalized("The name is too long. Please use a shorter name."));
    }
    return {};
}

QString zqItemTitleForText(const QString &text, const QString &extension, const QString &whenEmpty)
{
    const QString wellFormed = QString::fromUtf8(text.toUtf8()); // half a character would be another one on disk
    QString title = zqSafeName(wellFormed, {}, ZQLeadingDots::Dropped);
    while (title.toUtf8().size() > longestTitle(extension)) {
        title.chop(title.size() > 1 && title.back().isLowSurrogate() ? 2 : 1);
    }
    title = title.trimmed();
    if (!title.isEmpty()) {
        return title;
    }
    return whenEmpty.isEmpty() ? QStringLiteral("-") : zqItemTitleForText(whenEmpty, extension, {});
}
