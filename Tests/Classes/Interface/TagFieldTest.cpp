#include "Classes/Interface/InfoPanel/TagField.h"

#include "Kit/Widgets/ZQTheme.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCompleter>
#include <QLineEdit>
#include <QToolButton>
#include <QtTest/QTest>

#include <gtest/gtest.h>

namespace {

struct TagFieldTest : testing::Test
{
    TagFieldTest()
    {
        field.resize(240, 34);
        field.show();
        edit = field.findChild<QLineEdit *>();
        QObject::connect(&field, &TagField::edited, [this](const QStringList &tags) { edits.append(tags); });
    }
    QList<QToolButton *> removers() const
    {
        QList<QToolButton *> shown = field.findChildren<QToolButton *>();
        shown.removeIf([](const QToolButton *button) { return !button->isVisible(); });
        return shown;
    }
    // What lies over the place to type: it would hide it.
    int covered() const
    {
        int count = 0;
        for (const QToolButton *button : removers()) {
            count += button->parentWidget()->geometry().intersects(edit->geometry());
        }
        return count;
    }

    // Whether the field keeps the keys of undo to itself.
    bool takesUndo() const
    {
        QKeyEvent keys(QEvent::ShortcutOverride, Qt::Key_Z, Qt::ControlModifier);
        keys.ignore();
        QApplication::sendEvent(edit, &keys);
        return keys.isAccepted();
    }

    TagField field;
    QLineEdit *edit;
    QList<QStringList> edits;
};

} // namespace

TEST_F(TagFieldTest, ThePlaceToTypeStaysBesideTheTags)
{
    field.setTags({QStringLiteral("logo")}, false);
    QTest::keyClicks(edit, QStringLiteral("identity"));
    QTest::keyClick(edit, Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_EQ(covered(), 0);
    EXPECT_TRUE(field.rect().contains(edit->geometry()));

    field.setTags({QStringLiteral("a much longer tag"), QStringLiteral("identity"), QStringLiteral("logo")}, true);
    field.resize(240, field.heightForWidth(240));
    QApplication::processEvents();
    EXPECT_EQ(covered(), 0);
    EXPECT_TRUE(field.rect().contains(edit->geometry()));
}

TEST_F(TagFieldTest, TypingAndRemovingTellsAllTags)
{
    QTest::keyClicks(edit, QStringLiteral("logo,"));
    QTest::keyClicks(edit, QStringLiteral(" logo ,brand,")); // the first again
    QTest::keyClick(edit, Qt::Key_Backspace);
    ASSERT_EQ(removers().size(), 1);
    removers().first()->click();
    const QStringList logo = {QStringLiteral("logo")};
    EXPECT_EQ(edits, (QList<QStringList>{logo, logo + QStringList{QStringLiteral("brand")}, logo, {}}));
}

TEST_F(TagFieldTest, UndoTakesBackTypingAndThenIsTheWindows)
{
    QTest::keyClicks(edit, QStringLiteral("logo"));
    EXPECT_TRUE(takesUndo());
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_FALSE(takesUndo()) << "what is to be undone now is the tag";
}

TEST_F(TagFieldTest, ChipsAreAsWideAsTheirTextAndButtonsStandAtTheirEnd)
{
    field.setTags({QStringLiteral("logo")}, true);
    QApplication::processEvents();
    const QFontMetrics metrics(ZQTheme::current().font(ZQMeasure::smallTextSize));
    ASSERT_EQ(removers().size(), 1);
    const QToolButton *button = removers().first();
    const QSize chip = button->parentWidget()->size();
    EXPECT_EQ(chip, QSize(metrics.horizontalAdvance(QStringLiteral("logo")) + 30, 20));
    EXPECT_EQ(button->geometry(), QRect(chip.width() - 18, 2, 16, 16));
    EXPECT_EQ(button->iconSize(), QSize(8, 8));
    EXPECT_EQ(button->accessibleName(), QStringLiteral("Remove the tag logo"));
    EXPECT_EQ(button->parentWidget()->pos(), QPoint(8, 6));
    EXPECT_EQ(edit->geometry().right(), field.width() - 9);
    EXPECT_EQ(edit->minimumWidth(), 70);
    EXPECT_EQ(edit->maximumHeight(), 20);
    const auto at = [this](const QPoint &point) { return field.grab().toImage().pixelColor(point); };
    EXPECT_EQ(at({8 + 3, 16}), zqColor(ZQColorRole::Select));
    EXPECT_EQ(at({8 + chip.width() + 8, 16}), zqColor(ZQColorRole::Raised2)) << "what only some carry";
    field.setTags({QStringLiteral("logo")}, true);
    EXPECT_EQ(removers().first(), button) << "nothing changed";
    field.setTags({QStringLiteral("logo")}, false);
    QApplication::processEvents();
    EXPECT_NE(at({8 + chip.width() + 8, 16}), zqColor(ZQColorRole::Raised2));
}

TEST_F(TagFieldTest, KnownTagsAreOfferedAndTaken)
{
    field.setKnownTags({QStringLiteral("Logo"), QStringLiteral("brand"), QStringLiteral("lozenge")});
    field.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&field));
    edit->setFocus();
    const auto offered = [this] {
        QStringList texts;
        for (int row = 0; edit->completer()->setCurrentRow(row); ++row) {
            texts.append(edit->completer()->currentCompletion());
        }
        return texts.join(u' ').toStdString();
    };
    QTest::keyClicks(edit, QStringLiteral("lo"));
    EXPECT_EQ(offered(), "Logo lozenge");
    QTest::keyClick(edit, Qt::Key_Backspace);
    EXPECT_TRUE(edits.isEmpty()) << "typing is taken back first";
    edit->clear();
    edit->completer()->popup()->hide();
    QTest::keyClick(edit, Qt::Key_Down);
    EXPECT_TRUE(edit->completer()->popup()->isVisible());
    EXPECT_EQ(offered(), "Logo brand lozenge") << "all, in their order";
    Q_EMIT edit->completer()->activated(QStringLiteral("brand"));
    EXPECT_TRUE(edits.isEmpty());
    QApplication::processEvents();
    EXPECT_EQ(edits, QList<QStringList>{{QStringLiteral("brand")}});
    EXPECT_EQ(edit->text(), QString());
    edit->completer()->popup()->hide();
    const auto border = [this] { return field.grab().toImage().pixelColor(field.width() / 2, 0); };
    EXPECT_EQ(border(), zqColor(ZQColorRole::Accent));
    edit->clearFocus();
    EXPECT_EQ(border(), zqColor(ZQColorRole::ControlBorder));
    QTest::keyClick(edit, Qt::Key_Return);
    QTest::keyClicks(edit, QStringLiteral(" ,"));
    EXPECT_EQ(edits.size(), 1) << "nothing was typed";
    QTest::keyClick(edit, Qt::Key_Backspace);
    QTest::keyClick(edit, Qt::Key_Backspace);
    EXPECT_EQ(edits.size(), 2);
}
