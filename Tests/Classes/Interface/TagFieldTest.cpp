#include "Classes/Interface/TagField.h"

#include <QApplication>
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
