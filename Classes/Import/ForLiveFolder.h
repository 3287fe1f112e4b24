#pragma once

#include "Classes/Import/ImportReport.h"

#include <QList>
#include <QStringList>

// Of files that are to be copied into a live folder those that it would show, with all folders, whatever they hold; and
// the others, with why not. No file is opened. Any thread.
struct ForLiveFolder
{
    QStringList paths;
    QList<DroppedFile> leftOut;

    static ForLiveFolder of(const QStringList &paths);
};
