#include "Classes/Interface/Sheets/TemplatesSheet.h"
#include "Tests/Classes/Interface/MainWindowTest.h"

#include <QAbstractButton>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QListWidget>
#include <QTest>

namespace {

class TemplatesWindowTest : public MainWindowTest
{
protected:
    void SetUp() override
    {
        MainWindowTest::SetUp();
        directory = delegate->templateDirectory();
    }
    QString drawn(const QString &path)
    {
        QImage picture(30, 20, QImage::Format_RGB32);
        picture.fill(Qt::darkCyan);
        EXPECT_TRUE(picture.save(path, "PNG"));
        return path;
    }
    QListWidget *list() { return window().findChild<QListWidget *>(); }
    QAbstractButton *button(const char *text)
    {
        for (auto *each : window().findChildren<QAbstractButton *>()) {
            if (each->isVisible() && each->text() == QString::fromUtf8(text)) {
                return each;
            }
        }
        return nullptr;
    }
    QStringList titles()
    {
        QStringList found;
        for (int row = 0; list() && row < list()->count(); ++row) {
            found.append(list()->item(row)->text());
        }
        return found;
    }

    QString directory;
};

} // namespace

TEST_F(TemplatesWindowTest, WithoutOneTheSheetSaysHowToGetOneAndTakesFiles)
{
    run(CommandID::NewFromTemplate);
    ASSERT_TRUE(list());
    EXPECT_FALSE(list()->isVisible());
    EXPECT_FALSE(button("New")->isEnabled());
    EXPECT_FALSE(button("Remove")->isEnabled());
    person.files = {drawn(world.filePath(QStringLiteral("Poster.png")))};
    button("Add…")->click();
    ASSERT_TRUE(waitFor([this] { return titles() == QStringList{QStringLiteral("Poster")} && button("New"); }));
    EXPECT_TRUE(button("New")->isEnabled());
    EXPECT_TRUE(QFile::exists(person.files.first()));
    press(Qt::Key_Escape);
    EXPECT_TRUE(waitFor([this] { return !list(); }));
}

TEST_F(TemplatesWindowTest, TheChosenOneBecomesAnAssetOfWhatIsShown)
{
    drawn(directory + QStringLiteral("/Alpha.png.zttemplate"));
    drawn(directory + QStringLiteral("/Beta.zttemplate"));
    show(b);
    press(Qt::Key_N, Qt::ControlModifier | Qt::AltModifier);
    ASSERT_EQ(titles(), (QStringList{QStringLiteral("Alpha"), QStringLiteral("Beta")}));
    press(Qt::Key_Right);
    EXPECT_EQ(list()->currentItem()->text(), QStringLiteral("Beta"));
    press(Qt::Key_Return);
    settle();
    ASSERT_TRUE(image(QStringLiteral("Beta")));
    EXPECT_TRUE(b->containsItem(image(QStringLiteral("Beta")).get()));
    EXPECT_TRUE(QFile::exists(directory + QStringLiteral("/Beta.zttemplate")));

    controller->newFileFromTemplate(); // as when one was handed over
    controller->newFileFromTemplate(); // and another while they are shown
    EXPECT_EQ(window().findChildren<TemplatesSheet *>().size(), 1);
    list()->setCurrentRow(0);
    press(Qt::Key_Return);
    EXPECT_TRUE(waitFor([this] { return image(QStringLiteral("Alpha")) != nullptr; }));
    settle();
}

TEST_F(TemplatesWindowTest, ADoubleClickMakesTheAssetOfWhatIsBelowThePointer)
{
    drawn(directory + QStringLiteral("/Alpha.zttemplate"));
    drawn(directory + QStringLiteral("/Beta.zttemplate"));
    run(CommandID::NewFromTemplate);
    ASSERT_EQ(titles().size(), 2);
    ASSERT_TRUE(list()->isVisible());
    const auto doubleClick = [this](const QPoint &place) {
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, place);
    };
    doubleClick(list()->viewport()->rect().bottomRight() - QPoint(2, 2)); // where there is none
    EXPECT_TRUE(list());
    doubleClick(list()->visualItemRect(list()->item(1)).center());
    EXPECT_TRUE(waitFor([this] { return !list() && image(QStringLiteral("Beta")) != nullptr; }));
    settle();
    EXPECT_FALSE(image(QStringLiteral("Alpha")));
}

TEST_F(TemplatesWindowTest, RemovedOnesAreGoneFromTheFolderAndWhatCannotBeAnAssetCannotBeMade)
{
    drawn(directory + QStringLiteral("/Alpha.zttemplate"));
    QFile other(directory + QStringLiteral("/Words.zttemplate"));
    ASSERT_TRUE(other.open(QIODevice::WriteOnly) && other.write("only words") > 0);
    other.close();
    run(CommandID::NewFromTemplate);
    ASSERT_EQ(titles().size(), 2);
    press(Qt::Key_Right);
    EXPECT_FALSE(button("New")->isEnabled());
    press(Qt::Key_Left);
    EXPECT_TRUE(button("New")->isEnabled());
    press(Qt::Key_Delete);
    EXPECT_EQ(titles(), QStringList{QStringLiteral("Words")});
    EXPECT_EQ(QDir(directory).entryList(QDir::Files), QStringList{QStringLiteral("Words.zttemplate")});
    press(Qt::Key_Escape);
}
