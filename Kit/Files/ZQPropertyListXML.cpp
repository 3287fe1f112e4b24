#include "Kit/Files/ZQPropertyListReader.h"

#include <QXmlStreamReader>

namespace {

class Reader
{
public:
    explicit Reader(const QByteArray &data) : m_xml(data) {}

    std::optional<QVariant> read()
    {
        if (!m_xml.readNextStartElement()) {
            return std::nullopt;
        }
        std::optional<QVariant> value;
        if (m_xml.name() == u"plist") {
            if (!m_xml.readNextStartElement()) {
                return std::nullopt;
            }
            value = element(0);
            m_xml.readNextStartElement() ? fail("It holds more than one value.") : void();
        } else {
            value = element(0);
        }
        return m_xml.hasError() ? std::nullopt : value;
    }

    QString problem() const { return QStringLiteral("%1 (line %2)").arg(m_xml.errorString()).arg(m_xml.lineNumber()); }

private:
    void fail(const char *why) { m_xml.raiseError(QString::fromLatin1(why)); }

    std::optional<QVariant> checked(bool isRight, const QVariant &value)
    {
        if (!isRight) {
            fail("A value cannot be read.");
            return std::nullopt;
        }
        return value;
    }

    std::optional<QVariant> element(int depth)
    {
        const QString name = m_xml.name().toString();
        if (depth > ZQPropertyListReader::deepest || ++m_values > ZQPropertyListReader::mostValues) {
            fail("It is nested too deeply.");
            return std::nullopt;
        }
        if (name == u"dict") {
            return map(depth);
        }
        if (name == u"array") {
            return list(depth);
        }
        const QString text = m_xml.readElementText();
        bool isRight = true;
        if (name == u"string") {
            return text;
        }
        if (name == u"true" || name == u"false") {
            return name == u"true";
        }
        if (name == u"integer") {
            const QString digits = text.trimmed();
            const qlonglong number = digits.toLongLong(&isRight, (digits.startsWith(u"0x") ? 16 : 10));
            return isRight ? QVariant(number)
                           : checked(digits.toULongLong(&isRight) > 0 && isRight,
                                     static_cast<qlonglong>(digits.toULongLong()));
        }
        if (name == u"real") {
            const double number = text.trimmed().toDouble(&isRight);
            return checked(isRight, number);
        }
        if (name == u"date") {
            const QDateTime date = QDateTime::fromString(text.trimmed(), Qt::ISODateWithMs).toUTC();
            return checked(date.isValid(), date);
        }
        if (name == u"data") {
            QByteArray digits = text.toLatin1();
            digits = digits.simplified().replace(' ', "");
            const auto decoded = QByteArray::fromBase64Encoding(digits, QByteArray::AbortOnBase64DecodingErrors);
            return checked(bool(decoded), decoded.decoded);
        }
        return checked(false, {});
    }

    std::optional<QVariant> list(int depth)
    {
        QVariantList list;
        while (m_xml.readNextStartElement()) {
            const auto value = element(depth + 1);
            if (!value) {
                return std::nullopt;
            }
            list.append(*value);
        }
        return list;
    }

    std::optional<QVariant> map(int depth)
    {
        QVariantMap map;
        while (m_xml.readNextStartElement()) {
            if (m_xml.name() != u"key") {
                fail("A value has no key.");
                return std::nullopt;
            }
            const QString key = m_xml.readElementText();
            if (!m_xml.readNextStartElement()) {
                fail("A key has no value.");
                return std::nullopt;
            }
            const auto value = element(depth + 1);
            if (!value) {
                return std::nullopt;
            }
            map.insert(key, *value);
        }
        return map;
    }

    QXmlStreamReader m_xml;
    qint64 m_values = 0;
};

} // namespace

std::optional<QVariant> ZQPropertyListReader::xml(const QByteArray &data, QString *problem)
{
    Reader reader(data);
    auto value = reader.read();
    if (!value) {
        *problem = reader.problem();
    }
    return value;
}
