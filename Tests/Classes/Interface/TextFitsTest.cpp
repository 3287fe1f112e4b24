// Everything scales together, so that what fits at one size does at each.

#include "Classes/Interface/TextScale.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"

#include <QAbstractButton>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QStyleOptionButton>

TEST(TextScale, IsWhatIsWantedWithinReason)
{
    const struct
    {
        qint64 percent;
        int fontDPI;
        double factor;
    } cases[] = {{0, 0, 1},     {100, 0, 1},  {200, 0, 2}, {125, 96, 1.25}, {100, 192, 2}, {0, 144, 1.5},
                 {200, 192, 3}, {5000, 0, 1}, {-20, 0, 1}, {50, 48, 0.5},   {100, -5, 1},  {150, 192, 3}};
    for (const auto &each : cases) {
        EXPECT_DOUBLE_EQ(TextScale::factor(each.percent, each.fontDPI), each.factor)
            << each.percent << ' ' << each.fontDPI;
    }
}

TEST(TextScale, IsSaidToQtAndToNobodyAfterwards)
{
    constexpr const char *variable = "QT_SCALE_FACTOR";
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    defaults.setObjectForKey(200, QStringLiteral("TextScale"));
    {
        const TextScale scale;
        EXPECT_EQ(qgetenv(variable), "2");
    }
    EXPECT_FALSE(qEnvironmentVariableIsSet(variable));
    qputenv(variable, "1.5");
    {
        const TextScale scale;
        EXPECT_EQ(qgetenv(variable), "1.5") << "somebody wants it so";
    }
    EXPECT_EQ(qgetenv(variable), "1.5");
    qunsetenv(variable);
    defaults.removeObjectForKey(QStringLiteral("TextScale"));
}

namespace {

class TextFitsTest : public MainWindowFixture
{
protected:
    // Texts that have less room than they take, and no tool tip with the whole.
    static QStringList cut(const QWidget &window)
    {
        QStringList found;
        for (const QWidget *widget : window.findChildren<QWidget *>()) {
            if (!widget->isVisible()) {
                continue;
            }
            if (const auto *label = qobject_cast<const QLabel *>(widget); label && !label->text().isEmpty()) {
                const int height =
                    label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height();
                const int width = label->wordWrap() ? 0 : label->sizeHint().width();
                note(found, *label, label->text(), {width, height});
            } else if (const auto *button = qobject_cast<const QAbstractButton *>(widget);
                       button && !button->text().isEmpty()) {
                note(found, *button, button->text(), button->minimumSizeHint());
            }
        }
        return found;
    }

private:
    static void note(QStringList &found, const QWidget &widget, const QString &text, const QSize &needed)
    {
        const bool fits = needed.width() <= widget.width() && needed.height() <= widget.height();
        if (!fits && !widget.toolTip().contains(text)) {
            found.append(QStringLiteral("%1: “%2” takes %3 × %4 of %5 × %6")
                             .arg(QLatin1StringView(widget.metaObject()->className()), text)
                             .arg(needed.width())
                             .arg(needed.height())
                             .arg(widget.width())
                             .arg(widget.height()));
        }
    }
};

} // namespace

TEST_F(TextFitsTest, NoTextOfTheWindowIsCut)
{
    show(a);
    EXPECT_EQ(cut(window()).join(u'\n'), QString());
}
