#pragma once

#include "Classes/Application/UserInteraction.h"
#include "Classes/Command/CommandContext.h"

#include <QSize>
#include <QStringList>

#include <functional>
#include <memory>

namespace CLI {
class App;
}

struct SnapshotRequest
{
    QString file;
    QString select;
    QSize size = {1280, 800};
    double scale = 1;
    QString theme; // "dark", "light" or empty
};

enum class DuplicatePolicy { Keep, Discard, Relink };
enum class UnreadablePolicy { Skip, Stop };

// The command line, parsed once: what is asked, and the way to do it. The same definitions print the help, write
// docs/COMMANDS.md and are run by a window for another process.
class CommandLine
{
public:
    CommandLine();
    ~CommandLine();

    // True when there is something to run; otherwise `exitStatus`, with the help or the error in `context`.
    bool parse(const QStringList &arguments, CommandContext &context, int *exitStatus);

    bool isCommand() const { return m_run != nullptr; } // otherwise a window, perhaps with files
    bool needsLibrary() const { return m_needsLibrary; }
    bool isImport() const { return m_isImport; }
    bool fillsLibrary() const { return m_fillsLibrary; } // one that is not there yet may be made for it
    bool isEdit() const { return m_isEdit; } // of items, or of live folders; or a download, a share or a backup
    bool isSnapshot() const { return m_isSnapshot; }
    bool isSnap() const { return m_isSnap; }           // of the screen or of a page, into the library
    bool takesScreen() const { return m_takesScreen; } // a snap that a person takes part in, on their display
    QString library() const { return m_library; }      // empty: the remembered one
    QStringList filesToOpen() const { return m_files; }
    QString desktopAction() const; // what the window is to do at once (`DesktopActions`); empty: nothing
    const SnapshotRequest &snapshot() const { return m_snapshot; }
    DuplicatePolicy duplicatePolicy() const { return m_duplicatePolicy; }
    UnreadablePolicy unreadablePolicy() const { return m_unreadablePolicy; }

    int run(CommandContext &context) const;
    // Draws the window; set by `main`, since only it knows the interface.
    void setSnapshotDrawer(std::function<int(const SnapshotRequest &, CommandContext &)> drawer)
    {
        m_drawSnapshot = std::move(drawer);
    }

    // docs/COMMANDS.md.
    QString markdown() const;

private:
    void defineImport();
    void defineItems();
    void defineSearch();
    void definePictures(); // in CommandLinePictures.cpp
    void defineSmartFolder();
    void defineExport(); // in CommandLineExport.cpp
    void defineShare();  // in CommandLineShare.cpp
    void defineDeletion();
    void defineTags();
    void defineLiveFolders(); // in CommandLineLiveFolders.cpp
    void definePsd();         // in CommandLinePsd.cpp
    void defineDownload();    // in CommandLineDownload.cpp
    void defineOpenURL();     // in CommandLineOpenURL.cpp
    void defineTemplates();   // in CommandLineTemplates.cpp
    void defineSnap();        // in CommandLineSnap.cpp
    void defineThumbnail();   // in CommandLineThumbnail.cpp
    void defineServices();    // in CommandLineServices.cpp
    void defineVerify();
    void defineCare(); // in CommandLineCare.cpp
    void defineDefaults();
    void defineSnapshot();
    void defineDocumentation(); // in CommandLineDocumentation.cpp
    bool isNothing(const QString &word, CommandContext &context) const;
    bool checkWords(const QStringList &arguments, CommandContext &context) const;
    QString commandLike(const QString &word) const;
    static QStringList withSearchTextLast(const QStringList &arguments);
    CLI::App *add(const char *name, const char *help, bool needsLibrary, std::function<int(CommandContext &)> run);

    std::unique_ptr<CLI::App> m_app;
    std::function<int(CommandContext &)> m_run;
    std::function<int(const SnapshotRequest &, CommandContext &)> m_drawSnapshot;
    bool m_needsLibrary = true;
    bool m_isImport = false;
    bool m_fillsLibrary = false;
    bool m_isEdit = false;
    bool m_isSnapshot = false;
    bool m_isSnap = false;
    bool m_takesScreen = false;
    bool m_json = false;
    QString m_library;
    QStringList m_files;
    SnapshotRequest m_snapshot;
    DuplicatePolicy m_duplicatePolicy = DuplicatePolicy::Keep;
    UnreadablePolicy m_unreadablePolicy = UnreadablePolicy::Skip;

    struct Options;
    std::unique_ptr<Options> m_options;
};
