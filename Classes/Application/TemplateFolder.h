#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>
#include <QStringList>

#include <optional>

// The folder of the person's templates: files and packages (folders) whose names end in ".zttemplate". Nothing in it is
// ever written over, and what leaves it goes to the trash. Any thread.
namespace TemplateFolder {

inline const QString extension = QStringLiteral("zttemplate");
inline const QString errorDomain = QStringLiteral("zelto.templates");
enum Error { NoTemplate = 1, NameTaken, NoCopy };

bool isTemplatePath(const QString &path);
// By name. What a copy that was cut off left in the folder more than a day ago goes on the way.
QStringList paths(const QString &directory);

// Moves a template into the folder, under its name. From another disk, or through a link, it is copied; the original
// then goes to the trash of its disk, a linked one stays. False, with everything as it was, when there is one of that
// name; true for one that lies there already.
bool moveIn(const QString &path, const QString &directory, ZQError *error = nullptr);
// Makes a template of a copy of any file: "Poster.psd" becomes "Poster.psd.zttemplate", numbered where that is taken.
// The template's path; nothing when it cannot be copied.
std::optional<QString> add(const QString &file, const QString &directory, ZQError *error = nullptr);
// Into the trash. False for what is no template of this folder.
bool remove(const QString &path, const QString &directory, ZQError *error = nullptr);

} // namespace TemplateFolder
