#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QIODevice>
#include <QList>
#include <QString>

#include <functional>
#include <memory>

// What a request sends: pieces one after the other, bytes or what files hold. Files are opened when they are added and
// read only while they are sent, so that neither their size matters nor what takes their name meanwhile. A value; any
// thread.
class ZQHTTPBody
{
public:
    void append(const QByteArray &bytes);
    // Of a file, `length` bytes from `offset` on; negative: all that follows. False, with an error, and nothing added,
    // when it cannot be read or is shorter.
    bool appendFile(const QString &path, ZQError *error = nullptr, qint64 offset = 0, qint64 length = -1);
    qint64 size() const { return m_size; }

    // For `ZQHTTPRequest::makeBody`. A file that changes while it is sent ends the request, whatever was sent of it.
    std::function<std::unique_ptr<QIODevice>()> maker() const;

private:
    friend class ZQHTTPBodyDevice;
    struct OpenFile;
    struct Piece
    {
        QByteArray bytes; // where there is no file
        std::shared_ptr<const OpenFile> file;
        qint64 offset; // in the file
        qint64 start;  // in the body
        qint64 length;
    };
    QList<Piece> m_pieces;
    qint64 m_size = 0;
};
