#pragma once

#include "Classes/Browsing/Tabs/TabState.h"

#include <memory>
#include <optional>

// The file of a window's open tabs: a keyed archive of a dictionary with "tabs" and "indexOfSelectedTab". There is one
// place for all libraries; what it holds of another one than is open is kept beside it, under that one's identifier,
// until that one is opened again. Main thread.
class OpenTabsFile
{
public:
    struct Tabs
    {
        QList<std::shared_ptr<TabState>> tabs; // never empty
        int indexOfSelectedTab = 0;
    };

    explicit OpenTabsFile(QString path) : m_path(std::move(path)) {}

    // Of this library, from the file or from what was kept beside it. Nothing when there is neither or no tab is
    // listed; a tab of which all is gone has an empty selection. A file that cannot be read as what it should be is set
    // aside, so that the next one does not overwrite it.
    std::optional<Tabs> read(EditContext &edits);
    // Beside the file, flushed and renamed over it, after what is there of another library was kept. False when one of
    // them failed, which was logged; true without a write when nothing differs from what was written last.
    bool write(const Tabs &tabs, EditContext &edits);

    static constexpr int mostSetAside = 5;
    static constexpr int mostOthers = 50;       // libraries whose tabs are kept beside the file
    static constexpr qint64 largest = 64 << 20; // bytes; more than 200 tabs with the longest texts have
    static constexpr qsizetype mostTabs = 200;

private:
    std::optional<QVariantMap> archiveAt(const QString &path) const;
    std::optional<Tabs> tabsOf(const QVariantMap &archive, EditContext &edits, QString *problem) const;
    void setAside(const QString &path, const QString &problem) const;
    QString pathFor(const QUuid &store) const;
    bool keepOther(const QUuid &store) const;
    void removeOldestOthers(const QUuid &kept, const QUuid &open) const;

    QString m_path;
    QByteArray m_written;
    bool m_hasOwn = false; // what was kept of this library was read, if there was any
};
