#include "Classes/Interface/Window/NearDuplicateActions.h"

#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/Sheets/NearDuplicatesSheet.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <optional>

namespace {

// Nothing for the whole library.
std::optional<QList<ZQObjectID>> placeOf(BrowserViewController &browser)
{
    if (browser.selectionCount() > 1) {
        return browser.selectedItems();
    }
    const BrowserContent &content = browser.content();
    const auto shown = content.singleItem();
    const bool isWholeLibrary = shown && shown->isLibrary() && content.filter().isEmpty();
    if (isWholeLibrary || content.isOfPlaceBefore() || content.count() == 0) {
        return std::nullopt;
    }
    return content.libraryItemIDs();
}

} // namespace

QList<WindowCommand> NearDuplicateActions::commands(WindowContext &window, BrowserViewController &browser,
                                                    QWidget *mainWindow)
{
    return {{CommandID::FindNearDuplicates, zqLocalized("Find Near-Duplicates…"), {}, [&window, &browser, mainWindow] {
                 (new NearDuplicatesSheet(mainWindow, window, placeOf(browser)))->open([](std::optional<int>) {});
             }}};
}

void NearDuplicateActions::findAmong(const QList<ZQObjectID> &items, WindowContext &window, QWidget *mainWindow)
{
    (new NearDuplicatesSheet(mainWindow, window, items))->open([](std::optional<int>) {});
}

void NearDuplicateActions::findInLibrary(WindowContext &window, QWidget *mainWindow)
{
    (new NearDuplicatesSheet(mainWindow, window, std::nullopt))->open([](std::optional<int>) {});
}
