#include "Kit/Persistence/ZQCollator.h"

#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQScalar.h"

#include <QLocale>

#include <unicode/ucol.h>

ZQCollator::ZQCollator(Order order)
{
    static const QByteArray locale = QLocale().language() == QLocale::C ? QByteArray() : QLocale().name().toLatin1();
    UErrorCode status = U_ZERO_ERROR;
    m_collator.reset(ucol_open(locale.constData(), &status));
    if (m_collator) {
        const bool isOfNames = order == Order::OfNames;
        ucol_setAttribute(m_collator.get(), UCOL_NUMERIC_COLLATION, isOfNames ? UCOL_ON : UCOL_OFF, &status);
        ucol_setAttribute(m_collator.get(), UCOL_STRENGTH, isOfNames ? UCOL_TERTIARY : UCOL_SECONDARY, &status);
    }
    if (U_FAILURE(status)) {
        qCWarning(zqLogStore, "No collation for the locale %s: %s", locale.constData(), u_errorName(status));
        m_collator.reset();
    }
}

void ZQCollator::Close::operator()(UCollator *collator) const
{
    ucol_close(collator);
}

int ZQCollator::compare(const QString &a, const QString &b) const
{
    if (!m_collator) {
        return zqCompareByCodePoint(a, b);
    }
    return ucol_strcoll(m_collator.get(), reinterpret_cast<const UChar *>(a.utf16()), static_cast<int32_t>(a.size()),
                        reinterpret_cast<const UChar *>(b.utf16()), static_cast<int32_t>(b.size()));
}

int ZQCollator::compareUTF8(std::string_view a, std::string_view b) const
{
    if (!m_collator) {
        return a.compare(b);
    }
    UErrorCode status = U_ZERO_ERROR;
    // ICU takes no null pointer, not even for an empty text.
    return ucol_strcollUTF8(m_collator.get(), a.empty() ? "" : a.data(), static_cast<int32_t>(a.size()),
                            b.empty() ? "" : b.data(), static_cast<int32_t>(b.size()), &status);
}

void ZQCollator::appendSortKey(const QString &text, std::string &to) const
{
    if (!m_collator) {
        to += text.toStdString();
        return;
    }
    const auto *units = reinterpret_cast<const UChar *>(text.utf16());
    const auto length = static_cast<int32_t>(text.size());
    uint8_t key[512];
    const int32_t size = ucol_getSortKey(m_collator.get(), units, length, key, sizeof key);
    const size_t before = to.size();
    if (size <= int32_t(sizeof key)) {
        to.append(reinterpret_cast<const char *>(key), size_t(size));
        return;
    }
    to.resize(before + size_t(size));
    ucol_getSortKey(m_collator.get(), units, length, reinterpret_cast<uint8_t *>(to.data() + before), size);
}

const ZQCollator &ZQCollator::forThisThread()
{
    thread_local const ZQCollator collator;
    return collator;
}
