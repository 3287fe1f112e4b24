#include "Classes/Browsing/Tabs/OpenTabsFile.h"

#include "Classes/Browsing/Tabs/TabStateArchive.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQRegularFile.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

const QString tabsKey = QStringLiteral("tabs");
const QString selectedKey = QStringLiteral("indexOfSelectedTab");

QUuid storeOf(const EditContext &edits)
{
    return edits.context.persistentStoreCoordinator()->storeUUID();
}

QSet<QUuid> storesNamedBy(const QVariantMap &archive)
{
    QSet<QUuid> stores;
    for (const QVariant &tab : archive.value(tabsKey).toList()) {
        stores.unite(TabStateArchive::storesNamedBy(tab));
    }
    return stores;
}

} // namespace

// Null when there is none, and when it was set aside.
std::optional<QVariantMap> OpenTabsFile::archiveAt(const QString &path) const
{
    const QFileInfo info(path);
    if (!info.exists() && !info.isSymLink()) {
        return std::nullopt;
    }
    ZQError error;
    const auto data = zqReadRegularFile(path, largest, &error);
    if (!data) {
        setAside(path, error.localizedDescription());
        return std::nullopt;
    }
    const auto root = ZQKeyedArchive::fromData(*data, &error);
    if (!root || root->typeId() != QMetaType::QVariantMap) {
        setAside(path, root ? QStringLiteral("It does not list tabs.") : error.localizedDescription());
        return std::nullopt;
    }
    return root->toMap();
}

std::optional<OpenTabsFile::Tabs> OpenTabsFile::read(EditContext &edits)
{
    const QUuid store = storeOf(edits);
    const auto tabsAt = [&](const QString &path, const QVariantMap &archive) {
        QString problem;
        auto tabs = tabsOf(archive, edits, &problem);
        if (!problem.isEmpty()) {
            setAside(path, problem);
        }
        return tabs;
    };
    const auto archive = archiveAt(m_path);
    const QSet<QUuid> named = archive ? storesNamedBy(*archive) : QSet<QUuid>();
    if (archive && named.contains(store)) {
        auto tabs = tabsAt(m_path, *archive);
        m_hasOwn = tabs.has_value();
        return tabs;
    }
    const QString besides = pathFor(store);
    if (const auto own = archiveAt(besides)) {
        if (auto tabs = tabsAt(besides, *own)) {
            m_hasOwn = true;
            return tabs;
        }
    }
    return archive && named.isEmpty() ? tabsAt(m_path, *archive) : std::nullopt;
}

std::optional<OpenTabsFile::Tabs> OpenTabsFile::tabsOf(const QVariantMap &archive, EditContext &edits,
                                                       QString *problem) const
{
    const QVariant list = archive.value(tabsKey);
    const QVariant index = archive.value(selectedKey, qlonglong(0));
    if ((list.isValid() && list.typeId() != QMetaType::QVariantList) || index.typeId() != QMetaType::LongLong ||
        list.toList().size() > mostTabs) {
        *problem = QStringLiteral("It does not list tabs.");
        return std::nullopt;
    }
    Tabs result;
    for (const QVariant &each : list.toList()) {
        auto tab = TabStateArchive::restored(each, edits);
        if (!tab) {
            *problem = QStringLiteral("A tab in it makes no sense.");
            return std::nullopt;
        }
        result.tabs.append(std::move(tab));
    }
    if (result.tabs.isEmpty()) {
        return std::nullopt;
    }
    result.indexOfSelectedTab = int(std::clamp<qlonglong>(index.toLongLong(), 0, result.tabs.size() - 1));
    return result;
}

void OpenTabsFile::setAside(const QString &path, const QString &problem) const
{
    const QFileInfo info(path);
    for (int number = 1; number <= mostSetAside; ++number) {
        const QString aside = QStringLiteral("%1/%2 (damaged %3).%4")
                                  .arg(info.path(), info.completeBaseName(), QString::number(number), info.suffix());
        if (zqMoveNoReplace(path, aside)) {
            qCWarning(zqLogInterface, "The open tabs in %s cannot be read: %s The file was set aside as %s.",
                      qUtf8Printable(path), qUtf8Printable(problem), qUtf8Printable(aside));
            return;
        }
    }
    qCWarning(zqLogInterface, "The open tabs in %s cannot be read: %s The file could not be set aside.",
              qUtf8Printable(path), qUtf8Printable(problem));
}

QString OpenTabsFile::pathFor(const QUuid &store) const
{
    const QFileInfo info(m_path);
    return QStringLiteral("%1/%2-%3.%4")
        .arg(info.path(), info.completeBaseName(), store.toString(QUuid::WithoutBraces), info.suffix());
}

// What is about to be overwritten, when it is of another library: a copy is safe before it goes. False when it is not.
bool OpenTabsFile::keepOther(const QUuid &store) const
{
    const auto data = zqReadRegularFile(m_path, largest);
    if (!data) { // what is there and was neither read nor set aside is not overwritten
        const QFileInfo info(m_path);
        return !info.exists() && !info.isSymLink();
    }
    if (*data == m_written) {
        return true;
    }
    const auto root = ZQKeyedArchive::fromData(*data);
    const QSet<QUuid> named = root ? storesNamedBy(root->toMap()) : QSet<QUuid>();
    if (named.isEmpty() || named.contains(store)) {
        return true;
    }
    const QUuid other = *std::min_element(named.begin(), named.end());
    ZQError error;
    if (!zqWriteFileAtomically(pathFor(other), *data, &error)) {
        qCWarning(zqLogInterface, "The open tabs of another library could not be kept in %s: %s",
                  qUtf8Printable(pathFor(other)), qUtf8Printable(error.localizedDescription()));
        return false;
    }
    removeOldestOthers(other, store);
    return true;
}

void OpenTabsFile::removeOldestOthers(const QUuid &kept, const QUuid &open) const
{
    const QFileInfo info(m_path);
    const QString pattern = QStringLiteral("%1-*.%2").arg(info.completeBaseName(), info.suffix());
    const qsizetype uuidAt = info.completeBaseName().size() + 1;
    int left = mostOthers;
    for (const QFileInfo &each :
         QDir(info.path()).entryInfoList({pattern}, QDir::Files | QDir::NoSymLinks, QDir::Time)) {
        const QUuid store = QUuid::fromString(each.completeBaseName().mid(uuidAt));
        const bool isOurs = !store.isNull() && each.absoluteFilePath() == QFileInfo(pathFor(store)).absoluteFilePath();
        if (isOurs && --left < 0 && store != kept && store != open) {
            QFile::remove(each.absoluteFilePath());
        }
    }
}

bool OpenTabsFile::write(const Tabs &tabs, EditContext &edits)
{
    const auto archive = [&](TabStateArchive::Kept kept, ZQError *error) {
        QVariantList list;
        for (const auto &tab : tabs.tabs) {
            list.append(QVariant::fromValue(TabStateArchive::archived(*tab, edits, kept)));
        }
        return ZQKeyedArchive::toData(QVariantMap{{tabsKey, list}, {selectedKey, tabs.indexOfSelectedTab}}, error);
    };
    ZQError error;
    auto data = archive(TabStateArchive::Kept::Everything, &error);
    if (data && data->size() > largest) { // it would not be read
        data = archive(TabStateArchive::Kept::AllButSelection, &error);
    }
    if (data && *data == m_written) {
        return true;
    }
    const QUuid store = storeOf(edits);
    if (!keepOther(store)) {
        return false;
    }
    if (!data || !zqMakeFolder(QFileInfo(m_path).path()) || !zqWriteFileAtomically(m_path, *data, &error)) {
        qCWarning(zqLogInterface, "The open tabs could not be kept in %s: %s", qUtf8Printable(m_path),
                  qUtf8Printable(error.localizedDescription()));
        return false;
    }
    m_written = *data;
    if (m_hasOwn) { // what was kept of this library is in the file now
        QFile::remove(pathFor(store));
    }
    return true;
}
