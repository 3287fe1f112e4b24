#pragma once

#include <QString>
#include <QStringList>

// The tags a person entered lately, for a field in which tags are typed: the newest first, in the preference
// "recentlyEnteredTags". Any thread.
class OpenMetaPrefs
{
public:
    static inline const QString recentTagsKey = QStringLiteral("recentlyEnteredTags");
    static constexpr qsizetype longestList = 201;

    // The domain to keep them in, a file of its own in the configuration folder; empty: with the other preferences.
    static void setPrefsFile(const QString &domain);
    static QStringList recentTags();
    // Notes those of `newTags` that are not in `oldTags`, letter by letter.
    static void updatePrefsRecentTags(const QStringList &oldTags, const QStringList &newTags);
    // Reads what other programs wrote, at most every ten seconds. True when it did.
    static bool synchPrefsIfItsBeenAWhile();
};
