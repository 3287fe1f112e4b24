// Files that another program promises in a drag and writes when it is told where.

#include "Classes/Import/PromisedFiles.h"
#include "Classes/Import/PasteboardFiles.h"
#include "Classes/Import/PromisedImports.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Classes/Import/ImportFixture.h"
#include "Tests/Support/PromisingProgram.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMimeData>

#include <sys/stat.h>

namespace {

using State = PromisedFiles::State;

class PromisedFilesTest : public ImportFixture
{
protected:
    void SetUp() override
    {
        ImportFixture::SetUp();
        folder = path(QStringLiteral("promised"));
        ASSERT_TRUE(QDir().mkpath(folder));
    }
    void TearDown() override { AImportManager::sharedAImportManager().setPromisedImports(nullptr); }

    std::unique_ptr<PromisedFiles> promise() { return std::make_unique<PromisedFiles>(program.source(), folder); }
    // After how many looks it was no longer awaited, and what became of it.
    static std::pair<int, State> outcome(PromisedFiles &files)
    {
        for (int looks = 1; looks <= 10000; ++looks) {
            if (const State state = files.look(); state != State::Awaited) {
                return {looks, state};
            }
        }
        return {0, State::Awaited};
    }
    void write(const QString &name, const QByteArray &contents = "picture") const
    {
        writeFile(QStringLiteral("promised/") + name, contents);
    }
    QStringList namesTaken(PromisedFiles &files) const
    {
        QStringList names;
        for (const QString &each : files.take()) {
            names.append(QDir(folder).relativeFilePath(each));
        }
        return names;
    }
    static int foldersInTemporaryArea()
    {
        return int(
            QDir(QFileInfo(TemporaryFolder::temporaryDirectory()).path()).entryList({QStringLiteral("t.*")}).size());
    }
    // A drop on the project, until nothing of it is awaited and what came of it is imported.
    void drop(const QMimeData &data, const ZQSidebarBaseItem *into, quint32 index)
    {
        PromisedImports promised(AImportManager::sharedAImportManager(), program.maker());
        AImportManager::sharedAImportManager().setPromisedImports(&promised);
        EXPECT_TRUE(AImportManager::sharedAImportManager().importPromisedFiles(data, into, index));
        EXPECT_EQ(promised.count(), 1) << "nobody stands still for it";
        zqRunMainLoopUntil([&] { return promised.count() == 0; });
        zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
        AImportManager::sharedAImportManager().setPromisedImports(nullptr);
    }

    QString folder;
    PromisingProgram program;
};

} // namespace

TEST_F(PromisedFilesTest, AProposedNameIsMadeOneThatAFileCanHave)
{
    const QByteArray own = "Dropped file";
    const std::pair<QByteArray, QByteArray> names[] = {
        {"photo.png", "photo.png"},
        {"two words.tar.gz", "two words.tar.gz"},
        {"Bild \xc3\xa4.png", "Bild \xc3\xa4.png"},
        {"Bild \xe4.png", "Bild \xc3\xa4.png"}, // in another encoding
        {"/etc/passwd", "passwd"},
        {"../../../outside.png", "outside.png"},
        {"folder/", own},
        {"", own},
        {".", own},
        {"..", own},
        {"...png", own + ".png"},
        {".png", own + ".png"},
        {"..hidden.png", "hidden.png"},
        {" . .png", own + ".png"},
        {"dot.", "dot"},
        {"a\nb\x1b[1m\x7f.p\tng", "ab[1m.png"},
        {"a\xe2\x80\xa8"
         "b.png",
         "ab.png"}, // a line separator
        {QByteArray("a.png\0.exe", 10), "a.png"},
        {QByteArray("\0", 1), own},
        {QByteArray(300, 'n') + ".png", QByteArray(200, 'n') + ".png"},
        {QByteArray("\xf0\x9f\x8e\xa8").repeated(60) + ".png", QByteArray("\xf0\x9f\x8e\xa8").repeated(50) + ".png"},
        {"x" + QByteArray("\xf0\x9f\x8e\xa8").repeated(60), "x" + QByteArray("\xf0\x9f\x8e\xa8").repeated(49)},
        {"a." + QByteArray(33, 'e'), "a." + QByteArray(33, 'e')},
        {"a." + QByteArray(300, 'e'), "a." + QByteArray(198, 'e')},
        {"a." + QByteArray(32, 'e'), "a." + QByteArray(32, 'e')},
        {QByteArray(4096, '/'), own},
    };
    for (const auto &[proposed, name] : names) {
        EXPECT_EQ(PromisedFiles::nameFrom(proposed).toUtf8(), name) << proposed.toPercentEncoding().constData();
    }
    program.name = "../out side#1?.png";
    const auto files = promise();
    EXPECT_EQ(program.saved, folder + QStringLiteral("/out side#1?.png")) << "the address says which file it is";
    EXPECT_EQ(files->name(), QStringLiteral("out side#1?.png"));
}

TEST_F(PromisedFilesTest, APromiseIsKnownByTheNameOfItsFormatAlone)
{
    for (const QByteArray format : {"XdndDirectSave0", "xdnddirectsave0", "XDNDDIRECTSAVE0"}) {
        const auto data = PromisingProgram::drag(format);
        EXPECT_EQ(PromisedFiles::formatIn(*data).toLatin1(), format) << "it is asked for as it is offered";
        PromisedImports here(AImportManager::sharedAImportManager(), program.maker());
        EXPECT_TRUE(here.isPromised(*data));
        EXPECT_TRUE(program.saved.isEmpty() && program.askedFor.isEmpty());
        PromisedImports elsewhere(AImportManager::sharedAImportManager(), {});
        EXPECT_FALSE(elsewhere.isPromised(*data) || elsewhere.start(*data, {}, 0)) << "on another kind of display";
    }
    EXPECT_EQ(PromisedFiles::formatIn(*PromisingProgram::drag("image/png")), QString());
}

TEST_F(PromisedFilesTest, TheFirstAddressOfADragIsThePageOfItsFiles)
{
    const auto pageOf = [](const QList<QUrl> &urls, const QByteArray &link) {
        QMimeData data;
        data.setUrls(urls);
        if (!link.isEmpty()) {
            data.setData(QStringLiteral("_NETSCAPE_URL"), link);
        }
        const QVariantMap metadata = PromisedFiles::metadataFrom(data);
        EXPECT_LE(metadata.size(), 1);
        return metadata.value(QStringLiteral("webPageURL")).toString().toUtf8();
    };
    const QUrl one(QStringLiteral("https://example.org/one"));
    const QUrl two(QStringLiteral("http://example.org/two"));
    EXPECT_EQ(pageOf({one, two}, "https://example.org/link\nA link"), "https://example.org/one");
    EXPECT_EQ(pageOf({QUrl(QStringLiteral("data:image/gif,x")), two}, {}), "http://example.org/two");
    EXPECT_EQ(pageOf({}, "https://example.org/link\nA link"), "https://example.org/link");
    EXPECT_EQ(pageOf({}, "https://example.org/untitled"), "https://example.org/untitled");
    EXPECT_EQ(pageOf({QUrl(QStringLiteral("javascript:alert(1)"))}, "file:///etc/passwd"), "");
    EXPECT_EQ(pageOf({}, {}), "");
}

TEST_F(PromisedFilesTest, WhatIsPromisedIsThereWhenItIsSavedAndNobodyWritesItAnyMore)
{
    for (const char *answer : {"S", "s", "S\n", " S"}) {
        program.answer = answer;
        program.onSave = [this](const QString &) { write(QStringLiteral("one.png")); };
        const auto files = promise();
        EXPECT_EQ(outcome(*files), (std::pair{2, State::Here})) << answer;
        EXPECT_EQ(namesTaken(*files), QStringList{QStringLiteral("one.png")});
        QFile::remove(program.saved);
    }
    program.onSave = [](const QString &) {};

    program.answer = std::nullopt; // it says so later than it writes
    write(QStringLiteral("one.png"));
    const auto unanswered = promise();
    for (int look = 0; look < 50; ++look) {
        ASSERT_EQ(unanswered->look(), State::Awaited) << look;
    }
    program.answer = "S";
    EXPECT_EQ(unanswered->look(), State::Here);
    unanswered->take();
    QFile::remove(program.saved);

    const auto late = promise(); // and here it writes later than it says so, and slowly
    for (int look = 0; look < 19; ++look) {
        ASSERT_EQ(late->look(), State::Awaited) << look;
    }
    QFile writing(program.saved);
    ASSERT_TRUE(writing.open(QIODevice::WriteOnly) && writing.write("half") == 4 && writing.flush());
    for (int look = 0; look < 40; ++look) {
        ASSERT_EQ(late->look(), State::Awaited) << "the rest may be long in coming";
    }
    writing.close();
    EXPECT_EQ(outcome(*late), (std::pair{1, State::Here}));
}

TEST_F(PromisedFilesTest, WhateverAnArchiveManagerWritesInsteadCame)
{
    program.name = "promise.txt";
    const auto files = promise();
    write(QStringLiteral("b.png"));
    ASSERT_EQ(files->look(), State::Awaited);
    ASSERT_TRUE(QDir().mkpath(folder + QStringLiteral("/Brand/inner")));
    for (int look = 0; look < 19; ++look) {
        ASSERT_EQ(files->look(), State::Awaited) << look;
    }
    write(QStringLiteral("Brand/inner/c.png")); // the next one, deep in a folder
    write(QStringLiteral(".unfinished"));
    write(QStringLiteral("notes.txt"));
    write(QStringLiteral("Design.sketch/page"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(folder + QStringLiteral("/pipe.png")).constData(), 0600), 0);
    ASSERT_TRUE(QFile::link(QStringLiteral("/etc/passwd"), folder + QStringLiteral("/link.png")));
    EXPECT_EQ(outcome(*files), (std::pair{21, State::Here}));
    EXPECT_EQ(namesTaken(*files).join(u' '), QStringLiteral("b.png Design.sketch notes.txt Brand/inner/c.png"));
}

TEST_F(PromisedFilesTest, WhatDoesNotComeLeavesNothing)
{
    const struct
    {
        const char *what;
        std::optional<QByteArray> answer;
        const char *written; // a link when it is "->"
        int looks;
        State state;
    } cases[] = {
        {"not saved", "F", "part", 1, State::Refused},
        {"an error", "E", nullptr, 1, State::Refused},
        {"an answer that is none", "XS", "whole", 1, State::Refused},
        {"a program that is gone", "", nullptr, 1, State::Refused},
        {"saved, it says", "S", nullptr, 20, State::Missing},
        {"a link to what was not dragged", "S", "->", 21, State::Missing},
        {"silence", std::nullopt, nullptr, 100, State::Missing},
        {"silence beside a file", std::nullopt, "whole", 101, State::Here},
        {"an empty file", "S", "", 21, State::Here},
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(each.what);
        ASSERT_TRUE(QDir().mkpath(folder));
        program.answer = each.answer;
        program.onSave = [&](const QString &saved) {
            if (each.written && QByteArray(each.written) == "->") {
                EXPECT_TRUE(QFile::link(QStringLiteral("/etc/passwd"), saved));
            } else if (each.written) {
                write(QFileInfo(saved).fileName(), each.written);
            }
        };
        auto files = promise();
        EXPECT_EQ(outcome(*files), (std::pair{each.looks, each.state}));
        files.reset();
        EXPECT_FALSE(QFileInfo::exists(folder));
        EXPECT_TRUE(QFileInfo::exists(QStringLiteral("/etc/passwd")));
    }
}

TEST_F(PromisedFilesTest, AFileWithoutEndIsNotAwaitedForEver)
{
    const auto files = promise();
    QFile endless(program.saved);
    ASSERT_TRUE(endless.open(QIODevice::WriteOnly) && endless.write("more") == 4 && endless.flush());
    EXPECT_EQ(outcome(*files), (std::pair{6000, State::Missing})) << "ten minutes";
}

TEST_F(PromisedFilesTest, WhatCameIsImportedWhereItWasDropped)
{
    const auto project = addProject(QStringLiteral("P"));
    import({writeImage(QStringLiteral("first.png"), {20, 20})}, project.get());
    const QString picture = writeImage(QStringLiteral("made.png"), {30, 20});
    program.onSave = [&](const QString &saved) { EXPECT_TRUE(QFile::copy(picture, saved)); };
    const auto data = PromisingProgram::drag();
    data->setUrls({QUrl(QStringLiteral("https://example.org/page"))});
    data->setData(QStringLiteral("image/gif"), "another form of it");
    drop(*data, project.get(), 0);
    EXPECT_EQ(program.askedFor, QLatin1String(PromisingProgram::format));
    EXPECT_EQ(titles(project->items()), (QStringList{QStringLiteral("one"), QStringLiteral("first")}));
    EXPECT_EQ(item(QStringLiteral("one"))->webPageURL(), QStringLiteral("https://example.org/page"));
    EXPECT_FALSE(QFile::exists(program.saved)) << "it is the library's now";
    EXPECT_TRUE(user.notificationTexts().filter(QStringLiteral("other program")).isEmpty());
}

TEST_F(PromisedFilesTest, ABrokenPromiseIsToldUnlessThePictureCameWithTheDrag)
{
    const auto project = addProject(QStringLiteral("P"));
    const int folders = foldersInTemporaryArea();
    const auto told = [this] { return user.notificationTexts().filter(QStringLiteral("other program")); };
    program.answer = "F";
    drop(*PromisingProgram::drag(), project.get(), 0);
    EXPECT_EQ(told(), QStringList{QStringLiteral("The other program did not save “one.png”. Save it there as a file, "
                                                 "and drop that here.")});
    program.answer = "S";
    drop(*PromisingProgram::drag(), project.get(), 0);
    EXPECT_EQ(told().value(1), QStringLiteral("“one.png” did not come from the other program. Save it there as a "
                                              "file, and drop that here."));
    EXPECT_EQ(foldersInTemporaryArea(), folders + 1) << "that of the counting";
    EXPECT_TRUE(items().isEmpty());

    program.answer = "E";
    QFile picture(writeImage(QStringLiteral("made.png"), {30, 20}));
    ASSERT_TRUE(picture.open(QIODevice::ReadOnly));
    const auto data = PromisingProgram::drag();
    data->setData(QStringLiteral("image/png"), picture.readAll());
    data->setUrls({QUrl(QStringLiteral("https://example.org/logo.png"))});
    drop(*data, project.get(), 0);
    EXPECT_EQ(titles(project->items()), QStringList{QStringLiteral("logo")});
    EXPECT_EQ(item(QStringLiteral("logo"))->webURL(), QStringLiteral("https://example.org/logo.png"));
    EXPECT_EQ(told().size(), 2);
}

TEST_F(PromisedFilesTest, WhatIsAwaitedWhenTheWindowGoesIsGivenUp)
{
    program.answer = std::nullopt;
    {
        PromisedImports promised(AImportManager::sharedAImportManager(), program.maker());
        EXPECT_TRUE(promised.start(*PromisingProgram::drag(), {}, 0));
        EXPECT_TRUE(QFileInfo(QFileInfo(program.saved).path()).isDir());
    }
    EXPECT_FALSE(QFileInfo::exists(QFileInfo(program.saved).path()));
    EXPECT_TRUE(user.notifications.isEmpty());
}
