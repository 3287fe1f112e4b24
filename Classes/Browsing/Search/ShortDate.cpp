#include "Classes/Browsing/Search/ShortDate.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QLocale>

QString zqShortDate(const QDateTime &date)
{
    if (!date.isValid()) {
        return {};
    }
    const QDateTime local = date.toLocalTime();
    const qint64 days = local.date().daysTo(QDate::currentDate());
    const QLocale locale;
    // The C locale's short time has seconds.
    const QString time = locale.language() == QLocale::C ? local.time().toString(QStringLiteral("HH:mm"))
                                                         : locale.toString(local.time(), QLocale::ShortFormat);
    if (days == 0) {
        return zqFormat(zqLocalized("Today, %@"), {time});
    }
    return days == 1 ? zqFormat(zqLocalized("Yesterday, %@"), {time})
                     : locale.toString(local.date(), QStringLiteral("d MMM yyyy"));
}
