#include "Classes/Services/LaunchAtLogin.h"

#include "Classes/Services/InstalledBy.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQPaths.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

#include <cerrno>
#include <cstdio>

namespace {

const QString fileName = QStringLiteral("org.zelto.Zelto.desktop");
const QString errorDomain = QStringLiteral("zelto.autostart");
constexpr qint64 largest = 64 << 10; // bytes of an entry

// The lines of an entry's own group are between its head and the next one.
struct Entry
{
    QList<QByteArray> lines;
    qsizetype begin = 0;
    qsizetype end = 0;

    explicit Entry(const QByteArray &bytes) : lines(bytes.split('\n'))
    {
        while (!lines.isEmpty() && lines.last().trimmed().isEmpty()) {
            lines.removeLast();
        }
        while (begin < lines.size() && lines[begin].trimmed() != "[Desktop Entry]") {
            ++begin;
        }
        end = begin = std::min<qsizetype>(begin + 1, lines.size());
        while (end < lines.size() && !lines[end].startsWith('[')) {
            ++end;
        }
    }
    bool isEntry() const { return begin > 0 && lines[begin - 1].trimmed() == "[Desktop Entry]"; }

    qsizetype indexOf(const QByteArray &key) const
    {
        for (qsizetype i = begin; i < end; ++i) {
            const qsizetype equals = lines[i].indexOf('=');
            if (equals > 0 && lines[i].left(equals).trimmed() == key) {
                return i;
            }
        }
        return -1;
    }
    QByteArray value(const QByteArray &key) const
    {
        const qsizetype at = indexOf(key);
        return at < 0 ? QByteArray() : lines[at].mid(lines[at].indexOf('=') + 1).trimmed();
    }
    void remove(const QByteArray &key)
    {
        for (qsizetype at = indexOf(key); at >= 0; at = indexOf(key)) {
            lines.removeAt(at);
            --end;
        }
    }
    void set(const QByteArray &key, const QByteArray &value)
    {
        if (const qsizetype at = indexOf(key); at >= 0) {
            lines[at] = key + '=' + value;
        } else {
            lines.insert(end++, key + '=' + value);
        }
    }
    QByteArray bytes() const { return lines.join('\n') + '\n'; }
};

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return !path.isEmpty() && file.open(QIODevice::ReadOnly) ? file.read(largest) : QByteArray();
}

} // namespace

LaunchAtLogin::LaunchAtLogin()
    : LaunchAtLogin({ZQPaths::configHome() + QStringLiteral("/autostart"),
                     QStandardPaths::locate(QStandardPaths::ApplicationsLocation, fileName),
                     QCoreApplication::applicationFilePath(), InstalledBy::isInSandbox()})
{
}

LaunchAtLogin::LaunchAtLogin(Uses uses) : m_uses(std::move(uses)) {}

// A link within the folder is followed. What one leads to elsewhere, as the entry of the menu, is not written for this:
// the file takes the link's place.
QString LaunchAtLogin::path() const
{
    const QFileInfo file(m_uses.autostartFolder + u'/' + fileName);
    const QFileInfo real(file.canonicalFilePath());
    const bool isWithin =
        !real.filePath().isEmpty() && real.path() == QFileInfo(m_uses.autostartFolder).canonicalFilePath();
    return isWithin ? real.filePath() : file.filePath();
}

bool LaunchAtLogin::isOn() const
{
    if (m_uses.isInSandbox) {
        return ZQUserDefaults::standardUserDefaults().boolForKey(grantedKey);
    }
    const Entry entry(contentOf(path()));
    return entry.isEntry() && entry.value("Hidden") != "true" && entry.value("X-GNOME-Autostart-enabled") != "false" &&
           !entry.value("Exec").isEmpty();
}

QString LaunchAtLogin::withoutFields(const QString &exec)
{
    static const QRegularExpression field(QStringLiteral("(?<!%)((?:%%)*)%[fFuUick]"));
    return QString(exec).replace(field, QStringLiteral("\\1")).trimmed();
}

// What Exec says is read twice: escaped as each text of an entry, and quoted within that.
QString LaunchAtLogin::quoted(const QString &path)
{
    static const QRegularExpression plain(QStringLiteral(R"(\A[A-Za-z0-9_./+:,@-]+\z)"));
    QString text = QString(path).replace(u'%', QStringLiteral("%%"));
    if (plain.match(path).hasMatch()) {
        return text;
    }
    static const QRegularExpression special(QStringLiteral(R"((["`$\\]))"));
    text.replace(special, QStringLiteral("\\\\1"));
    text.replace(u'\\', QStringLiteral("\\\\"));
    text.replace(u'\n', QStringLiteral("\\n")).replace(u'\t', QStringLiteral("\\t"));
    return u'"' + text + u'"';
}

// That of the installed program, where that is the one that runs.
QString LaunchAtLogin::exec() const
{
    const QString installed = withoutFields(QString::fromUtf8(Entry(contentOf(m_uses.desktopFile)).value("Exec")));
    const QString found = QStandardPaths::findExecutable(installed);
    const bool isThis =
        !found.isEmpty() && QFileInfo(found).canonicalFilePath() == QFileInfo(m_uses.executable).canonicalFilePath();
    return isThis ? installed : quoted(m_uses.executable);
}

QByteArray LaunchAtLogin::newEntry() const
{
    return "[Desktop Entry]\nType=Application\nName=Zelto\nIcon=org.zelto.Zelto\nTerminal=false\n";
}

QByteArray LaunchAtLogin::turned(const QByteArray &bytes, bool isOn) const
{
    Entry entry(bytes);
    if (!entry.isEntry()) {
        entry = Entry(newEntry());
    }
    entry.remove("X-GNOME-Autostart-enabled");
    entry.remove("Hidden");
    if (isOn) {
        entry.set("Exec", exec().toUtf8());
    } else {
        entry.set("Hidden", "true");
    }
    return entry.bytes();
}

bool LaunchAtLogin::write(bool isOn, ZQError *error) const
{
    const QString file = path();
    const QFileInfo there(file);
    if (!isOn && !there.exists()) {
        return true;
    }
    if (there.exists() && (!there.isFile() || !there.isReadable() || there.size() > largest)) {
        zqSetError(error,
                   ZQError::with(errorDomain, EACCES,
                                 zqFormat(zqLocalized("“%@” can't be read. Remove it, and try again."), {file})));
        return false;
    }
    if (!zqMakeFolder(there.path())) {
        zqSetError(error,
                   ZQError::posix(errno, zqFormat(zqLocalized("The folder “%@” could not be made"), {there.path()})));
        return false;
    }
    const QByteArray bytes = turned(contentOf(file), isOn);
    if (!there.isSymLink()) {
        return zqWriteFileAtomically(file, bytes, error);
    }
    // It leads out of the folder, as to the menu's entry, which is not to be changed: a file of its own takes its
    // place.
    const QString own = file + QStringLiteral(".new");
    if (!zqWriteFileAtomically(own, bytes, error)) {
        return false;
    }
    if (std::rename(QFile::encodeName(own).constData(), QFile::encodeName(file).constData()) != 0) {
        zqSetError(error, ZQError::posix(errno, zqFormat(zqLocalized("“%@” could not be written"), {file})));
        return false;
    }
    return true;
}

void LaunchAtLogin::set(bool isOn, std::function<void(const ZQError &)> done)
{
    if (!m_uses.isInSandbox) {
        ZQError error;
        write(isOn, &error);
        done(error);
        return;
    }
    const QVariantMap options{{QStringLiteral("reason"), zqLocalized("Zelto is there when you have logged in.")},
                              {QStringLiteral("autostart"), isOn},
                              {QStringLiteral("commandline"), QStringList{QStringLiteral("zelto")}},
                              {QStringLiteral("dbus-activatable"), false}};
    m_request.reset(new ZQPortalRequest(
        QStringLiteral("org.freedesktop.portal.Background"), QStringLiteral("RequestBackground"), {QString()}, options,
        [isOn, done = std::move(done)](bool isGranted, const QVariantMap &results, const ZQError &error) {
            const bool holds = isGranted && results.value(QStringLiteral("autostart")).toBool();
            if (isGranted || !isOn) {
                ZQUserDefaults::standardUserDefaults().setObjectForKey(holds, grantedKey);
            }
            done(!error.isNull() || holds == isOn
                     ? error
                     : ZQError::with(errorDomain, EPERM,
                                     zqLocalized("The desktop did not allow it. Its settings say which programs may "
                                                 "start by themselves.")));
        }));
}
