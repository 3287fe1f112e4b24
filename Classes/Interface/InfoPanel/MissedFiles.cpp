#include "Classes/Interface/InfoPanel/MissedFiles.h"

#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {
constexpr auto untilSure = 1s;
} // namespace

MissedFiles::MissedFiles(QObject *parent) : QObject(parent)
{
    m_missed.setSingleShot(true);
    m_missed.setInterval(untilSure);
    connect(&m_missed, &QTimer::timeout, this, [this] {
        m_isSure = true;
        Q_EMIT becameSure();
    });
}

SelectionSummary MissedFiles::settled(SelectionSummary found, const SelectionSummary &shown, bool isSame)
{
    const bool isSure = std::exchange(m_isSure, false) || !isSame;
    if (isSure || found.missing <= shown.missing) {
        m_missed.stop();
        return found;
    }
    if (!m_missed.isActive()) {
        m_missed.start();
    }
    found.missing = shown.missing;
    found.bytes = shown.bytes;
    return found;
}
