#include "Classes/Interface/Window/LiveFolderProgress.h"

#include "Classes/Interface/LiveFolderStates.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QPointer>

#include <algorithm>
#include <chrono>

using namespace std::chrono_literals;

namespace {

constexpr auto aMoment = 1500ms;
constexpr qsizetype longestTitle = 40;

} // namespace

LiveFolderProgress::LiveFolderProgress(WindowContext &window, QObject *parent) : QObject(parent), m_window(window)
{
    m_delay.setSingleShot(true);
    m_delay.setInterval(aMoment);
    connect(&m_delay, &QTimer::timeout, this, &LiveFolderProgress::begin);
    connect(window.liveFolders, &LiveFolderStates::changed, this, &LiveFolderProgress::follow);
    follow();
}

LiveFolderProgress::~LiveFolderProgress() = default;

QList<ZQObjectID> LiveFolderProgress::syncing() const
{
    QList<ZQObjectID> folders = m_window.liveFolders->syncing();
    folders.removeIf([this](const ZQObjectID &id) {
        constexpr int deepest = 1000; // of a damaged tree
        const auto item = m_window.sidebarItem(id);
        auto above = item ? item->father() : ZQRef<ZQSidebarBaseItem>();
        for (int depth = 0; above && depth < deepest; ++depth, above = above->father()) {
            if (m_window.liveFolders->isSyncing(above->objectID())) {
                return true;
            }
        }
        return !item;
    });
    return folders;
}

void LiveFolderProgress::follow()
{
    const QList<ZQObjectID> folders = syncing();
    m_stopped.intersect(QSet<ZQObjectID>(folders.begin(), folders.end()));
    if (folders.isEmpty()) {
        m_delay.stop();
        m_line.reset();
    } else if (m_line) {
        show(folders);
    } else if (!m_delay.isActive()) {
        m_delay.start();
    }
}

void LiveFolderProgress::begin()
{
    const QList<ZQObjectID> folders = syncing();
    if (folders.isEmpty()) {
        return;
    }
    m_done = 0;
    m_tally = {};
    m_line = m_window.user.beginProgress(zqLocalized("Syncing…"), 0, [self = QPointer(this)] {
        if (self) {
            self->stop();
        }
    });
    show(folders);
}

// What was read is saved yet, which may take a moment; that the button was heard is said at once.
void LiveFolderProgress::stop()
{
    const QList<ZQObjectID> folders = syncing();
    m_stopped = QSet<ZQObjectID>(folders.begin(), folders.end());
    m_window.liveFolders->manager().stopSyncingWatchedFolders(folders);
    follow();
}

// Each folder says how far its whole root is.
void LiveFolderProgress::tally(const QList<ZQObjectID> &folders)
{
    QHash<ZQObjectID, LiveFolderStatus> roots;
    for (const ZQObjectID &id : folders) {
        constexpr int deepest = 1000; // of a damaged tree
        auto root = zqCast<ZQSidebarWatchedFolder>(m_window.sidebarItem(id));
        for (int depth = 0; root && !root->is_root() && depth < deepest; ++depth) {
            root = zqCast<ZQSidebarWatchedFolder>(root->father());
        }
        LiveFolderStatus &status = roots[root ? root->objectID() : id];
        status = m_window.liveFolders->statusOf(id);
        status.isSyncing = true;
    }
    for (const ZQObjectID &ended : m_tally.roots()) {
        if (!roots.contains(ended)) {
            m_tally.note(ended, {});
        }
    }
    for (auto root = roots.constBegin(); root != roots.constEnd(); ++root) {
        m_tally.note(root.key(), *root);
    }
}

void LiveFolderProgress::show(const QList<ZQObjectID> &folders)
{
    if (m_stopped.size() == folders.size()) {
        m_line->setText(zqLocalized("Stopping…"));
        m_line->setCountText({});
        m_line->setMaximum(0);
        return;
    }
    tally(folders);
    const auto done = double(m_tally.done());
    const auto total = double(m_tally.total());
    const bool isKnown = total > 0;
    const QString title = folders.size() == 1
                              ? zqShortened(m_window.sidebarItem(folders.first())->title(), longestTitle)
                              : zqFormat(zqLocalized("%d live folders"), {int(folders.size())});
    m_line->setText(zqFormat(zqLocalized("Syncing %@"), {title}));
    // A title may hold what a format means by itself.
    QString escaped = title;
    escaped.replace(u'%', QStringLiteral("%%"));
    m_line->setCountText(isKnown ? zqFormat(zqLocalized("%@: %@"),
                                            {zqFormat(zqLocalized("Syncing %@"), {escaped}), zqLocalized("%@ of %@")})
                                 : QString());
    m_line->setMaximum(isKnown ? total : 0);
    m_line->advanceBy(done - m_done);
    m_done = done;
}
