#include "Classes/Interface/Window/ImportActions.h"

#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/ImportDoor.h"
#include "Classes/Interface/TextFields.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QClipboard>
#include <QGuiApplication>

namespace {

bool takesFiles(const ZQSidebarBaseItem *target)
{
    return bool(SidebarTargetRules::files({.hasSupported = true}, target));
}

bool takesContent(const ZQSidebarBaseItem *target)
{
    return bool(SidebarTargetRules::content(target, SidebarTargetRules::Place::Pane));
}

} // namespace

ZQRef<ZQSidebarBaseItem> ImportActions::target(bool (*takes)(const ZQSidebarBaseItem *)) const
{
    const auto single = m_browser.content().singleItem();
    return takes(single.get()) ? single : ZQSidebarBaseItem::libraryProjectInManagedObjectContext(m_window.context);
}

void ImportActions::tellWhereItGoes(const ZQSidebarBaseItem *into) const
{
    const auto single = m_browser.content().singleItem();
    if (single && single.get() != into) {
        m_window.user.showNotificationWithText(
            zqFormat(zqLocalized("“%@” takes no files: they go to the library"), {single->title()}),
            NotificationPlace::Browser, usualNotificationTime);
    }
}

void ImportActions::importWithDialog()
{
    FileChoice choice;
    choice.title = zqLocalized("Import");
    choice.prompt = zqLocalized("Import");
    choice.extensions = ImportDoor::openPanelExtensions();
    choice.several = true;
    const QStringList paths = m_window.user.chooseFilesToOpen(choice);
    if (const auto into = target(takesFiles); into && !paths.isEmpty()) {
        tellWhereItGoes(into.get());
        ImportDoor::importFiles(paths, into.get(), ZQSidebarBaseItem::appendIndex);
    }
}

void ImportActions::pasteFromClipboard()
{
    const QMimeData *mime = QGuiApplication::clipboard()->mimeData();
    const auto into = target(takesContent);
    if (!into || !mime || !ImportDoor::carriesContent(mime)) {
        m_window.user.showNotificationWithText(zqLocalized("There is no picture or file on the clipboard"),
                                               NotificationPlace::Browser, usualNotificationTime);
        return;
    }
    tellWhereItGoes(into.get());
    ImportDoor::importPasteboard(mime, into.get(), ZQSidebarBaseItem::appendIndex);
}

QList<WindowCommand> ImportActions::commands()
{
    return {{CommandID::Import, zqLocalized("Import…"), {Qt::CTRL | Qt::Key_I}, [this] { importWithDialog(); }},
            {CommandID::Paste, zqLocalized("Paste"), {Qt::CTRL | Qt::Key_V}, [this] {
                 if (!TextFields::forward("paste")) {
                     pasteFromClipboard();
                 }
             }}};
}
