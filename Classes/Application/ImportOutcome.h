#pragma once

#include "Kit/Persistence/ZQObjectID.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QUuid>

#include <chrono>

// A file that was to be imported and was not, and why.
struct RefusedFile
{
    QString path;
    QString reason; // with what to do
};

// What became of an import, once its items are safe. What came out of its archives are parts with outcomes of their
// own, which add up.
struct ImportOutcome
{
    QStringList texts; // what there is to say in any case; empty: all went well
    QString summary;   // instead of it where the refused files can be listed; empty: the texts
    std::chrono::milliseconds time{};
    ZQObjectID target; // the sidebar item it went to
    QList<ZQObjectID> imported;
    QList<RefusedFile> refused;   // those whose reasons are for a person
    qsizetype notImported = 0;    // of them; the others came in part
    QUuid import = {};            // the same for all parts of one
    bool hasMore = false;         // parts of it are still to come
    bool isCancelled = false;     // or one of its parts is
    bool saysNothingCame = false; // besides the texts

    QString text() const; // all of it
    static QString textForNothing();

    // Adds a later part of the same import.
    void add(const ImportOutcome &part);
    // The summary from the numbers: where several were not imported, or the text does not say why one was not.
    void summarize();
};
