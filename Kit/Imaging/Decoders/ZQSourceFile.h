#pragma once

#include "Kit/Files/ZQSystemFile.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <memory>

struct _VipsSource;

// The file that a decoder reads: an open descriptor, so that a process without access to any folder can decode, and the
// name it goes by, which decides where the content says too little. Copies share the descriptor and its position: one
// reader at a time, each starting at the beginning.
class ZQSourceFile
{
public:
    ZQSourceFile() = default;
    ZQSourceFile(ZQFileDescriptor descriptor, QString name);
    static ZQSourceFile open(const QString &path); // not open when the path cannot be read

    // A file in memory; not open when memory is short.
    static ZQSourceFile ofBytes(const QByteArray &bytes, const QString &name);

    bool isOpen() const { return m_descriptor && m_descriptor->isOpen(); }
    const QString &name() const { return m_name; }
    qint64 size() const;
    // The first bytes, read once: all of a small file (256 KB), enough to tell its format of any other.
    static constexpr qint64 sniffedBytes = 4096;
    const QByteArray &start() const;

    // Opens `file` for reading on the descriptor.
    bool openIn(QFile &file) const;
    // For libvips; null when it cannot be read.
    _VipsSource *makeVipsSource() const;

    // All bytes, mapped into memory. What is written to them stays there.
    // Reading past the end of a file that was shortened meanwhile ends the process.
    class Bytes
    {
    public:
        explicit Bytes(const ZQSourceFile &file);
        ~Bytes();
        Bytes(Bytes &&other) noexcept;
        Bytes(const Bytes &) = delete;
        Bytes &operator=(const Bytes &) = delete;

        const uchar *data() const { return static_cast<const uchar *>(m_data); } // null: cannot be mapped
        uchar *data() { return static_cast<uchar *>(m_data); }
        size_t size() const { return m_size; }

    private:
        void *m_data = nullptr;
        size_t m_size = 0;
    };

private:
    struct Start
    {
        bool isRead = false;
        QByteArray bytes;
    };

    std::shared_ptr<const ZQFileDescriptor> m_descriptor;
    std::shared_ptr<Start> m_start;
    QString m_name;
};
