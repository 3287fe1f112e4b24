#pragma once

#include "Classes/Browsing/TabState.h"
#include "Kit/Files/ZQKeyedArchive.h"

#include <memory>

// A tab in the form of the open tabs' file. Main thread.
namespace TabStateArchive {

inline const QString className = QStringLiteral("TabState");

// Saves what has no lasting identifier yet.
ZQKeyedArchive::Object archived(TabState &tab, EditContext &edits);

// What `restored` found the archive to name, for who has to tell an emptied tab from one of another library.
struct Naming
{
    qsizetype named = 0;
    qsizetype found = 0;
};
// Null when a value is of another type than it has to be, or out of bounds. Sidebar items and a detail item that are
// gone are left out; `naming` is added to.
std::shared_ptr<TabState> restored(const QVariant &archive, EditContext &edits, Naming &naming);

} // namespace TabStateArchive
