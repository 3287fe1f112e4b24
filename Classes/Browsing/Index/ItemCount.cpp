#include "Classes/Browsing/Index/ItemCount.h"

#include "Kit/Foundation/ZQLocalized.h"

QString zqItemCount(qint64 count)
{
    return zqCounted({"1 item", "%@ items"}, count);
}
