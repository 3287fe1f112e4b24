#include "Classes/Import/PendingImport.h"

#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQPropertyList.h"
#include "Kit/Files/ZQRegularFile.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Foundation/ZQThreadSafety.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSet>
#include <QUuid>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace {

const QString requestEnding = QStringLiteral(".plist");
const QString sourcesEnding = QStringLiteral(".sources");
constexpr int formatVersion = 1;
constexpr qint64 mebibyte = qint64(1) << 20;
constexpr qint64 requestLimit = 256 * mebibyte;
constexpr qint64 sourcesLimit = 1024 * mebibyte;
constexpr qint64 lineLimit = mebibyte;

struct Active
{
    ZQMutex mutex;
    QSet<QString> paths ZQ_GUARDED_BY(mutex);
};

Active &active()
{
    static Active shared;
    return shared;
}

QString requestPath(const QString &folder, const QString &name)
{
    return folder + u'/' + name + requestEnding;
}

QString sourcesPath(const QString &folder, const QString &name)
{
    return folder + u'/' + name + sourcesEnding;
}

// Property lists know one kind of whole number and one of list.
QVariantMap plain(const QVariantMap &values)
{
    QVariantMap result;
    for (auto value = values.constBegin(); value != values.constEnd(); ++value) {
        switch (value.value().typeId()) {
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::Short:
            result.insert(value.key(), value.value().toLongLong());
            break;
        case QMetaType::QStringList:
            result.insert(value.key(), value.value().toList());
            break;
        default:
            result.insert(value.key(), value.value());
        }
    }
    return result;
}

QVariantMap valuesOf(const PendingImport &request)
{
    QVariantList groups;
    for (const PendingImport::Group &group : request.groups) {
        groups.append(QVariantMap{{QStringLiteral("project"), group.project},
                                  {QStringLiteral("files"), QVariant(group.files).toList()}});
    }
    return {{QStringLiteral("version"), qlonglong(formatVersion)},
            {QStringLiteral("paths"), QVariant(request.paths).toList()},
            {QStringLiteral("target"), request.target},
            {QStringLiteral("index"), qlonglong(request.index)},
            {QStringLiteral("metadata"), plain(request.metadata)},
            {QStringLiteral("archivePath"), request.archivePath},
            {QStringLiteral("archiveRoot"), request.archiveRoot},
            {QStringLiteral("groups"), groups},
            {QStringLiteral("ungrouped"), QVariant(request.ungrouped).toList()},
            {QStringLiteral("duplicates"), request.duplicates},
            {QStringLiteral("fileMetadata"), request.fileMetadata}};
}

PendingImport requestFrom(const QVariantMap &values)
{
    PendingImport request{.paths = values.value(QStringLiteral("paths")).toStringList(),
                          .target = values.value(QStringLiteral("target")).toString(),
                          .index = quint32(values.value(QStringLiteral("index")).toLongLong()),
                          .metadata = values.value(QStringLiteral("metadata")).toMap(),
                          .archivePath = values.value(QStringLiteral("archivePath")).toString(),
                          .archiveRoot = values.value(QStringLiteral("archiveRoot")).toString(),
                          .groups = {},
                          .ungrouped = values.value(QStringLiteral("ungrouped")).toStringList(),
                          .duplicates = values.value(QStringLiteral("duplicates")).toString(),
                          .fileMetadata = values.value(QStringLiteral("fileMetadata")).toMap()};
    const QVariantList groups = values.value(QStringLiteral("groups")).toList();
    for (const QVariant &group : groups) {
        const QVariantMap map = group.toMap();
        request.groups.append(
            {map.value(QStringLiteral("project")).toString(), map.value(QStringLiteral("files")).toStringList()});
    }
    return request;
}

// What came out of an archive is noted by its place in it: the next time it may lie in another folder.
QString placeBelow(const QString &root, const QString &path)
{
    return !root.isEmpty() && path.startsWith(root + u'/') ? path.mid(root.size() + 1) : path;
}

QString pathBelow(const QString &root, const QString &place)
{
    return root.isEmpty() || place.isEmpty() || place.startsWith(u'/') ? place : root + u'/' + place;
}

// Whoever made the library may have put a link or a pipe there: a regular file of that very name, or an error. Nothing
// is read from beyond `limit`.
bool openRegular(QFile &file, int flags, QIODevice::OpenMode mode, qint64 limit, QString *reason = nullptr)
{
    ZQError error;
    ZQFileDescriptor opened = zqOpenRegularFile(file.fileName(), flags | O_NOFOLLOW, &error);
    struct stat status = {};
    const bool isOurs = opened.isOpen() && ::fstat(opened.get(), &status) == 0 && status.st_size <= limit;
    if (isOurs && file.open(opened.get(), mode, QFileDevice::AutoCloseHandle)) {
        opened.release();
        return true;
    }
    if (reason) {
        *reason = error.domain == ZQError::posixDomain ? qt_error_string(error.code)
                                                       : zqLocalized("it is no file that an import would leave");
    }
    return false;
}

bool isAnythingAt(const QString &path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 || errno != ENOENT;
}

// A line that a cut, a full disk or a short write left open would swallow the next one.
bool endsInALine(QFile &file)
{
    return file.size() == 0 || (file.seek(file.size() - 1) && file.read(1) == "\n");
}

// A line of the list that is no source.
enum class Mark { None, NextSave, GoingOn, LookedThrough };

Mark markOf(const QByteArray &line, const QJsonArray &values)
{
    const QByteArray text = line.trimmed();
    if (text.isEmpty()) {
        return Mark::NextSave;
    }
    return text == "[]" ? Mark::GoingOn : values.size() == 1 ? Mark::LookedThrough : Mark::None;
}

QByteArray lastLine(QFile &file)
{
    constexpr qint64 longestMark = 32;
    file.seek(std::max<qint64>(0, file.size() - longestMark));
    const QByteArray end = file.read(longestMark).trimmed();
    return end.mid(end.lastIndexOf('\n') + 1);
}

ZQError unwritable(const QFile &file, const QString &reason)
{
    return ZQError::with(QStringLiteral("zelto.import"), 5,
                         zqFormat(zqLocalized("What was imported cannot be noted in %@: %@."),
                                  {file.fileName(), reason.isEmpty() ? file.errorString() : reason}),
                         zqLocalized("Free some space there and look at its permissions."));
}

} // namespace

QStringList PendingImportFile::cutOff(const QString &folder)
{
    QStringList names;
    const QStringList files = QDir(folder).entryList({u'*' + requestEnding}, QDir::Files, QDir::Name);
    Active &current = active();
    const ZQLockGuard lock(current.mutex);
    for (const QString &file : files) {
        const QString name = file.chopped(requestEnding.size());
        if (!current.paths.contains(requestPath(folder, name))) {
            names.append(name);
        }
    }
    return names;
}

QDateTime PendingImportFile::beginning(const QString &name)
{
    return QDateTime::fromMSecsSinceEpoch(name.section(u'-', 0, 0).toLongLong(), Qt::UTC);
}

bool PendingImportFile::forget(const QString &folder, const QString &name)
{
    // A request without its list of sources would be imported a second time: a power cut must not bring it back after
    // the list has gone.
    if (!QFile::remove(requestPath(folder, name))) {
        return false;
    }
    zqSyncFolder(folder);
    QFile::remove(sourcesPath(folder, name));
    return true;
}

void PendingImportFile::removeRemains(const QString &folder)
{
    static const QRegularExpression sourcesName(
        QStringLiteral("\\A([0-9]+-[0-9a-f]{8}(?:-[0-9a-f]{4}){3}-[0-9a-f]{12})\\.sources\\z"));
    static const QRegularExpression halfWrittenName(QStringLiteral("\\A\\.zelto-[0-9a-z]+\\z"));
    const QStringList files = QDir(folder).entryList(QDir::Files | QDir::Hidden);
    Active &current = active();
    const ZQLockGuard lock(current.mutex);
    for (const QString &file : files) {
        const auto sources = sourcesName.match(file);
        const QString request = requestPath(folder, sources.captured(1));
        const bool isOfNone = sources.hasMatch() && !QFileInfo::exists(request) && !current.paths.contains(request);
        const bool isHalfWritten = halfWrittenName.match(file).hasMatch() && current.paths.isEmpty();
        if (isOfNone || isHalfWritten) {
            QFile::remove(folder + u'/' + file);
        }
    }
}

PendingImportFile::PendingImportFile(const QString &folder, const QString &name, PendingImport request)
    : m_folder(folder), m_name(name), m_request(std::move(request))
{
    Active &current = active();
    const ZQLockGuard lock(current.mutex);
    current.paths.insert(requestPath(m_folder, m_name));
}

PendingImportFile::~PendingImportFile()
{
    Active &current = active();
    const ZQLockGuard lock(current.mutex);
    current.paths.remove(requestPath(m_folder, m_name));
}

std::shared_ptr<PendingImportFile> PendingImportFile::create(const QString &folder, const PendingImport &request,
                                                             ZQError *error)
{
    zqMakeFolder(folder);
    const QString name = QStringLiteral("%1-%2").arg(QString::number(QDateTime::currentMSecsSinceEpoch()),
                                                     QUuid::createUuid().toString(QUuid::WithoutBraces));
    std::shared_ptr<PendingImportFile> file(new PendingImportFile(folder, name, request));
    return file->setRequest(request, error) ? file : nullptr;
}

std::shared_ptr<PendingImportFile> PendingImportFile::open(const QString &folder, const QString &name, ZQError *error)
{
    QFile input(requestPath(folder, name));
    const auto values = openRegular(input, O_RDONLY, QIODevice::ReadOnly, requestLimit)
                            ? ZQPropertyList::fromData(input.read(requestLimit), error)
                            : std::nullopt;
    const QVariantMap map = values.value_or(QVariant()).toMap();
    if (map.value(QStringLiteral("version")).toInt() != formatVersion) {
        zqSetError(error, ZQError::with(QStringLiteral("zelto.import"), 3,
                                        zqFormat(zqLocalized("What is left of an import cannot be read: %@."),
                                                 {input.fileName()}),
                                        zqLocalized("Import the missing files again, and remove that file.")));
        return nullptr;
    }
    return std::shared_ptr<PendingImportFile>(new PendingImportFile(folder, name, requestFrom(map)));
}

bool PendingImportFile::write(ZQError *error)
{
    const auto data = ZQPropertyList::toBinary(valuesOf(m_request), error);
    return data && zqWriteFileAtomically(requestPath(m_folder, m_name), *data, error);
}

PendingImport PendingImportFile::request() const
{
    const ZQLockGuard lock(m_writing);
    return m_request;
}

bool PendingImportFile::setRequest(const PendingImport &request, ZQError *error)
{
    const ZQLockGuard lock(m_writing);
    if (m_isRemoved) {
        return true; // cancelled meanwhile, on another thread: it is not to come back
    }
    const PendingImport before = std::exchange(m_request, request);
    const bool isWritten = write(error);
    if (!isWritten) {
        m_request = before;
    }
    return isWritten;
}

bool PendingImportFile::moveArchive(const QString &root, const QString &folder, ZQError *error)
{
    PendingImport moved = request();
    const QString before = std::exchange(moved.archiveRoot, root);
    moved.paths = {folder};
    for (PendingImport::Group &group : moved.groups) {
        for (QString &file : group.files) {
            file = pathBelow(root, placeBelow(before, file));
        }
    }
    return setRequest(moved, error);
}

bool PendingImportFile::addSources(const QList<Source> &sources, ZQError *error)
{
    const ZQLockGuard lock(m_writing);
    QByteArray lines;
    for (const Source &source : sources) {
        const QJsonArray line{source.bundleID, placeBelow(m_request.archiveRoot, source.path),
                              placeBelow(m_request.archiveRoot, source.movedPath), source.movedModification};
        lines += QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n';
    }
    if (lines.isEmpty() || m_isRemoved) {
        return true;
    }
    QFile file(sourcesPath(m_folder, m_name));
    QString reason;
    if (openRegular(file, O_RDWR | O_CREAT | O_APPEND, QIODevice::ReadWrite | QIODevice::Append, sourcesLimit,
                    &reason)) {
        if (file.size() > 0) { // the empty line tells this save from the one before
            lines.prepend(endsInALine(file) ? "\n" : "\n\n");
        }
        if (file.write(lines) == lines.size() && file.flush()) {
            return true;
        }
    }
    zqSetError(error, unwritable(file, reason));
    return false;
}

std::optional<QList<PendingImportFile::Source>> PendingImportFile::sources(ZQError *error) const
{
    QList<Source> sources;
    QFile file(sourcesPath(m_folder, m_name));
    if (!isAnythingAt(file.fileName())) {
        return sources; // nothing was about to be saved yet
    }
    const QString root = request().archiveRoot;
    QString reason;
    if (!openRegular(file, O_RDONLY, QIODevice::ReadOnly, sourcesLimit, &reason)) {
        zqSetError(error, ZQError::with(QStringLiteral("zelto.import"), 6,
                                        zqFormat(zqLocalized("What was imported cannot be read from %@: %@."),
                                                 {file.fileName(), reason}),
                                        zqLocalized("Look at its permissions.")));
        return std::nullopt;
    }
    while (!file.atEnd()) {
        const QByteArray line = file.readLine(lineLimit);
        const QJsonArray values = QJsonDocument::fromJson(line).array(); // empty for a line that was cut off
        if (values.size() == 4) {
            sources.append({values.at(0).toString(), pathBelow(root, values.at(1).toString()),
                            pathBelow(root, values.at(2).toString()), values.at(3).toInteger()});
        }
    }
    return sources;
}

PendingImportFile::Traces PendingImportFile::traces(const QString &folder, const QString &name,
                                                    const QSet<QString> &bundleIDs)
{
    Traces traces{.since = beginning(name), .saved = {}};
    QFile file(sourcesPath(folder, name));
    if (!isAnythingAt(file.fileName())) {
        return traces; // nothing was about to be saved yet
    }
    if (!openRegular(file, O_RDONLY, QIODevice::ReadOnly, sourcesLimit)) {
        return {};
    }
    QSet<QString> ofOneSave;
    bool isLookedThrough = false;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine(lineLimit);
        const QJsonArray values = QJsonDocument::fromJson(line).array();
        const Mark mark = markOf(line, values);
        const QString bundleID = values.size() == 4 ? values.at(0).toString() : QString();
        if (bundleIDs.contains(bundleID)) {
            ofOneSave.insert(bundleID);
        }
        if (mark == Mark::NextSave) {
            traces.saved += ofOneSave; // or the import would have ended there
        }
        if (mark != Mark::None) {
            ofOneSave.clear(); // a process that was killed may not have come to save them
        }
        if (mark == Mark::LookedThrough) {
            traces.since = std::max(*traces.since, QDateTime::fromMSecsSinceEpoch(values.at(0).toInteger(), Qt::UTC));
        }
        isLookedThrough = mark == Mark::LookedThrough;
    }
    if (isLookedThrough) {
        traces.since.reset();
    }
    return traces;
}

void PendingImportFile::noteLookedThrough(const QString &folder, const QString &name, const QDateTime &launch)
{
    QFile file(sourcesPath(folder, name));
    if (!openRegular(file, O_RDWR | O_CREAT | O_APPEND, QIODevice::ReadWrite | QIODevice::Append, sourcesLimit)) {
        return;
    }
    const QByteArray last = lastLine(file);
    if (markOf(last, QJsonDocument::fromJson(last).array()) != Mark::LookedThrough) {
        file.write((endsInALine(file) ? "[" : "\n[") + QByteArray::number(launch.toMSecsSinceEpoch()) + "]\n");
    }
}

void PendingImportFile::noteGoingOn()
{
    QFile file(sourcesPath(m_folder, m_name));
    if (openRegular(file, O_RDWR | O_APPEND, QIODevice::ReadWrite | QIODevice::Append, sourcesLimit)) {
        file.write(endsInALine(file) ? "[]\n" : "\n[]\n");
    }
}

bool PendingImportFile::narrow(const PendingImport &rest, ZQError *error)
{
    if (!setRequest(rest, error)) {
        return false;
    }
    QFile::remove(sourcesPath(m_folder, m_name));
    return true;
}

void PendingImportFile::remove()
{
    const ZQLockGuard lock(m_writing);
    m_isRemoved = true;
    forget(m_folder, m_name);
}
