#include "Classes/Import/DirectoriesLeft.h"

#include "Kit/Files/ZQUserDefaults.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>

namespace {
const QString key = QStringLiteral("DirectoriesNotTakenBack");
} // namespace

DirectoriesLeft::DirectoriesLeft(const QString &library)
    : m_library(library + u'/'), m_marks(ZQUserDefaults::standardUserDefaults().objectForKey(key).toStringList())
{
}

bool DirectoriesLeft::contains(const QString &name) const
{
    return m_marks.contains(mark(name));
}

void DirectoriesLeft::add(const QStringList &names)
{
    m_marks.removeIf([this](const QString &mark) {
        return mark.startsWith(m_library) && !QFileInfo::exists(mark.section(u'\n', 0, 0));
    });
    for (const QString &name : names) {
        m_marks.append(mark(name));
    }
    ZQUserDefaults::standardUserDefaults().setObjectForKey(m_marks, key);
}

QString DirectoriesLeft::mark(const QString &name) const
{
    const QString path = m_library + name;
    const auto changed = QFileInfo(path).lastModified().toMSecsSinceEpoch();
    return QStringList{path, QString::number(changed), QCoreApplication::applicationVersion()}.join(u'\n');
}
