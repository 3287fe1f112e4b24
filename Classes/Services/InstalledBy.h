#pragma once

#include <QProcessEnvironment>
#include <QString>

#include <optional>

// Who put a program on this machine and therefore brings it up to date. Reads the disk; any thread.
struct InstalledBy
{
    QString manager;      // its name, as a person knows it
    QString package;      // empty: not known
    QString text() const; // "dpkg (package zelto)"

    // One that is closed off from the rest of the machine and that the program is in; nothing: it is in none.
    static std::optional<InstalledBy> sandboxOf(const QString &executable, const QProcessEnvironment &environment,
                                                const QString &root = QStringLiteral("/"));
    static bool isInSandbox(); // this program

    // Nothing: it was put there by hand. `root` is where the system's own files are looked for.
    static std::optional<InstalledBy> managerOf(const QString &executable, const QProcessEnvironment &environment,
                                                const QString &root = QStringLiteral("/"));
};
