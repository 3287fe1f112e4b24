#include "Classes/Services/InstalledBy.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

bool isListed(const QString &list, const QByteArray &path)
{
    QFile file(list);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    while (!file.atEnd()) {
        if (file.readLine().trimmed() == path) {
            return true;
        }
    }
    return false;
}

// The lists of dpkg's database name each file of each package. There are thousands; the likely ones come first.
QString dpkgPackageOf(const QString &executable, const QString &root)
{
    const QDir database(root + QStringLiteral("/var/lib/dpkg/info"));
    QStringList lists = database.entryList({QStringLiteral("*.list")}, QDir::Files, QDir::Name);
    std::stable_partition(lists.begin(), lists.end(),
                          [](const QString &list) { return list.startsWith(QStringLiteral("zelto")); });
    const QByteArray path = QFile::encodeName(executable);
    for (const QString &list : std::as_const(lists)) {
        if (isListed(database.filePath(list), path)) {
            return list.chopped(QStringLiteral(".list").size()).section(u':', 0, 0); // without the architecture
        }
    }
    return {};
}

} // namespace

QString InstalledBy::text() const
{
    return package.isEmpty() ? manager : zqFormat(zqLocalized("%@ (package %@)"), {manager, package});
}

std::optional<InstalledBy> InstalledBy::sandboxOf(const QString &executable, const QProcessEnvironment &environment,
                                                  const QString &root)
{
    if (environment.contains(QStringLiteral("FLATPAK_ID")) ||
        QFileInfo::exists(root + QStringLiteral("/.flatpak-info"))) {
        return InstalledBy{QStringLiteral("Flatpak"), environment.value(QStringLiteral("FLATPAK_ID"))};
    }
    // Programs that a snap starts inherit its environment; those that are in it lie there.
    const QString snap = environment.value(QStringLiteral("SNAP"));
    if (!snap.isEmpty() && executable.startsWith(snap + u'/')) {
        return InstalledBy{QStringLiteral("Snap"), environment.value(QStringLiteral("SNAP_NAME"))};
    }
    return std::nullopt;
}

bool InstalledBy::isInSandbox()
{
    return sandboxOf(QCoreApplication::applicationFilePath(), QProcessEnvironment::systemEnvironment()).has_value();
}

std::optional<InstalledBy> InstalledBy::managerOf(const QString &executable, const QProcessEnvironment &environment,
                                                  const QString &root)
{
    if (const auto sandbox = sandboxOf(executable, environment, root)) {
        return sandbox;
    }
    // Nothing of a package lies elsewhere, and the whole database is to be read to know that.
    const bool isOfSystem =
        (executable.startsWith(QStringLiteral("/usr/")) && !executable.startsWith(QStringLiteral("/usr/local/"))) ||
        executable.startsWith(QStringLiteral("/opt/"));
    if (!isOfSystem) {
        return std::nullopt;
    }
    if (const QString package = dpkgPackageOf(executable, root); !package.isEmpty()) {
        return InstalledBy{QStringLiteral("dpkg"), package};
    }
    for (const auto &[database, manager] :
         {std::pair("/var/lib/pacman/local", "pacman"), std::pair("/usr/lib/sysimage/rpm", "rpm"),
          std::pair("/var/lib/rpm", "rpm")}) {
        if (executable.startsWith(QStringLiteral("/usr/")) && QFileInfo::exists(root + QLatin1StringView(database)) &&
            !QDir(root + QLatin1StringView(database)).isEmpty()) {
            return InstalledBy{QLatin1StringView(manager), {}};
        }
    }
    return std::nullopt;
}
