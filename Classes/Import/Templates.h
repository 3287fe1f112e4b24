#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QList>
#include <QString>

#include <memory>
#include <optional>

class ImportOperation;
class ZQSidebarBaseItem;

// A template of the person's, as it becomes an asset. A file is one by itself; of a package (a folder) the first file
// that can be imported is, and one named "preview" is only its picture.
struct TemplateFile
{
    QString path;
    QString title;
    QString file;      // that is copied; empty: nothing in it can be imported
    QString extension; // that the copy has to have
    QString picture;   // a file to show; empty: none
};

// Templates as assets. Main thread.
namespace Templates {

QList<TemplateFile> inFolder(const QString &directory); // by title
TemplateFile atPath(const QString &path);
// By title or by file name; nothing, with an error that names those there are.
std::optional<TemplateFile> named(const QString &name, const QString &directory, ZQError *error = nullptr);
// Starts the import of a copy, titled as the template, at the end of the entry. Null with an error when it cannot be
// made; null without one for a live folder, which is copied into instead.
std::shared_ptr<ImportOperation> makeAsset(const TemplateFile &source, const ZQSidebarBaseItem &into,
                                           ZQError *error = nullptr);

} // namespace Templates
