#pragma once

#include "Classes/Import/PromiseSource.h"
#include "Classes/Import/TemporaryFolder.h"

#include <QStringList>
#include <QVariantMap>

class QMimeData;

// What one drop was promised, from the drop until it is there. The program that promised it writes into a folder of its
// own in the temporary area and, being told a place there, nowhere on our behalf. An archive manager may write several
// files and folders, under other names than the one it proposed: whatever files are in the folder came.
//
// Main thread. Asks and looks, but never waits.
class PromisedFiles
{
public:
    enum class State {
        Awaited,
        Here,    // complete, as far as can be told
        Refused, // the program says that it did not save, or will not answer
        Missing, // nothing came in time
    };

    // The format in which a drag offers a promise; empty when it offers none. Looks at the names of the formats only.
    static QString formatIn(const QMimeData &data);
    // A name that a file in the folder can have, with the extension of what was proposed.
    static QString nameFrom(const QByteArray &proposed);
    // "webPageURL" for all files, when the drag carries an address of the web.
    static QVariantMap metadataFrom(const QMimeData &data);

    // Asks for the file; the folder goes with this object, unless what is in it is taken.
    PromisedFiles(std::unique_ptr<PromiseSource> source, const QString &folder);

    QString name() const { return m_name; }
    // To be called every 100 milliseconds until something else than `Awaited` is answered. Files are waited for as long
    // as 20 looks show no change, the program's answer 100.
    State look();
    // The files that are there, also those in folders; the folder is the caller's from now on.
    QStringList take();

private:
    // By which a change in the folder is noticed.
    struct Content
    {
        qsizetype entries = 0;
        qint64 bytes = 0;
        qint64 newest = 0; // in milliseconds
        bool operator==(const Content &other) const = default;
    };

    Content content() const;
    bool isBeingWritten() const;
    bool isNamedFileThere() const;
    QStringList paths() const;

    TemporaryFolder m_folder;
    std::unique_ptr<PromiseSource> m_source;
    QString m_name;
    Content m_content;
    bool m_isSaved = false; // as the program says
    int m_looks = 0;
    int m_looksWithoutChange = 0;
};
