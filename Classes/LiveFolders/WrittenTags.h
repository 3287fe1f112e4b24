#pragma once

#include "Classes/Tags/FileTags.h"

#include <QHash>
#include <QString>

#include <memory>
#include <vector>

// Which of the files that a run gave tags hold these and nothing else. Writing moves a file's dates, so that only
// reading tells whether somebody else wrote there, too; it is done by a thread of its own while the run still reads
// other files, so that little is left for its end.
//
// The run's thread. What cannot be known is no failure: such a file is read by whoever wants to know.
class WrittenTags
{
public:
    WrittenTags();

    struct File
    {
        QString path;
        FileTags tags;
    };
    void add(const std::vector<File> &files); // after their writes were asked for
    // By path, the date of its attributes when the file held its tags alone, in nanoseconds since 1970: as long as it
    // has that date nobody else wrote there. Of what `TagFileWriter` did by now; waits for the reading.
    QHash<QString, qint64> changes() const;

private:
    class Reading;
    std::shared_ptr<Reading> m_reading; // outlives a run that is given up
};
