#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Interface/WindowCommand.h"
#include "Classes/Interface/WindowContext.h"

#include <QObject>

class QMenu;
class ZQSidebarWatchedFolder;

// What a person does with live folders: make some of folders of the disk, have them synchronised, turn them off and on,
// find them. Each speaks of the live folders that are selected in the sidebar, or of those it is given. Does nothing
// where nobody keeps live folders. Main thread.
class LiveFolderActions : public QObject
{
    Q_OBJECT
public:
    using Folders = QList<ZQRef<ZQSidebarBaseItem>>;

    // `selected`: the live folders and sub-folders that are selected.
    LiveFolderActions(WindowContext &window, std::function<Folders()> selected, QObject *parent = nullptr);

    QList<WindowCommand> commands();
    void addToMenu(QMenu &menu); // what can be done with those that are selected

    void addNewWatchedFolder();
    // From this position of LIVE FOLDERS on. Tells what became of each.
    void newWatchedFolderItemFromDropFiles(const QStringList &paths, quint32 atIndex);
    void setEnabled(const Folders &folders, bool enabled);
    void use(const ZQRef<ZQSidebarBaseItem> &folder); // what lies in its place, for it
    static void reveal(const QString &folder);        // in the desktop's file manager

Q_SIGNALS:
    void rowsToSelect(const QList<ZQObjectID> &folders);

private:
    bool isThere() const { return m_window.liveFolders != nullptr; }
    LiveFolderManaging &manager() const;
    Folders roots() const; // of those that are selected, which a person can turn off
    bool canSync() const;
    bool canReveal() const;
    bool canTurn() const;
    bool canUse() const;
    bool areOff() const;
    bool isSyncing() const;
    void sync();
    void stop();
    void tell(const AddedLiveFolders &result);
    QString textFor(const AddedLiveFolders &result) const;

    WindowContext &m_window;
    std::function<Folders()> m_selected;
};
