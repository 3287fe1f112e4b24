// Files that another program of a real X display promises in a drag, dropped on the main window.

#include "Classes/Import/AImportManager.h"
#include "Classes/Import/PromisedImports.h"
#include "Classes/Import/XDirectSave.h"
#include "Kit/Widgets/ZQGridView.h"
#include "Kit/Widgets/ZQNotificationBubble.h"
#include "Models/DataModel/ZQLibraryImage.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"
#include "Tests/Classes/PromisedDrag/DragSource.h"
#include "Tests/Support/Skip.h"

#include <QBuffer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QUrl>
#include <QWindow>

namespace {

class PromisedDrag : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        if (QGuiApplication::platformName() != QStringLiteral("xcb")) {
            return skipWithout("Xvfb");
        }
        MainWindowFixture::SetUp();
        promised = std::make_unique<PromisedImports>(AImportManager::sharedAImportManager(), XDirectSave::maker());
        AImportManager::sharedAImportManager().setPromisedImports(promised.get());
    }
    void TearDown() override
    {
        AImportManager::sharedAImportManager().setPromisedImports(nullptr);
        promised.reset();
        if (delegate) {
            MainWindowFixture::TearDown();
        }
    }
    static QByteArray picture(int width)
    {
        QImage image(width, 20, QImage::Format_RGB32);
        image.fill(Qt::blue);
        QBuffer buffer;
        EXPECT_TRUE(buffer.open(QIODevice::WriteOnly) && image.save(&buffer, "PNG"));
        return buffer.data();
    }
    // Drags over that point and drops there, as far as the other program sees it.
    std::unique_ptr<DragSource> drag(const DragSource::Promise &promise, const QWidget &widget, QPoint point)
    {
        auto source = std::make_unique<DragSource>(promise, xcb_window_t(window().windowHandle()->winId()),
                                                   widget.mapToGlobal(point));
        EXPECT_TRUE(waitFor([&source] { return source->isOver(); }));
        return source;
    }
    // The same, until all that follows has ended.
    std::unique_ptr<DragSource> drop(const DragSource::Promise &promise, const QWidget &widget, QPoint point)
    {
        auto source = drag(promise, widget, point);
        EXPECT_TRUE(waitFor([this] { return promised->count() == 0; }));
        settle();
        return source;
    }
    QPoint middleOf(const Item &item) { return tree()->visualRect(tree()->tree()->indexOf(item->objectID())).center(); }
    QStringList titlesIn(const Item &item)
    {
        QStringList titles;
        for (const auto &each : item->items()) {
            titles.append(each->title());
        }
        return titles;
    }
    QStringList said()
    {
        QStringList texts;
        for (const auto *bubble : window().findChildren<ZQNotificationBubble *>()) {
            if (bubble->isVisible()) {
                texts.append(bubble->text());
            }
        }
        return texts;
    }

    std::unique_ptr<PromisedImports> promised;
};

} // namespace

TEST_F(PromisedDrag, AFileIsSavedByTheOtherProgramAndImportedWhereItWasDropped)
{
    const auto onRow = drop({"../../b\xc3\xbcro #1.png", picture(30), "S", "https://example.org/page\r\n"},
                            *tree()->viewport(), middleOf(b));
    EXPECT_TRUE(onRow->wasTaken());
    EXPECT_EQ(onRow->asked(), 1);
    EXPECT_TRUE(onRow->address().startsWith("file:///") && onRow->address().endsWith("/b%C3%BCro%20%231.png"))
        << onRow->address().constData();
    ASSERT_EQ(titlesIn(b), QStringList{QStringLiteral("büro #1")});
    EXPECT_EQ(b->items().first()->webPageURL(), QStringLiteral("https://example.org/page"));

    const auto onGrid = drop({"grid.png", picture(31), "S"}, *grid().viewport(), grid().viewport()->rect().center());
    EXPECT_EQ(onGrid->asked(), 1);
    EXPECT_TRUE(titlesIn(a).contains(QStringLiteral("grid")));
    EXPECT_EQ(titlesIn(a).size(), 5);
}

TEST_F(PromisedDrag, NothingIsAskedForWhereADropIsRefused)
{
    const auto onLabel = drop({"one.png", picture(30), "S"}, *tree()->viewport(), middleOf(projects));
    EXPECT_FALSE(onLabel->wasTaken());
    EXPECT_EQ(onLabel->asked(), 0);
    EXPECT_EQ(titlesIn(a).size(), 4);
}

TEST_F(PromisedDrag, AProgramThatCouldNotSaveIsToldOf)
{
    const std::pair<const char *, const char *> programs[] = {{"one.png", "F"}, {"two.png", ""}};
    for (const auto &[name, answer] : programs) {
        const auto source = drop({name, {}, answer}, *tree()->viewport(), middleOf(b));
        EXPECT_EQ(source->asked(), 1);
        const QString text =
            QStringLiteral("The other program did not save “%1”. Save it there as a file, and drop that here.");
        const QString sentence = text.arg(QLatin1StringView(name));
        EXPECT_TRUE(waitFor([&] { return said().contains(sentence); }));
        EXPECT_FALSE(QFileInfo::exists(QFileInfo(QUrl::fromEncoded(source->address()).toLocalFile()).path()));
    }
    EXPECT_TRUE(titlesIn(b).isEmpty());
}

TEST_F(PromisedDrag, TheWindowGoesOnWhileAProgramSaysNothing)
{
    const auto silent = drag({.name = "one.png", .answers = false}, *tree()->viewport(), middleOf(b));
    EXPECT_EQ(silent->asked(), 1);
    EXPECT_EQ(promised->count(), 1) << "the drag is over, and its file awaited";
    const auto other = drag({"two.png", picture(30), "S"}, *tree()->viewport(), middleOf(b));
    EXPECT_TRUE(waitFor([this] { return promised->count() == 1; }));
    settle();
    EXPECT_EQ(titlesIn(b), QStringList{QStringLiteral("two")});
}
