#pragma once

#include <QString>
#include <QStringList>

// The names of the item directories of purged items, in a file of the bundle from before their items go until they have
// gone themselves: what a killed process leaves of them is no loss. Any thread, one at a time; the library must be
// held.
class RemovalNote
{
public:
    RemovalNote(QString path, QString library);

    // Without what could be no item directory's name; empty for a file that nobody would have left here.
    QStringList names() const;
    QStringList present() const;                // of those, whose directories are still there
    void write(const QStringList &names) const; // in place of all that was noted; a failure is logged
    void dropWhatIsGone() const;

private:
    bool isPresent(const QString &name) const;

    const QString m_path;
    const QString m_library;
};
