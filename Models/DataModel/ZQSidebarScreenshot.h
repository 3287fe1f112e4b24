#pragma once

#include "Models/DataModel/_ZQSidebarScreenshot.h"

// The project that screen captures go to.
class ZQSidebarScreenshot : public _ZQSidebarScreenshot
{
public:
    bool isScreenshot() const override { return true; }
    QString typeString() const override;
    QString icon() const override { return QStringLiteral("screenshots"); }
};
