#pragma once

#include "Classes/Browsing/Tabs/TabState.h"
#include "Kit/Files/ZQKeyedArchive.h"

#include <QSet>
#include <QUuid>

#include <memory>

// A tab in the form of the open tabs' file. Main thread.
namespace TabStateArchive {

inline const QString className = QStringLiteral("TabState");

enum class Kept { Everything, AllButSelection };
// Saves what has no lasting identifier yet.
ZQKeyedArchive::Object archived(TabState &tab, EditContext &edits, Kept kept = Kept::Everything);

// The stores whose objects it names, of whatever it is an archive.
QSet<QUuid> storesNamedBy(const QVariant &archive);
// Null when a value is of another type than it has to be, or out of bounds. Sidebar items and a detail item that are
// gone are left out.
std::shared_ptr<TabState> restored(const QVariant &archive, EditContext &edits);

} // namespace TabStateArchive
