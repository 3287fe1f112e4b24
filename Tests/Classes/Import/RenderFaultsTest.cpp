#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Imaging/ZQRenderPool.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Classes/Import/ImportFixture.h"
#include "Tools/samples/SampleFormats.h"

#include <QFile>

#include <csignal>

namespace {

// The application with workers that misbehave on files of certain names; see FaultyRenderer.
class RenderFaultsTest : public ImportFixture
{
protected:
    RenderFaultsTest()
    {
        qputenv("ZELTO_RENDER", ZELTO_FAULTY_RENDERER);
        endWorkers();
    }
    ~RenderFaultsTest() override
    {
        qunsetenv("ZELTO_RENDER");
        qunsetenv("ZELTO_FAULTY_WITHOUT_LANDLOCK");
        endWorkers();
    }
    // Those that are warm are of another kind. One that is still dying would take a file with it.
    static void endWorkers()
    {
        for (const pid_t worker : ZQRenderPool::shared().processIDs()) {
            ::kill(worker, SIGKILL);
            zqRunMainLoopUntil([worker] { return isOver(worker); });
        }
    }
    static bool isOver(pid_t process)
    {
        QFile status(QStringLiteral("/proc/%1/stat").arg(process));
        const QByteArray text = status.open(QIODevice::ReadOnly) ? status.readAll() : QByteArray();
        const QByteArray state = text.mid(text.lastIndexOf(')') + 2, 1);
        return text.isEmpty() || state == "Z" || state == "X";
    }
};

} // namespace

TEST_F(RenderFaultsTest, ACancelledImportDoesNotWaitForWhatIsBeingDrawn)
{
    const QString slow = writeFile(QStringLiteral("hang.png"), "x");
    const auto operation = AImportManager::sharedAImportManager().importFilesAtPaths({slow}, nullptr);
    ASSERT_TRUE(operation);
    zqRunMainLoopUntil([] { return !ZQRenderPool::shared().processIDs().empty(); });
    operation->cancel();
    zqRunMainLoopUntil([&] { return operation->isFinished(); });
    EXPECT_TRUE(operation->report().imported().isEmpty());
    EXPECT_TRUE(itemDirectories().isEmpty());
    for (const DroppedFile &file : operation->report().dropped()) {
        EXPECT_TRUE(file.reason.contains(QStringLiteral("cancelled"))) << file.reason.toStdString();
    }
    EXPECT_TRUE(user.errors.isEmpty());
}

TEST_F(RenderFaultsTest, APersonIsToldOnceThatProgramsCannotBeConfined)
{
    qputenv("ZELTO_FAULTY_WITHOUT_LANDLOCK", "1");
    ZQUserDefaults::standardUserDefaults().setObjectForKey({}, QStringLiteral("DidTellUnconfinedDrawing"));
    const QString drawing =
        writeFile(QStringLiteral("a.ai"), SampleFormats::epsFile({40, 20}, "5 5 9 9 rectfill showpage"));
    for (int i = 0; i < 2; ++i) {
        const auto operation = import({drawing, writeImage(QStringLiteral("p%1.png").arg(i), {30, 20 + i})});
        EXPECT_EQ(operation->report().imported().size(), 1)
            << operation->report().dropped().first().reason.toStdString();
        ASSERT_EQ(operation->report().dropped().size(), 1);
        EXPECT_TRUE(operation->report().dropped().first().reason.contains(QStringLiteral("Landlock")))
            << operation->report().dropped().first().reason.toStdString();
        endWorkers();
    }
    zqRunMainLoopUntil([&] { return !user.errors.isEmpty(); });
    ASSERT_EQ(user.errors.size(), 1);
    EXPECT_TRUE(user.errors.first().localizedDescription().contains(QStringLiteral("no EPS")));
}
