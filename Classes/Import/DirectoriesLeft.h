#pragma once

#include <QString>
#include <QStringList>

// Item directories of one library that were read to be taken back and gave no item: they are read again only when they,
// or the program, have changed. Remembered in the defaults ("DirectoriesNotTakenBack"), where directories that are gone
// are forgotten with the next ones added. Main thread.
class DirectoriesLeft
{
public:
    explicit DirectoriesLeft(const QString &library); // the folder of the item directories

    bool contains(const QString &name) const;
    void add(const QStringList &names);

private:
    QString mark(const QString &name) const;

    const QString m_library;
    QStringList m_marks;
};
