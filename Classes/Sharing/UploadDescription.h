#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Foundation/ZQSecret.h"
#include "Kit/Network/ZQHTTPRequest.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <optional>
#include <utility>

// How files are uploaded to a service that we know nothing of, as a file in JSON describes it: docs/UPLOADS.md says
// what may stand in one. What it does not know it refuses: a description comes from a stranger and must not mean more
// than a person can see. A value; any thread.
struct UploadDescription
{
    enum class LinkPlace { Pointer, Between, Header, FinalAddress };
    using Pairs = QList<std::pair<QString, QString>>;

    QString name;
    QByteArray method = "POST";
    QUrl url;
    Pairs headers;
    Pairs fields;
    QString file; // empty: raw
    LinkPlace linkPlace = LinkPlace::FinalAddress;
    QString linkAt;    // the pointer, the text before it, the header's name
    QString linkEnd;   // the text after it; empty: it is not between two
    QByteArray source; // as it was written

    static constexpr qsizetype largest = 64 * 1024; // bytes of a file
    // Nothing, with an error that names the line, for what cannot be taken.
    static std::optional<UploadDescription> from(const QByteArray &JSON, ZQError *error = nullptr);

    static QByteArray example(); // to begin one with

    QStringList secrets() const;                       // names, each once, in the order in which they appear
    static QStringList secretsIn(const QString &text); // each time it names one
    // Where files go: "files.example.org", with a port where it names one, and with "http://" where it is not
    // encrypted.
    QString destination() const;
    // `text` with the secrets in place of their names. What one is not known for is left out.
    static QString filledIn(const QString &text, const QHash<QString, ZQSecret> &secrets);
    // Where the answer says that the file is; empty: nowhere, or it is no link.
    QString linkIn(const ZQHTTPResponse &response) const;
};
