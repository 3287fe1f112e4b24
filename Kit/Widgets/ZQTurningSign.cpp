#include "Kit/Widgets/ZQTurningSign.h"

#include "Kit/Widgets/ZQTheme.h"

#include <chrono>

using namespace std::chrono_literals;

ZQTurningSign::ZQTurningSign(QObject *parent) : QObject(parent)
{
    m_timer.setInterval(50ms);
    connect(&m_timer, &QTimer::timeout, this, &ZQTurningSign::turned);
    m_since.start();
}

void ZQTurningSign::setInView(bool isInView)
{
    const bool turns = isInView && ZQTheme::current().animationMilliseconds() > 0;
    if (turns == m_timer.isActive()) {
        return;
    }
    if (turns) {
        m_timer.start();
    } else {
        m_timer.stop();
    }
}

double ZQTurningSign::degrees() const
{
    constexpr qint64 wholeTurn = 1600; // milliseconds
    return m_timer.isActive() ? double(m_since.elapsed() % wholeTurn) * 360 / double(wholeTurn) : 0;
}
