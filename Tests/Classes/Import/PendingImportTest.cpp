// What is kept of an import that was cut off, and what is said of it.

#include "Tests/Classes/Import/ResumeFixture.h"

#include <functional>
#include <sys/stat.h>

TEST_F(ResumeTest, ARequestThatCannotBeReadIsSaidAndLeft)
{
    writeFile(QStringLiteral("Zelto.ztlibrary/pending-imports/1000-X.plist"), "bplist00 and no more");
    offer(continueButton);
    EXPECT_EQ(user.errors.size(), 1);
    EXPECT_EQ(pendingFiles().size(), 1);
}

TEST_F(ResumeTest, ARequestThatWasTakenBackIsNotWrittenAnew)
{
    const auto made = PendingImportFile::create(folder(), request({path(QStringLiteral("in/a.png"))}));
    ASSERT_TRUE(made && pendingFiles().size() == 1);
    made->remove(); // cancelled, while an answer for the whole import is noted with its parts
    EXPECT_TRUE(made->setRequest(request({path(QStringLiteral("in/b.png"))})));
    EXPECT_TRUE(made->addSources({{QStringLiteral("B"), path(QStringLiteral("in/b.png")), {}, 0}}));
    EXPECT_EQ(pendingFiles(), QStringList());
}

TEST_F(ResumeTest, ALineThatWasCutOffSwallowsNoOther)
{
    QStringList sources;
    for (int i = 0; i < 4; ++i) {
        sources.append(writeImage(QStringLiteral("in/%1.png").arg(i), {20 + i, 20}));
    }
    import(sources.mid(0, 2));
    cutOff(request(sources), sources.mid(0, 1)); // and leaves a torn line
    const QString name = PendingImportFile::cutOff(folder()).value(0);
    {
        const auto again = PendingImportFile::open(folder(), name);
        ASSERT_TRUE(again);
        ASSERT_TRUE(again->addSources({{item(QStringLiteral("1"))->bundleID(), sources.at(1), QString(), 0}}));
    }
    offer(continueButton);
    EXPECT_EQ(titles(items()),
              (QStringList{QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3")}));
}

TEST_F(ResumeTest, ALineOfWhichOneByteIsThereSwallowsNoOther)
{
    const auto file = PendingImportFile::create(folder(), request({path(QStringLiteral("in/a.png"))}));
    const QString name = QFileInfo(QDir(folder()).entryList({QStringLiteral("*.plist")}).value(0)).completeBaseName();
    writeFile(QStringLiteral("Zelto.ztlibrary/pending-imports/") + name + QStringLiteral(".sources"), "[");
    ASSERT_TRUE(file && file->addSources({{QStringLiteral("ID"), QStringLiteral("/a"), {}, 0}}));
    const auto sources = file->sources().value_or(QList<PendingImportFile::Source>());
    ASSERT_EQ(sources.size(), 1);
    EXPECT_EQ(sources.first().bundleID, QStringLiteral("ID"));
}

TEST_F(ResumeTest, NothingIsReadOrWrittenThroughALinkOrAPipe)
{
    const QString a = writeImage(QStringLiteral("in/a.png"), {20, 20});
    ASSERT_TRUE(QDir().mkpath(folder()));
    const QString link = folder() + QStringLiteral("/1000-X.plist");
    ASSERT_TRUE(QFile::link(QStringLiteral("/dev/zero"), link));
    offer(continueButton);
    EXPECT_EQ(user.errors.size(), 1);
    ASSERT_TRUE(QFile::remove(link));

    const auto made = PendingImportFile::create(folder(), request({a}));
    const QString name = QFileInfo(QDir(folder()).entryList({QStringLiteral("*.plist")}).value(0)).completeBaseName();
    const QString list = folder() + u'/' + name + QStringLiteral(".sources");
    const QString stranger = writeFile(QStringLiteral("in/notes.txt"), "a person's");
    const QList<std::function<bool()>> traps{
        [&] { return QFile::link(QStringLiteral("/dev/zero"), list); },
        [&] { return ::mkfifo(QFile::encodeName(list).constData(), 0600) == 0; },
        [&] { return QFile::link(path(QStringLiteral("in/nowhere")), list); },
        [&] { return QFile::link(stranger, list); },
    };
    for (const auto &trap : traps) {
        ASSERT_TRUE(made && trap());
        ZQError error;
        EXPECT_FALSE(made->sources(&error).has_value());
        EXPECT_FALSE(error.isNull());
        EXPECT_FALSE(made->addSources({{QStringLiteral("ID"), a, QString(), 0}}));
        ASSERT_TRUE(QFile::remove(list));
    }
    EXPECT_EQ(QFileInfo(stranger).size(), 10);
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("in/nowhere"))));
    EXPECT_TRUE(made->addSources({{QStringLiteral("ID"), a, QString(), 0}}));
    EXPECT_EQ(made->sources().value_or(QList<PendingImportFile::Source>()).size(), 1);
}

TEST_F(ResumeTest, TheQuestionSaysWhichImportsAndHowMuchOfOneIsIn)
{
    const QString a = writeImage(QStringLiteral("in/a.png"), {20, 20});
    const QString b = writeImage(QStringLiteral("in/b\033.png"), {21, 20});
    import({a});
    cutOff(request({b, a, path(QStringLiteral("in/c.png"))}), {a});
    offer(-1);
    EXPECT_TRUE(user.questions.last().informativeText.contains(
        QStringLiteral("“b\uFFFD.png” and 2 others, 1 of 3 in the library")))
        << user.questions.last().informativeText.toStdString();
    for (int i = 0; i < 3; ++i) {
        cutOff(request({path(QStringLiteral("in/more%1.png").arg(i))}), {});
    }
    offer(-1);
    const QString several =
        user.questions.last().informativeText; // three of the four; requests of one moment in any order
    EXPECT_TRUE(several.startsWith(QStringLiteral("“b\uFFFD.png” and 2 others, “more"))) << several.toStdString();
    EXPECT_EQ(several.count(QStringLiteral("“more")), 2) << several.toStdString();
    EXPECT_TRUE(several.contains(QStringLiteral(".png”, …"))) << several.toStdString();
}

TEST_F(ResumeTest, TheNamesOfImportsAreThoseOfTheirFiles)
{
    const QString in = path(QStringLiteral("in/"));
    const auto said = [&](const PendingImport &asked) {
        cutOff(asked, {});
        offer(-1);
        const QString text = user.questions.last().informativeText.section(u'\n', 0, 0);
        EXPECT_EQ(user.questions.last().message, QStringLiteral("An import was cut off"));
        offer(forgetButton);
        return text;
    };
    QDir().mkpath(in + QStringLiteral("folder"));
    PendingImport archive = request({in + QStringLiteral("x")});
    archive.archivePath = in + QStringLiteral("Set.zip");
    archive.archiveRoot = in;
    PendingImport grouped = request({in + QStringLiteral("folder")});
    grouped.groups = {{QStringLiteral("p"), {in + QStringLiteral("1.png"), in + QStringLiteral("2.png")}}};
    grouped.ungrouped = {in + QStringLiteral("3.png")};
    EXPECT_EQ(said(request({in + QStringLiteral("a.png")})), QStringLiteral("“a.png”, 0 of 1 in the library"));
    EXPECT_EQ(said(request({in + QStringLiteral("a.png"), in + QStringLiteral("b.png")})),
              QStringLiteral("“a.png” and one other, 0 of 2 in the library"));
    EXPECT_EQ(said(request({in + QString(81, u'n')})),
              QStringLiteral("“%1”, 0 of 1 in the library").arg(QString(40, u'n') + u'…' + QString(39, u'n')));
    EXPECT_EQ(said(request({in + QStringLiteral("folder")})), QStringLiteral("“folder”"))
        << "nobody has looked into it";
    EXPECT_EQ(said(grouped), QStringLiteral("“folder”, 0 of 3 in the library"));
    EXPECT_EQ(said(archive), QStringLiteral("“Set.zip”, 0 of 1 in the library"));
    EXPECT_TRUE(said(request({})).startsWith(QStringLiteral("Zelto ended before")));
    const auto before = AImportManager::sharedAImportManager().cutOffImportSince();
    EXPECT_FALSE(before);
}

TEST_F(ResumeTest, ARequestComesBackAsItWas)
{
    PendingImport whole{
        .paths = {QStringLiteral("/a"), QStringLiteral("/b")},
        .target = QStringLiteral("target"),
        .index = 4294967295U,
        .metadata = {{QStringLiteral("int"), 5},
                     {QStringLiteral("unsigned"), 4000000000U},
                     {QStringLiteral("short"), QVariant::fromValue(short(7))},
                     {QStringLiteral("list"), QStringList{QStringLiteral("x")}},
                     {QStringLiteral("text"), QStringLiteral("t")}},
        .archivePath = QStringLiteral("/a.zip"),
        .archiveRoot = QStringLiteral("/root"),
        .groups = {{QStringLiteral("p"), {QStringLiteral("/root/1"), QStringLiteral("/2")}}},
        .ungrouped = {QStringLiteral("/3")},
        .duplicates = {},
        .fileMetadata = {{QStringLiteral("/a"), QVariantMap{{QStringLiteral("webURL"), QStringLiteral("u")}}}}};
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    ASSERT_TRUE(
        PendingImportFile::create(folder(), whole)
            ->addSources({{QStringLiteral("ID"), QStringLiteral("/root/1"), QStringLiteral("/2"), 5000000000}}));
    const QString name = PendingImportFile::cutOff(folder()).value(0);
    EXPECT_GE(PendingImportFile::beginning(name).toMSecsSinceEpoch(), before);
    const auto file = PendingImportFile::open(folder(), name);
    ASSERT_TRUE(file);
    EXPECT_TRUE(PendingImportFile::cutOff(folder()).isEmpty()) << "it is somebody's";
    EXPECT_EQ(file->request().paths, whole.paths);
    EXPECT_EQ(file->request().target, whole.target);
    EXPECT_EQ(file->request().index, whole.index);
    for (auto value = whole.metadata.cbegin(); value != whole.metadata.cend(); ++value) {
        EXPECT_EQ(file->request().metadata.value(value.key()).toStringList(), value.value().toStringList());
    }
    EXPECT_EQ(file->request().fileMetadata, whole.fileMetadata);
    EXPECT_EQ(file->request().archivePath, whole.archivePath);
    EXPECT_EQ(file->request().archiveRoot, whole.archiveRoot);
    EXPECT_EQ(file->request().groups.value(0).project, QStringLiteral("p"));
    EXPECT_EQ(file->request().groups.value(0).files, whole.groups.first().files);
    EXPECT_EQ(file->request().ungrouped, whole.ungrouped);
    ASSERT_TRUE(file->moveArchive(QStringLiteral("/new"), QStringLiteral("/new/folder")));
    EXPECT_EQ(file->request().paths, QStringList{QStringLiteral("/new/folder")});
    EXPECT_EQ(file->request().groups.value(0).files, (QStringList{QStringLiteral("/new/1"), QStringLiteral("/2")}));
    const auto sources = file->sources().value_or(QList<PendingImportFile::Source>());
    ASSERT_EQ(sources.size(), 1);
    EXPECT_EQ(sources.first().bundleID, QStringLiteral("ID"));
    EXPECT_EQ(sources.first().path, QStringLiteral("/new/1"));
    EXPECT_EQ(sources.first().movedPath, QStringLiteral("/2"));
    EXPECT_EQ(sources.first().movedModification, 5000000000);

    // What cannot be written leaves it as it was.
    const QString plist = folder() + u'/' + name + QStringLiteral(".plist");
    ASSERT_TRUE(QFile::rename(plist, plist + u'~') && QDir().mkpath(plist + QStringLiteral("/full")));
    ZQError error;
    EXPECT_FALSE(file->narrow(whole, &error));
    EXPECT_FALSE(error.isNull());
    EXPECT_EQ(file->request().archiveRoot, QStringLiteral("/new"));
    EXPECT_EQ(file->sources().value_or(QList<PendingImportFile::Source>()).size(), 1);
    EXPECT_FALSE(file->moveArchive(QStringLiteral("/other"), QStringLiteral("/other")));
    EXPECT_FALSE(PendingImportFile::forget(folder(), name));
    EXPECT_TRUE(QFile::exists(folder() + u'/' + name + QStringLiteral(".sources"))) << "its list is kept with it";
    ASSERT_TRUE(QDir(plist).removeRecursively() && QFile::rename(plist + u'~', plist));
    EXPECT_TRUE(file->narrow(whole));
    EXPECT_EQ(file->sources().value_or(QList<PendingImportFile::Source>(3)).size(), 0);
    EXPECT_TRUE(file->addSources({}));
}

TEST_F(ResumeTest, NothingIsReadBeyondWhatAnImportWouldLeave)
{
    const auto file = PendingImportFile::create(folder(), request({path(QStringLiteral("in/a.png"))}));
    ASSERT_TRUE(file && file->addSources({{QStringLiteral("ID"), QStringLiteral("/a"), {}, 0}}));
    const QString list = QDir(folder()).filePath(QDir(folder()).entryList({QStringLiteral("*.sources")}).value(0));
    ASSERT_TRUE(QFile::resize(list, (qint64(1) << 30) + 1)); // takes no room
    ZQError error;
    EXPECT_FALSE(file->sources(&error));
    EXPECT_EQ(error.code, 6);
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("it is no file that an import would leave")));
    EXPECT_FALSE(file->addSources({{QStringLiteral("ID"), QStringLiteral("/a"), {}, 0}}, &error));
    EXPECT_EQ(error.code, 5);
    QFile huge(folder() + QStringLiteral("/1000-Y.plist"));
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly) && huge.resize((qint64(256) << 20) + 1));
    EXPECT_FALSE(PendingImportFile::open(folder(), QStringLiteral("1000-Y"), &error));
    EXPECT_EQ(error.code, 3);
    ASSERT_TRUE(QDir(folder()).removeRecursively());
    EXPECT_TRUE(file->sources(&error)) << "nothing is there";
    writeFile(QStringLiteral("Zelto.ztlibrary/pending-imports"), "a file");
    EXPECT_FALSE(file->sources(&error)) << "and what is there cannot be told";
    EXPECT_FALSE(PendingImportFile::create(folder(), request({}), &error));
}
