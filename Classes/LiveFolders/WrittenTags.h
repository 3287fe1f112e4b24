#pragma once

#include "Classes/Tags/FileTags.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

// Which of the files that a run gave tags hold these and nothing else. Writing moves a file's dates, so that only
// reading tells whether somebody else wrote there, too; it is done where the tags are written, while the run still
// reads other files, so that nothing is left for its end.
//
// The run's thread. What is not known is no failure: such a file is read by whoever wants to know.
class WrittenTags
{
public:
    WrittenTags();

    struct File
    {
        QString path;
        FileTags tags;
    };
    void add(std::vector<File> files); // after their writes were asked for
    // No others follow. All that can be known is when what was asked of `TagFileWriter` is done.
    void finish();
    // The date of its attributes when the file held its tags alone, in nanoseconds since 1970. As long as it has that
    // date nobody wrote there.
    std::optional<qint64> changeOf(const QString &path) const;

private:
    class Reading;
    std::shared_ptr<Reading> m_reading; // outlives a run that is given up
};
