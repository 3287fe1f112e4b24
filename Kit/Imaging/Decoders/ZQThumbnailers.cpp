#include "Kit/Imaging/Decoders/ZQThumbnailers.h"

#include "Kit/Imaging/Decoders/ZQChildProcess.h"
#include "Kit/Imaging/Decoders/ZQImageDecoding.h"

#include <QDir>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>

namespace {

constexpr std::chrono::seconds drawingTime{20};

struct Thumbnailer
{
    QString command; // with the field codes %i %u %o %s
    QStringList mimeTypes;
};

// The entries of the "[Thumbnailer Entry]" group. Not an INI file: "%" and ";" and "," mean themselves.
QMap<QString, QString> readEntries(const QString &path)
{
    QMap<QString, QString> entries;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > (1 << 20)) {
        return entries;
    }
    for (const QByteArray &line : file.readAll().split('\n')) {
        const qsizetype equals = line.indexOf('=');
        if (equals > 0) {
            entries.insert(QString::fromUtf8(line.left(equals)).trimmed(),
                           QString::fromUtf8(line.mid(equals + 1)).trimmed());
        }
    }
    return entries;
}

// The desktop asks this program for thumbnails, too; asked by itself, it would ask itself again.
bool isOurs(const QString &command)
{
    return QFileInfo(QProcess::splitCommand(command).value(0)).fileName() == QStringLiteral("zelto");
}

QList<Thumbnailer> registeredThumbnailers()
{
    QList<Thumbnailer> out;
    for (const QString &data : QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation)) {
        const QDir folder(data + QStringLiteral("/thumbnailers"));
        for (const QString &name : folder.entryList({QStringLiteral("*.thumbnailer")}, QDir::Files, QDir::Name)) {
            const QMap<QString, QString> entries = readEntries(folder.filePath(name));
            const QString tried = entries.value(QStringLiteral("TryExec"));
            if (isOurs(entries.value(QStringLiteral("Exec")))) {
                continue;
            }
            if (tried.isEmpty() || !QStandardPaths::findExecutable(tried).isEmpty()) {
                out.append({entries.value(QStringLiteral("Exec")),
                            entries.value(QStringLiteral("MimeType")).split(u';', Qt::SkipEmptyParts)});
            }
        }
    }
    return out;
}

QString commandForType(const QMimeType &type)
{
    for (const Thumbnailer &thumbnailer : registeredThumbnailers()) {
        for (const QString &mime : thumbnailer.mimeTypes) {
            if (type.inherits(mime)) {
                return thumbnailer.command;
            }
        }
    }
    return {};
}

QString filledIn(QString word, const QString &input, const QString &output, int size)
{
    const QMap<QChar, QString> fields{{u'i', input},
                                      {u'u', QUrl::fromLocalFile(input).toString(QUrl::FullyEncoded)},
                                      {u'o', output},
                                      {u's', QString::number(size)},
                                      {u'%', QStringLiteral("%")}};
    QString out;
    for (qsizetype i = 0; i < word.size(); ++i) {
        if (word.at(i) == u'%' && i + 1 < word.size() && fields.contains(word.at(i + 1))) {
            out += fields.value(word.at(++i));
        } else {
            out += word.at(i);
        }
    }
    return out;
}

} // namespace

bool zqHasThumbnailer(const ZQSourceFile &file)
{
    QFile device;
    return file.openIn(device) &&
           !commandForType(QMimeDatabase().mimeTypeForFileNameAndData(file.name(), &device)).isEmpty();
}

ZQBitmap zqThumbnailerPreview(const QString &path, QSize box)
{
    const QMimeType type = QMimeDatabase().mimeTypeForFile(path);
    QStringList words = QProcess::splitCommand(commandForType(type));
    const QTemporaryDir folder;
    if (words.isEmpty() || !folder.isValid()) {
        return {};
    }
    const QString output = folder.filePath(QStringLiteral("preview.png"));
    const int side = qMax(box.width(), box.height());
    for (QString &word : words) {
        word = filledIn(word, path, output, side);
    }
    if (!zqRunDrawingProgram(words.takeFirst(), words, folder.path(), drawingTime)) {
        return {};
    }
    const QSize square(side, side);
    return zqDecodeFile({ZQSourceFile::open(output), square}, nullptr).scaledToFit(box);
}
