#pragma once

#include "Classes/Editing/EditContext.h"

// Of items that show the same, one stays and takes the places of the others: it becomes a member of their projects,
// where they were, and gets the tags that people gave them; where it has none itself, the highest rating and the first
// notes, too. The others are deleted, which undo takes back together with what the one got. Main thread.
class KeepOne
{
public:
    explicit KeepOne(EditContext &edits) : m_edits(edits) {}

    struct Choice
    {
        ZQObjectID kept;
        QList<ZQObjectID> others;
    };
    // One undo step for all choices. An item that is kept by any of them is deleted by none. Where the one that is to
    // stay was deleted meanwhile, or its file is missing, which is told, its others stay, too.
    void keep(const QList<Choice> &choices);

    // Beyond so many items the edit queue does it.
    static constexpr qint64 mostAtOnce = 200;

private:
    EditContext &m_edits;
};
