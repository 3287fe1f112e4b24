#pragma once

#include <QByteArray>
#include <QStringList>

#include <functional>

// Makes the extended attributes of files fail as a bad disk, a full one or a withdrawn permission would, for as long as
// it lives. One at a time; faults of any thread of this process.
class AttributeFaults
{
public:
    AttributeFaults();
    ~AttributeFaults();
    AttributeFaults(const AttributeFaults &) = delete;
    AttributeFaults &operator=(const AttributeFaults &) = delete;

    // Names as `ZQExtendedAttributes` takes them.
    void failReading(const QString &name, int errnoValue);
    void failWriting(const QString &name, int errnoValue); // setting and removing
    void setRoom(qsizetype bytes);                         // for names and values of one file; -1: as the disk has
    void answerReading(const QString &name, const QByteArray &value); // whatever the file holds
    // Once, on the thread that is about to read or write it: what others do meanwhile.
    void beforeReading(const QString &name, std::function<void()> act);
    void beforeWriting(const QString &name, std::function<void()> act);
    void hideBirthTimes(); // as file systems that keep none
    void clear();
    int reads() const;           // of one value each, of any file, since it was made
    int writes() const;          // that were asked for, since it was made
    QStringList written() const; // the names, in their order, since it was made or cleared
};
