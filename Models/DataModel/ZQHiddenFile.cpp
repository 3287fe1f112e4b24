#include "Models/DataModel/ZQHiddenFile.h"

#include "Kit/Files/ZQTypeIdentifier.h"

#include <QUuid>

QString zqHiddenPathFor(const QString &path)
{
    const QString unique = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    const QString extension = zqPathExtension(path);
    return path.left(path.lastIndexOf(u'/') + 1) + u'.' + unique + (extension.isEmpty() ? extension : u'.' + extension);
}

bool zqIsHiddenByLibrary(const QString &path)
{
    constexpr qsizetype uuidSize = 36;
    const QString name = path.mid(path.lastIndexOf(u'/') + 1);
    const QString unique = name.mid(1, uuidSize);
    return name.startsWith(u'.') && unique.size() == uuidSize && unique == unique.toUpper() &&
           !QUuid::fromString(unique).isNull() && (name.size() == uuidSize + 1 || name.at(uuidSize + 1) == u'.');
}
