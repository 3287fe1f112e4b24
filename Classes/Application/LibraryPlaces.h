#pragma once

#include <QString>

// The directories of the person and of the library: created when first asked for, empty when that fails, which is
// logged. Main thread; `libraryDirectory` from any thread once it was asked for on the main one. What is known costs
// nothing more; the places beside the library are looked at each time.
class LibraryPlaces
{
public:
    QString applicationSupportFolder();
    QString libraryBundleDirectory();
    QString libraryDirectory();
    QString exportIconDirectory();
    QString wallpaperDirectory();
    QString templateDirectory();
    QString storePath(); // of the file, which need not exist

    // This bundle, whatever the preferences remember. Before the library is first asked for.
    void setLibraryBundleDirectory(const QString &path);
    QString requestedBundleDirectory() const { return m_requestedBundleDirectory; } // empty: none
    bool isLibraryKnown() const { return !m_libraryBundleDirectory.isEmpty() && !m_libraryDirectory.isEmpty(); }
    void forgetLibrary(); // it is about to move

    // Takes over the library and the preferences of a sandboxed build, when there are any.
    void tryToRecuperateSandboxedLibraryToDestination(const QString &destination);

private:
    static QString createdDirectory(const QString &path, const char *message);

    QString m_requestedBundleDirectory;
    QString m_libraryBundleDirectory;
    QString m_libraryDirectory;
};
