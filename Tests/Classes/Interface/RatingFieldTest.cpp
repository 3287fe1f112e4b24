#include "Classes/Interface/RatingField.h"

#include <QImage>

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
