#pragma once

#include <QKeySequence>
#include <QList>
#include <QString>

#include <functional>

class QWidget;

// What the commands of a window are known by. Where each is found in the menus: `WindowCommands`.
enum class CommandID {
    NewProject,
    NewFolder,
    NewTag,
    NewFromTemplate,
    AddLiveFolder,
    SyncLiveFolder,
    StopLiveFolder,
    TurnLiveFolder, // off or on
    UseLiveFolder,  // what lies in its place
    RevealLiveFolder,
    Import,
    LastImport,
    ExportLayers,
    ExportPanel,
    Share, // or cancels what is being shared
    LatestUploads,
    SnapArea, // and the other captures, one after the other
    SnapWindow,
    SnapFullScreen,
    SnapWebsite,
    NewTab,
    CloseTab,
    ReopenClosedTab,
    NextTab,
    PreviousTab,
    SelectTab1, // to 9, one after the other
    SelectTab9 = SelectTab1 + 8,
    NewLibrary,
    OpenLibrary,
    MoveLibrary,
    ShowLibraryInFiles,
    BackUpLibrary,
    VerifyLibrary,
    LibraryStatistics,
    Quit,
    Undo,
    Redo,
    Copy,
    Paste,
    SelectAll,
    Rename,
    Duplicate,
    Remove,
    DeleteFromLibrary,
    Rate0, // to 5, one after the other
    Rate5 = Rate0 + 5,
    Find,
    FindSimilar,
    FindNearDuplicates,
    FindColor,
    SaveSearch,
    EditSearch,
    UpdateSearch,
    Preferences,
    Sidebar,
    InfoPanel,
    RefineBar,
    GroupPlain, // and the other ways to group, one after the other
    GroupBySize = GroupPlain + 4,
    SortManually, // and the other orders, one after the other
    SortByKind = SortManually + 8,
    SortByHue = SortByKind + 3,
    SortAscending,
    SortDescending,
    ShowAsGrid,
    ShowAsList,
    CollapseGroup,
    ExpandGroup,
    CollapseAllGroups,
    ExpandAllGroups,
    LargerThumbnails,
    SmallerThumbnails,
    QuickLook,
    Open,
    Compare,
    ZoomToFit,
    ZoomToActualSize,
    ZoomIn,
    ZoomOut,
    FullScreen,
    DarkTheme,
    Keyboard,
    CheckForUpdates,
    Menu,
};

// As a menu of the moment shows it, whose entries leave the keys to the commands of the window.
inline QString zqTitleWithKeys(const QString &title, const QKeySequence &keys)
{
    return title + u'\t' + keys.toString(QKeySequence::NativeText);
}

// One command of a window, contributed by the pane that does it.
struct WindowCommand
{
    CommandID id;
    QString title; // localised
    QList<QKeySequence> keys;
    std::function<void()> run;
    std::function<bool()> isEnabled = {}; // null: always
    std::function<bool()> isChecked = {}; // null: nothing to check
    std::function<QString()> shown = {};  // the title at the moment; null: always the same
    QWidget *keysIn = nullptr;            // the keys count only while this has the focus; null: in the window
    bool yieldsToFields = false;          // a text field takes the keys for itself; what lies in `keysIn` counts, too
    QString viewKeys = {};                // that a view takes itself, as menus say them
};
