#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/Decoders/ZQChildProcess.h"
#include "Kit/Imaging/Decoders/ZQImageDecoding.h"

#include <QFile>
#include <QRectF>
#include <QTemporaryDir>
#include <QtEndian>

#include <cmath>

namespace {

constexpr std::chrono::seconds drawingTime{20};
constexpr qint64 maximumFileSize = qint64(512) << 20;
constexpr qint64 maximumDrawnPixels = qint64(1) << 27;
const QRectF pageOfPlainPostScript(0, 0, 612, 792);

struct Program
{
    QByteArray text;
    QRectF box; // in points; null when there is none
};

// The PostScript of a file that may wrap it with a preview for other systems.
QByteArray postScriptOfFile(const ZQSourceFile &source)
{
    QFile file;
    if (!source.openIn(file) || file.size() > maximumFileSize) {
        return {};
    }
    const QByteArray head = file.peek(12);
    if (!head.startsWith("\xc5\xd0\xd3\xc6") || head.size() < 12) {
        return file.readAll();
    }
    const quint32 offset = qFromLittleEndian<quint32>(head.constData() + 4);
    const quint32 length = qFromLittleEndian<quint32>(head.constData() + 8);
    return file.seek(offset) ? file.read(qMin<qint64>(length, maximumFileSize)) : QByteArray();
}

std::optional<QRectF> boxOfComment(const QByteArray &text, const char *comment)
{
    // The last one counts: "(atend)" at the top sends to the trailer.
    for (qsizetype at = text.lastIndexOf(comment); at >= 0; at = at > 0 ? text.lastIndexOf(comment, at - 1) : -1) {
        const qsizetype from = at + qsizetype(qstrlen(comment));
        const QList<QByteArray> words =
            text.mid(from, 200).split('\n').first().split('\r').first().simplified().split(' ');
        QList<double> numbers;
        for (const QByteArray &word : words) {
            bool isNumber = false;
            const double value = word.toDouble(&isNumber);
            if (isNumber && std::isfinite(value)) {
                numbers.append(value);
            }
        }
        if (numbers.size() >= 4) {
            return QRectF(QPointF(numbers.at(0), numbers.at(1)), QPointF(numbers.at(2), numbers.at(3)));
        }
    }
    return std::nullopt;
}

std::optional<Program> readProgram(const ZQSourceFile &source, ZQError *error)
{
    Program out{postScriptOfFile(source), {}};
    if (out.text.isEmpty()) {
        zqSetError(error, zqDamagedError(source.name()));
        return std::nullopt;
    }
    const bool encapsulated = out.text.left(200).contains("EPSF");
    out.box = boxOfComment(out.text, "%%BoundingBox:").value_or(encapsulated ? QRectF() : pageOfPlainPostScript);
    if (out.box.width() <= 0 || out.box.height() <= 0) {
        zqSetError(error, zqImagingError(ZQImagingErrorCode::Damaged, source.name(),
                                         zqLocalized("Its bounding box is empty.")));
        return std::nullopt;
    }
    return out;
}

QSize sizeOfBox(const QRectF &box)
{
    constexpr double most = 1e6;
    return {int(std::ceil(qMin(box.width(), most))), int(std::ceil(qMin(box.height(), most)))};
}

std::optional<ZQImageProperties> properties(const ZQSourceFile &source, ZQError *error)
{
    const std::optional<Program> program = readProgram(source, error);
    if (!program) {
        return std::nullopt;
    }
    ZQImageProperties out;
    out.pixelWidth = sizeOfBox(program->box).width();
    out.pixelHeight = sizeOfBox(program->box).height();
    out.dpi = 72;
    out.hasAlpha = true;
    out.isVector = true;
    out.colorModel = QStringLiteral("RGB");
    return out;
}

QStringList arguments(const Program &program, QSize size, const QString &input, const QString &output)
{
    const double horizontal = 72.0 * size.width() / program.box.width();
    const double vertical = 72.0 * size.height() / program.box.height();
    const auto number = [](double value) { return QString::number(value, 'f', 4); };
    return {QStringLiteral("-dSAFER"),
            QStringLiteral("-dBATCH"),
            QStringLiteral("-dNOPAUSE"),
            QStringLiteral("-dQUIET"),
            QStringLiteral("-dFIXEDMEDIA"),
            QStringLiteral("-dFirstPage=1"),
            QStringLiteral("-dLastPage=1"),
            QStringLiteral("-dTextAlphaBits=4"),
            QStringLiteral("-dGraphicsAlphaBits=4"),
            QStringLiteral("-sDEVICE=pngalpha"),
            QStringLiteral("-g%1x%2").arg(size.width()).arg(size.height()),
            QStringLiteral("-r%1x%2").arg(number(horizontal), number(vertical)),
            QStringLiteral("-sOutputFile=") + output,
            QStringLiteral("-c"),
            QStringLiteral("<</Install {%1 %2 translate}>> setpagedevice")
                .arg(number(-program.box.left()), number(-program.box.top())),
            QStringLiteral("-f"),
            input};
}

ZQBitmap draw(const Program &program, QSize size, ZQError *error, const QString &name)
{
    if (!zqMayRunDrawingPrograms()) {
        zqSetError(error, zqNoDrawingProgramsError(name));
        return {};
    }
    const QTemporaryDir folder;
    QFile input(folder.filePath(QStringLiteral("in.ps")));
    const QString output = folder.filePath(QStringLiteral("out.png"));
    const bool written = folder.isValid() && input.open(QIODevice::WriteOnly) &&
                         input.write(program.text) == program.text.size() && input.flush();
    if (!written || !zqRunDrawingProgram(QStringLiteral("gs"), arguments(program, size, input.fileName(), output),
                                         folder.path(), drawingTime)) {
        zqSetError(error,
                   zqImagingError(ZQImagingErrorCode::ToolFailed, name,
                                  zqLocalized("Its PostScript can't be drawn; Ghostscript (gs) must be installed.")));
        return {};
    }
    return zqVipsDecoder.decode({ZQSourceFile::open(output), QSize()}, error);
}

ZQBitmap decode(const ZQDecodeRequest &request, ZQError *error)
{
    if (request.frame > 0) {
        zqSetError(error, zqNoSuchFrameError(request.file.name(), request.frame));
        return {};
    }
    const std::optional<Program> program = readProgram(request.file, error);
    if (!program) {
        return {};
    }
    const QSize natural = sizeOfBox(program->box);
    QSize size = zqFittedSize(natural, request);
    if (request.fillBox && !request.isFullSize()) {
        size = natural.scaled(request.box, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    }
    if (!zqCheckSize(request.file.name(), size.width(), size.height(), maximumDrawnPixels, error)) {
        return {};
    }
    return draw(*program, size, error, request.file.name());
}

} // namespace

const ZQDecoder zqPostScriptDecoder{properties, decode};
