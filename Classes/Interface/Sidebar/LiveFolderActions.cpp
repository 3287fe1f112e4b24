#include "Classes/Interface/Sidebar/LiveFolderActions.h"

#include "Classes/Editing/SidebarCommands.h"
#include "Classes/Interface/LiveFolderStates.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QMenu>
#include <QUrl>

#include <algorithm>

using namespace std::chrono_literals;

namespace {

using Kind = LiveFolderStates::Kind;

constexpr qsizetype mostTold = 8; // refusals, one a line
constexpr qsizetype longestName = 60;
constexpr auto timeForReasons = 7s;

Kind kindOf(const ZQRef<ZQSidebarBaseItem> &item)
{
    const auto folder = zqCast<ZQSidebarWatchedFolder>(item);
    return folder ? LiveFolderStates::kindOf(*folder) : Kind::Missing;
}

QString nameOf(const QString &path)
{
    const QString name = QFileInfo(path).fileName();
    return zqShortened(name.isEmpty() ? path : name, longestName);
}

QString lineOf(const AddedLiveFolders::Refused &refused)
{
    return zqFormat(zqLocalized("“%@”: %@"), {nameOf(refused.path), refused.reason});
}

} // namespace

LiveFolderActions::LiveFolderActions(WindowContext &window, std::function<Folders()> selected, QObject *parent)
    : QObject(parent), m_window(window), m_selected(std::move(selected))
{
}

LiveFolderManaging &LiveFolderActions::manager() const
{
    return m_window.liveFolders->manager();
}

QList<WindowCommand> LiveFolderActions::commands()
{
    return {
        {CommandID::AddLiveFolder,
         zqLocalized("Add Live Folder…"),
         {},
         [this] { addNewWatchedFolder(); },
         [this] { return isThere(); }},
        {CommandID::SyncLiveFolder, zqLocalized("Sync now"), {}, [this] { sync(); }, [this] { return canSync(); }},
        {CommandID::StopLiveFolder,
         zqLocalized("Stop Syncing"),
         {},
         [this] { stop(); },
         [this] { return isSyncing(); }},
        {CommandID::TurnLiveFolder,
         zqLocalized("Disable"),
         {},
         [this] { setEnabled(roots(), areOff()); },
         [this] { return canTurn(); },
         {},
         [this] { return areOff() ? zqLocalized("Enable") : zqLocalized("Disable"); }},
        {CommandID::UseLiveFolder,
         zqLocalized("Use This Folder"),
         {},
         [this] { use(m_selected().first()); },
         [this] { return canUse(); }},
        {CommandID::RevealLiveFolder,
         zqLocalized("Show in Files"),
         {},
         [this] { reveal(zqCast<ZQSidebarWatchedFolder>(m_selected().first())->folderPath()); },
         [this] { return canReveal(); }},
    };
}

void LiveFolderActions::addToMenu(QMenu &menu)
{
    if (!isThere() || m_selected().isEmpty()) {
        return;
    }
    menu.addSeparator();
    for (const WindowCommand &command : commands()) {
        const bool isOffered = command.id == CommandID::SyncLiveFolder || command.isEnabled();
        if (command.id != CommandID::AddLiveFolder && isOffered) {
            menu.addAction(command.shown ? command.shown() : command.title, this, command.run)
                ->setEnabled(command.isEnabled());
        }
    }
}

// What can be done.

LiveFolderActions::Folders LiveFolderActions::roots() const
{
    Folders folders = m_selected();
    folders.removeIf([](const auto &item) { return zqIsSubFolder(*item); });
    return folders;
}

bool LiveFolderActions::canSync() const
{
    const Folders folders = isThere() ? m_selected() : Folders();
    return std::any_of(folders.begin(), folders.end(), [](const auto &item) { return kindOf(item) != Kind::Off; });
}

bool LiveFolderActions::canReveal() const
{
    const Folders folders = m_selected();
    return folders.size() == 1 && kindOf(folders.first()) != Kind::Missing;
}

// What is away comes back by itself.
bool LiveFolderActions::canTurn() const
{
    const Folders folders = isThere() ? roots() : Folders();
    return !folders.isEmpty() && std::all_of(folders.begin(), folders.end(), [](const auto &item) {
        return kindOf(item) == Kind::Mirrored || kindOf(item) == Kind::Off;
    });
}

bool LiveFolderActions::canUse() const
{
    const Folders folders = isThere() ? m_selected() : Folders();
    return folders.size() == 1 && m_window.liveFolders->holdsAnother(folders.first()->objectID());
}

bool LiveFolderActions::areOff() const
{
    const Folders folders = roots();
    return !folders.isEmpty() &&
           std::all_of(folders.begin(), folders.end(), [](const auto &item) { return kindOf(item) == Kind::Off; });
}

bool LiveFolderActions::isSyncing() const
{
    const Folders folders = isThere() ? m_selected() : Folders();
    return std::any_of(folders.begin(), folders.end(),
                       [this](const auto &item) { return m_window.liveFolders->isSyncing(item->objectID()); });
}

// What is done.

void LiveFolderActions::sync()
{
    for (const auto &item : m_selected()) {
        if (kindOf(item) != Kind::Off) {
            manager().syncWatchedFolder(item->objectID(), true);
        }
    }
}

void LiveFolderActions::stop()
{
    QList<ZQObjectID> folders;
    for (const auto &item : m_selected()) {
        folders.append(item->objectID());
    }
    manager().stopSyncingWatchedFolders(folders);
}

void LiveFolderActions::setEnabled(const Folders &folders, bool enabled)
{
    if (isThere()) {
        SidebarCommands(m_window).setWatchedFoldersEnabled(folders, enabled);
    }
}

void LiveFolderActions::use(const ZQRef<ZQSidebarBaseItem> &folder)
{
    QString reason;
    const QString title = folder->title();
    if (SidebarCommands(m_window).useWatchedFolder(folder, true, &reason) == SidebarCommands::FolderUse::Refused) {
        m_window.user.ask({.message = zqFormat(zqLocalized("“%@” stays as it is."), {title}),
                           .informativeText = reason,
                           .buttons = {zqLocalized("OK")},
                           .suppressionKey = {}});
    }
}

void LiveFolderActions::reveal(const QString &folder)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
}

void LiveFolderActions::addNewWatchedFolder()
{
    const auto label = ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(m_window.context);
    if (!isThere() || !label) {
        return;
    }
    const QStringList chosen =
        m_window.user.chooseFilesToOpen({.title = zqLocalized("Please choose the Folder you want to add"),
                                         .prompt = zqLocalized("Add Folder"),
                                         .suggestedName = {},
                                         .startFolder = {},
                                         .extensions = {},
                                         .directory = true});
    if (!chosen.isEmpty()) {
        newWatchedFolderItemFromDropFiles(chosen, quint32(label->numberofChilds()));
    }
}

void LiveFolderActions::newWatchedFolderItemFromDropFiles(const QStringList &paths, quint32 atIndex)
{
    if (!isThere() || paths.isEmpty()) {
        return;
    }
    const AddedLiveFolders result = SidebarCommands(m_window).addWatchedFolders(paths, atIndex);
    const QList<ZQObjectID> rows = result.added.isEmpty() ? result.alreadyThere : result.added;
    if (!rows.isEmpty()) {
        Q_EMIT rowsToSelect(rows);
    }
    tell(result);
}

QString LiveFolderActions::textFor(const AddedLiveFolders &result) const
{
    QStringList lines;
    if (!result.added.isEmpty()) {
        lines.append(result.added.size() == 1
                         ? zqLocalized("New live folder created")
                         : zqFormat(zqLocalized("%d new live folders created"), {int(result.added.size())}));
    }
    for (const ZQObjectID &id : result.alreadyThere.first(std::min(mostTold, result.alreadyThere.size()))) {
        if (const auto item = m_window.sidebarItem(id)) {
            lines.append(zqFormat(zqLocalized("“%@” is among the live folders already."),
                                  {zqShortened(item->title(), longestName)}));
        }
    }
    if (result.refused.size() == 1) {
        lines.append(lineOf(result.refused.first()));
    }
    return lines.join(u'\n');
}

// Several refusals are more than can be read in passing.
void LiveFolderActions::tell(const AddedLiveFolders &result)
{
    if (const QString text = textFor(result); !text.isEmpty()) {
        const bool isLong = !result.refused.isEmpty() || !result.alreadyThere.isEmpty();
        m_window.user.showNotificationWithText(text, NotificationPlace::Sidebar,
                                               isLong ? std::chrono::milliseconds(timeForReasons)
                                                      : usualNotificationTime);
    }
    if (result.refused.size() < 2) {
        return;
    }
    QStringList lines;
    for (const AddedLiveFolders::Refused &refused : result.refused.first(std::min(mostTold, result.refused.size()))) {
        lines.append(lineOf(refused));
    }
    if (result.refused.size() > mostTold) {
        lines.append(zqFormat(zqLocalized("and %d more"), {int(result.refused.size() - mostTold)}));
    }
    m_window.user.ask(
        {.message = zqFormat(zqLocalized("%d of these cannot be live folders."), {int(result.refused.size())}),
         .informativeText = lines.join(u'\n'),
         .buttons = {zqLocalized("OK")},
         .suppressionKey = {}});
}
