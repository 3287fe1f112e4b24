#pragma once

#include <QObject>
#include <QStringList>

class LibraryPlaces;
class LibrarySwitch;
class LibraryStore;
class RunningParts;

// What the desktop asks of a running application: its window again, and files to open. Errors are presented. Main
// thread; costs what an import is asked for with.
class DesktopRequests : public QObject
{
public:
    DesktopRequests(RunningParts &running, LibraryPlaces &places, LibraryStore &store, LibrarySwitch &librarySwitch);

    bool applicationShouldHandleReopen(bool hasVisibleWindows);
    void applicationWillBecomeActive();
    void reopenMainWindow();
    // Waits for the window with what needs one. Addresses of the application's scheme may be among them.
    void openFiles(const QStringList &paths);

private:
    bool moveTemplate(const QString &path);
    void openOnceThereIsAWindow(const QStringList &files, bool templateMoved);
    void importOpenedFiles(const QStringList &paths);

    RunningParts &m_running;
    LibraryPlaces &m_places;
    LibraryStore &m_store;
    LibrarySwitch &m_switch;
    bool m_showsWindowOnActivation = true;
};
