#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>

class EditRun;

// What could not be done to files of people in the course of a change: told once, at its end, with what to do about the
// first of them. Of one thread at a time.
class FileProblems
{
public:
    void add(const QString &name, const ZQError &error);
    bool isEmpty() const { return m_count == 0; }
    bool endChange() const { return m_isOfPlace; } // what follows would fail as well

    // `one` has a "%@" for the name, `several` a "%d"; of the catalogue of texts.
    void tell(EditRun &run, const char *one, const char *several) const;

private:
    QString m_first;
    ZQError m_error;
    int m_count = 0;
    bool m_isOfPlace = false;
};
