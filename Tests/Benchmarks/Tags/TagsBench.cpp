// Writes and reads the tags of many files as the application does, and prints seconds by name.
//
// zelto_tags_bench FOLDER COUNT

#include "Classes/Tags/DesktopMirror.h"
#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/OpenMetaBackup.h"
#include "Classes/Tags/TagFileJournal.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQUserDefaults.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <cstdio>
#include <functional>
#include <utility>

namespace {

void measure(const char *name, const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    std::printf("%s %.4f\n", name, double(timer.nsecsElapsed()) / 1e9);
}

bool makeFiles(const QStringList &paths)
{
    for (const QString &path : paths) {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly)) {
            std::fprintf(stderr, "%s can't be made\n", qPrintable(path));
            return false;
        }
    }
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int count = arguments.value(2).toInt();
    if (arguments.size() != 3 || count < 1 || !QDir().mkpath(arguments.at(1))) {
        std::fprintf(stderr, "zelto_tags_bench FOLDER COUNT\n");
        return 2;
    }
    ZQUserDefaults::standardUserDefaults().registerDefaults({{DesktopMirror::preferenceKey, true}});
    QStringList paths;
    for (int i = 0; i < count; ++i) {
        paths.append(arguments.at(1) + u'/' + QString::number(i) + QStringLiteral(".png"));
    }
    if (!makeFiles(paths)) {
        return 2;
    }
    const auto readAll = [&paths] {
        for (const QString &path : paths) {
            OpenMeta::getUserTags(path);
        }
    };
    TagFileJournal journal(arguments.at(1) + QStringLiteral("/pending-tags"));
    TagFileWriter &writer = TagFileWriter::sharedTagFileWriter();
    const auto writeAll = [&](const QString &tag) {
        for (const QString &path : paths) {
            TagFileWriter::Merge merge;
            merge.path = path;
            merge.library = {{tag}, {}, 0};
            merge.willTouch = [&journal, line = journal.willWrite(path)] { journal.bringToDisk(line); };
            merge.done = [&journal](const QString &written) { journal.didWrite(written); };
            writer.mergeWithFile(std::move(merge));
        }
        writer.waitUntilAllWritten();
        journal.didSave();
    };
    measure("read-untagged", readAll);
    measure("write", [&] { writeAll(QStringLiteral("logo")); });
    measure("backup", [] { OpenMetaBackup::waitUntilAllWritten(); });
    measure("write-again", [&] { writeAll(QStringLiteral("logo")); });
    measure("change", [&] { writeAll(QStringLiteral("brand")); });
    OpenMetaBackup::waitUntilAllWritten();
    measure("read-tagged", readAll);
    OpenMetaBackup::waitUntilAllWritten();
    return 0;
}
