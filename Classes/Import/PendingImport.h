#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Foundation/ZQThreadSafety.h"

#include <QDateTime>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <memory>
#include <optional>

// What an import was asked for.
struct PendingImport
{
    // Files that go into one sidebar item, once the folders of the request have become some.
    struct Group
    {
        QString project; // its identifier text
        QStringList files;
    };

    QStringList paths; // in drop order
    QString target;    // the sidebar item's identifier text; empty: the library
    quint32 index = 0;
    QVariantMap metadata;
    QString archivePath; // what `paths` came out of, and the folder named after it; empty: no archive
    QString archiveRoot;
    QList<Group> groups;
    QStringList ungrouped = {}; // of the paths, those that were out of reach when the groups were made of the others
    QString duplicates = {};    // see `duplicateAnswerNamed`; empty: nobody has answered yet
    QVariantMap fileMetadata = {};
};

// A PendingImport in a file of the bundle, from before the first file is touched until the batch ends; a batch that a
// killed process leaves can go on from it. Beside it a list of what the batch was about to save: a source is in the
// library when the store has the item named there. Any thread, one at a time; `remove` at any moment.
class PendingImportFile
{
public:
    // A source, and the item directory's name it was saved under; empty when the person decided against it.
    struct Source
    {
        QString bundleID;
        QString path;
        QString movedPath; // see `ImportedFile`
        qint64 movedModification = 0;
    };

    // What one tells about item directories that the store does not name.
    struct Traces
    {
        std::optional<QDateTime> since; // made from then on, they may be its own; nothing: they are not
        QSet<QString> saved;            // bundleIDs: these were in the store once, for it went on after their save
    };

    // Those in `folder` that belong to no batch of this process, oldest first; by their names.
    static QStringList cutOff(const QString &folder);
    static QDateTime beginning(const QString &name);
    static bool forget(const QString &folder, const QString &name);
    // About the items of these bundleIDs alone. A list that is there and cannot be read explains nothing.
    static Traces traces(const QString &folder, const QString &name, const QSet<QString> &bundleIDs);
    // What it had made before `launch` was looked through. Noted in the list, until it goes on.
    static void noteLookedThrough(const QString &folder, const QString &name, const QDateTime &launch);
    // Files of requests that are gone, or never were whole, as a killed process leaves them.
    static void removeRemains(const QString &folder);

    // Null with an error when it cannot be written, or read.
    static std::shared_ptr<PendingImportFile> create(const QString &folder, const PendingImport &request,
                                                     ZQError *error = nullptr);
    static std::shared_ptr<PendingImportFile> open(const QString &folder, const QString &name,
                                                   ZQError *error = nullptr);
    ~PendingImportFile(); // the file stays
    PendingImportFile(const PendingImportFile &) = delete;
    PendingImportFile &operator=(const PendingImportFile &) = delete;

    PendingImport request() const;
    // On failure the earlier one stays.
    bool setRequest(const PendingImport &request, ZQError *error = nullptr);
    // The archive was unpacked again: its root, and what is imported of it, are elsewhere now.
    bool moveArchive(const QString &root, const QString &folder, ZQError *error = nullptr);
    // Only this is left to do; none of the sources is in it.
    bool narrow(const PendingImport &rest, ZQError *error = nullptr);
    // Before the save that names them, which must not go ahead without. Reaches the disk with the file system's next
    // flush. Nothing is written, and that is no failure, once it was removed: a request that is gone goes on nowhere.
    bool addSources(const QList<Source> &sources, ZQError *error = nullptr);
    // Another process goes on with it: what is made from here on may be its own again.
    void noteGoingOn();
    // Nothing when the list is there and cannot be read.
    std::optional<QList<Source>> sources(ZQError *error = nullptr) const;
    void remove();

private:
    PendingImportFile(const QString &folder, const QString &name, PendingImport request);
    bool write(ZQError *error) ZQ_REQUIRES(m_writing);

    const QString m_folder;
    const QString m_name;
    mutable ZQMutex m_writing; // its files are written, or removed
    PendingImport m_request ZQ_GUARDED_BY(m_writing);
    bool m_isRemoved ZQ_GUARDED_BY(m_writing) = false;
};
