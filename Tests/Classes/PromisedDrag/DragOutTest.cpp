// Presets that are dragged out of the window, dropped on another program of a real X display.

#include "Classes/Interface/Export/ExportPanelViewController.h"
#include "Classes/Interface/Export/ExportPresets.h"
#include "Classes/Interface/Export/PresetCell.h"
#include "Classes/Interface/Export/PresetsView.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"
#include "Tests/Classes/PromisedDrag/DropTarget.h"
#include "Tests/Support/Skip.h"

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QUrl>
#include <QWindow>

#include <memory>

namespace {

class DragOut : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        if (QGuiApplication::platformName() != QStringLiteral("xcb")) {
            return skipWithout("Xvfb");
        }
        ZQUserDefaults::standardUserDefaults().removeObjectForKey(ExportItem::storageKey);
        MainWindowFixture::SetUp();
        ASSERT_TRUE(QDir().mkpath(out()));
        run(CommandID::ExportPanel);
        select({QStringLiteral("red"), QStringLiteral("clear")});
    }
    void TearDown() override
    {
        if (delegate) {
            MainWindowFixture::TearDown();
        }
    }
    QString out() const { return world.filePath(QStringLiteral("out")); }
    // Drags the preset onto the other program's window, whose answer is there when this returns.
    std::unique_ptr<DropTarget> dragOut(qsizetype preset, const QByteArray &place)
    {
        const PresetCell *cell = controller->exportPanel().presetsView().cells()[preset];
        QWindow *handle = window().windowHandle();
        const QPoint from = cell->mapTo(&window(), cell->rect().center());
        const QPoint corner(window().mapToGlobal(QPoint(window().width(), 0)).x() + 1, 0); // beside the window
        auto target = std::make_unique<DropTarget>(corner, place);
        EXPECT_TRUE(waitFor([&] { return target->isReady(); }));
        const QPoint to = handle->mapFromGlobal(corner + QPoint(DropTarget::edge, DropTarget::edge) / 2);
        // The drag runs a loop of its own, in which this goes on.
        QTimer pointer;
        pointer.callOnTimeout([&, step = 0]() mutable {
            if (target->wasPromised()) {
                pointer.stop();
                QTest::mouseRelease(handle, Qt::LeftButton, {}, to);
            } else {
                QTest::mouseMove(handle, to + QPoint(++step % 2, 0));
            }
        });
        pointer.start(20);
        QTest::mousePress(handle, Qt::LeftButton, {}, from);
        QTest::mouseMove(handle, from + QPoint(30, 0));
        EXPECT_TRUE(waitFor([&] { return target->isOver(); }));
        settle();
        return target;
    }
};

} // namespace

TEST_F(DragOut, TheFilesAreWrittenWhereTheOtherProgramWantsThem)
{
    const auto target = dragOut(1, QUrl::fromLocalFile(out()).toEncoded() + '/');
    EXPECT_EQ(target->answer(), "S");
    EXPECT_TRUE(target->proposedName().endsWith(".png")) << target->proposedName().constData();
    EXPECT_EQ(QDir(out()).entryList(QDir::Files, QDir::Name),
              (QStringList{QStringLiteral("clear.png"), QStringLiteral("red.png")}));
}

TEST_F(DragOut, AProgramThatAsksForTheListGetsWholeFiles)
{
    const auto target = dragOut(0, {});
    const QList<QByteArray> lines = target->answer().trimmed().split('\n');
    ASSERT_EQ(lines.size(), 2);
    for (const QByteArray &line : lines) {
        EXPECT_FALSE(QImage(QUrl::fromEncoded(line.trimmed()).toLocalFile()).isNull()) << line.constData();
    }
}
