// The file that has a desktop start Zelto: what it says, and what is left of it that others wrote.

#include "Classes/Services/LaunchAtLogin.h"
#include "Tests/Support/UserWorld.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

namespace {

class LaunchAtLoginTest : public testing::Test
{
protected:
    LaunchAtLoginTest()
    {
        QDir().mkpath(world.filePath(QStringLiteral("bin")));
        write(program, "#!/bin/sh\n");
        QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner);
        qputenv("PATH", (world.filePath(QStringLiteral("bin")) + u':').toLocal8Bit() + pathBefore);
        write(desktopFile, "[Desktop Entry]\nExec=zelto %U\n\n[Desktop Action new]\nExec=zelto --new\n");
    }
    ~LaunchAtLoginTest() override { qputenv("PATH", pathBefore); }
    static void write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
        file.write(bytes);
    }
    QByteArray entry() const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    ZQError set(LaunchAtLogin &launch, bool isOn)
    {
        ZQError answer;
        launch.set(isOn, [&answer](const ZQError &error) { answer = error; });
        return answer;
    }

    UserWorld world{"autostart"};
    const QByteArray pathBefore = qgetenv("PATH");
    const QString folder = world.filePath(QStringLiteral("config/autostart"));
    const QString path = folder + QStringLiteral("/org.zelto.Zelto.desktop");
    const QString program = world.filePath(QStringLiteral("bin/zelto"));
    const QString desktopFile = world.filePath(QStringLiteral("installed.desktop"));
};

} // namespace

TEST_F(LaunchAtLoginTest, TurnsOnAndOffAndKeepsWhatOthersWrote)
{
    LaunchAtLogin launch({folder, desktopFile, program});
    EXPECT_FALSE(launch.isOn());
    EXPECT_TRUE(set(launch, false).isNull());
    EXPECT_FALSE(QFileInfo::exists(path)) << "there is nothing to turn off";
    EXPECT_TRUE(set(launch, true).isNull());
    EXPECT_TRUE(launch.isOn());
    EXPECT_TRUE(entry().contains("\nExec=zelto\n")) << "as the installed entry says, without files";
    EXPECT_TRUE(set(launch, false).isNull());
    EXPECT_FALSE(launch.isOn());
    EXPECT_TRUE(entry().contains("\nHidden=true\n"));

    write(path, "# mine\n[Desktop Entry]\nName=My Zelto\nExec=old\nX-GNOME-Autostart-enabled=false\nX-Delay=5\n\n"
                "[Desktop Action a]\nHidden=true\nExec=kept\n");
    EXPECT_FALSE(launch.isOn()) << "the desktop turned it off";
    EXPECT_TRUE(set(launch, true).isNull());
    EXPECT_TRUE(launch.isOn());
    const QByteArray kept = entry();
    for (const char *line :
         {"# mine\n", "\nName=My Zelto\n", "\nX-Delay=5\n", "\nExec=zelto\n", "\nHidden=true\nExec=kept\n"}) {
        EXPECT_TRUE(kept.contains(line)) << line << kept.toStdString();
    }
    EXPECT_FALSE(kept.contains("X-GNOME"));
}

TEST_F(LaunchAtLoginTest, AnotherProgramThanTheInstalledOneIsNamedByItsPath)
{
    EXPECT_EQ(LaunchAtLogin::withoutFields(QStringLiteral("zelto --a %U %%U %f")), QStringLiteral("zelto --a  %%U"));
    struct Case
    {
        const char *path;
        const char *exec;
    };
    for (const Case &each :
         {Case{"/opt/zelto/bin/zelto", "/opt/zelto/bin/zelto"}, Case{"/a b/zelto", R"("/a b/zelto")"},
          Case{"/5%/zelto", R"("/5%%/zelto")"}, Case{R"(/$x"\z)", R"("/\\$x\\"\\\\z")"}}) {
        EXPECT_EQ(LaunchAtLogin::quoted(QString::fromUtf8(each.path)).toStdString(), each.exec);
    }
    const QString other = world.filePath(QStringLiteral("my zelto"));
    LaunchAtLogin launch({folder, desktopFile, other});
    EXPECT_TRUE(set(launch, true).isNull());
    EXPECT_TRUE(entry().contains("\nExec=\"" + other.toUtf8() + "\"\n")) << entry().toStdString();
}

TEST_F(LaunchAtLoginTest, ALinkIsFollowedInTheFolderOnlyAndWhatCannotBeWrittenIsSaid)
{
    ASSERT_TRUE(QDir().mkpath(folder));
    LaunchAtLogin launch({folder, desktopFile, program});
    const QByteArray before = "[Desktop Entry]\nName=Mine\nExec=zelto %U\nHidden=true\n";
    for (const QString &real :
         {folder + QStringLiteral("/real.desktop"), world.filePath(QStringLiteral("menu.desktop"))}) {
        write(real, before);
        ASSERT_TRUE(QFile::link(real, path));
        const bool isWithin = real.startsWith(folder);
        for (const bool isOn : {true, false}) {
            EXPECT_TRUE(set(launch, isOn).isNull());
            EXPECT_EQ(launch.isOn(), isOn);
        }
        EXPECT_EQ(QFileInfo(path).isSymLink(), isWithin);
        EXPECT_TRUE(entry().contains("\nName=Mine\n"));
        QFile file(real);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll() == before, !isWithin) << "the menu's entry takes files";
        QFile::remove(path);
    }
    ASSERT_TRUE(QDir().mkpath(path)); // a folder in the file's place
    EXPECT_FALSE(set(launch, true).isNull());
    EXPECT_FALSE(launch.isOn());
}
