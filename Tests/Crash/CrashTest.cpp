// Kills the program (SIGKILL) at random moments of an import and of a purge, starts it again and looks at what is left:
// the store opens, every item has its file, nothing of the temporary area is lost, leftovers go, the same import
// completes. Imports that were cut off go on by `import --resume` and end with every file in exactly once. A kill that
// came before there was anything to interrupt, or after it was done, proves nothing: too many of those are a failure.
//
// zelto_crash_test ZELTO COUNT [SEED]

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QSet>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <functional>

namespace {

constexpr int copiedFiles = 24;
constexpr int movedFiles = 12;
constexpr int manyFiles = 1100; // saved in several parts

QString digestOf(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? QString::fromLatin1(hash.result().toHex())
                                                                 : QString();
}

// Noise, so that every file has its own digest and some weight.
void writePicture(const QString &path, QRandomGenerator &random, int width = 160, int height = 120)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        random.fillRange(reinterpret_cast<quint32 *>(image.scanLine(y)), image.width());
    }
    image.save(path, "PNG");
}

// One redirected world with its library.
class World
{
public:
    explicit World(const QString &zelto)
        : m_zelto(zelto), m_folder(QCoreApplication::applicationDirPath() + QStringLiteral("/crash-XXXXXX"))
    {
        for (const char *name : {"data", "config", "run", "tmp", "input"}) {
            QDir().mkpath(path(QLatin1String(name)));
        }
        QFile::setPermissions(path(QStringLiteral("run")), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    QString path(const QString &name) const { return m_folder.filePath(name); }
    QString library() const { return path(QStringLiteral("Test.ztlibrary")); }
    QString temporaryArea() const { return path(QStringLiteral("tmp/ZeltoTemporaryFolder/t.pictures")); }

    std::unique_ptr<QProcess> start(const QStringList &arguments) const
    {
        auto process = std::make_unique<QProcess>();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_DATA_HOME"), path(QStringLiteral("data")));
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), path(QStringLiteral("config")));
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), path(QStringLiteral("run")));
        environment.insert(QStringLiteral("TMPDIR"), path(QStringLiteral("tmp")));
        environment.insert(QStringLiteral("HOME"), path(QStringLiteral("data")));
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        process->setProcessEnvironment(environment);
        process->start(m_zelto, QStringList{QStringLiteral("--library"), library()} + arguments);
        process->waitForStarted();
        return process;
    }

    // Runs to the end; the answer is standard output.
    QByteArray run(const QStringList &arguments, int *status) const
    {
        const auto process = start(arguments);
        process->waitForFinished(120000);
        *status = process->exitStatus() == QProcess::NormalExit ? process->exitCode() : -1;
        m_lastErrors = process->readAllStandardError();
        return process->readAllStandardOutput();
    }
    QByteArray lastErrors() const { return m_lastErrors; }

private:
    QString m_zelto;
    QTemporaryDir m_folder;
    mutable QByteArray m_lastErrors;
};

class CrashTest
{
public:
    CrashTest(const QString &zelto, quint32 seed) : m_world(zelto), m_random(seed) {}

    bool round(int number)
    {
        makeInput();
        switch (number % 4) {
        case 2:
            killPurge();
            break;
        case 3:
            return killsManyAndResumes();
        default:
            killDuring(importArguments());
        }
        return nothingLost() && opensAgain() && isSound() && resumes() && importsAgain();
    }

    // Whether enough of the kills came in the midst of what they were to interrupt.
    bool didInterrupt(int rounds) const
    {
        std::printf("%d of %d kills interrupted an import, %d of %d a purge\n", m_imports.interrupted, m_imports.kills,
                    m_purges.interrupted, m_purges.kills);
        constexpr int enoughToTell = 8; // rounds
        return rounds < enoughToTell || (m_imports.isEnough() && m_purges.isEnough());
    }

    void measure()
    {
        makeInput();
        const auto process = m_world.start(importArguments());
        QElapsedTimer timer;
        timer.start();
        waitForWork(*process, [this] { return isImportPending(); });
        m_startMilliseconds = quint32(std::max<qint64>(20, timer.restart()));
        process->waitForFinished(120000);
        m_milliseconds = quint32(std::max<qint64>(20, timer.elapsed()));
    }

private:
    struct Kills
    {
        int kills = 0;
        int interrupted = 0;
        bool isEnough() const { return interrupted > 0 && interrupted * 4 >= kills; }
    };

    // `traceOfWork` is what the work leaves behind until it is done.
    static void kill(QProcess &process, const std::function<bool()> &traceOfWork, Kills &kills)
    {
        process.kill();
        process.waitForFinished();
        ++kills.kills;
        kills.interrupted += process.exitStatus() == QProcess::CrashExit && traceOfWork() ? 1 : 0;
    }
    static void waitForWork(QProcess &process, const std::function<bool()> &traceOfWork)
    {
        while (process.state() == QProcess::Running && !traceOfWork()) {
            process.waitForFinished(1);
        }
    }
    bool isImportPending() const
    {
        return !QDir(m_world.library() + QStringLiteral("/pending-imports"))
                    .entryList({QStringLiteral("*.plist")}, QDir::Files)
                    .isEmpty();
    }
    bool isPurgeNoted() const { return QFile::exists(m_world.library() + QStringLiteral("/pending-removals")); }

    QStringList importArguments() const
    {
        return {QStringLiteral("import"),   QStringLiteral("--duplicates"),
                QStringLiteral("discard"),  m_world.path(QStringLiteral("input")),
                m_world.temporaryArea(),    QStringLiteral("--into"),
                QStringLiteral("PROJECTS"), QStringLiteral("--json")};
    }

    void makeInput()
    {
        const auto fill = [&](const QString &folder, int count) {
            QDir(folder).removeRecursively();
            QDir().mkpath(folder);
            for (int i = 0; i < count; ++i) {
                writePicture(folder + QStringLiteral("/picture %1.png").arg(i), m_random);
            }
        };
        fill(m_world.path(QStringLiteral("input")), copiedFiles);
        fill(m_world.temporaryArea(), movedFiles);
        m_temporary = digestsBelow(m_world.temporaryArea());
        m_lastImport = m_temporary + digestsBelow(m_world.path(QStringLiteral("input")));
    }

    static QSet<QString> digestsBelow(const QString &folder)
    {
        QSet<QString> digests;
        QDirIterator files(folder, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            digests.insert(digestOf(files.next()));
        }
        return digests;
    }

    void killDuring(const QStringList &arguments)
    {
        const auto process = m_world.start(arguments);
        if (m_random.bounded(4) == 0) {
            QThread::msleep(m_random.bounded(m_startMilliseconds));
        } else {
            waitForWork(*process, [this] { return isImportPending(); });
            QThread::msleep(m_random.bounded(m_milliseconds));
        }
        kill(
            *process, [this] { return isImportPending(); }, m_imports);
    }

    // Kills an import of many files, then, twice, what goes on with it.
    bool killsManyAndResumes()
    {
        const QString folder = m_world.path(QStringLiteral("many"));
        QDir(folder).removeRecursively();
        QDir().mkpath(folder);
        for (int i = 0; i < manyFiles; ++i) {
            writePicture(folder + QStringLiteral("/picture %1.png").arg(i), m_random, 8, 6);
        }
        m_lastImport = digestsBelow(folder); // nothing else is imported in this round
        const QStringList arguments{QStringLiteral("import"), folder, QStringLiteral("--json")};
        for (const QStringList &command : {arguments, resumeArguments(), resumeArguments()}) {
            const auto process = m_world.start(command);
            if (command == arguments) {
                waitForWork(*process, [this] { return isImportPending(); });
            }
            QThread::msleep(m_random.bounded(2 * m_milliseconds + m_startMilliseconds));
            kill(
                *process, [this] { return isImportPending(); }, m_imports);
        }
        if (!resumes() || !isSound()) {
            return false;
        }
        return isInExactlyOnce(m_lastImport, itemsByDigest()); // it had begun when it was killed
    }

    static QStringList resumeArguments()
    {
        return {QStringLiteral("import"), QStringLiteral("--resume"), QStringLiteral("--json")};
    }

    bool resumes()
    {
        const QDir pending(m_world.library() + QStringLiteral("/pending-imports"));
        const bool isPending = isImportPending();
        int status = 0;
        m_world.run(resumeArguments(), &status);
        if (status != 0 || !pending.entryList(QDir::Files).isEmpty()) {
            return complain(QStringLiteral("the import did not go on"));
        }
        return !isPending || m_lastImport.isEmpty() || isInExactlyOnce(m_lastImport, itemsByDigest());
    }

    bool isInExactlyOnce(const QSet<QString> &wanted, const QHash<QString, int> &counts)
    {
        for (const QString &digest : wanted) {
            if (counts.value(digest) != 1) {
                return complain(
                    QStringLiteral("a file is %1 times in the library after --resume").arg(counts.value(digest)));
            }
        }
        return true;
    }

    QHash<QString, int> itemsByDigest()
    {
        int status = 0;
        const QJsonArray items =
            QJsonDocument::fromJson(m_world.run({QStringLiteral("items"), QStringLiteral("--json")}, &status)).array();
        QHash<QString, int> counts;
        for (const QJsonValue &item : items) {
            ++counts[item.toObject().value(QStringLiteral("SHA1")).toString()];
        }
        return counts;
    }

    void killPurge()
    {
        int status = 0;
        m_world.run(importArguments(), &status);
        const QJsonArray items =
            QJsonDocument::fromJson(m_world.run({QStringLiteral("items"), QStringLiteral("--json")}, &status)).array();
        QStringList arguments{QStringLiteral("delete")};
        for (const QJsonValue &item : items) {
            if (m_random.bounded(2) == 0) {
                arguments.append(item.toObject().value(QStringLiteral("bundleID")).toString());
            }
        }
        m_world.run(arguments, &status);
        m_temporary.clear(); // imported, and partly deleted on purpose
        m_lastImport.clear();
        const auto process = m_world.start({QStringLiteral("purge")});
        if (m_random.bounded(4) == 0) {
            QThread::msleep(m_random.bounded(150U));
        } else {
            waitForWork(*process, [this] { return isPurgeNoted(); }); // it is about to save
            QThread::usleep(m_random.bounded(20000U));
        }
        kill(
            *process, [this] { return isPurgeNoted(); }, m_purges);
    }

    bool complain(const QString &what)
    {
        std::fprintf(stderr, "FAILED: %s\n%s\n", qPrintable(what), m_world.lastErrors().constData());
        return false;
    }

    bool nothingLost()
    {
        QSet<QString> found =
            digestsBelow(m_world.temporaryArea()) + digestsBelow(m_world.library() + QStringLiteral("/Library"));
        const QSet<QString> lost = m_temporary - found;
        return lost.isEmpty() ||
               complain(QStringLiteral("%1 files of the temporary area are nowhere").arg(lost.size()));
    }

    // Starts the window, waits until it serves, ends it politely.
    bool opensAgain()
    {
        const auto window = m_world.start({});
        QElapsedTimer timer;
        timer.start();
        bool isServing = false;
        while (!isServing && timer.elapsed() < 60000 && window->state() == QProcess::Running) {
            QThread::msleep(700); // past the moment the window gives itself before it starts work
            int status = 0;
            m_world.run({QStringLiteral("sidebar"), QStringLiteral("--json")}, &status);
            isServing = status == 0 && window->state() == QProcess::Running;
        }
        QThread::msleep(300);
        window->terminate();
        if (!window->waitForFinished(30000)) {
            window->kill();
            return complain(QStringLiteral("the window did not end"));
        }
        return (isServing && window->exitCode() == 0) || complain(QStringLiteral("the window did not open: ") +
                                                                  QString::fromUtf8(window->readAllStandardError()));
    }

    bool isSound()
    {
        QJsonObject report;
        for (int attempt = 0; attempt < 50; ++attempt) { // leftovers are removed by a process of their own
            int status = 0;
            report = QJsonDocument::fromJson(
                         m_world.run({QStringLiteral("verify"), QStringLiteral("--deep"), QStringLiteral("--json")},
                                     &status))
                         .object();
            if (status == 0 && report.value(QStringLiteral("orphans")).toArray().isEmpty()) {
                return true;
            }
            QThread::msleep(100);
        }
        return complain(QStringLiteral("verify: ") + QString::fromUtf8(QJsonDocument(report).toJson()));
    }

    bool importsAgain()
    {
        int status = 0;
        QDir().mkpath(m_world.temporaryArea());
        const QJsonObject report = QJsonDocument::fromJson(m_world.run(importArguments(), &status)).object();
        if (status != 0) {
            return complain(QStringLiteral("the second import failed"));
        }
        const QJsonArray items =
            QJsonDocument::fromJson(m_world.run({QStringLiteral("items"), QStringLiteral("--json")}, &status)).array();
        QSet<QString> digests;
        for (const QJsonValue &item : items) {
            digests.insert(item.toObject().value(QStringLiteral("SHA1")).toString());
        }
        // What a purge removed was removed on purpose; the files that can be imported again are those of the input
        // folder.
        const QSet<QString> missing = digestsBelow(m_world.path(QStringLiteral("input"))) + m_temporary - digests;
        return missing.isEmpty() ||
               complain(QStringLiteral("%1 files are not in the library after the second import").arg(missing.size()));
    }

    World m_world;
    QRandomGenerator m_random;
    quint32 m_startMilliseconds = 0; // until an import has begun
    quint32 m_milliseconds = 0;      // from there to its end
    Kills m_imports;
    Kills m_purges;
    QSet<QString> m_temporary;
    QSet<QString> m_lastImport;
};

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() < 3) {
        std::fprintf(stderr, "usage: zelto_crash_test ZELTO COUNT [SEED]\n");
        return 2;
    }
    const int count = arguments.at(2).toInt();
    const quint32 seed = arguments.size() > 3 ? arguments.at(3).toUInt() : 20260101U;
    CrashTest test(QFileInfo(arguments.at(1)).absoluteFilePath(), seed);
    test.measure();
    for (int i = 0; i < count; ++i) {
        if (!test.round(i)) {
            std::fprintf(stderr, "round %d of %d, seed %u\n", i, count, seed);
            return 1;
        }
    }
    if (!test.didInterrupt(count)) {
        std::fprintf(stderr, "FAILED: too few of the kills interrupted anything, seed %u\n", seed);
        return 1;
    }
    std::printf("%d rounds: the store opened, every item had its file, nothing was lost\n", count);
    return 0;
}
