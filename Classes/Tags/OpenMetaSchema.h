#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>
#include <QVariantMap>

// Tells indexers which keys exist and the types of their values: a property list in `schemaDirectory`, taken away again
// two seconds later while the application's event loop runs. Main thread.
class OpenMetaSchema
{
public:
    static QString schemaDirectory();
    static ZQError registerUsualOMAttributes();
    static ZQError registerOMAttributes(const QVariantMap &typicalAttributes, const QString &appName);
    static bool removeSchemaFile(const QString &path); // only what lies in that directory
};
