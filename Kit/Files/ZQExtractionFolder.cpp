#include "Kit/Files/ZQExtractionFolder.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QFile>

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr qsizetype longestName = 255; // bytes
constexpr int spareBytes = 256;        // for what is made beside a file later

bool isNoise(const QString &component)
{
    return component == u"__MACOSX" || component == u".DS_Store" || component.startsWith(QStringLiteral("._"));
}

// `base` + `tail`, with as much of `base` as fits into a name.
QString fitting(QString base, const QString &tail)
{
    const qsizetype room = longestName - tail.toUtf8().size();
    while (!base.isEmpty() && base.toUtf8().size() > room) {
        base.chop(base.back().isLowSurrogate() && base.size() > 1 ? 2 : 1);
    }
    return base + tail;
}

// Where the extension begins, dot included; the length when there is none worth keeping.
qsizetype extensionStart(const QString &name)
{
    constexpr qsizetype longestExtension = 16;
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 && name.size() - dot <= longestExtension ? dot : name.size();
}

QString withoutRoot(QString name)
{
    if (name.size() >= 2 && name.at(1) == u':' && name.at(0).isLetter() && name.at(0).unicode() < 0x80) {
        name.remove(0, 2);
    }
    return name;
}

} // namespace

ZQExtractionFolder::Verdict ZQExtractionFolder::components(const QString &name, QStringList *components)
{
    components->clear();
    QString path = withoutRoot(name);
    path.replace(u'\\', u'/');
    path.remove(QChar(u'\0'));
    for (const QString &part : path.split(u'/', Qt::SkipEmptyParts)) {
        if (part == u"..") {
            return Verdict::Outside;
        }
        if (isNoise(part)) {
            return Verdict::Noise;
        }
        if (part != u".") {
            const qsizetype dot = extensionStart(part);
            components->append(part.toUtf8().size() > longestName ? fitting(part.left(dot), part.mid(dot)) : part);
        }
    }
    return components->size() > maximumDepth ? Verdict::TooDeep : Verdict::Fine;
}

ZQExtractionFolder::ZQExtractionFolder(const QString &path)
    : m_path(path), m_root(::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC))
{
}

ZQExtractionFolder::~ZQExtractionFolder()
{
    for (const int descriptor : {m_current, m_root}) {
        if (descriptor >= 0) {
            ::close(descriptor);
        }
    }
}

bool ZQExtractionFolder::canHold(const QStringList &components) const
{
    return m_path.toUtf8().size() + components.join(u'/').toUtf8().size() + spareBytes < PATH_MAX;
}

// The folder's descriptor, which stays this object's; folders on the way are made.
int ZQExtractionFolder::directory(const QStringList &components, ZQError *error)
{
    if (components.isEmpty()) {
        return m_root;
    }
    if (m_current >= 0 && components == m_currentComponents) {
        return m_current;
    }
    int descriptor = m_root;
    for (const QString &component : components) {
        const QByteArray name = QFile::encodeName(component);
        const bool isThere = ::mkdirat(descriptor, name.constData(), 0700) == 0 || errno == EEXIST;
        const int next =
            isThere ? ::openat(descriptor, name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC) : -1;
        const int code = errno;
        if (descriptor != m_root) {
            ::close(descriptor);
        }
        if (next < 0) {
            zqSetError(error,
                       ZQError::posix(code, zqFormat(zqLocalized("The folder “%@” cannot be made"), {component})));
            return -1;
        }
        descriptor = next;
    }
    if (m_current >= 0) {
        ::close(m_current);
    }
    m_current = descriptor;
    m_currentComponents = components;
    return descriptor;
}

bool ZQExtractionFolder::makeFolder(const QStringList &components, ZQError *error)
{
    return directory(components, error) >= 0;
}

int ZQExtractionFolder::makeFile(const QStringList &components, ZQError *error)
{
    const int folder = directory(components.mid(0, components.size() - 1), error);
    if (folder < 0) {
        return -1;
    }
    const QString &wanted = components.last();
    const qsizetype dot = extensionStart(wanted);
    QString name = wanted;
    for (;;) {
        const int descriptor = ::openat(folder, QFile::encodeName(name).constData(),
                                        O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
        if (descriptor >= 0) {
            return descriptor;
        }
        if (errno != EEXIST) {
            zqSetError(error, ZQError::posix(errno, zqFormat(zqLocalized("The file “%@” cannot be made"), {name})));
            return -1;
        }
        int &number = m_nextNumber[components.join(u'/')];
        number = number == 0 ? 1 : number + 1;
        name = fitting(wanted.left(dot), zqFormat(QStringLiteral(" %d%@"), {number, wanted.mid(dot)}));
    }
}
