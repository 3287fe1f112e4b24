#pragma once

#include "Classes/Interface/WindowCommand.h"
#include "Classes/Interface/WindowContext.h"

class BrowserViewController;
class QWidget;

// Finding what looks alike: among what is selected in the browser where that is several, else in the place that is
// shown, else in the whole library. Main thread.
namespace NearDuplicateActions {

QList<WindowCommand> commands(WindowContext &window, BrowserViewController &browser, QWidget *mainWindow);
void findAmong(const QList<ZQObjectID> &items, WindowContext &window, QWidget *mainWindow);
// Whatever is selected or shown.
void findInLibrary(WindowContext &window, QWidget *mainWindow);

} // namespace NearDuplicateActions
