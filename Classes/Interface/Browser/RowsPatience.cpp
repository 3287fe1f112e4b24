#include "Classes/Interface/Browser/RowsPatience.h"

#include <chrono>

namespace {

// Rows of another place go when theirs are late, and only then, so that a quick answer is one change and not two.
constexpr std::chrono::milliseconds untilRowsGo{150};
constexpr std::chrono::milliseconds untilReadingIsSaid{250}; // after they went

} // namespace

RowsPatience::RowsPatience(QObject *parent) : QObject(parent)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &RowsPatience::goOn);
}

void RowsPatience::begin()
{
    if (!m_timer.isActive() && !m_isLong) {
        m_timer.start(untilRowsGo);
    }
}

void RowsPatience::end()
{
    m_timer.stop();
    m_isLong = false;
}

void RowsPatience::goOn()
{
    m_isLong = m_timer.intervalAsDuration() == untilReadingIsSaid;
    if (m_isLong) {
        Q_EMIT becameLong();
    } else {
        m_timer.start(untilReadingIsSaid);
        Q_EMIT rowsAreLate();
    }
}
