#pragma once

#include "Kit/Network/ZQHTTPBody.h"
#include "Kit/Network/ZQHTTPRequest.h"

// A form of fields and files (multipart/form-data), sent in the order in which they were added; files are read while
// they are sent. Its boundary is drawn anew, so that no file can have been made to hold it. A value; any thread.
class ZQMultipartForm
{
public:
    ZQMultipartForm();

    void addField(const QString &name, const QString &value);
    // Under the file's own name and the content type of its kind where none is given. False, with an error, and nothing
    // added, when it cannot be read.
    bool addFile(const QString &name, const QString &path, ZQError *error = nullptr, const QString &fileName = {},
                 const QByteArray &contentType = {});

    QByteArray contentType() const; // with the boundary
    ZQHTTPBody body() const;
    // Makes `request` a POST of the form.
    void giveTo(ZQHTTPRequest &request) const;

private:
    QByteArray m_boundary;
    ZQHTTPBody m_parts;
};
