#include "Kit/Imaging/ZQRenderProtocol.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <limits>
#include <sys/socket.h>
#include <sys/uio.h>

namespace {

constexpr quint32 requestMark = 0x5a515251;
constexpr quint32 answerMark = 0x5a515241;
constexpr size_t mostDescriptors = 2;
constexpr qsizetype longestText = 4096;
constexpr qint32 mostKeywords = 1000;
constexpr qsizetype mostDurations = 5000;
constexpr int highestResolution = 1'000'000; // dots per inch
constexpr int longestDuration = 3600'000;    // milliseconds
constexpr int highestSystemError = 4095;

// Of a rectangle whose ends are numbers, too.
bool isSide(qint64 from, qint64 size)
{
    using Numbers = std::numeric_limits<int>;
    return size >= 0 && from > Numbers::min() && from + size <= Numbers::max();
}

class Writer
{
public:
    void number(qint32 value) { m_bytes.append(reinterpret_cast<const char *>(&value), sizeof value); }
    void real(double value) { m_bytes.append(reinterpret_cast<const char *>(&value), sizeof value); }
    void text(const QString &value)
    {
        const QByteArray utf8 = value.toUtf8().left(longestText);
        number(qint32(utf8.size()));
        m_bytes.append(utf8);
    }
    QByteArray bytes() const { return m_bytes; }
    qsizetype size() const { return m_bytes.size(); }

private:
    QByteArray m_bytes;
};

// Answers zeros and empty texts past the end, and remembers that it did.
class Reader
{
public:
    explicit Reader(const QByteArray &bytes) : m_bytes(bytes) {}

    qint32 number() { return value<qint32>(); }
    double real() { return value<double>(); }

    // One line, whatever was sent.
    QString line()
    {
        QString value = text();
        value.removeIf([](QChar c) { return c.category() == QChar::Other_Control; });
        return value;
    }

    QString text()
    {
        const qint32 length = number();
        if (length < 0 || length > longestText || m_at + length > m_bytes.size()) {
            m_failed = true;
            return {};
        }
        const QString value = QString::fromUtf8(m_bytes.constData() + m_at, length);
        m_at += length;
        return value;
    }

    bool isComplete() const { return !m_failed && m_at == m_bytes.size(); }

private:
    template <class Value>
    Value value()
    {
        Value out = 0;
        if (m_at + qsizetype(sizeof out) > m_bytes.size()) {
            m_failed = true;
            return 0;
        }
        std::memcpy(&out, m_bytes.constData() + m_at, sizeof out);
        m_at += qsizetype(sizeof out);
        return out;
    }

    const QByteArray &m_bytes;
    qsizetype m_at = 0;
    bool m_failed = false;
};

void writeProperties(Writer &writer, const ZQImageProperties &properties)
{
    for (const int value :
         {properties.pixelWidth, properties.pixelHeight, properties.orientation, properties.bitsPerSample,
          properties.dpi, properties.frameCount, int(properties.hasAlpha), int(properties.isVector)}) {
        writer.number(value);
    }
    writer.text(properties.colorModel);
    const auto durations = properties.frameDurations.first(qMin(properties.frameDurations.size(), mostDurations));
    writer.number(qint32(durations.size()));
    for (const int duration : durations) {
        writer.number(duration);
    }
    Writer keywords;
    qint32 count = 0;
    for (const QString &keyword : properties.keywords) {
        if (count == mostKeywords || writer.size() + keywords.size() + longestText + 8 > zqRenderMaximumMessage) {
            break;
        }
        keywords.text(keyword);
        ++count;
    }
    writer.number(count);
    for (qint32 i = 0; i < count; ++i) {
        writer.text(properties.keywords.at(i));
    }
}

ZQImageProperties readProperties(Reader &reader)
{
    ZQImageProperties out;
    for (int *value :
         {&out.pixelWidth, &out.pixelHeight, &out.orientation, &out.bitsPerSample, &out.dpi, &out.frameCount}) {
        *value = reader.number();
    }
    out.hasAlpha = reader.number() != 0;
    out.isVector = reader.number() != 0;
    out.colorModel = reader.line();
    const qint32 durationCount = reader.number();
    for (qint32 i = 0; i < qMin(durationCount, qint32(mostDurations)); ++i) {
        out.frameDurations.append(qBound(1, reader.number(), longestDuration));
    }
    out.frameCount = qMin(out.frameCount, zqRenderMostFrames);
    out.frameDurations.resize(qMin(out.frameDurations.size(), qsizetype(qMax(out.frameCount, 0))));
    out.dpi = qBound(0, out.dpi, highestResolution);
    const qint32 count = reader.number();
    for (qint32 i = 0; i < qMin(count, mostKeywords); ++i) {
        const QString keyword = reader.line();
        if (!keyword.isEmpty()) {
            out.keywords.append(keyword);
        }
    }
    return out;
}

bool arePlausible(const ZQImageProperties &properties)
{
    static const QStringList models{QStringLiteral("RGB"), QStringLiteral("Gray"), QStringLiteral("CMYK"),
                                    QStringLiteral("Lab")};
    const auto isSide = [](int pixels) { return pixels > 0 && pixels <= zqRenderLongestSide; };
    return isSide(properties.pixelWidth) && isSide(properties.pixelHeight) && properties.orientation >= 0 &&
           properties.orientation <= 8 && properties.bitsPerSample > 0 && properties.bitsPerSample <= 128 &&
           properties.frameCount > 0 && models.contains(properties.colorModel);
}

void writeEncoding(Writer &writer, const ZQExportEncoding &encoding)
{
    const ZQExportSize &size = encoding.size;
    for (const int value : {encoding.fileType, int(encoding.quality.has_value()), encoding.quality.value_or(0),
                            int(size.percentage.has_value()), int(size.size.has_value())}) {
        writer.number(value);
    }
    for (const double value :
         {size.percentage.value_or(0), size.size.value_or(QSizeF()).width(), size.size.value_or(QSizeF()).height()}) {
        writer.real(value);
    }
}

ZQExportEncoding readEncoding(Reader &reader)
{
    ZQExportEncoding out;
    out.fileType = reader.number();
    const bool hasQuality = reader.number() != 0;
    const int quality = reader.number();
    const bool hasPercentage = reader.number() != 0;
    const bool hasSize = reader.number() != 0;
    const double percentage = reader.real();
    const double width = reader.real();
    const double height = reader.real();
    out.quality = hasQuality ? std::optional(quality) : std::nullopt;
    out.size.percentage = hasPercentage ? std::optional(percentage) : std::nullopt;
    out.size.size = hasSize ? std::optional(QSizeF(width, height)) : std::nullopt;
    return out;
}

bool isPossibleSize(QSize size)
{
    return size.width() > 0 && size.height() > 0 && size.width() <= zqRenderMaximumPixels / size.height();
}

bool isPossible(const ZQRenderAnswer &answer)
{
    using Kind = ZQRenderAnswer::Kind;
    if (answer.hasProperties && !arePlausible(answer.properties)) {
        return false;
    }
    switch (answer.kind) {
    case Kind::Hello:
        return true;
    case Kind::Properties:
        return arePlausible(answer.properties);
    case Kind::PixelsInArea:
        return isPossibleSize(answer.size) &&
               qsizetype(answer.size.width()) * answer.size.height() * 4 <= zqRenderAreaBytes;
    case Kind::PixelsInFile:
    case Kind::Exported:
    case Kind::PlanesInFile:
        return isPossibleSize(answer.size);
    case Kind::CannotWrite:
        return answer.systemError > 0 && answer.systemError <= highestSystemError;
    case Kind::BytesInFile:
        return true; // the file says how many
    case Kind::Error:
        return answer.code >= ZQImagingErrorCode::CannotRead && answer.code <= ZQImagingErrorCode::TooMuchMemory;
    }
    return false;
}

} // namespace

QByteArray zqEncode(const ZQRenderRequest &request)
{
    Writer writer;
    for (const qint32 value : {qint32(requestMark), qint32(request.kind), request.box.width(), request.box.height(),
                               request.frame, qint32(request.withProperties)}) {
        writer.number(value);
    }
    writer.text(request.name);
    if (request.kind == ZQRenderRequest::Kind::Export) {
        writeEncoding(writer, request.encoding);
    }
    if (request.kind == ZQRenderRequest::Kind::Planes) {
        const QRect &window = request.window;
        for (const int value : {window.x(), window.y(), window.width(), window.height()}) {
            writer.number(value);
        }
    }
    return writer.bytes();
}

std::optional<ZQRenderRequest> zqDecodeRequestMessage(const QByteArray &message)
{
    Reader reader(message);
    const quint32 mark = quint32(reader.number());
    ZQRenderRequest out;
    out.kind = ZQRenderRequest::Kind(reader.number());
    out.box.setWidth(reader.number());
    out.box.setHeight(reader.number());
    out.frame = reader.number();
    out.withProperties = reader.number() != 0;
    out.name = reader.text();
    if (out.kind == ZQRenderRequest::Kind::Export) {
        out.encoding = readEncoding(reader);
    }
    if (out.kind == ZQRenderRequest::Kind::Planes) {
        const int x = reader.number();
        const int y = reader.number();
        const int width = reader.number();
        const int height = reader.number();
        if (!isSide(x, width) || !isSide(y, height)) {
            return std::nullopt;
        }
        out.window = QRect(x, y, width, height);
    }
    return mark == requestMark && reader.isComplete() ? std::optional(out) : std::nullopt;
}

QByteArray zqEncode(const ZQRenderAnswer &answer)
{
    Writer writer;
    for (const qint32 value :
         {qint32(answerMark), qint32(answer.kind), answer.size.width(), answer.size.height(), qint32(answer.code),
          qint32(answer.hasThumbnailer), qint32(answer.restrictsFiles), qint32(answer.restrictsCalls),
          qint32(answer.isIncomplete), qint32(answer.isFirstOfSeveral), qint32(answer.isReduced),
          qint32(answer.hasProperties)}) {
        writer.number(value);
    }
    writer.text(answer.reason);
    writeProperties(writer, answer.properties);
    if (answer.kind == ZQRenderAnswer::Kind::CannotWrite) {
        writer.number(answer.systemError);
    }
    return writer.bytes();
}

std::optional<ZQRenderAnswer> zqDecodeAnswerMessage(const QByteArray &message)
{
    Reader reader(message);
    const quint32 mark = quint32(reader.number());
    ZQRenderAnswer out;
    out.kind = ZQRenderAnswer::Kind(reader.number());
    out.size.setWidth(reader.number());
    out.size.setHeight(reader.number());
    out.code = ZQImagingErrorCode(reader.number());
    out.hasThumbnailer = reader.number() != 0;
    out.restrictsFiles = reader.number() != 0;
    out.restrictsCalls = reader.number() != 0;
    out.isIncomplete = reader.number() != 0;
    out.isFirstOfSeveral = reader.number() != 0;
    out.isReduced = reader.number() != 0;
    out.hasProperties = reader.number() != 0;
    out.reason = reader.line();
    out.properties = readProperties(reader);
    if (out.kind == ZQRenderAnswer::Kind::CannotWrite) {
        out.systemError = reader.number();
    }
    return mark == answerMark && reader.isComplete() && isPossible(out) ? std::optional(out) : std::nullopt;
}

bool zqSendMessage(int socket, const QByteArray &message, int descriptor, int second)
{
    iovec part{const_cast<char *>(message.constData()), size_t(message.size())};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int) * mostDescriptors)> control{};
    const std::array<int, mostDescriptors> descriptors{descriptor, second};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    if (descriptor >= 0) {
        header.msg_control = control.data();
        const size_t bytes = sizeof(int) * (second >= 0 ? 2 : 1);
        header.msg_controllen = CMSG_SPACE(bytes);
        cmsghdr *const rights = CMSG_FIRSTHDR(&header);
        rights->cmsg_level = SOL_SOCKET;
        rights->cmsg_type = SCM_RIGHTS;
        rights->cmsg_len = CMSG_LEN(bytes);
        std::memcpy(CMSG_DATA(rights), descriptors.data(), bytes);
    }
    ssize_t sent = 0;
    do {
        sent = ::sendmsg(socket, &header, MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent == message.size();
}

ZQRenderMessage zqReceiveMessage(int socket)
{
    ZQRenderMessage out;
    std::array<char, zqRenderMaximumMessage> bytes; // most messages are short
    iovec part{bytes.data(), bytes.size()};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int) * mostDescriptors)> control{};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    header.msg_control = control.data();
    header.msg_controllen = CMSG_LEN(sizeof(int) * mostDescriptors); // the system closes what does not fit
    ssize_t got = 0;
    do {
        got = ::recvmsg(socket, &header, MSG_CMSG_CLOEXEC);
    } while (got < 0 && errno == EINTR);
    const cmsghdr *const rights = got >= 0 ? CMSG_FIRSTHDR(&header) : nullptr;
    if (rights && rights->cmsg_level == SOL_SOCKET && rights->cmsg_type == SCM_RIGHTS) {
        std::array<int, mostDescriptors> descriptors{-1, -1};
        std::memcpy(descriptors.data(), CMSG_DATA(rights), qMin(rights->cmsg_len - CMSG_LEN(0), sizeof descriptors));
        out.descriptor = ZQFileDescriptor(descriptors[0]);
        out.second = ZQFileDescriptor(descriptors[1]);
    }
    const bool whole = got > 0 && !(header.msg_flags & MSG_TRUNC);
    out.bytes = whole ? QByteArray(bytes.data(), qsizetype(got)) : QByteArray();
    return out;
}
