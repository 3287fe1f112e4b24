// The commands of the browser and of the detail view in its place.

#include "Classes/Editing/ItemEdits.h"
#include "Classes/Editing/LibraryCommands.h"
#include "Classes/Interface/Browser/BrowserHead.h"
#include "Classes/Interface/Browser/BrowserListStyle.h"
#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/Browser/CompareController.h"
#include "Classes/Interface/Browser/RefineBar.h"
#include "Classes/Interface/Compare/CompareView.h"
#include "Classes/Interface/Detail/DetailView.h"
#include "Classes/Interface/ItemPictures.h"
#include "Classes/Interface/TextFields.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageSource.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QStackedWidget>

#include <functional>

namespace {

constexpr double zoomStep = 0.08;
constexpr int longestThumbnail = 1024; // pixels

} // namespace

QList<WindowCommand> BrowserViewController::commands()
{
    const auto hasSelection = [this] { return selectionCount() > 0; };
    QList<WindowCommand> result = {
        {CommandID::Copy,
         zqLocalized("Copy"),
         {Qt::CTRL | Qt::Key_C},
         [this] {
             if (!TextFields::forward("copy")) {
                 copyToClipboard();
             }
         },
         [hasSelection] { return TextFields::haveFocus() || hasSelection(); }},
        {CommandID::SelectAll,
         zqLocalized("Select All"),
         {Qt::CTRL | Qt::Key_A},
         [this] {
             if (!TextFields::forward("selectAll")) {
                 m_grid->selectAll();
             }
         }},
        {CommandID::DeleteFromLibrary,
         zqLocalized("Delete from Library"),
         {Qt::CTRL | Qt::Key_Delete},
         [this] { deleteFromLibrary(); },
         [hasSelection] { return !TextFields::haveFocus() && hasSelection(); }},
        {CommandID::LargerThumbnails,
         zqLocalized("Larger Thumbnails"),
         {Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal},
         [this] { changeZoom(zoomStep); }},
        {CommandID::SmallerThumbnails,
         zqLocalized("Smaller Thumbnails"),
         {Qt::CTRL | Qt::Key_Minus},
         [this] { changeZoom(-zoomStep); }},
        {CommandID::RefineBar,
         zqLocalized("Refine Bar"),
         {Qt::CTRL | Qt::ALT | Qt::Key_F},
         [this] {
             m_refine->setVisible(m_refine->isHidden());
             RefineBar::setWanted(!m_refine->isHidden());
             Q_EMIT refineBarToggled();
         },
         {},
         [this] { return !m_refine->isHidden(); }},
        {CommandID::FindColor, zqLocalized("Find Color…"), {}, [this] { m_refine->openColorWheel(*m_head); }},
        {.id = CommandID::QuickLook,
         .title = zqLocalized("Quick Look"),
         .keys = {},
         .run = [this] { openDetail(true); },
         .isEnabled = hasSelection,
         .viewKeys = zqLocalized("Space")},
        {.id = CommandID::Open,
         .title = zqLocalized("Open"),
         .keys = {},
         .run = [this] { openDetail(false); },
         .isEnabled = hasSelection,
         .viewKeys = zqLocalized("Enter")},
    };
    // Only what shows items takes their keys: in a field a digit is a digit.
    for (int stars = 0; stars <= 5; ++stars) {
        result.append({.id = CommandID(int(CommandID::Rate0) + stars),
                       .title = stars == 0   ? zqLocalized("No rating")
                                : stars == 1 ? zqLocalized("1 Star")
                                             : zqFormat(zqLocalized("%d Stars"), {stars}),
                       .keys = {Qt::Key(Qt::Key_0 + stars)},
                       .run = [this, stars] { rate(stars); },
                       .isEnabled = hasSelection,
                       .keysIn = m_stack,
                       .yieldsToFields = true});
    }
    return result + compareCommands() + zoomCommands() + m_head->commands() + m_style->commands();
}

QList<WindowCommand> BrowserViewController::compareCommands()
{
    return {{CommandID::Compare,
             zqLocalized("Compare"),
             {Qt::CTRL | Qt::Key_K},
             [this] { m_compare->isOpen() ? m_compare->close() : m_compare->open(); },
             [this] { return m_compare->isOpen() || m_compare->canOpen(); },
             [this] { return m_compare->isOpen(); }}};
}

QList<WindowCommand> BrowserViewController::zoomCommands()
{
    // Of whichever of the two is open.
    const auto zoom = [this](void (DetailView::*inDetail)(), void (CompareView::*inComparison)()) {
        return [this, inDetail, inComparison] {
            if (m_compare->isOpen()) {
                std::invoke(inComparison, m_compare->view());
            } else {
                std::invoke(inDetail, *m_detail);
            }
        };
    };
    QList<WindowCommand> result = {
        {CommandID::ZoomToFit,
         zqLocalized("Fit"),
         {Qt::CTRL | Qt::Key_0},
         zoom(&DetailView::zoomToFit, &CompareView::zoomToFit)},
        {CommandID::ZoomToActualSize,
         zqLocalized("Actual Size"),
         {Qt::Key_Z},
         zoom(&DetailView::zoomToActualSize, &CompareView::zoomToActualSize)},
        {CommandID::ZoomIn,
         zqLocalized("Zoom In"),
         {Qt::Key_Plus, Qt::Key_Equal},
         zoom(&DetailView::zoomIn, &CompareView::zoomIn)},
        {CommandID::ZoomOut,
         zqLocalized("Zoom Out"),
         {Qt::Key_Minus},
         zoom(&DetailView::zoomOut, &CompareView::zoomOut)},
    };
    for (WindowCommand &command : result) {
        command.isEnabled = [this] { return isDetailOpen() || m_compare->isOpen(); };
        command.keysIn = m_stack;
        command.yieldsToFields = true;
    }
    return result;
}

void BrowserViewController::copyToClipboard()
{
    if (m_grid->selection().isEmpty()) {
        return;
    }
    AssetFiles *files = m_content->files(m_grid->selection());
    files->lookNow(); // the clipboard stays when what is copied, or this window, is gone
    files->setForClipboard();
    if (const auto item = selectionCount() == 1 ? firstSelected() : ZQRef<ZQLibraryBaseItem>()) {
        files->setPicture([path = item->itemURL(), thumbnail = ItemPictures::thumbnailOf(*item)] {
            const QImage whole = path.isEmpty() ? QImage() : ZQImageSource::bitmapOfFile(path).image();
            return whole.isNull() ? ItemPictures::pictureFor(thumbnail, longestThumbnail) : whole;
        });
    }
    QGuiApplication::clipboard()->setMimeData(files);
}

void BrowserViewController::duplicate()
{
    if (const QList<ZQObjectID> items = selectedItems(); !items.isEmpty()) {
        const auto single = m_content->singleItem();
        LibraryCommands(m_window).duplicateItems(items, single ? single->objectID() : ZQObjectID(),
                                                 selectionOfWhatComes());
    }
}

void BrowserViewController::rate(int stars)
{
    if (const QList<ZQObjectID> items = selectedItems(); !items.isEmpty()) {
        ItemEdits(m_window).setRating(items, stars);
        Q_EMIT rated(stars);
    }
}
