#pragma once

#include "Tests/Classes/Application/ApplicationFixture.h"
#include "Tests/Support/FileSizeLimit.h"

#include <QFile>

#include <sys/stat.h>

inline QString written(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? path : QString();
}

inline QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
}

// A folder that looks like a library, with `count` item directories.
inline QString madeLibrary(const QString &path, int count)
{
    written(path + QStringLiteral("/storedata"), "store of " + path.toUtf8());
    for (int i = 0; i < count; ++i) {
        written(path + QStringLiteral("/Library/%1.ztlibraryitem/%1.png").arg(i), QByteArray::number(i));
    }
    return path;
}

inline bool isWhole(const QString &library, int count)
{
    bool is = QFileInfo::exists(library + QStringLiteral("/storedata"));
    for (int i = 0; i < count; ++i) {
        is = is &&
             contentOf(library + QStringLiteral("/Library/%1.ztlibraryitem/%1.png").arg(i)) == QByteArray::number(i);
    }
    return is;
}

// As on a full disk: nothing more can be written to any file while it lives.
class FullDisk
{
    FileSizeLimit m_limit{0};
};

// Another file system than that of the tests' world.
class OtherVolume
{
public:
    QTemporaryDir folder{QStringLiteral("/dev/shm/zelto-volume-XXXXXX")};
    bool isOther(const QString &path) const
    {
        struct stat one = {};
        struct stat other = {};
        return folder.isValid() && ::stat(QFile::encodeName(path).constData(), &one) == 0 &&
               ::stat(QFile::encodeName(folder.path()).constData(), &other) == 0 && one.st_dev != other.st_dev;
    }
};

class LibraryPlacesTest : public ApplicationTest
{
protected:
    QString inWorld(const QString &name) const { return world.filePath(name); }

    // Moves the open library of a launched application to `destination`, as the person does it.
    void moveTo(const QString &destination)
    {
        const auto delegate = launched();
        addItem(*delegate, QStringLiteral("kept"));
        written(delegate->libraryDirectory() + QStringLiteral("/kept.ztlibraryitem/picture.png"), "picture");
        delegate->saveAction();
        user.fileToSave = destination;
        delegate->moveZeltoLibrary();
        user.fileToSave.reset();
    }
    bool holdsTheItem(const QString &library)
    {
        return contentOf(library + QStringLiteral("/Library/kept.ztlibraryitem/picture.png")) == "picture" &&
               QFileInfo::exists(library + QStringLiteral("/storedata"));
    }
    // What the next launch opens.
    QString openedNext() { return application()->libraryBundleDirectory(); }
};
