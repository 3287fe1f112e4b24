#include "Kit/Files/ZQFileWatcher.h"
#include "Kit/Files/ZQPaths.h"
#include "Kit/Files/ZQTrash.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Tests/Kit/Files/Scratch.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QSet>

#include <cerrno>
#include <functional>

using Places = Scratch;
using Trash = Scratch;
using Watcher = Scratch;

TEST_F(Places, FollowTheEnvironment)
{
    EXPECT_EQ(ZQPaths::dataHome(), path(QStringLiteral("XDG_DATA_HOME")));
    EXPECT_EQ(ZQPaths::temporaryDir(), path(QStringLiteral("TMPDIR")));
    qputenv("XDG_CONFIG_HOME", "relative/is/ignored");
    EXPECT_EQ(ZQPaths::configHome(), QDir::homePath() + QStringLiteral("/.config"));
    qunsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(ZQPaths::runtimeDir(), ZQPaths::temporaryDir());
}

TEST(TypeIdentifier, KnowsExtensionsInAnyCase)
{
    using namespace ZQTypeIdentifier;
    const struct
    {
        const char *name;
        QString type;
    } rows[] = {{"a.JPG", JPEG},   {"a.jpeg", JPEG},       {"a.jfif", JPEG},         {"a.j2k", JPEG2000},
                {"a.Tif", TIFF},   {"a.gif", GIF},         {"a.png", PNG},           {"a.icns", ICNS},
                {"a.dib", BMP},    {"a.ico", ICO},         {"a.svg", SVG},           {"a.psd", PSD},
                {"a.ai", AI},      {"a.epsf", EPS},        {"a.tga", TGA},           {"a.pxm", Pixelmator},
                {"a.pxim", Pixen}, {"a.acorn", Acorn},     {"a.dng", AdobeRaw},      {"a.pdf", PDF},
                {"a.webp", WebP},  {"x/a.b/c", QString()}, {"a.unknown", QString()}, {".png", QString()},
                {"a.", QString()}};
    for (const auto &row : rows) {
        EXPECT_EQ(forPath(QString::fromLatin1(row.name)), row.type) << row.name;
    }
}

TEST(TypeIdentifier, EveryRawFormatConformsToTheOneType)
{
    using namespace ZQTypeIdentifier;
    for (const char *const extension :
         {"cr2", "cr3", "crw", "nef", "nrw", "arw", "srf", "sr2", "raf", "orf", "rw2", "pef", "ptx", "dcr",
          "k25", "kdc", "mrw", "raw", "rwl", "srw", "x3f", "3fr", "erf", "mef", "mos", "iiq", "fff", "dng"}) {
        const QString type = forExtension(QString::fromLatin1(extension));
        EXPECT_TRUE(conforms(type, CameraRaw)) << extension;
        EXPECT_TRUE(conforms(type, QStringLiteral("public.image"))) << extension;
        EXPECT_NE(type, CameraRaw) << extension;
        EXPECT_EQ(preferredExtension(type), QString::fromLatin1(extension));
    }
    EXPECT_FALSE(conforms(PNG, CameraRaw));
    EXPECT_FALSE(conforms(PDF, QStringLiteral("public.image")));
    EXPECT_FALSE(conforms({}, {}));
    EXPECT_EQ(preferredExtension(forMimeType(QStringLiteral("image/JPEG; charset=x"))), QStringLiteral("jpg"));
    EXPECT_EQ(forMimeType(QStringLiteral("image/unheard-of")), QString());
    EXPECT_EQ(localizedDescription(PNG), QStringLiteral("PNG image"));
    EXPECT_EQ(localizedDescription({}), QStringLiteral("File"));
}

TEST(PathNames, SplitAtTheLastDot)
{
    const struct
    {
        const char *path;
        const char *base;
        const char *extension;
    } rows[] = {
        {"/a/b.tar.gz", "b.tar", "gz"},      {"/a/.hidden", ".hidden", ""}, {"/a.b/c", "c", ""}, {"c.PNG", "c", "PNG"},
        {"/a/pkg.sketch/", "pkg", "sketch"}, {"dot.", "dot", ""},           {"", "", ""},        {"/", "", ""}};
    for (const auto &row : rows) {
        EXPECT_EQ(zqBaseName(QString::fromLatin1(row.path)), QString::fromLatin1(row.base)) << row.path;
        EXPECT_EQ(zqPathExtension(QString::fromLatin1(row.path)), QString::fromLatin1(row.extension)) << row.path;
    }
}

TEST_F(Trash, KeepsWhereEachFileWas)
{
    for (int round = 1; round <= 2; ++round) {
        const QString made = file(QStringLiteral("Cat ü%.png"), "cat");
        QString trashed;
        ZQError error;
        ASSERT_TRUE(ZQTrash::recycle(made, &trashed, &error)) << qPrintable(error.localizedDescription());
        EXPECT_FALSE(QFile::exists(made));
        EXPECT_EQ(read(trashed), "cat");
        EXPECT_TRUE(ZQTrash::contains(trashed));
        const QString name = round == 1 ? QStringLiteral("Cat ü%.png") : QStringLiteral("Cat ü% 2.png");
        EXPECT_EQ(trashed, ZQPaths::dataHome() + QStringLiteral("/Trash/files/") + name);
        const QByteArray info =
            read(ZQPaths::dataHome() + QStringLiteral("/Trash/info/") + name + QStringLiteral(".trashinfo"));
        EXPECT_TRUE(info.startsWith("[Trash Info]\nPath=/")) << info.constData();
        EXPECT_TRUE(info.contains("/Cat%20%C3%BC%25.png\nDeletionDate=20")) << info.constData();
    }
}

TEST_F(Trash, TakesFoldersAndTheLongestNames)
{
    const QString longName = QString(251, u'n') + QStringLiteral(".png");
    file(longName, "long");
    QString trashed;
    ASSERT_TRUE(ZQTrash::recycle(path(longName), &trashed));
    EXPECT_TRUE(trashed.endsWith(QStringLiteral("nn.png")));
    const QString package = folder(QStringLiteral("package"));
    write(package + QStringLiteral("/inside"), "x");
    ASSERT_TRUE(ZQTrash::recycle(package + u'/', &trashed));
    EXPECT_EQ(read(trashed + QStringLiteral("/inside")), "x");
    ZQError error;
    EXPECT_FALSE(ZQTrash::recycle(path(QStringLiteral("missing")), nullptr, &error));
    EXPECT_EQ(error.code, ENOENT);
    EXPECT_TRUE(
        QDir(ZQPaths::dataHome() + QStringLiteral("/Trash/info")).entryList({QStringLiteral("missing*")}).isEmpty());
}

TEST_F(Trash, IsRecognisedInEveryLayout)
{
    const struct
    {
        QString path;
        bool isTrash;
    } rows[] = {{QStringLiteral("/home/me/.Trash/a"), true},
                {QStringLiteral("/media/disk/.Trash-1000/files/a"), true},
                {QStringLiteral("/home/other/.local/share/Trash/files/a"), true},
                {path(QStringLiteral("XDG_DATA_HOME/Trash/files/a")), true},
                {path(QStringLiteral("XDG_DATA_HOME/Trash")), true},
                {path(QStringLiteral("XDG_DATA_HOME/Trashed/a")), false},
                {QStringLiteral("/home/me/Trash/a"), false},
                {QStringLiteral("/home/me/My.Trash/a"), false},
                {QString(), false}};
    for (const auto &row : rows) {
        EXPECT_EQ(ZQTrash::contains(row.path), row.isTrash) << qPrintable(row.path);
    }
}

namespace {

struct Watching
{
    ZQFileWatcher watcher;
    QSet<QString> changed;
    QSet<QString> below;
    QStringList vanished;
    int announcements = 0;

    Watching()
    {
        QObject::connect(&watcher, &ZQFileWatcher::folderDidChange,
                         [this](const QString &folder, bool everythingBelow) {
                             changed.insert(folder);
                             ++announcements;
                             if (everythingBelow) {
                                 below.insert(folder);
                             }
                         });
        QObject::connect(&watcher, &ZQFileWatcher::rootDidVanish,
                         [this](const QString &root) { vanished.append(root); });
    }

    bool waitFor(const std::function<bool()> &isTrue)
    {
        const QDeadlineTimer deadline(20000);
        while (!isTrue() && !deadline.hasExpired()) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        }
        return isTrue();
    }
    bool waitForChangeOf(const QString &folder)
    {
        return waitFor([&] { return changed.contains(folder); });
    }
};

} // namespace

TEST_F(Watcher, AnnouncesManyChangesOfAFolderOnce)
{
    const QString root = folder(QStringLiteral("root"));
    Watching watching;
    ASSERT_TRUE(watching.watcher.addPath(root + u'/'));
    EXPECT_EQ(watching.watcher.paths(), QStringList(root));
    for (int i = 0; i < 100; ++i) {
        write(root + QStringLiteral("/%1").arg(i), "x");
    }
    ASSERT_TRUE(watching.waitForChangeOf(root));
    EXPECT_EQ(watching.announcements, 1);
    EXPECT_TRUE(watching.below.isEmpty());
}

TEST_F(Watcher, SeesFoldersMadeMovedAndFilledLater)
{
    const QString root = folder(QStringLiteral("root"));
    const QString outside = folder(QStringLiteral("outside/inner"));
    Watching watching;
    ASSERT_TRUE(watching.watcher.addPath(root));
    ASSERT_EQ(rename(QFile::encodeName(path(QStringLiteral("outside"))).constData(),
                     QFile::encodeName(root + QStringLiteral("/came")).constData()),
              0);
    ASSERT_TRUE(watching.waitForChangeOf(root + QStringLiteral("/came")));
    EXPECT_TRUE(watching.below.contains(root + QStringLiteral("/came")));
    watching.changed.clear();
    write(root + QStringLiteral("/came/inner/file"), "x");
    ASSERT_TRUE(watching.waitForChangeOf(root + QStringLiteral("/came/inner")));
    watching.changed.clear();
    ASSERT_EQ(rename(QFile::encodeName(root + QStringLiteral("/came")).constData(),
                     QFile::encodeName(root + QStringLiteral("/went")).constData()),
              0);
    ASSERT_TRUE(watching.waitForChangeOf(root));
    watching.changed.clear();
    write(root + QStringLiteral("/went/inner/file"), "y");
    ASSERT_TRUE(watching.waitForChangeOf(root + QStringLiteral("/went/inner")));
    EXPECT_FALSE(watching.changed.contains(root + QStringLiteral("/came/inner")));
}

TEST_F(Watcher, KeepsQuietAboutOwnChangesAndBehindLinks)
{
    const QString root = folder(QStringLiteral("root"));
    const QString quiet = folder(QStringLiteral("root/quiet"));
    const QString marker = folder(QStringLiteral("root/marker"));
    const QString outside = folder(QStringLiteral("outside"));
    ASSERT_TRUE(QFile::link(outside, root + QStringLiteral("/link")));
    Watching watching;
    ASSERT_TRUE(watching.watcher.addPath(root));
    watching.watcher.ignoreNextChange(quiet + QStringLiteral("/ours"));
    write(quiet + QStringLiteral("/ours"), "x");
    write(outside + QStringLiteral("/hidden"), "x");
    write(marker + QStringLiteral("/theirs"), "x");
    ASSERT_TRUE(watching.waitForChangeOf(marker));
    EXPECT_EQ(watching.changed, QSet<QString>{marker});
}

TEST_F(Watcher, TellsWhenARootGoesAwayAndForgetsIt)
{
    const QString moved = folder(QStringLiteral("moved"));
    const QString deleted = folder(QStringLiteral("deleted"));
    Watching watching;
    ASSERT_TRUE(watching.watcher.addPath(moved));
    ASSERT_TRUE(watching.watcher.addPath(deleted));
    ASSERT_EQ(rename(QFile::encodeName(moved).constData(), QFile::encodeName(path(QStringLiteral("away"))).constData()),
              0);
    ASSERT_TRUE(QDir().rmdir(deleted));
    ASSERT_TRUE(watching.waitFor([&] { return watching.vanished.size() == 2; }));
    EXPECT_EQ(watching.vanished, QStringList({moved, deleted}));
    EXPECT_TRUE(watching.watcher.paths().isEmpty());
    EXPECT_FALSE(watching.watcher.addPath(moved));
    EXPECT_FALSE(watching.watcher.addPath(file(QStringLiteral("file"), "x")));
}

TEST_F(Watcher, StopsAtARemovedRoot)
{
    const QString one = folder(QStringLiteral("one"));
    const QString two = folder(QStringLiteral("two"));
    Watching watching;
    ASSERT_TRUE(watching.watcher.addPath(one));
    ASSERT_TRUE(watching.watcher.addPath(two));
    watching.watcher.removePath(one);
    write(one + QStringLiteral("/a"), "x");
    write(two + QStringLiteral("/a"), "x");
    ASSERT_TRUE(watching.waitForChangeOf(two));
    EXPECT_FALSE(watching.changed.contains(one));
}
