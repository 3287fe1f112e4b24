#include "Classes/Application/DesktopRequests.h"

#include "Classes/Application/LibraryPlaces.h"
#include "Classes/Application/LibraryStore.h"
#include "Classes/Application/LibrarySwitch.h"
#include "Classes/Application/RunningParts.h"
#include "Classes/Application/TemplateFolder.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <QFileInfo>
#include <QTimer>

#include <chrono>

namespace {
constexpr std::chrono::milliseconds retryOpening{200};
constexpr int activationGateMilliseconds = 200;
} // namespace

DesktopRequests::DesktopRequests(RunningParts &running, LibraryPlaces &places, LibraryStore &store,
                                 LibrarySwitch &librarySwitch)
    : m_running(running), m_places(places), m_store(store), m_switch(librarySwitch)
{
}

void DesktopRequests::applicationWillBecomeActive()
{
    m_showsWindowOnActivation = false;
    QTimer::singleShot(activationGateMilliseconds, this, [this] { m_showsWindowOnActivation = true; });
}

bool DesktopRequests::applicationShouldHandleReopen(bool hasVisibleWindows)
{
    if (!m_running.window()) {
        return false;
    }
    if (!hasVisibleWindows) {
        m_running.window()->makeKeyAndOrderFront();
        return true;
    }
    if (m_running.window()->isMiniaturized()) {
        m_running.window()->deminiaturize();
        return true;
    }
    if (m_running.window()->isVisible() || !m_showsWindowOnActivation) {
        return false;
    }
    m_running.window()->makeKeyAndOrderFront();
    return true;
}

void DesktopRequests::reopenMainWindow()
{
    if (!m_running.window()) {
        return;
    }
    if (m_running.window()->isMiniaturized()) {
        m_running.window()->deminiaturize();
    }
    m_running.window()->makeKeyAndOrderFront();
}

bool DesktopRequests::moveTemplate(const QString &path)
{
    const QString directory = m_places.templateDirectory();
    ZQError error;
    if (!directory.isEmpty() && TemplateFolder::moveIn(path, directory, &error)) {
        return true;
    }
    m_running.userInteraction().presentError(error);
    return false;
}

void DesktopRequests::openFiles(const QStringList &paths)
{
    QStringList rest;
    bool templateMoved = false;
    for (const QString &path : paths) {
        const QString extension = zqPathExtension(path);
        if (ProtocolHandling::isProtocolURL(path)) { // whatever it ends with
            if (m_running.protocolManager()) {
                m_running.protocolManager()->handleURL(path);
            }
        } else if (extension.toLower() == QStringLiteral("ztlibrary")) {
            m_switch.switchToLibrary(path);
        } else if (TemplateFolder::isTemplatePath(path)) {
            templateMoved = moveTemplate(path) || templateMoved;
        } else {
            rest.append(path);
        }
    }
    openOnceThereIsAWindow(rest, templateMoved);
}

// A question may keep the launch for as long as the person likes.
void DesktopRequests::openOnceThereIsAWindow(const QStringList &files, bool templateMoved)
{
    if (files.isEmpty() && !templateMoved) {
        return;
    }
    if (!m_running.window()) {
        QTimer::singleShot(retryOpening, this,
                           [this, files, templateMoved] { openOnceThereIsAWindow(files, templateMoved); });
    } else if (!files.isEmpty()) {
        importOpenedFiles(files);
    } else {
        m_running.window()->newFileFromTemplate();
    }
}

void DesktopRequests::importOpenedFiles(const QStringList &paths)
{
    ZQManagedObjectContext *context = m_store.managedObjectContext();
    if (!context || !m_running.importManager()) {
        return;
    }
    QStringList directories;
    QStringList files;
    for (const QString &path : paths) {
        const QFileInfo info(path);
        if (info.exists()) {
            (info.isDir() ? directories : files).append(path);
        }
    }
    constexpr quint32 atTheEnd = 4294967295U;
    const auto importInto = [&](const QStringList &list, const ZQRef<ZQSidebarBaseItem> &target) {
        if (!list.isEmpty() && target) {
            m_running.importManager()->importFilesAtPaths(list, target->objectID(), atTheEnd, {});
        }
    };
    importInto(directories, ZQSidebarBaseItem::projectsLabelInManagedObjectContext(*context));
    importInto(files, ZQSidebarBaseItem::libraryProjectInManagedObjectContext(*context));

    if (directories.isEmpty() &&
        ZQUserDefaults::standardUserDefaults().boolForKey(QStringLiteral("ShowRecentItemsAfterDropOnDock"))) {
        if (const auto recent = ZQSidebarBaseItem::recentProjectInManagedObjectContext(*context)) {
            m_running.window()->selectSidebarItem(recent->objectID());
        }
    }
}
