#include "Classes/Tags/OpenMeta.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Tests/Classes/LiveFolders/LiveFolderFixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Does to a tree of pictures what people and programs do, and knows what is there then. A file that is renamed, moved
// or written is the same file: its item has to stay.
class DiskModel
{
public:
    DiskModel(const QString &root, quint32 seed) : m_root(root), m_random(seed) { m_folders = {root}; }

    struct File
    {
        QString bundleID; // of its item, once that is known
        QByteArray bytes;
        QString tag;
    };
    QMap<QString, File> files;

    void act()
    {
        using Act = void (DiskModel::*)();
        static constexpr Act acts[] = {
            &DiskModel::create,       &DiskModel::create,     &DiskModel::write,   &DiskModel::renameFile,
            &DiskModel::renameFile,   &DiskModel::removeFile, &DiskModel::replace, &DiskModel::overwrite,
            &DiskModel::makeFolder,   &DiskModel::moveFolder, &DiskModel::moveOut, &DiskModel::moveIn,
            &DiskModel::removeFolder, &DiskModel::tag,        &DiskModel::link,    &DiskModel::makeLeftAlone};
        (this->*acts[pick(std::size(acts))])();
    }
    void bringBack() // what is outside
    {
        while (!m_outside.isEmpty()) {
            moveIn();
        }
    }

private:
    std::size_t pick(std::size_t count) { return std::uniform_int_distribution<std::size_t>(0, count - 1)(m_random); }
    QString anyFolder() { return m_folders.at(qsizetype(pick(std::size_t(m_folders.size())))); }
    QString anyFile()
    {
        return files.isEmpty() ? QString() : files.keys().at(qsizetype(pick(std::size_t(files.size()))));
    }
    QString freshPath(const QString &ending)
    {
        static constexpr const char *names[] = {"a", "b b", "ü", "line\nbreak", "x.y", "~z"};
        QString path;
        do {
            path = anyFolder() + u'/' + QString::fromUtf8(names[pick(std::size(names))]) + QString::number(pick(20)) +
                   ending;
        } while (QFileInfo::exists(path) || QFileInfo(path).isSymLink());
        return path;
    }
    static void put(const QString &path, const QByteArray &bytes)
    {
        QFile out(path);
        EXPECT_TRUE(out.open(QIODevice::WriteOnly) && out.write(bytes) == bytes.size()) << qPrintable(path);
    }
    static void rename(const QString &from, const QString &to)
    {
        EXPECT_EQ(::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()), 0)
            << qPrintable(from) << " to " << qPrintable(to);
    }

    void create()
    {
        const QString path = freshPath(QStringLiteral(".png"));
        files.insert(path, {{}, next(), {}});
        put(path, files[path].bytes);
    }
    void write()
    {
        if (const QString path = anyFile(); !path.isEmpty()) {
            files[path].bytes = next();
            put(path, files[path].bytes);
        }
    }
    void renameFile()
    {
        const QString from = anyFile();
        if (!from.isEmpty()) {
            const QString to = freshPath(QStringLiteral(".png"));
            rename(from, to);
            files.insert(to, files.take(from));
        }
    }
    void removeFile()
    {
        if (const QString path = anyFile(); !path.isEmpty()) {
            EXPECT_TRUE(QFile::remove(path));
            files.remove(path);
        }
    }
    void replace() // as editors save
    {
        if (const QString path = anyFile(); !path.isEmpty()) {
            const QString hidden = QFileInfo(path).path() + QStringLiteral("/.saving");
            files[path].bytes = next();
            files[path].tag.clear();      // it was the other file's
            files[path].bundleID.clear(); // moved on as well, nothing tells that it was that one
            put(hidden, files[path].bytes);
            rename(hidden, path);
        }
    }
    void overwrite() // one takes another's place
    {
        const QString from = anyFile();
        const QString to = anyFile();
        if (!from.isEmpty() && from != to) {
            rename(from, to);
            File file = files.take(from);
            file.bundleID.clear(); // whichever of the two items it is
            file.tag.clear();
            files.insert(to, file);
        }
    }
    void makeFolder()
    {
        const QString path = freshPath(QString());
        EXPECT_TRUE(QDir().mkdir(path));
        m_folders.append(path);
    }
    void rebase(const QString &from, const QString &to, QStringList &folders, QMap<QString, File> &moving)
    {
        for (const QString &folder : QStringList(m_folders)) {
            if (folder == from || folder.startsWith(from + u'/')) {
                m_folders.removeOne(folder);
                folders.append(to + folder.mid(from.size()));
            }
        }
        for (const QString &path : files.keys()) {
            if (path.startsWith(from + u'/')) {
                moving.insert(to + path.mid(from.size()), files.take(path));
            }
        }
    }
    void moveFolder()
    {
        const QString from = anyFolder();
        const QString to = freshPath(QString());
        if (from == m_root || to.startsWith(from + u'/')) {
            return;
        }
        rename(from, to);
        QStringList folders;
        QMap<QString, File> moving;
        rebase(from, to, folders, moving);
        m_folders += folders;
        files.insert(moving);
    }
    void moveOut()
    {
        const QString from = anyFolder();
        if (from == m_root || m_outside.size() > 2) {
            return;
        }
        const QString to = m_root + QStringLiteral("-outside-%1").arg(m_count++);
        rename(from, to);
        Outside outside{to, {}, {}};
        rebase(from, to, outside.folders, outside.files);
        m_outside.append(outside);
    }
    void moveIn()
    {
        if (m_outside.isEmpty()) {
            return;
        }
        const Outside outside = m_outside.takeLast();
        const QString to = freshPath(QString());
        rename(outside.path, to);
        for (const QString &folder : outside.folders) {
            m_folders.append(to + folder.mid(outside.path.size()));
        }
        for (auto file = outside.files.constBegin(); file != outside.files.constEnd(); ++file) {
            files.insert(to + file.key().mid(outside.path.size()), *file);
        }
    }
    void removeFolder()
    {
        const QString folder = anyFolder();
        if (folder == m_root || pick(3) != 0) {
            return;
        }
        EXPECT_TRUE(QDir(folder).removeRecursively());
        QStringList folders;
        QMap<QString, File> gone;
        rebase(folder, folder, folders, gone);
    }
    void tag()
    {
        const QString path = anyFile();
        const QString tag = QStringLiteral("tag %1").arg(m_count++);
        if (!path.isEmpty() && OpenMeta::addUserTags(QStringList{tag}, path).isNull()) {
            files[path].tag = tag;
        }
    }
    void link()
    {
        const QString path = freshPath(QStringLiteral(".png"));
        EXPECT_EQ(::symlink(QFile::encodeName(m_root).constData(), QFile::encodeName(path).constData()), 0);
    }
    void makeLeftAlone()
    {
        static constexpr const char *endings[] = {".txt", ".png.part", ".png~", ".zip", ".eps"};
        put(freshPath(QString::fromLatin1(endings[pick(std::size(endings))])), "left alone");
    }
    QByteArray next() { return m_next(); }

public:
    std::function<QByteArray()> m_next;

private:
    struct Outside
    {
        QString path;
        QStringList folders;
        QMap<QString, File> files;
    };
    const QString m_root;
    std::mt19937 m_random;
    QStringList m_folders;
    QList<Outside> m_outside;
    int m_count = 0;
};

} // namespace

TEST_F(LiveFolderTest, AgreesWithTheDiskWhateverHappens)
{
    const QByteArray given = qgetenv("ZELTO_SEED");
    const quint32 first = given.isEmpty() ? 1 : given.toUInt();
    for (quint32 seed = first; seed < first + 3; ++seed) {
        SCOPED_TRACE(seed);
        const QString root = path(QStringLiteral("in %1").arg(seed));
        makeFolder(root);
        user.answerQuestion = [](const UserQuestion &) { return 1; }; // they may go
        DiskModel disk(root, seed);
        disk.m_next = [] { return pictureBytes(); };
        std::mt19937 random(seed * 7919);
        for (int i = 0; i < 12; ++i) {
            disk.act();
        }
        add(root);
        for (int round = 0; round < 14 && !HasFailure(); ++round) {
            SCOPED_TRACE(round);
            for (int i = 0; i < int(random() % 9); ++i) {
                disk.act();
            }
            if (random() % 4 == 0) {
                reopen();
            }
            if (random() % 5 == 0) {
                close();
                QDir(path(QStringLiteral("Test.ztlibrary/live-folders"))).removeRecursively();
                open();
            }
            sync();
            if (folderAt(root)->is_missing()) { // nothing was left in it
                disk.bringBack();
                writePicture(QStringLiteral("in %1/again.png").arg(seed));
                disk.files.insert(root + QStringLiteral("/again.png"),
                                  {{}, bytesOf(root + QStringLiteral("/again.png")), {}});
                sync();
            }
            expectInStep(root);
            const auto all = items();
            for (auto file = disk.files.begin(); file != disk.files.end(); ++file) {
                ASSERT_EQ(bytesOf(file.key()), file->bytes) << "a person's file: " << qPrintable(file.key());
                const ZQRef<ZQLibraryBaseItem> item = all.value(file.key());
                ASSERT_TRUE(item) << qPrintable(file.key());
                if (!file->bundleID.isEmpty()) {
                    EXPECT_EQ(item->bundleID(), file->bundleID) << "another item: " << qPrintable(file.key());
                }
                if (!file->tag.isEmpty()) {
                    EXPECT_TRUE(item->userTagTitles().contains(file->tag)) << qPrintable(file.key());
                }
                file->bundleID = item->bundleID();
            }
        }
    }
}
