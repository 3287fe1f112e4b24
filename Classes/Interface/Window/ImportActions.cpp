#include "Classes/Interface/Window/ImportActions.h"

#include "Classes/Import/ImportDoor.h"
#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/TextFields.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QClipboard>
#include <QGuiApplication>

ZQRef<ZQSidebarBaseItem> ImportActions::target(const Rule &rule) const
{
    const auto single = m_browser.content().singleItem();
    if (rule(single.get())) {
        return single;
    }
    if (single) {
        m_window.user.showNotificationWithText(
            zqFormat(zqLocalized("“%@” does not take this: it goes to the library"), {single->title()}),
            NotificationPlace::Browser, usualNotificationTime);
    }
    return ZQSidebarBaseItem::libraryProjectInManagedObjectContext(m_window.context);
}

ImportActions::Rule ImportActions::forFiles(const QStringList &paths)
{
    return [files = ImportDoor::filesAtPaths(paths)](const ZQSidebarBaseItem *item) {
        return SidebarTargetRules::files(files, item);
    };
}

void ImportActions::importWithDialog()
{
    FileChoice choice;
    choice.title = zqLocalized("Import");
    choice.prompt = zqLocalized("Import");
    choice.extensions = ImportDoor::openPanelExtensions();
    choice.several = true;
    const QStringList paths = m_window.user.chooseFilesToOpen(choice);
    if (paths.isEmpty()) {
        return;
    }
    if (const auto into = target(forFiles(paths))) {
        ImportDoor::importFiles(paths, into.get(), ZQSidebarBaseItem::appendIndex);
    }
}

void ImportActions::pasteFromClipboard()
{
    const QMimeData *mime = QGuiApplication::clipboard()->mimeData();
    if (!mime || !ImportDoor::carriesContent(mime)) {
        m_window.user.showNotificationWithText(zqLocalized("There is no picture or file on the clipboard"),
                                               NotificationPlace::Browser, usualNotificationTime);
        return;
    }
    // What is in this library is not brought a second time; what is gone from it comes as files, as from elsewhere.
    if (const QList<ZQObjectID> items = BrowserContent::itemsToLink(mime, m_window); !items.isEmpty()) {
        link(items);
        return;
    }
    const QStringList paths = ImportDoor::localPaths(mime);
    const Rule forContent = [](const ZQSidebarBaseItem *item) {
        return SidebarTargetRules::content(item, SidebarTargetRules::Place::Pane);
    };
    if (const auto into = target(paths.isEmpty() ? forContent : forFiles(paths))) {
        ImportDoor::importPasteboard(mime, into.get(), ZQSidebarBaseItem::appendIndex);
    }
}

void ImportActions::link(const QList<ZQObjectID> &items)
{
    const auto tell = [this](const QString &text) {
        m_window.user.showNotificationWithText(text, NotificationPlace::Browser, usualNotificationTime);
    };
    const auto single = m_browser.content().singleItem();
    if (const auto answer = SidebarTargetRules::items(single.get()); !answer) {
        tell(answer.refusal);
        return;
    }
    const bool areAllThere = m_browser.content().filter().isEmpty() &&
                             m_browser.content().indexesOfLibraryItems(items).count() >= items.size();
    if (areAllThere) {
        tell(zqFormat(zqLocalized("“%@” has them already"), {single->title()}));
    } else {
        m_browser.content().tab().addItems(items, {single->objectID()}, {}, true);
    }
    m_browser.selectLibraryItems(items);
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
