#include "Classes/Interface/Browser/ColorWheelMenu.h"

#include "Classes/Browsing/Search/ColorArgument.h"
#include "Classes/Browsing/Search/SearchToken.h"
#include "Classes/Interface/Browser/ColorWheel.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQWindowPlace.h"

#include <QBoxLayout>
#include <QLabel>
#include <QSlider>

#include <algorithm>

namespace {
constexpr int restMilliseconds = 60;
constexpr int usualTolerance = 10; // hundredths of the way from black to white
constexpr int greatestTolerance = 40;
constexpr int lightest = 255;
} // namespace

ColorWheelMenu::ColorWheelMenu(QWidget *parent)
    : QFrame(parent, Qt::Popup), m_wheel(new ColorWheel(this)), m_name(new QLabel(this))
{
    setObjectName(QStringLiteral("FacetMenu"));
    setAttribute(Qt::WA_DeleteOnClose);
    setAccessibleName(zqLocalized("Find a color"));
    m_name->setObjectName(QStringLiteral("SmallMuted"));
    m_name->setAlignment(Qt::AlignCenter);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(12, 12, 12, 12);
    column->setSpacing(6);
    column->addWidget(m_wheel, 0, Qt::AlignCenter);
    column->addWidget(m_name);
    m_value = addSlider(zqLocalized("Lightness"), lightest, m_wheel->value());
    m_tolerance = addSlider(zqLocalized("How far it may be"), greatestTolerance, usualTolerance);
    m_rest.setSingleShot(true);
    m_rest.setInterval(restMilliseconds);
    connect(&m_rest, &QTimer::timeout, this, &ColorWheelMenu::search);
    connect(m_value, &QSlider::valueChanged, m_wheel, &ColorWheel::setValue);
    connect(m_wheel, &ColorWheel::changed, this, &ColorWheelMenu::change);
    connect(m_tolerance, &QSlider::valueChanged, this, &ColorWheelMenu::change);
    m_name->setText(m_wheel->color().name());
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

void ColorWheelMenu::change()
{
    m_name->setText(m_wheel->color().name());
    if (!m_rest.isActive()) {
        m_rest.start();
    }
}

void ColorWheelMenu::search()
{
    const QString color = ColorArgument::textFor(m_wheel->color().rgb());
    const int tolerance = m_tolerance->value();
    const QString token = SearchToken::ofField(SearchField::Color).name() + u' ' +
                          (tolerance == usualTolerance ? color : ColorArgument::textFor(color, tolerance));
    if (token != m_searched) { // the same once more would take it away
        m_searched = token;
        Q_EMIT chosen(token);
    }
}
