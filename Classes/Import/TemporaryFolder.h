#pragma once

#include <QString>
#include <QUrl>

#include <atomic>

// A folder of its own in the temporary area; it and what is left in it go with this object. Any thread.
class TemporaryFolder
{
public:
    // A fresh folder of one's own for files that are to be imported; empty on failure, which the person is told. It is
    // the caller's to remove, or to own through an object of this class.
    static QString temporaryDirectory();
    static QUrl temporaryURL();

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
