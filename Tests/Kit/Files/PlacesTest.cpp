#include "Kit/Files/ZQPaths.h"
#include "Kit/Files/ZQTrash.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Files/ZQVectorTypes.h"
#include "Tests/Kit/Files/Scratch.h"
#include "Tests/Support/FileSizeLimit.h"

#include <QRegularExpression>

#include <cerrno>

using Places = Scratch;
using Trash = Scratch;

TEST_F(Places, FollowTheEnvironment)
{
    EXPECT_EQ(ZQPaths::dataHome(), path(QStringLiteral("XDG_DATA_HOME")));
    EXPECT_EQ(ZQPaths::temporaryDir(), path(QStringLiteral("TMPDIR")));
    qputenv("XDG_CONFIG_HOME", "relative/is/ignored");
    EXPECT_EQ(ZQPaths::configHome(), QDir::homePath() + QStringLiteral("/.config"));
    EXPECT_EQ(ZQPaths::cacheHome(), path(QStringLiteral("XDG_CACHE_HOME")));
    EXPECT_EQ(ZQPaths::runtimeDir(), path(QStringLiteral("XDG_RUNTIME_DIR")));
    qputenv("XDG_CACHE_HOME", "/a/../b/");
    EXPECT_EQ(ZQPaths::cacheHome(), QStringLiteral("/b"));
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
    } rows[] = {{"a.JPG", JPEG},        {"a.jpeg", JPEG},         {"a.jfif", JPEG},    {"a.j2k", JPEG2000},
                {"a.Tif", TIFF},        {"a.gif", GIF},           {"a.png", PNG},      {"a.icns", ICNS},
                {"a.dib", BMP},         {"a.ico", ICO},           {"a.svg", SVG},      {"a.psd", PSD},
                {"a.ai", AI},           {"a.epsf", EPS},          {"a.tga", TGA},      {"a.pxm", Pixelmator},
                {"a.pxim", Pixen},      {"a.acorn", Acorn},       {"a.dng", AdobeRaw}, {"a.pdf", PDF},
                {"a.webp", WebP},       {"a.HEIF", HEIC},         {"a.avif", AVIF},    {"a.jxl", JPEGXL},
                {"x/a.b/c", QString()}, {"a.unknown", QString()}, {".png", QString()}, {"a.", QString()}};
    for (const auto &row : rows) {
        EXPECT_EQ(forPath(QString::fromLatin1(row.name)), row.type) << row.name;
    }
}

TEST(VectorTypes, AreKnownByTheirExtensionsAndSomeHavePages)
{
    for (const char *const extension : {"ai", "EPS", "pdf", "Pdf"}) {
        EXPECT_TRUE(ZQVectorTypes::contains(QLatin1StringView(extension))) << extension;
        EXPECT_TRUE(ZQVectorTypes::havePages(QLatin1StringView(extension))) << extension;
    }
    for (const char *const extension : {"sketch", "SVG"}) {
        EXPECT_TRUE(ZQVectorTypes::contains(QLatin1StringView(extension))) << extension;
        EXPECT_FALSE(ZQVectorTypes::havePages(QLatin1StringView(extension))) << extension;
    }
    for (const char *const extension : {"png", "", "pd"}) {
        EXPECT_FALSE(ZQVectorTypes::contains(QLatin1StringView(extension))) << extension;
        EXPECT_FALSE(ZQVectorTypes::havePages(QLatin1StringView(extension))) << extension;
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
    EXPECT_EQ(forMimeType(QStringLiteral("image/pjpeg")), JPEG);
    EXPECT_EQ(forMimeType(QStringLiteral("inode/directory")), QString()) << "a folder has no extension";
    EXPECT_EQ(mimeType(PNG), QStringLiteral("image/png"));
    EXPECT_EQ(mimeType(PNG.toUpper()), QStringLiteral("image/png"));
    EXPECT_EQ(mimeType(QStringLiteral("unheard.of")), QString());
    EXPECT_EQ(extensions(TIFF), (QStringList{QStringLiteral("tiff"), QStringLiteral("tif")}));
    EXPECT_EQ(extensions(QStringLiteral("unheard.of")), QStringList());
    EXPECT_FALSE(conforms(QStringLiteral("unheard.of"), PNG));
    EXPECT_FALSE(conforms(PNG, {}));
    EXPECT_FALSE(conforms({}, PNG));
    EXPECT_TRUE(conforms(QStringLiteral("unheard.of"), QStringLiteral("Unheard.Of")));
    EXPECT_FALSE(conforms(QStringLiteral("public.image"), PNG));
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
        const QRegularExpression note(QStringLiteral("^\\[Trash Info\\]\nPath=/.*/Cat%20%C3%BC%25.png\n"
                                                     "DeletionDate=20\\d\\d-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\n$"));
        EXPECT_TRUE(note.match(QString::fromUtf8(info)).hasMatch()) << info.constData();
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

TEST_F(Trash, SaysWhyItTakesNothingAndLeavesNoNote)
{
    const QString made = file(QStringLiteral("a"), "a");
    const QString trash = ZQPaths::dataHome() + QStringLiteral("/Trash");
    const auto told = [&](const QString &what) {
        ZQError error;
        EXPECT_FALSE(ZQTrash::recycle(what, nullptr, &error));
        EXPECT_EQ(read(made), "a");
        return error.localizedDescription();
    };
    EXPECT_EQ(told({}), QStringLiteral(": Invalid argument"));
    folder(QStringLiteral("XDG_DATA_HOME"));
    folder(QStringLiteral("elsewhere"));
    ASSERT_TRUE(QFile::link(path(QStringLiteral("elsewhere")), trash));
    EXPECT_EQ(told(made), trash + QStringLiteral(": Permission denied")) << "a link may lead anywhere";
    ASSERT_TRUE(QFile::remove(trash));
    write(trash, "in the way");
    EXPECT_EQ(told(made), trash + QStringLiteral(": Permission denied"));
    ASSERT_TRUE(QFile::remove(trash));
    EXPECT_EQ(told(ZQPaths::dataHome()), ZQPaths::dataHome() + QStringLiteral(": Invalid argument")) << "it lies in it";
    EXPECT_TRUE(QDir(trash + QStringLiteral("/info")).isEmpty());
    EXPECT_TRUE(QDir(path(QStringLiteral("elsewhere"))).isEmpty());
}

TEST_F(Trash, LeavesAFileWhereItIsWhenItsNoteCannotBeWritten)
{
    const QString made = file(QStringLiteral("a"), "a");
    ZQError error;
    {
        const FileSizeLimit limit(0);
        EXPECT_FALSE(ZQTrash::recycle(made, nullptr, &error));
    }
    EXPECT_EQ(error.code, EFBIG);
    EXPECT_EQ(read(made), "a");
    const QDir trash(ZQPaths::dataHome() + QStringLiteral("/Trash"));
    EXPECT_TRUE(QDir(trash.filePath(QStringLiteral("info"))).isEmpty());
    EXPECT_TRUE(QDir(trash.filePath(QStringLiteral("files"))).isEmpty());
}

TEST_F(Trash, NumbersANameUntilThereAreTooMany)
{
    const QString trash = ZQPaths::dataHome() + QStringLiteral("/Trash");
    folder(QStringLiteral("XDG_DATA_HOME/Trash/info"));
    folder(QStringLiteral("XDG_DATA_HOME/Trash/files"));
    write(trash + QStringLiteral("/files/a.png"), "without a note");
    QString trashed;
    ASSERT_TRUE(ZQTrash::recycle(file(QStringLiteral("a.png"), "a"), &trashed));
    EXPECT_EQ(trashed, trash + QStringLiteral("/files/a 2.png"));
    EXPECT_EQ(QDir(trash + QStringLiteral("/info")).entryList(QDir::Files),
              QStringList{QStringLiteral("a 2.png.trashinfo")});
    EXPECT_EQ(read(trash + QStringLiteral("/files/a.png")), "without a note");
    for (int number = 3; number < 10000; ++number) {
        write(trash + QStringLiteral("/info/a %1.png.trashinfo").arg(number), {});
    }
    ASSERT_TRUE(ZQTrash::recycle(file(QStringLiteral("a.png"), "a"), &trashed));
    EXPECT_EQ(trashed, trash + QStringLiteral("/files/a 10000.png"));
    ZQError error;
    EXPECT_FALSE(ZQTrash::recycle(file(QStringLiteral("a.png"), "a"), nullptr, &error));
    EXPECT_EQ(error.localizedDescription(),
              QStringLiteral("The trash holds too many files named “a.png”. Empty it and try again."));
    EXPECT_EQ(read(path(QStringLiteral("a.png"))), "a");
}

TEST_F(Trash, ShortensNamesThatLeaveNoRoomForTheNote)
{
    const struct
    {
        QString name;
        QString trashed;
    } rows[] = {{QString(245, u'n'), QString(245, u'n')},
                {QString(246, u'x'), QString(245, u'x')},
                {QString(245, u'm') + QStringLiteral(".png"), QString(241, u'm') + QStringLiteral(".png")},
                {QString(215, u'o') + u'.' + QString(32, u'e'), QString(212, u'o') + u'.' + QString(32, u'e')},
                {QString(215, u'p') + u'.' + QString(33, u'e'), QString(215, u'p') + u'.' + QString(29, u'e')},
                {QStringLiteral("💡").repeated(62), QStringLiteral("💡").repeated(61)}};
    for (const auto &row : rows) {
        QString trashed;
        ASSERT_TRUE(ZQTrash::recycle(file(row.name, "x"), &trashed));
        EXPECT_EQ(trashed, ZQPaths::dataHome() + QStringLiteral("/Trash/files/") + row.trashed);
    }
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

TEST_F(Trash, ForgetsOnlyWhatWasTakenOutOfIt)
{
    QString trashed;
    const QString original = file(QStringLiteral("a.png"), "a");
    ASSERT_TRUE(ZQTrash::recycle(original, &trashed));
    const QString note = path(QStringLiteral("XDG_DATA_HOME/Trash/info/a.png.trashinfo"));
    ASSERT_TRUE(QFile::exists(note));
    ZQTrash::didTakeOut(trashed);
    EXPECT_TRUE(QFile::exists(note)) << "it is still there";
    ASSERT_TRUE(QFile::rename(trashed, original));
    folder(QStringLiteral("elsewhere/files"));
    folder(QStringLiteral("elsewhere/info"));
    const QString namesake = file(QStringLiteral("elsewhere/info/a.png.trashinfo"), "no note");
    ZQTrash::didTakeOut(path(QStringLiteral("elsewhere/files/a.png")));
    EXPECT_TRUE(QFile::exists(namesake)) << "that is no trash";
    ZQTrash::didTakeOut(trashed);
    EXPECT_FALSE(QFile::exists(note));
}
