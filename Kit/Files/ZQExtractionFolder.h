#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

// A folder that files are written into under names nobody can trust. Whatever the names are, nothing is written outside
// of it: every step goes through an open descriptor of the folder before, no link is followed, and none is ever made.
// One thread.
class ZQExtractionFolder
{
public:
    static constexpr int maximumDepth = 64;

    // What becomes of a name.
    enum class Verdict {
        Fine,
        Noise,   // what a desktop keeps beside files and nobody asked for
        Outside, // leads out of the folder
        TooDeep,
        TooLong,
    };

    // The names of the folders and the file on the way of `name`, with "/" or "\" between them: a beginning "/" or
    // drive letter goes, a name longer than a file system takes is shortened. Empty for a name that names nothing.
    static Verdict components(const QString &name, QStringList *components);

    // A folder that is there.
    explicit ZQExtractionFolder(const QString &path);
    ~ZQExtractionFolder();
    ZQExtractionFolder(const ZQExtractionFolder &) = delete;
    ZQExtractionFolder &operator=(const ZQExtractionFolder &) = delete;

    // Whether the whole path stays within what the system can name.
    bool canHold(const QStringList &components) const;
    bool makeFolder(const QStringList &components, ZQError *error = nullptr);
    // A new file, open for writing, as a descriptor that the caller closes; -1 on failure. When the name is taken, the
    // file gets a number after its name.
    int makeFile(const QStringList &components, ZQError *error = nullptr);

private:
    int directory(const QStringList &components, ZQError *error);

    QString m_path;
    int m_root = -1;
    int m_current = -1; // the folder used last, or -1
    QStringList m_currentComponents;
    QHash<QString, int> m_nextNumber; // by path, for names that come again
};
