#pragma once

#include "Classes/Browsing/Content/NearDuplicates.h"
#include "Classes/Interface/Sheets/Sheet.h"
#include "Classes/Interface/WindowContext.h"
#include "Kit/Widgets/ZQThumbnailLoader.h"

#include <memory>

class QLabel;
class QListWidget;
class QListWidgetItem;
class QStackedWidget;
class ZQOperationQueue;
class ZQProgressLine;

// Groups of items that look alike, of each of which one is kept in place of the others, each an undo step. They are
// looked for beside the window; closing the sheet ends that. Main thread.
class NearDuplicatesSheet : public Sheet
{
    Q_OBJECT
public:
    // Among `items`, or in the whole library.
    NearDuplicatesSheet(QWidget *window, WindowContext &context, const std::optional<QList<ZQObjectID>> &items);
    ~NearDuplicatesSheet() override;

    static constexpr qsizetype mostShown = 1000;  // groups at a time
    static constexpr qsizetype mostInGroup = 200; // pictures of one that are shown, by their worth

private:
    void makeGroups();
    void find(const std::optional<QList<ZQObjectID>> &items);
    void didFind(const QList<NearDuplicateGroup> &groups);
    void fail(const QString &reason);
    void showGroup(int row);
    void showPicture(QListWidgetItem &row);
    void showReason();
    void showState();
    void say(const QString &state); // and aloud
    void keepChosen();
    void endGroup(); // it is settled, or to stay as it is

    WindowContext &m_context;
    QList<NearDuplicateGroup> m_groups; // that are left, in the order of their rows
    QStackedWidget *m_pages;
    ZQProgressLine *m_progress;
    QLabel *m_nothing; // why no group is shown
    QLabel *m_state;
    QListWidget *m_groupList;
    QListWidget *m_pictures;
    QLabel *m_reason;
    QPushButton *m_keep;
    QPushButton *m_leave;
    ZQThumbnailLoader m_loader;
    std::unique_ptr<ZQOperationQueue> m_queue; // last: it goes first, and waits for what runs
};
