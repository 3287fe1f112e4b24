#include "Classes/Interface/RatingField.h"

#include "Kit/Widgets/ZQTheme.h"

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QtTest/QTest>

#include <gtest/gtest.h>

namespace {

QImage picture(RatingField &field)
{
    field.resize(field.sizeHint());
    return field.grab().toImage();
}

} // namespace

TEST(RatingField, SaysThatRatingsDifferAndDoesNotLookUnrated)
{
    RatingField field;
    const QImage unrated = picture(field);
    EXPECT_TRUE(field.text().isEmpty());
    field.setRating(5, true);
    EXPECT_EQ(field.text(), QStringLiteral("Multiple values"));
    EXPECT_EQ(field.accessibleName(), QStringLiteral("Rating: Multiple values"));
    EXPECT_GT(field.sizeHint().width(), field.fontMetrics().horizontalAdvance(field.text()));
    EXPECT_NE(picture(field), unrated);
    field.setRating(0, false);
    EXPECT_TRUE(field.text().isEmpty());
    EXPECT_EQ(picture(field), unrated);
}

TEST(RatingField, PointerAndKeysGiveStars)
{
    QWidget window;
    RatingField field(&window);
    field.resize(field.sizeHint());
    window.show();
    QList<double> told;
    QObject::connect(&field, &RatingField::edited, [&](double rating) { told.append(rating); });
    struct Click
    {
        int x;
        double after;
    };
    // Stars stand at 8, 28, 48, 68, 88; half-way between two the right one begins.
    for (const Click &each : {Click{8, 1}, {28, 2}, {18, 2}, {17, 1}, {38, 3}, {37, 2}, {88, 5}, {140, 5}, {97, 5}}) {
        field.setRating(0, false);
        QTest::mouseClick(&field, Qt::LeftButton, {}, {each.x, 12});
        EXPECT_EQ(field.rating(), each.after) << each.x;
    }
    field.setLayoutDirection(Qt::RightToLeft);
    for (const Click &each : {Click{8, 1}, {18, 2}, {17, 1}, {88, 5}}) {
        field.setRating(0, false);
        QTest::mouseClick(&field, Qt::LeftButton, {}, {field.width() - each.x, 12});
        EXPECT_EQ(field.rating(), each.after) << each.x << " from the right";
    }
    field.setRating(3, false);
    EXPECT_EQ(picture(field).pixelColor(field.width() - 48, 12), zqColor(ZQColorRole::Accent));
    EXPECT_NE(picture(field).pixelColor(field.width() - 68, 12), zqColor(ZQColorRole::Accent));
    QTest::keyClick(&field, Qt::Key_Left);
    EXPECT_EQ(field.rating(), 4) << "the key goes where it points";
    field.setLayoutDirection(Qt::LeftToRight);
    field.setRating(5, false);
    told.clear();
    QTest::mouseClick(&field, Qt::LeftButton, {}, {88, 12});
    EXPECT_EQ(field.rating(), 0) << "the last one again takes all away";
    QTest::mouseClick(&field, Qt::RightButton, {}, {28, 12});
    EXPECT_EQ(told, QList<double>{0});
    field.setRating(3, true);
    QTest::mouseClick(&field, Qt::LeftButton, {}, {48, 12});
    EXPECT_EQ(field.rating(), 3) << "those that differ become one";
    struct Press
    {
        double before;
        Qt::Key key;
        double after;
    };
    for (const Press &each : {Press{0, Qt::Key_5, 5},
                              {3, Qt::Key_0, 0},
                              {3, Qt::Key_6, 3},
                              {3, Qt::Key_Right, 4},
                              {5, Qt::Key_Right, 5},
                              {2.5, Qt::Key_Right, 3},
                              {2.5, Qt::Key_Left, 2},
                              {0, Qt::Key_Left, 0},
                              {2, Qt::Key_X, 2}}) {
        field.setRating(each.before, false);
        told.clear();
        QTest::keyClick(&field, each.key);
        EXPECT_EQ(field.rating(), each.after) << int(each.key);
        EXPECT_EQ(told.size(), each.before == each.after ? 0 : 1) << int(each.key);
        EXPECT_EQ(field.accessibleName(), QStringLiteral("Rating: %1 of 5").arg(each.after));
    }
    field.setRating(2, false);
    QTest::keyClick(&field, Qt::Key_4, Qt::ControlModifier);
    EXPECT_EQ(field.rating(), 2);
    field.setRating(9, false);
    EXPECT_EQ(field.rating(), 5);
    field.setRating(-1, false);
    EXPECT_EQ(field.rating(), 0);
    EXPECT_EQ(field.focusPolicy(), Qt::StrongFocus);
    EXPECT_TRUE(field.hasMouseTracking());
}

TEST(RatingField, LightsTheStarsThatCount)
{
    QWidget window;
    RatingField field(&window);
    field.resize(field.sizeHint());
    window.show();
    field.clearFocus();
    const auto lit = [&] { // the middles of the stars
        const QImage image = picture(field);
        QString result;
        for (const int x : {6, 10, 26, 30, 46, 50, 66, 70, 86, 90}) {
            result += image.pixelColor(x, 12) == zqColor(ZQColorRole::Accent) ? u'*' : u'.';
        }
        return result.toStdString();
    };
    EXPECT_EQ(lit(), "..........");
    field.setRating(2, false);
    EXPECT_EQ(lit(), "****......");
    field.setRating(2.5, false);
    EXPECT_EQ(lit(), "*****.....");
    const auto hover = [&](int x) {
        QMouseEvent move(QEvent::MouseMove, QPointF(x, 12), field.mapToGlobal(QPointF(x, 12)), Qt::NoButton,
                         Qt::NoButton, {});
        QApplication::sendEvent(&field, &move);
    };
    hover(68);
    EXPECT_EQ(lit(), "********..") << "what a click would give";
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&field, &leave);
    EXPECT_EQ(lit(), "*****.....");
    field.setRating(4, true);
    EXPECT_EQ(field.toolTip(), QStringLiteral("Multiple values"));
    EXPECT_EQ(field.rating(), 0);
    hover(8);
    EXPECT_EQ(field.text(), QString());
    EXPECT_EQ(lit(), "**........");
    QTest::mouseClick(&field, Qt::LeftButton, {}, {28, 12});
    EXPECT_EQ(lit(), "****......");
    EXPECT_EQ(field.toolTip(), QString());
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    field.clearFocus();
    const QImage before = picture(field);
    field.setFocus();
    EXPECT_NE(picture(field), before) << "the focus is seen";
}
