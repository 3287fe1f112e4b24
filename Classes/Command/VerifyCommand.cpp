#include "Classes/Command/Commands.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QDirIterator>
#include <QJsonArray>
#include <QJsonObject>
#include <QSet>

namespace {
struct Findings
{
    qint64 items = 0;
    QStringList problems;
    QStringList orphans;
    QStringList otherNames; // differ from those of items in their letters alone
    QStringList links;
};

void checkItem(ZQLibraryBaseItem &item, bool deep, Findings &findings)
{
    const QString name = item.title() + QStringLiteral(" (") + item.bundleID() + u')';
    const QString path = item.findItemURL();
    if (path.isEmpty() || !QFileInfo::exists(path)) {
        findings.problems.append(zqFormat(zqLocalized("%@: the file is missing"), {name}));
        return;
    }
    const QString thumb = item.thumbName().isEmpty() ? QString() : item.thumbURL();
    if (!thumb.isEmpty() && !QFileInfo::exists(thumb)) {
        findings.problems.append(zqFormat(zqLocalized("%@: the thumbnail is missing"), {name}));
    }
    if (!deep) {
        return;
    }
    // A package's digest is that of its inner file.
    const QString digested = QFileInfo(path).isDir() ? path + QStringLiteral("/Data") : path;
    ZQError error;
    const QByteArray digest = zqSHA1OfFile(digested, &error);
    if (digest.isEmpty()) {
        findings.problems.append(name + QStringLiteral(": ") + error.localizedDescription());
    } else if (QString::fromLatin1(digest) != item.SHA1()) {
        findings.problems.append(
            zqFormat(zqLocalized("%@: the file's content has changed since it was imported"), {name}));
    }
}

void checkDirectories(const QString &library, const QSet<QString> &known, Findings &findings)
{
    QSet<QString> inAnyLetters;
    QDirIterator entries(library, {QStringLiteral("*.ztlibraryitem")}, QDir::Dirs | QDir::NoDotAndDotDot);
    while (entries.hasNext()) {
        entries.next();
        const QString bundleID = entries.fileInfo().completeBaseName();
        if (known.contains(bundleID) && entries.fileName().endsWith(ZQLibraryBaseItem::itemDirectoryExtension)) {
            continue;
        }
        if (inAnyLetters.isEmpty()) {
            for (const QString &name : known) {
                inAnyLetters.insert(name.toLower());
            }
        }
        if (entries.fileInfo().isSymLink()) {
            findings.links.append(entries.fileName());
        } else {
            (inAnyLetters.contains(bundleID.toLower()) ? findings.otherNames : findings.orphans)
                .append(entries.fileName());
        }
    }
    findings.orphans.sort();
    findings.otherNames.sort();
    findings.links.sort();
}

bool checkItems(bool deep, CommandContext &context, Findings &findings)
{
    ZQError error;
    const auto ids = context.store().fetchObjectIDs({ZQLibraryBaseItem::entityName()}, &error);
    if (!ids) {
        findings.problems.append(error.localizedDescription());
        return false;
    }
    QSet<QString> known;
    constexpr qsizetype atATime = 500;
    for (qsizetype first = 0; first < ids->size(); first += atATime) {
        QList<ZQRef<ZQLibraryBaseItem>> present;
        const QList<ZQObjectID> batch = ids->mid(first, atATime);
        const auto read = ZQLibraryBaseItem::itemsWithIDs(batch, context.store());
        if (read.size() < batch.size()) {
            findings.problems.append(zqFormat(zqLocalized("%d items can't be read, so that their files were not checked"),
                                              {batch.size() - read.size()}));
        }
        for (const auto &item : read) {
            known.insert(item->bundleID());
            const auto folder = item->watchingFolder();
            if (item->active() && !(folder && (folder->is_missing() || folder->is_trashed()))) {
                present.append(item);
            }
        }
        findings.items += present.size();
        ZQLibraryBaseItem::lookForFiles(present);
        for (const ZQRef<ZQLibraryBaseItem> &item : std::as_const(present)) {
            checkItem(*item, deep, findings);
        }
    }
    checkDirectories(context.delegate->libraryDirectory(), known, findings);
    return true;
}

void printText(const Findings &findings, CommandContext &context)
{
    context.print(findings.items == 1 ? zqLocalized("1 item checked")
                                      : zqFormat(zqLocalized("%d items checked"), {findings.items}));
    for (const QString &problem : findings.problems) {
        context.print(problem);
    }
    for (const QString &orphan : findings.orphans) {
        context.print(
            zqFormat(zqLocalized("belongs to no item; the next launch takes it back or removes it: %@"), {orphan}));
    }
    for (const QString &name : findings.otherNames) {
        context.print(zqFormat(
            zqLocalized("is named like the folder of an item, in other letters, and stays as it is: %@"), {name}));
    }
    for (const QString &link : findings.links) {
        context.print(zqFormat(zqLocalized("is a link and no folder of an item, and stays as it is: %@"), {link}));
    }
}
} // namespace

int zqRunVerify(bool deep, CommandContext &context)
{
    Findings findings;
    findings.problems = context.delegate->persistentStoreCoordinator()->checkIntegrity();
    checkItems(deep, context, findings);
    if (context.json) {
        context.printJSON(QJsonObject{{QStringLiteral("items"), findings.items},
                                      {QStringLiteral("problems"), QJsonArray::fromStringList(findings.problems)},
                                      {QStringLiteral("orphans"), QJsonArray::fromStringList(findings.orphans)},
                                      {QStringLiteral("otherNames"), QJsonArray::fromStringList(findings.otherNames)},
                                      {QStringLiteral("links"), QJsonArray::fromStringList(findings.links)}});
    } else {
        printText(findings, context);
    }
    return findings.problems.isEmpty() ? 0 : 1;
}
