// Live folders as a person meets them in the window: rows, menus, drops, empty lists and progress.

#include "Classes/Interface/Browser/EmptyState.h"
#include "Classes/Interface/InfoPanel/LivePlace.h"
#include "Kit/Widgets/ZQSwitch.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Tests/Classes/Interface/DesktopListener.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"
#include "Tests/Support/ScriptedLiveFolders.h"

#include <QDir>
#include <QDropEvent>
#include <QHelpEvent>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QToolButton>
#include <QToolTip>

namespace {

using Folder = ZQRef<ZQSidebarWatchedFolder>;

class LiveFoldersTest : public MainWindowFixture
{
protected:
    LiveFoldersTest() { liveFolderManager = &fake; }
    void SetUp() override
    {
        MainWindowFixture::SetUp();
        label = special(ZQSidebarKind::WatchedFoldersLabel);
    }
    void TearDown() override
    {
        label = {};
        MainWindowFixture::TearDown();
    }
    QString directory(const char *name)
    {
        const QString path = world.filePath(QLatin1StringView(name));
        QDir().mkpath(path);
        return path;
    }
    Folder addLive(const char *name, const Item &father)
    {
        const auto live = zqCast<ZQSidebarWatchedFolder>(add<ZQSidebarWatchedFolder>(QString::fromUtf8(name), father));
        live->setFolderPath(directory(name));
        live->setIs_root(father == label);
        save();
        return live;
    }
    void save()
    {
        delegate->saveAction();
        settle();
    }
    QModelIndex index(const Item &item) { return tree()->tree()->indexOf(item->objectID()); }
    QRect row(const Item &item) { return tree()->visualRect(index(item)); }
    QString said(const Item &item, int role) { return index(item).data(role).toString(); }
    // Of the menu of the row.
    QString menuOf(const Item &item, const QString &choose = {})
    {
        menu.clear();
        sidebar().selectItems({item->objectID()});
        whenMenuOpens(choose);
        Q_EMIT tree()->customContextMenuRequested(row(item).center());
        return menu;
    }
    QString notification()
    {
        for (const auto *bubble : window().findChildren<ZQNotificationBubble *>()) {
            if (bubble->isVisible()) {
                return bubble->text();
            }
        }
        return {};
    }
    bool drop(const QStringList &paths, const QPoint &point)
    {
        QMimeData mime;
        QList<QUrl> urls;
        for (const QString &path : paths) {
            urls.append(QUrl::fromLocalFile(path));
        }
        mime.setUrls(urls);
        const auto actions = Qt::MoveAction | Qt::CopyAction;
        QDragEnterEvent enter(point, actions, &mime, Qt::LeftButton, {});
        QApplication::sendEvent(tree()->viewport(), &enter);
        hint = tree()->dropHint(&mime, {label, 0});
        QDropEvent dropped(point, actions, &mime, Qt::LeftButton, {});
        dropped.setDropAction(Qt::IgnoreAction);
        QApplication::sendEvent(tree()->viewport(), &dropped);
        EXPECT_NE(dropped.dropAction(), Qt::MoveAction) << "the source would delete them";
        settle();
        return dropped.isAccepted() && dropped.dropAction() == Qt::CopyAction;
    }
    QString rowsOfLabel() { return children(label).join(u' '); }

    ScriptedLiveFolders fake{[this]() -> ZQManagedObjectContext & { return context(); }};
    Item label;
    QString hint;
};

} // namespace

TEST_F(LiveFoldersTest, RowsSayHowTheirFoldersStand)
{
    const Folder live = addLive("Pictures", label);
    const Folder below = addLive("Below", live);
    tree()->setExpanded(index(live), true);
    const LiveFolderStatus swept{
        .isSyncing = false, .filesDone = 0, .filesTotal = 0, .isSwept = true, .reason = QStringLiteral("Every hour.")};
    const LiveFolderStatus reason{.isSyncing = false,
                                  .filesDone = 0,
                                  .filesTotal = 0,
                                  .isSwept = false,
                                  .reason = QStringLiteral("Another disk is there.")};
    struct Case
    {
        const char *what;
        std::function<void(bool)> set;
        LiveFolderStatus status;
        const char *icon;
        const char *badge;
        const char *mark;
        const char *says;
        bool isAway;
    };
    for (const Case &each :
         {Case{"in order", [](bool) {}, {}, "live", "", "", "", false},
          {"swept", [](bool) {}, swept, "live", "", "recent", "Every hour.", false},
          {"not watched in full", [](bool) {}, reason, "live", "", "warning", "Another disk is there.", false},
          {"missing", [&](bool is) { live->setIs_missing(is); }, reason, "warning", "missing", "",
           "Another disk is there.", true},
          {"missing, nobody knows why",
           [&](bool is) { live->setIs_missing(is); },
           {},
           "warning",
           "missing",
           "",
           "Its folder cannot be found. Connect the drive it is on, or put the folder back.",
           true},
          {"in the trash",
           [&](bool is) { live->setIs_trashed(is); },
           {},
           "warning",
           "in trash",
           "",
           "Its folder is in the trash. Restore it there, or remove the live folder.",
           true},
          {"off",
           [&](bool is) { live->setIs_enabled(!is); },
           {},
           "pause",
           "off",
           "",
           "This live folder is off: Enable in its menu has it looked at again.",
           true}}) {
        each.set(true);
        fake.setStatus(*live, each.status);
        EXPECT_EQ(said(live, SidebarTreeModel::IconRole), QLatin1StringView(each.icon)) << each.what;
        EXPECT_EQ(said(live, SidebarTreeModel::CountRole), QLatin1StringView(each.badge)) << each.what;
        EXPECT_EQ(said(live, SidebarTreeModel::MarkRole), QLatin1StringView(each.mark)) << each.what;
        QString tip = live->folderPath();
        QString description = QStringLiteral("Live Folder");
        if (*each.says) {
            tip += u'\n' + QString::fromUtf8(each.says);
            description += QStringLiteral(". ") + QString::fromUtf8(each.says);
        }
        EXPECT_EQ(said(live, Qt::ToolTipRole), tip) << each.what;
        EXPECT_EQ(said(live, Qt::AccessibleDescriptionRole), description) << each.what;
        EXPECT_EQ(index(live).data(SidebarTreeModel::StateRole).toBool(), each.isAway) << each.what;
        EXPECT_EQ(index(below).data(SidebarTreeModel::StateRole).toBool(), each.isAway) << each.what << ", below";
        EXPECT_EQ(said(below, SidebarTreeModel::CountRole), QString()) << each.what << ", below";
        each.set(false);
    }
    EXPECT_FALSE(index(live).flags() & Qt::ItemIsEditable);
    EXPECT_TRUE(index(live).flags() & Qt::ItemIsDragEnabled);
    EXPECT_FALSE(index(below).flags() & Qt::ItemIsDragEnabled) << "the disk says where it is";
}

TEST_F(LiveFoldersTest, ClosedRowsSayWhatIsBelowThem)
{
    const Folder live = addLive("Pictures", label);
    const Folder other = addLive("Other", label);
    const Folder below = addLive("Stick", live);
    below->setIs_missing(true);
    save();
    fake.setStatus(*below, {.isSyncing = false,
                            .filesDone = 0,
                            .filesTotal = 0,
                            .isSwept = false,
                            .reason = QStringLiteral("Connect it.")});
    fake.setStatus(*other, {.isSyncing = false,
                            .filesDone = 0,
                            .filesTotal = 0,
                            .isSwept = true,
                            .reason = QStringLiteral("Every hour.")});
    const auto mark = [&](const Item &item) { return said(item, SidebarTreeModel::MarkRole); };
    const QString reason = QStringLiteral("“Stick”: Connect it.");
    EXPECT_EQ(mark(live), QStringLiteral("warning"));
    EXPECT_TRUE(said(live, Qt::ToolTipRole).endsWith(reason)) << qPrintable(said(live, Qt::ToolTipRole));
    EXPECT_EQ(mark(label), QString()) << "its rows say it themselves";
    EXPECT_EQ(said(label, Qt::AccessibleDescriptionRole), QString());

    tree()->collapse(index(label));
    EXPECT_EQ(mark(label), QStringLiteral("warning"));
    EXPECT_EQ(said(label, Qt::AccessibleDescriptionRole).split(u'\n'),
              (QStringList{QStringLiteral("“Other”: Every hour."), reason}));
    EXPECT_TRUE(said(label, Qt::ToolTipRole).endsWith(reason));
    QSignalSpy changed(tree()->tree(), &QAbstractItemModel::dataChanged);
    below->setIs_missing(false);
    save();
    fake.setStatus(*other, {});
    fake.setStatus(*below, {});
    EXPECT_TRUE(std::any_of(changed.begin(), changed.end(), [&](const QList<QVariant> &each) {
        return each.first().value<QModelIndex>() == index(label);
    }));
    EXPECT_EQ(mark(label), QString());
    tree()->expand(index(label));
    EXPECT_EQ(mark(live), QString());
    tree()->setExpanded(index(live), true);
    below->setIs_missing(true);
    save();
    EXPECT_EQ(mark(live), QString());
    EXPECT_EQ(said(below, SidebarTreeModel::CountRole), QStringLiteral("missing")) << "since no row above says it";
}

TEST_F(LiveFoldersTest, AToolTipThatIsReadSaysWhatHoldsNow)
{
    const Folder live = addLive("Pictures", label);
    const auto setReason = [&](const char *reason) {
        fake.setStatus(*live, {.isSyncing = false,
                               .filesDone = 0,
                               .filesTotal = 0,
                               .isSwept = false,
                               .reason = QString::fromUtf8(reason)});
    };
    setReason("Too many folders.");
    const QPoint point = row(live).center();
    QHelpEvent asked(QEvent::ToolTip, point, tree()->viewport()->mapToGlobal(point));
    QApplication::sendEvent(tree()->viewport(), &asked);
    EXPECT_EQ(QToolTip::text(), live->folderPath() + QStringLiteral("\nToo many folders."));
    setReason("");
    EXPECT_EQ(QToolTip::text(), live->folderPath());
    QToolTip::showText(tree()->viewport()->mapToGlobal(point), QStringLiteral("Of another widget"), &window());
    setReason("Too many folders.");
    EXPECT_EQ(QToolTip::text(), QStringLiteral("Of another widget"));
    QToolTip::hideText();
}

TEST_F(LiveFoldersTest, ASignTurnsWhileItsRowIsInViewAndSynchronised)
{
    const Folder live = addLive("Pictures", label);
    const Folder other = addLive("Other", label);
    QModelIndexList changed;
    QObject::connect(tree()->tree(), &QAbstractItemModel::dataChanged, &window(),
                     [&](const QModelIndex &first) { changed.append(first); });
    fake.start(*live);
    EXPECT_EQ(changed, QModelIndexList{index(live)}) << "and no other row is painted";
    EXPECT_TRUE(index(live).data(SidebarTreeModel::SyncingRole).toBool());
    EXPECT_FALSE(index(other).data(SidebarTreeModel::SyncingRole).toBool());
    const ZQTurningSign &sign = tree()->turningSign();
    EXPECT_TRUE(waitFor([&] { return sign.isTurning(); }));
    fake.setStatus(*live, {.isSyncing = true, .filesDone = 120, .filesTotal = 4201, .isSwept = false, .reason = {}});
    EXPECT_TRUE(said(live, Qt::ToolTipRole).endsWith(QStringLiteral("Syncing: 120 of 4,201 files")))
        << qPrintable(said(live, Qt::ToolTipRole));
    run(CommandID::Sidebar);
    EXPECT_FALSE(sign.isTurning()) << "nobody sees it";
    run(CommandID::Sidebar);
    EXPECT_TRUE(waitFor([&] { return sign.isTurning(); }));
    tree()->collapse(index(label));
    EXPECT_TRUE(index(label).data(SidebarTreeModel::SyncingRole).toBool()) << "for what it hides";
    EXPECT_TRUE(tree()->tree()->syncingRows().contains(index(label)));
    EXPECT_TRUE(waitFor([&] { return sign.isTurning(); }));
    tree()->expand(index(label));
    EXPECT_FALSE(index(label).data(SidebarTreeModel::SyncingRole).toBool());
    fake.end(*live);
    EXPECT_TRUE(waitFor([&] { return !sign.isTurning(); }));
    EXPECT_FALSE(index(live).data(SidebarTreeModel::SyncingRole).toBool())
        << "whatever the status of before still says";
}

TEST_F(LiveFoldersTest, AFolderIsAddedByADialogueAndTakenBack)
{
    EXPECT_TRUE(index(label).isValid()) << "there is something to do in the empty section";
    EXPECT_FALSE(said(label, SidebarTreeModel::HintRole).isEmpty());
    person.files = {};
    run(CommandID::AddLiveFolder);
    EXPECT_EQ(rowsOfLabel(), QString()) << "cancelled";
    ASSERT_EQ(person.choices.size(), 1);
    EXPECT_EQ(person.choices.first().title, QStringLiteral("Please choose the Folder you want to add"));
    EXPECT_EQ(person.choices.first().prompt, QStringLiteral("Add Folder"));
    EXPECT_TRUE(person.choices.first().directory);
    person.files = {directory("Pictures")};
    QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {}, SidebarDelegate::labelButtonRect(row(label)).center());
    settle();
    EXPECT_EQ(rowsOfLabel(), QStringLiteral("Pictures"));
    const Folder live = zqCast<ZQSidebarWatchedFolder>(label->orderedChildren().first());
    EXPECT_EQ(sidebar().selectedItems(), QList<ZQObjectID>{live->objectID()});
    EXPECT_EQ(notification(), QStringLiteral("New live folder created"));
    EXPECT_TRUE(said(label, SidebarTreeModel::HintRole).isEmpty());
    run(CommandID::Undo);
    settle();
    EXPECT_EQ(rowsOfLabel(), QString());
    EXPECT_FALSE(live->active());
    run(CommandID::Redo);
    settle();
    EXPECT_EQ(rowsOfLabel(), QStringLiteral("Pictures"));
    EXPECT_TRUE(live->active());
    EXPECT_EQ(fake.calls.join(u'|'), QStringLiteral("changed Pictures|changed Pictures"));
}

TEST_F(LiveFoldersTest, FoldersAreDroppedOnTheSection)
{
    const QString file = image(QStringLiteral("red"))->itemURL();
    const auto at = [this](const Item &item) { return row(item).center(); };
    EXPECT_FALSE(drop({file}, at(label))) << "a file makes none";
    EXPECT_EQ(hint, QString());
    EXPECT_TRUE(drop({directory("One"), directory("Two")}, at(label)));
    EXPECT_EQ(hint, QStringLiteral("Drop to create a live folder"));
    EXPECT_EQ(rowsOfLabel(), QStringLiteral("One Two"));
    EXPECT_EQ(notification(), QStringLiteral("2 new live folders created"));
    const Item two = label->orderedChildren().last();
    EXPECT_TRUE(drop({directory("Between")}, row(two).topLeft() + QPoint(60, 2)));
    EXPECT_EQ(rowsOfLabel(), QStringLiteral("One Between Two"));
    show(a);
    EXPECT_TRUE(drop({directory("Two")}, at(label)));
    EXPECT_EQ(rowsOfLabel(), QStringLiteral("One Between Two"));
    EXPECT_EQ(sidebar().selectedItems(), QList<ZQObjectID>{two->objectID()}) << "it is there already";
    EXPECT_TRUE(QFileInfo(directory("Two")).isDir());
    QString told;
    whenAsked([&](Sheet &sheet) {
        for (const auto *each : sheet.findChildren<QLabel *>()) {
            told += each->text() + u'\n';
        }
        press(Qt::Key_Return);
    });
    EXPECT_TRUE(drop({directory("Three"), file, world.filePath(QStringLiteral("in/clear.png"))}, at(label)));
    EXPECT_EQ(rowsOfLabel(), QStringLiteral("One Between Two Three"));
    EXPECT_TRUE(told.contains(QStringLiteral("“red.png”: It is no folder."))) << qPrintable(told);
    EXPECT_TRUE(told.contains(QStringLiteral("“clear.png”: It is no folder."))) << qPrintable(told);
}

TEST_F(LiveFoldersTest, MenusDoWhatTheFolderAllows)
{
    const Folder live = addLive("Pictures", label);
    const Folder below = addLive("Below", live);
    tree()->setExpanded(index(live), true);
    const QString add = QStringLiteral("New Project|New Folder|Add Live Folder…|-|");
    EXPECT_EQ(menuOf(live), add + QStringLiteral("Sync now|Disable|Show in Files|-|Delete Pictures"));
    EXPECT_EQ(menuOf(below), add + QStringLiteral("Sync now|Show in Files"));
    fake.start(*live);
    EXPECT_EQ(menuOf(live, QStringLiteral("Stop Syncing")),
              add + QStringLiteral("Sync now|Stop Syncing|Disable|Show in Files|-|Delete Pictures"));
    fake.end(*live);
    menuOf(below, QStringLiteral("Sync now"));
    menuOf(live, QStringLiteral("Disable"));
    EXPECT_FALSE(live->is_enabled());
    settle();
    EXPECT_FALSE(isEnabled(CommandID::SyncLiveFolder)) << "what is off is not looked at";
    EXPECT_EQ(menuOf(live), add + QStringLiteral("(Sync now)|Enable|Show in Files|-|Delete Pictures"));
    run(CommandID::Undo);
    EXPECT_TRUE(live->is_enabled());
    settle();
    run(CommandID::SyncLiveFolder);
    EXPECT_EQ(fake.calls.join(u'|'),
              QStringLiteral("stop Pictures|sync Below|changed Pictures|changed Pictures|sync Pictures"));
    live->setIs_missing(true);
    save();
    EXPECT_EQ(menuOf(live), add + QStringLiteral("Sync now|-|Delete Pictures")) << "it comes back by itself";
    live->setIs_missing(false);
    save();
    show(below);
    tree()->setFocus();
    run(CommandID::Remove);
    EXPECT_TRUE(below->active()) << "only the disk takes it away";
    EXPECT_TRUE(notification().startsWith(QStringLiteral("“Below” is a folder on the disk.")));
    show(live);
    tree()->setFocus();
    whenAsked([&](Sheet &) { press(Qt::Key_Return); });
    run(CommandID::Remove);
    settle();
    EXPECT_FALSE(live->active());
    EXPECT_TRUE(QFileInfo(live->folderPath()).isDir());
    EXPECT_FALSE(isEnabled(CommandID::SyncLiveFolder));
}

TEST_F(LiveFoldersTest, AnEmptyLiveFolderSaysWhyAndWhatToDo)
{
    const Folder live = addLive("Pictures", label);
    show(live);
    const auto text = [this] { return browser().content().emptyText(); };
    const auto buttons = [this] {
        QStringList shown;
        for (const auto *button : browser().emptyState().findChildren<QPushButton *>()) {
            if (button->isVisible()) {
                const QPoint middle = button->mapTo(&window(), button->rect().center());
                EXPECT_EQ(window().childAt(middle), button) << "nothing lies over it";
                shown.append(button->text());
            }
        }
        return shown.join(u'|');
    };
    EXPECT_TRUE(text().contains(QStringLiteral("waits for its turn"))) << qPrintable(text());
    live->setLastSyncDate(QDateTime::currentDateTimeUtc());
    EXPECT_TRUE(text().startsWith(QStringLiteral("Nothing in “%1” can be shown yet.").arg(live->folderPath())));
    live->setLastSyncDate({});
    EXPECT_EQ(buttons(), QStringLiteral("Import…"));
    fake.start(*live);
    fake.setStatus(*live, {.isSyncing = true, .filesDone = 3, .filesTotal = 9, .isSwept = false, .reason = {}});
    EXPECT_EQ(text(), QStringLiteral("“Pictures” is looked through for the first time. What is found comes here.\n"
                                     "Syncing: 3 of 9 files"));
    EXPECT_EQ(buttons(), QString());
    fake.end(*live);
    EXPECT_EQ(buttons(), QStringLiteral("Import…"));
    live->setIs_missing(true);
    fake.setStatus(*live, {.isSyncing = false, .filesDone = 0, .filesTotal = 0, .isSwept = false, .reason = "Gone."});
    save();
    EXPECT_EQ(text(), QStringLiteral("“%1” is out of reach.\nGone.\n"
                                     "Its items are kept, and come back with it.")
                          .arg(live->folderPath()));
    EXPECT_EQ(buttons(), QString());
    fake.setStatus(*live, {.isSyncing = false,
                           .filesDone = 0,
                           .filesTotal = 0,
                           .isSwept = false,
                           .reason = QStringLiteral("Another."),
                           .holdsAnother = true});
    EXPECT_EQ(buttons(), QStringLiteral("Use This Folder"));
    whenAsked([this](Sheet &) { press(Qt::Key_Return); }); // it is empty
    named<QPushButton>("Use the folder that is in the place of this one")->click();
    EXPECT_TRUE(fake.calls.isEmpty()) << "what an unmounted drive leaves is not taken for the folder";
    EXPECT_TRUE(QFile(live->folderPath() + QStringLiteral("/a.txt")).open(QIODevice::WriteOnly));
    EXPECT_TRUE(menuOf(live).contains(QStringLiteral("Use This Folder")));
    menuOf(live, QStringLiteral("Use This Folder"));
    EXPECT_EQ(fake.calls.join(u'|'), QStringLiteral("changed Pictures")) << "no item could go, so nothing is asked";
    fake.calls.clear();
    live->setIs_missing(false);
    live->setIs_trashed(true);
    save();
    EXPECT_TRUE(text().contains(QStringLiteral("is in the trash")));
    live->setIs_trashed(false);
    live->setIs_enabled(false);
    save();
    EXPECT_TRUE(text().startsWith(QStringLiteral("This live folder is off")));
    EXPECT_EQ(buttons(), QStringLiteral("Enable"));
    auto *enable = named<QPushButton>("Enable this live folder");
    ASSERT_TRUE(enable);
    enable->setFocus();
    press(Qt::Key_Return);
    settle();
    EXPECT_TRUE(live->is_enabled());
    EXPECT_EQ(fake.calls.join(u'|'), QStringLiteral("changed Pictures"));
    EXPECT_EQ(buttons(), QStringLiteral("Import…"));
}

TEST_F(LiveFoldersTest, ALongSynchronisationHasALineThatEndsIt)
{
    const Folder live = addLive("100 % Pictures", label);
    const Folder below = addLive("Below", live);
    const auto line = [this] {
        QStringList texts;
        for (const auto *each : sidebar().findChildren<QLabel *>()) {
            texts.append(each->isVisible() ? each->text() : QString());
        }
        return texts.join(u'\n').trimmed();
    };
    fake.start(*live);
    fake.start(*below);
    EXPECT_TRUE(waitFor([&] { return line() == QStringLiteral("Syncing 100 % Pictures"); })) << qPrintable(line());
    fake.setStatus(*live, {.isSyncing = true, .filesDone = 120, .filesTotal = 4201, .isSwept = false, .reason = {}});
    EXPECT_TRUE(waitFor([&] { return line() == QStringLiteral("Syncing 100 % Pictures: 120 of 4,201"); }))
        << qPrintable(line());
    auto *cancel = named<QToolButton>("Cancel");
    ASSERT_TRUE(cancel);
    cancel->click();
    EXPECT_EQ(fake.calls.join(u'|'), QStringLiteral("stop 100 % Pictures"));
    EXPECT_TRUE(waitFor([&] { return line() == QStringLiteral("Stopping…"); })) << qPrintable(line());
    fake.setStatus(*live, {.isSyncing = true, .filesDone = 121, .filesTotal = 4201, .isSwept = false, .reason = {}});
    settle();
    EXPECT_EQ(line(), QStringLiteral("Stopping…")) << "though what was read is still being saved";
    fake.end(*below);
    fake.end(*live);
    EXPECT_TRUE(waitFor([&] { return line().isEmpty(); }));
}

TEST_F(LiveFoldersTest, WhatComesInLeavesSelectionAndViewWhereTheyAre)
{
    const Folder live = addLive("Pictures", label);
    const auto addImages = [&](const QString &prefix, int count) {
        for (int i = 0; i < count; ++i) {
            const auto item = context().insertNewObject<ZQLibraryImage>();
            item->setTitle(prefix + QStringLiteral("%1").arg(i, 4, 10, QLatin1Char('0')));
            item->setActive(true);
            item->setManaged(false);
            item->setWatchingFolder(live.get());
        }
        save();
    };
    addImages(QStringLiteral("m"), 300);
    show(live);
    select({QStringLiteral("m0002")});
    grid().setScrollOffset(grid().gridLayout().contentHeight() / 2);
    settle();
    const auto topOf = [&](const QString &title) { return grid().visualRect(shown().indexOf(title)).top(); };
    const QString seen = browser().content().item(grid().visibleIndexes().first()).title;
    const int before = topOf(seen);
    ASSERT_NE(seen, QStringLiteral("m0000"));
    addImages(QStringLiteral("a"), 100);
    EXPECT_EQ(shown().size(), 400);
    EXPECT_EQ(selected(), QStringList{QStringLiteral("m0002")});
    const int aRow = grid().visualRect(0).height() + 40;
    EXPECT_NEAR(topOf(seen), before, aRow) << "columns shift";
    select({seen});
    const int selectedTop = topOf(seen);
    addImages(QStringLiteral("b"), 100);
    EXPECT_EQ(selected(), QStringList{seen});
    EXPECT_NEAR(topOf(seen), selectedTop, aRow);
    grid().setSelection({});
    grid().setScrollOffset(0);
    addImages(QStringLiteral("0"), 5);
    EXPECT_EQ(grid().scrollOffset(), 0) << "what comes first is seen at the top";
}

TEST_F(LiveFoldersTest, FoldersThatComeInLeaveTheSidebarWhereItIs)
{
    const Folder live = addLive("Pictures", label);
    for (int i = 0; i < 60; ++i) {
        add<ZQSidebarWatchedFolder>(QStringLiteral("m%1").arg(i, 2, 10, QLatin1Char('0')), live);
    }
    save();
    tree()->setExpanded(index(live), true);
    const Item seen = live->orderedChildren()[40];
    tree()->scrollTo(index(seen), QAbstractItemView::PositionAtTop);
    const int before = row(seen).top();
    EXPECT_FALSE(tree()->viewport()->rect().intersects(row(a))) << "what is selected is out of view";
    live->addChild(add<ZQSidebarWatchedFolder>(QStringLiteral("first"), live).get(), 0);
    add<ZQSidebarWatchedFolder>(QStringLiteral("last"), live);
    save();
    EXPECT_EQ(index(seen).row(), 41);
    EXPECT_EQ(row(seen).top(), before);
    EXPECT_EQ(sidebar().selectedItems(), QList<ZQObjectID>{a->objectID()});
}

TEST_F(LiveFoldersTest, ThePanelSaysWhereItemsLie)
{
    const Folder live = addLive("Cats & Dogs", label);
    const Folder below = addLive("Below", live);
    const QString first = live->folderPath() + QStringLiteral("/red.png");
    for (const auto &[title, in] : {std::pair("red", live), {"clear", live}, {"moving", below}}) {
        const auto item = image(QLatin1StringView(title));
        item->setWatchingFolder(in.get());
    }
    ASSERT_TRUE(QFile::copy(image(QStringLiteral("red"))->itemURL(), first));
    image(QStringLiteral("red"))->setManaged(false);
    image(QStringLiteral("red"))->updateFileURLsForURL(first);
    save();
    const auto place = [this] {
        const auto *shown = window().findChild<LivePlace *>();
        return shown->isVisible() ? shown->toolTip() : QString();
    };
    for (const auto &[titles, path] : {std::pair(QStringList{"red"}, first),
                                       {QStringList{"red", "clear"}, live->folderPath()},
                                       {QStringList{"red", "moving"}, QString()},
                                       {QStringList{"pages"}, QString()},
                                       {QStringList{"red", "pages"}, QString()}}) {
        select(titles);
        EXPECT_EQ(place().section(u'\n', 0, 0), path) << qPrintable(titles.join(u' '));
    }
    select({QStringLiteral("red")});
    auto *shown = window().findChild<LivePlace *>();
    EXPECT_LE(shown->fontMetrics().horizontalAdvance(shown->text()), shown->width());
    EXPECT_TRUE(shown->accessibleName().endsWith(first));

    DesktopListener desktop;
    shown->click();
    select({QStringLiteral("red"), QStringLiteral("clear")});
    shown->click();
    const QUrl opened = QUrl::fromLocalFile(live->folderPath());
    EXPECT_EQ(desktop.opened, (QList<QUrl>{opened, opened})) << "the folder, of one file as of several";
}
