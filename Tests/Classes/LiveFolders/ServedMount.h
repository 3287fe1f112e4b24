#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <atomic>
#include <thread>
#include <vector>

// A file system behind a program, as of a server or a phone: it shows some files of a folder, for reading only, under
// numbers in the order in which they are named, and knows nothing of when they were made. Needs mounts of a test's own.
class ServedMount
{
public:
    ServedMount(const QString &folder, const QString &source, const QStringList &names);
    ~ServedMount();
    ServedMount(const ServedMount &) = delete;
    ServedMount &operator=(const ServedMount &) = delete;

    bool isMounted() const { return m_isMounted; }
    void die(); // it stays mounted and answers nobody

private:
    void serve() const;
    QByteArray answer(const QByteArray &request, int &error) const;
    QByteArray list(quint64 offset) const;
    std::size_t entryNamed(const QByteArray &name) const;

    struct Entry
    {
        QByteArray name;
        QByteArray path; // in the source
    };
    const QByteArray m_folder;
    std::vector<Entry> m_entries; // by number; the first two are none
    int m_device = -1;
    bool m_isMounted = false;
    std::atomic<bool> m_isEnding = false;
    std::thread m_server;
};
