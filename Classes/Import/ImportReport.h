#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <mutex>

// A file that was asked for and did not become an item, with a sentence that says why and what to do.
struct DroppedFile
{
    enum class Telling {
        InWindow,       // a person at the window is told
        InWindowPartly, // too; the rest of an archive was taken
        Quietly, // only who asks for the report: kinds nobody expected to be taken, duplicates the person decided about
    };
    QString path;
    QString reason;
    Telling telling = Telling::InWindow;
};

// What became of one batch. Filled while it runs; any thread.
class ImportReport
{
public:
    QStringList imported() const; // the item directories' names, without extension, in order
    QList<DroppedFile> dropped() const;
    QStringList notifications() const; // the texts shown in the window

    // From then on a path below `folder` is reported as one below `shownAs`: what lies there has no place of its own.
    void setOrigin(const QString &folder, const QString &shownAs);
    void setImported(const QStringList &bundleIDs);
    void addDropped(const DroppedFile &file);
    void addNotification(const QString &text);

private:
    mutable std::mutex m_mutex;
    QString m_originFolder;
    QString m_originShownAs;
    QStringList m_imported;
    QList<DroppedFile> m_dropped;
    QStringList m_notifications;
};
