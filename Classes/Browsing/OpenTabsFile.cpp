#include "Classes/Browsing/OpenTabsFile.h"

#include "Classes/Browsing/TabStateArchive.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Foundation/ZQLog.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {
const QString tabsKey = QStringLiteral("tabs");
const QString selectedKey = QStringLiteral("indexOfSelectedTab");
} // namespace

std::optional<OpenTabsFile::Tabs> OpenTabsFile::read(EditContext &edits) const
{
    const QFileInfo info(m_path);
    if (!info.exists() && !info.isSymLink()) {
        return std::nullopt;
    }
    QFile file(m_path);
    QString problem;
    if (!info.isFile() || info.size() > largest || !file.open(QIODevice::ReadOnly)) {
        problem = info.isFile() ? file.errorString() : QStringLiteral("It is no file.");
        setAside(problem);
        return std::nullopt;
    }
    auto tabs = tabsOf(file.read(largest), edits, &problem);
    file.close();
    if (!problem.isEmpty()) {
        setAside(problem);
    }
    return tabs;
}

std::optional<OpenTabsFile::Tabs> OpenTabsFile::tabsOf(const QByteArray &data, EditContext &edits,
                                                       QString *problem) const
{
    ZQError error;
    const auto root = ZQKeyedArchive::fromData(data, &error);
    if (!root) {
        *problem = error.localizedDescription();
        return std::nullopt;
    }
    const QVariantMap archive = root->toMap();
    const QVariant list = archive.value(tabsKey);
    const QVariant index = archive.value(selectedKey, qlonglong(0));
    if (root->typeId() != QMetaType::QVariantMap || (list.isValid() && list.typeId() != QMetaType::QVariantList) ||
        index.typeId() != QMetaType::LongLong || list.toList().size() > mostTabs) {
        *problem = QStringLiteral("It does not list tabs.");
        return std::nullopt;
    }
    Tabs result;
    TabStateArchive::Naming naming;
    for (const QVariant &each : list.toList()) {
        auto tab = TabStateArchive::restored(each, edits, naming);
        if (!tab) {
            *problem = QStringLiteral("A tab in it makes no sense.");
            return std::nullopt;
        }
        result.tabs.append(std::move(tab));
    }
    if (result.tabs.isEmpty() || (naming.named > 0 && naming.found == 0)) {
        return std::nullopt;
    }
    result.indexOfSelectedTab = int(std::clamp<qlonglong>(index.toLongLong(), 0, result.tabs.size() - 1));
    return result;
}

void OpenTabsFile::setAside(const QString &problem) const
{
    const QFileInfo info(m_path);
    for (int number = 1; number <= mostSetAside; ++number) {
        const QString aside = QStringLiteral("%1/%2 (damaged %3).%4")
                                  .arg(info.path(), info.completeBaseName(), QString::number(number), info.suffix());
        if (zqMoveNoReplace(m_path, aside)) {
            qCWarning(zqLogInterface, "The open tabs in %s cannot be read: %s The file was set aside as %s.",
                      qUtf8Printable(m_path), qUtf8Printable(problem), qUtf8Printable(aside));
            return;
        }
    }
    qCWarning(zqLogInterface, "The open tabs in %s cannot be read: %s The file could not be set aside.",
              qUtf8Printable(m_path), qUtf8Printable(problem));
}

bool OpenTabsFile::write(const Tabs &tabs, EditContext &edits)
{
    QVariantList list;
    for (const auto &tab : tabs.tabs) {
        list.append(QVariant::fromValue(TabStateArchive::archived(*tab, edits)));
    }
    ZQError error;
    const auto data =
        ZQKeyedArchive::toData(QVariantMap{{tabsKey, list}, {selectedKey, tabs.indexOfSelectedTab}}, &error);
    if (data && *data == m_written) {
        return true;
    }
    if (!data || !zqMakeFolder(QFileInfo(m_path).path()) || !zqWriteFileAtomically(m_path, *data, &error)) {
        qCWarning(zqLogInterface, "The open tabs could not be kept in %s: %s", qUtf8Printable(m_path),
                  qUtf8Printable(error.localizedDescription()));
        return false;
    }
    m_written = *data;
    return true;
}
