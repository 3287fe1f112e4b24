#include "Kit/Files/ZQPropertyList.h"
#include "Kit/Files/ZQPropertyListReader.h"

#include <QtEndian>

#include <bit>
#include <cmath>
#include <vector>

// Read here and not with the library that writes: that one copies shared objects and descends without a limit.
namespace {

constexpr qsizetype trailerSize = 32;
constexpr qsizetype headerSize = 8;

class Reader
{
public:
    explicit Reader(const QByteArray &data) : m_data(data) {}

    std::optional<QVariant> read()
    {
        if (!readTrailer()) {
            return std::nullopt;
        }
        const Object *const top = object(m_top, 0);
        return top ? std::optional(top->value) : std::nullopt;
    }

private:
    struct Object
    {
        enum class State { Unread, Reading, Read };
        State state = State::Unread;
        QVariant value;
        int height = 0;
        qint64 values = 1;
    };

    std::optional<quint64> unsignedAt(qsizetype offset, qsizetype size) const
    {
        if (offset < 0 || size < 1 || size > 16 || offset > m_end - size) {
            return std::nullopt;
        }
        quint64 value = 0;
        for (qsizetype i = 0; i < size; ++i) {
            value = (value << 8) | static_cast<quint8>(m_data.at(offset + i));
        }
        return value;
    }

    bool readTrailer()
    {
        m_end = m_data.size();
        if (m_end < headerSize + trailerSize) {
            return false;
        }
        const qsizetype trailer = m_end - trailerSize;
        m_offsetSize = static_cast<quint8>(m_data.at(trailer + 6));
        m_referenceSize = static_cast<quint8>(m_data.at(trailer + 7));
        const quint64 count = *unsignedAt(trailer + 8, 8);
        m_top = *unsignedAt(trailer + 16, 8);
        const quint64 table = *unsignedAt(trailer + 24, 8);
        m_end = trailer;
        const auto end = static_cast<quint64>(trailer);
        if (m_offsetSize < 1 || m_offsetSize > 8 || m_referenceSize < 1 || m_referenceSize > 8 || table > end ||
            count > (end - table) / static_cast<quint64>(m_offsetSize)) {
            return false;
        }
        m_table = static_cast<qsizetype>(table);
        m_objects.resize(count);
        return true;
    }

    // Each object is read once, however often it is used.
    const Object *object(quint64 index, int depth)
    {
        if (index >= m_objects.size() || depth > ZQPropertyListReader::deepest) {
            return nullptr;
        }
        Object &object = m_objects[index];
        if (object.state == Object::State::Read) {
            return depth + object.height <= ZQPropertyListReader::deepest ? &object : nullptr;
        }
        if (object.state == Object::State::Reading) {
            return nullptr; // it holds itself
        }
        object.state = Object::State::Reading;
        const auto offset = unsignedAt(m_table + static_cast<qsizetype>(index) * m_offsetSize, m_offsetSize);
        if (!offset || *offset >= static_cast<quint64>(m_table) ||
            !fill(object, static_cast<qsizetype>(*offset), depth)) {
            return nullptr;
        }
        object.state = Object::State::Read;
        return &object;
    }

    bool fill(Object &object, qsizetype offset, int depth)
    {
        const auto marker = static_cast<quint8>(m_data.at(offset));
        const int kind = marker >> 4;
        const int low = marker & 0xf;
        if (kind <= 3 || kind == 8) {
            return fillFixed(object, offset + 1, kind, low);
        }
        qsizetype start = offset + 1;
        auto count = static_cast<quint64>(low);
        if (low == 0xf) {
            const auto countMarker = unsignedAt(start, 1);
            if (!countMarker || (*countMarker >> 4) != 1 || (*countMarker & 0xf) > 3) {
                return false;
            }
            const qsizetype size = qsizetype(1) << (*countMarker & 0xf);
            const auto read = unsignedAt(start + 1, size);
            if (!read) {
                return false;
            }
            count = *read;
            start += 1 + size;
        }
        const bool isList = kind == 0xa || kind == 0xc;
        const qsizetype width = isList ? m_referenceSize : kind == 0xd ? 2 * m_referenceSize : kind == 6 ? 2 : 1;
        if (start > m_end || count > static_cast<quint64>((m_end - start) / width)) {
            return false;
        }
        const auto size = static_cast<qsizetype>(count);
        switch (kind) {
        case 4:
            object.value = m_data.mid(start, size);
            return true;
        case 5:
            object.value = QString::fromUtf8(m_data.constData() + start, size);
            return true;
        case 6:
            object.value = wideText(start, size);
            return true;
        case 0xa:
        case 0xc:
            return fillList(object, start, size, depth);
        case 0xd:
            return fillMap(object, start, size, depth);
        default:
            return false;
        }
    }

    bool fillFixed(Object &object, qsizetype start, int kind, int low)
    {
        if (kind == 0) {
            object.value = low == 8 ? QVariant(false) : low == 9 ? QVariant(true) : QVariant();
            return low == 0 || low == 8 || low == 9;
        }
        const qsizetype size = kind == 8 ? low + 1 : low <= 4 ? qsizetype(1) << low : 0;
        const auto bits = unsignedAt(start, size);
        if (!bits) {
            return false;
        }
        if (kind == 1) {
            object.value = static_cast<qlonglong>(*bits);
            return true;
        }
        if (kind == 8) {
            object.value = QVariant::fromValue(ZQPropertyListUID{*bits});
            return true;
        }
        if (size != 4 && size != 8) {
            return false;
        }
        const double number = size == 4 ? static_cast<double>(std::bit_cast<float>(static_cast<quint32>(*bits)))
                                        : std::bit_cast<double>(*bits);
        if (kind == 2) {
            object.value = number;
            return true;
        }
        constexpr double furthest = 1e12; // seconds; some 30 000 years
        if (!(std::abs(number) < furthest)) {
            return false;
        }
        const qint64 milliseconds = std::llround(number * 1000) + ZQPropertyListReader::epoch * 1000;
        object.value = QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC);
        return true;
    }

    QString wideText(qsizetype start, qsizetype size) const
    {
        QString text(size, Qt::Uninitialized);
        for (qsizetype i = 0; i < size; ++i) {
            text[i] = QChar(qFromBigEndian<quint16>(m_data.constData() + start + 2 * i));
        }
        return text;
    }

    const Object *member(Object &owner, qsizetype start, qsizetype position, int depth)
    {
        const auto index = unsignedAt(start + position * m_referenceSize, m_referenceSize);
        const Object *const found = index ? object(*index, depth + 1) : nullptr;
        if (found) {
            owner.height = std::max(owner.height, found->height + 1);
            owner.values += found->values;
        }
        return owner.values <= ZQPropertyListReader::mostValues ? found : nullptr;
    }

    bool fillList(Object &object, qsizetype start, qsizetype size, int depth)
    {
        QVariantList list;
        for (qsizetype i = 0; i < size; ++i) {
            const Object *const one = member(object, start, i, depth);
            if (!one) {
                return false;
            }
            list.append(one->value);
        }
        object.value = list;
        return true;
    }

    bool fillMap(Object &object, qsizetype start, qsizetype size, int depth)
    {
        QVariantMap map;
        for (qsizetype i = 0; i < size; ++i) {
            const Object *const key = member(object, start, i, depth);
            const Object *const value = member(object, start, size + i, depth);
            if (!key || !value || key->value.typeId() != QMetaType::QString) {
                return false;
            }
            map.insert(key->value.toString(), value->value);
        }
        object.value = map;
        return true;
    }

    const QByteArray &m_data;
    qsizetype m_end = 0;
    qsizetype m_table = 0;
    qsizetype m_offsetSize = 0;
    qsizetype m_referenceSize = 0;
    quint64 m_top = 0;
    std::vector<Object> m_objects;
};

} // namespace

std::optional<QVariant> ZQPropertyListReader::binary(const QByteArray &data, QString *problem)
{
    auto value = Reader(data).read();
    if (!value) {
        *problem = QStringLiteral("The binary property list is damaged or nested too deeply.");
    }
    return value;
}
