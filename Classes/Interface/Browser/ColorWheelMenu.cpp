#include "Classes/Interface/Browser/ColorWheelMenu.h"

#include "Classes/Browsing/Index/PictureConditions.h"
#include "Classes/Browsing/Search/ColorArgument.h"
#include "Classes/Browsing/Search/SearchToken.h"
#include "Classes/Interface/Browser/ColorWheel.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQWindowPlace.h"

#include <QBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QSlider>

#include <algorithm>
#include <utility>

namespace {
constexpr int restMilliseconds = 60;
constexpr int usualTolerance = ColorCondition::usualTolerance;
constexpr int greatestTolerance = 40;
constexpr int lightest = 255;
} // namespace

ColorWheelMenu::ColorWheelMenu(QWidget *parent)
    : QFrame(parent, Qt::Popup), m_wheel(new ColorWheel(this)), m_code(new QLineEdit(this)), m_color(m_wheel->color())
{
    setObjectName(QStringLiteral("FacetMenu"));
    setAttribute(Qt::WA_DeleteOnClose);
    setAccessibleName(zqLocalized("Find a color"));
    m_code->setAlignment(Qt::AlignCenter);
    m_code->setAccessibleName(zqLocalized("The color as a name or a number, such as #3366cc"));
    m_code->setToolTip(m_code->accessibleName());
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(12, 12, 12, 12);
    column->setSpacing(6);
    column->addWidget(m_wheel, 0, Qt::AlignCenter);
    column->addWidget(m_code);
    m_value = addSlider(zqLocalized("Brightness"), lightest, m_wheel->value());
    m_tolerance = addSlider(zqLocalized("Tolerance"), greatestTolerance, usualTolerance);
    m_rest.setSingleShot(true);
    m_rest.setInterval(restMilliseconds);
    connect(&m_rest, &QTimer::timeout, this, &ColorWheelMenu::search);
    connect(m_value, &QSlider::valueChanged, m_wheel, &ColorWheel::setValue);
    connect(m_wheel, &ColorWheel::changed, this, &ColorWheelMenu::turn);
    connect(m_code, &QLineEdit::textEdited, this, &ColorWheelMenu::type);
    connect(m_tolerance, &QSlider::valueChanged, this, [this] { choose(m_color); });
    m_code->setText(m_color.name());
    m_wheel->setFocus();
}

QSlider *ColorWheelMenu::addSlider(const QString &name, int most, int value)
{
    auto *caption = new QLabel(name, this);
    caption->setObjectName(QStringLiteral("Caption"));
    auto *slider = new QSlider(Qt::Horizontal, this);
    slider->setRange(0, most);
    slider->setValue(value);
    slider->setAccessibleName(name);
    caption->setBuddy(slider);
    layout()->addWidget(caption);
    layout()->addWidget(slider);
    return slider;
}

void ColorWheelMenu::popUp(const QWidget &anchor)
{
    adjustSize();
    zqMoveBelow(*this, anchor);
    show();
    m_wheel->setFocus();
}

void ColorWheelMenu::turn()
{
    m_code->setText(m_wheel->color().name());
    choose(m_wheel->color());
}

// The wheel follows, as near as hue, fullness and lightness come; what is searched is what was typed.
void ColorWheelMenu::type(const QString &text)
{
    QString given = text.trimmed();
    if (ColorArgument::isHex(u'#' + given)) {
        given.prepend(u'#');
    } else if (given.isEmpty() || given.front().isDigit()) {
        return; // of a number that is still being typed; by itself it would be that of a main colour
    }
    const auto typed = ColorArgument::of(given);
    if (!typed || !typed->rgb || typed->tolerance) {
        return;
    }
    const QColor color = QColor::fromRgb(*typed->rgb);
    m_wheel->setColor(color);
    const QSignalBlocker blocker(m_value);
    m_value->setValue(m_wheel->value());
    choose(color);
}

void ColorWheelMenu::choose(const QColor &color)
{
    m_color = color;
    if (!m_rest.isActive()) {
        m_rest.start();
    }
}

void ColorWheelMenu::search()
{
    const QString color = ColorArgument::textFor(m_color.rgb());
    const int tolerance = m_tolerance->value();
    const QString token = SearchToken::ofField(SearchField::Color).name() + u' ' +
                          (tolerance == usualTolerance ? color : ColorArgument::textFor(color, tolerance));
    if (token != m_searched) { // the same once more would take it away
        Q_EMIT chosen(token, std::exchange(m_searched, token));
    }
}
