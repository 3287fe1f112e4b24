#include "Classes/Browsing/Index/ItemCount.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QLocale>

QString zqItemCount(qint64 count)
{
    return count == 1 ? zqLocalized("1 item") : zqFormat(zqLocalized("%@ items"), {QLocale().toString(count)});
}
