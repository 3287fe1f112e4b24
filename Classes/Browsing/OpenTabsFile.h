#pragma once

#include "Classes/Browsing/TabState.h"

#include <memory>
#include <optional>

// The file of a window's open tabs: a keyed archive of a dictionary with "tabs" and "indexOfSelectedTab". Main thread.
class OpenTabsFile
{
public:
    struct Tabs
    {
        QList<std::shared_ptr<TabState>> tabs; // never empty
        int indexOfSelectedTab = 0;
    };

    explicit OpenTabsFile(QString path) : m_path(std::move(path)) {}

    // Nothing when there is no file, when it lists no tab, and when none of its tabs is of this library. One that
    // cannot be read as what it should be is set aside, so that the next one does not overwrite it.
    std::optional<Tabs> read(EditContext &edits) const;
    // Beside the file, flushed and renamed over it. False when that failed, which was logged; true without a write when
    // nothing differs from what was written last.
    bool write(const Tabs &tabs, EditContext &edits);

    static constexpr int mostSetAside = 5;
    static constexpr qint64 largest = 16 << 20; // bytes
    static constexpr qsizetype mostTabs = 200;

private:
    std::optional<Tabs> tabsOf(const QByteArray &data, EditContext &edits, QString *problem) const;
    void setAside(const QString &problem) const;

    QString m_path;
    QByteArray m_written;
};
