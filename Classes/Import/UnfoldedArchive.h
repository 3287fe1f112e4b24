#pragma once

#include "Kit/Persistence/ZQObjectID.h"

#include <QString>
#include <QVariantMap>

#include <atomic>
#include <memory>

// A folder of its own in the temporary area; it and what is left in it go with this object. Any thread.
class TemporaryFolder
{
public:
    explicit TemporaryFolder(const QString &path) : m_path(path) {}
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    QString path() const { return m_path; }
    void keep() { m_isKept = true; } // it stays after all

private:
    const QString m_path;
    std::atomic<bool> m_isKept = false;
};

// What came out of an archive and is to be imported by a request of its own.
struct UnfoldedArchive
{
    QString archivePath;
    QString root;   // the folder named after the archive
    QString folder; // what is imported: `root`, or the one folder that is all it holds
    ZQObjectID sidebarItem;
    QVariantMap metadata;
    std::shared_ptr<TemporaryFolder> holder; // all of this lies in it
};
