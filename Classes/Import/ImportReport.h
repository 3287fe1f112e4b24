#pragma once

#include "Kit/Foundation/ZQThreadSafety.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

// A file that was asked for and did not become an item, or not wholly, with a sentence that says why and what to do.
struct DroppedFile
{
    enum class Telling {
        InWindow,           // a person at the window is told
        InWindowPartly,     // too; the rest of an archive was taken
        InWindowIncomplete, // too; the picture was imported, but only a part of it can be drawn
        Quietly, // only who asks for the report, and who dropped just that: kinds nobody expected to be taken
        Decided, // only who asks for the report: duplicates the person decided about
    };
    QString path;
    QString reason;
    Telling telling = Telling::InWindow;

    bool isImportedInPart() const
    {
        return telling == Telling::InWindowPartly || telling == Telling::InWindowIncomplete;
    }
};

// What became of one batch. Filled while it runs; any thread.
class ImportReport
{
public:
    QStringList imported() const; // the item directories' names, without extension, in order
    QList<DroppedFile> dropped() const;
    QStringList notifications() const; // the texts shown in the window
    bool isUnfinished() const;         // the request is kept, and can go on; a notification says why

    // From then on a path below `folder` is reported as one below `shownAs`: what lies there has no place of its own.
    void setOrigin(const QString &folder, const QString &shownAs);
    QString shownPath(const QString &path) const;
    void setImported(const QStringList &bundleIDs);
    // What is said last of a path that is incomplete counts: the import may go on with it and drop it later.
    void addDropped(const DroppedFile &file);
    void addNotification(const QString &text);
    void setUnfinished();

private:
    QString shown(const QString &path) const ZQ_REQUIRES(m_mutex);

    mutable ZQMutex m_mutex;
    QString m_originFolder ZQ_GUARDED_BY(m_mutex);
    QString m_originShownAs ZQ_GUARDED_BY(m_mutex);
    QStringList m_imported ZQ_GUARDED_BY(m_mutex);
    QList<DroppedFile> m_dropped ZQ_GUARDED_BY(m_mutex);
    QSet<QString> m_incomplete ZQ_GUARDED_BY(m_mutex); // the paths among them
    QStringList m_notifications ZQ_GUARDED_BY(m_mutex);
    bool m_isUnfinished ZQ_GUARDED_BY(m_mutex) = false;
};
