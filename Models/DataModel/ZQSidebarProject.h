#pragma once

#include "Models/DataModel/_ZQSidebarProject.h"

// A user's project.
class ZQSidebarProject : public _ZQSidebarProject
{
public:
    bool isProject() const override { return true; }
    QString typeString() const override;
    QString icon() const override { return QStringLiteral("project"); }
};
