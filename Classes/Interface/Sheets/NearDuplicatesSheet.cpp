#include "Classes/Interface/Sheets/NearDuplicatesSheet.h"

#include "Classes/Browsing/Content/ContentFetcher.h"
#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Classes/Editing/KeepOne.h"
#include "Classes/Interface/ItemPictures.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Widgets/ZQAccessible.h"
#include "Kit/Widgets/ZQProgressLine.h"

#include <QBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
#include <QStackedWidget>

#include <algorithm>

namespace {

constexpr int closeCode = 1;
constexpr int sheetWidth = 840;
constexpr int listHeight = 340;
constexpr int groupsWidth = 220;
constexpr int groupHeight = 28;
constexpr int pictureSide = 140;
constexpr int pathRole = Qt::UserRole;
constexpr int itemRole = Qt::UserRole + 1;
constexpr qsizetype pictureBytes = qsizetype(64) << 20;
constexpr qsizetype longestTitle = 40;

QString detailsOf(const ZQLibraryBaseItem &item)
{
    const QString bytes = QLocale().formattedDataSize(item.byteSize(), 1, QLocale::DataSizeSIFormat);
    const QString size = item.pixelSizeString();
    return size.isEmpty() ? bytes : size + QStringLiteral(" · ") + bytes;
}

QString proposal(const NearDuplicateGroup &group)
{
    return zqFormat(zqLocalized("Proposed to be kept. %@."), {group.reason});
}

} // namespace

NearDuplicatesSheet::NearDuplicatesSheet(QWidget *window, WindowContext &context,
                                         const std::optional<QList<ZQObjectID>> &items)
    : Sheet(window, zqLocalized("Near-Duplicates")), m_context(context), m_pages(new QStackedWidget(this)),
      m_progress(new ZQProgressLine(false, this)), m_nothing(new QLabel(this)), m_state(new QLabel(this)),
      m_loader(pictureBytes), m_queue(std::make_unique<ZQOperationQueue>(QStringLiteral("near-duplicates"), 1))
{
    setWidth(sheetWidth);
    m_loader.setDecoder(&ItemPictures::pictureFor);
    m_state->setObjectName(QStringLiteral("SmallMuted"));
    m_state->setWordWrap(true);
    auto *waiting = new QWidget(this);
    auto *column = new QVBoxLayout(waiting);
    m_progress->setText(items ? zqCounted({"Looking for pictures that look alike in %@ item…",
                                           "Looking for pictures that look alike among %@ items…"},
                                          items->size())
                              : zqLocalized("Looking for pictures that look alike in the whole library…"));
    m_progress->setFraction(-1);
    m_nothing->setObjectName(QStringLiteral("Muted"));
    m_nothing->setAlignment(Qt::AlignCenter);
    m_nothing->setWordWrap(true);
    column->addWidget(m_progress);
    column->addWidget(m_nothing, 1);
    m_pages->addWidget(waiting);
    makeGroups();
    content()->addWidget(m_pages);
    content()->addWidget(m_state);
    m_keep = new QPushButton(zqLocalized("Keep Chosen, Delete Others"), this);
    m_keep->setToolTip(zqLocalized("It takes over the projects and tags of the others, which are deleted"));
    m_leave = new QPushButton(zqLocalized("Leave as They Are"), this);
    for (QPushButton *button : {m_leave, m_keep}) {
        button->setAutoDefault(false);
        button->hide();
        footer()->addWidget(button);
    }
    connect(m_keep, &QPushButton::clicked, this, &NearDuplicatesSheet::keepChosen);
    connect(m_leave, &QPushButton::clicked, this, &NearDuplicatesSheet::endGroup);
    addButton(zqLocalized("Close"), closeCode, true);
    find(items);
}

NearDuplicatesSheet::~NearDuplicatesSheet()
{
    m_queue->cancelAllOperations();
}

void NearDuplicatesSheet::makeGroups()
{
    auto *page = new QWidget(this);
    m_groupList = new QListWidget(page);
    m_groupList->setAccessibleName(zqLocalized("Groups"));
    m_groupList->setFixedWidth(groupsWidth);
    m_groupList->setMinimumHeight(listHeight);
    m_groupList->setUniformItemSizes(true);
    m_groupList->setTextElideMode(Qt::ElideMiddle);
    m_pictures = new QListWidget(page);
    m_pictures->setAccessibleName(zqLocalized("The one to keep"));
    m_pictures->setViewMode(QListView::IconMode);
    m_pictures->setMovement(QListView::Static);
    m_pictures->setResizeMode(QListView::Adjust);
    m_pictures->setIconSize(QSize(pictureSide, pictureSide));
    m_pictures->setSpacing(8);
    m_pictures->setWordWrap(true);
    m_reason = new QLabel(page);
    m_reason->setObjectName(QStringLiteral("Small"));
    m_reason->setWordWrap(true);
    connect(m_groupList, &QListWidget::currentRowChanged, this, &NearDuplicatesSheet::showGroup);
    connect(m_pictures, &QListWidget::currentRowChanged, this, &NearDuplicatesSheet::showReason);
    connect(&m_loader, &ZQThumbnailLoader::loaded, this, [this](const QString &path) {
        for (int row = 0; row < m_pictures->count(); ++row) {
            if (m_pictures->item(row)->data(pathRole).toString() == path) {
                showPicture(*m_pictures->item(row));
            }
        }
    });
    auto *right = new QVBoxLayout;
    right->addWidget(m_pictures, 1);
    right->addWidget(m_reason);
    auto *row = new QHBoxLayout(page);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(12);
    row->addWidget(m_groupList);
    row->addLayout(right, 1);
    m_pages->addWidget(page);
}

void NearDuplicatesSheet::find(const std::optional<QList<ZQObjectID>> &items)
{
    const auto index = ContentFetcher::Ticket(m_context.fetcher, ContentFetcher::Priority::Summary).index();
    m_queue->addOperationWithBlock(
        [self = QPointer(this), store = m_context.context.persistentStoreCoordinator(), index, items] {
            ZQManagedObjectContext context(store);
            ZQError error;
            const auto found = NearDuplicates::find(
                context, index.get(), items,
                [self](double fraction) {
                    zqOnMainThread([self, fraction] {
                        if (self) {
                            self->m_progress->setFraction(fraction);
                        }
                    });
                },
                &error);
            zqOnMainThread([self, found, error] {
                if (self && found) {
                    self->didFind(*found);
                } else if (self) {
                    self->fail(error.localizedDescription());
                }
            });
        });
}

void NearDuplicatesSheet::fail(const QString &reason)
{
    m_progress->hide();
    say(zqFormat(zqLocalized("The library could not be looked through: %@"), {reason}));
}

void NearDuplicatesSheet::didFind(const QList<NearDuplicateGroup> &groups)
{
    m_groups = groups.first(std::min(groups.size(), mostShown));
    m_progress->hide();
    if (groups.isEmpty()) {
        say(zqLocalized("No pictures look alike."));
        return;
    }
    QList<ZQObjectID> best;
    for (const NearDuplicateGroup &group : std::as_const(m_groups)) {
        best.append(group.items.value(group.best));
    }
    const auto kept = ZQLibraryBaseItem::itemsWithIDs(best, m_context.context); // held while their titles are read
    for (const NearDuplicateGroup &group : std::as_const(m_groups)) {
        const auto item = m_context.libraryItem(group.items.value(group.best));
        const QString title = item ? zqShortened(item->title(), longestTitle) : QString();
        auto *row = new QListWidgetItem(
            zqFormat(zqLocalized("%@ (%@)"), {title, QLocale().toString(group.items.size())}), m_groupList);
        row->setSizeHint(QSize(0, groupHeight));
        row->setData(Qt::AccessibleTextRole, title);
        row->setData(Qt::AccessibleDescriptionRole, zqCounted({"1 picture", "%@ pictures"}, group.items.size()));
    }
    m_pages->setCurrentIndex(1);
    m_keep->show();
    m_leave->show();
    m_groupList->setCurrentRow(0);
    m_groupList->setFocus();
    if (groups.size() > mostShown) {
        say(zqFormat(zqLocalized("The %@ largest of %@ groups. Look again for the others."),
                     {QLocale().toString(mostShown), QLocale().toString(groups.size())}));
    } else {
        showState();
    }
}

void NearDuplicatesSheet::showState()
{
    say(m_groups.isEmpty() ? zqLocalized("That was the last group.")
                           : zqCounted({"1 group is left", "%@ groups are left"}, m_groups.size()));
}

void NearDuplicatesSheet::say(const QString &state)
{
    const bool hasGroups = m_pages->currentIndex() != 0;
    m_nothing->setText(hasGroups ? QString() : state); // in the middle of the room that is empty
    m_state->setText(hasGroups ? state : QString());
    zqAnnounce(this, state);
}

void NearDuplicatesSheet::showGroup(int row)
{
    m_pictures->clear();
    m_keep->setEnabled(row >= 0);
    m_leave->setEnabled(row >= 0);
    if (row < 0 || row >= m_groups.size()) {
        showReason();
        return;
    }
    const NearDuplicateGroup &group = m_groups.at(row);
    const auto shownOnes = group.items.first(std::min(group.items.size(), mostInGroup));
    const auto items = ZQLibraryBaseItem::itemsWithIDs(shownOnes, m_context.context);
    for (const auto &item : items) {
        if (!item->active()) {
            continue;
        }
        auto *shown = new QListWidgetItem(m_pictures);
        shown->setText(zqShortened(item->title(), longestTitle) + u'\n' + detailsOf(*item));
        shown->setSizeHint(QSize(pictureSide + 24, pictureSide + 56));
        shown->setData(pathRole, ItemPictures::thumbnailOf(*item).path);
        shown->setData(itemRole, QVariant::fromValue(item->objectID()));
        showPicture(*shown);
        if (item->objectID() == group.items.value(group.best)) {
            shown->setData(Qt::AccessibleDescriptionRole, proposal(group));
            m_pictures->setCurrentItem(shown);
        }
    }
    showReason();
}

void NearDuplicatesSheet::showPicture(QListWidgetItem &row)
{
    const auto item = m_context.libraryItem(row.data(itemRole).value<ZQObjectID>());
    const QImage image =
        item ? m_loader.image(ItemPictures::thumbnailOf(*item), int(pictureSide * devicePixelRatioF())) : QImage();
    QPixmap picture(QSize(pictureSide, pictureSide)); // of one size while it loads, so that nothing jumps
    picture.fill(Qt::transparent);
    if (!image.isNull()) {
        picture = QPixmap::fromImage(image.scaled(QSize(pictureSide, pictureSide) * devicePixelRatioF(),
                                                  Qt::KeepAspectRatio, Qt::SmoothTransformation));
        picture.setDevicePixelRatio(devicePixelRatioF());
    }
    QIcon icon(picture);
    icon.addPixmap(picture, QIcon::Selected); // untinted, since the colors are what is compared
    row.setIcon(icon);
}

void NearDuplicatesSheet::showReason()
{
    const int row = m_groupList->currentRow();
    const QListWidgetItem *chosen = m_pictures->currentItem();
    m_keep->setEnabled(chosen && m_pictures->count() > 1);
    if (!chosen || row < 0 || row >= m_groups.size()) {
        m_reason->clear();
        return;
    }
    const NearDuplicateGroup &group = m_groups.at(row);
    const bool isProposed = chosen->data(itemRole).value<ZQObjectID>() == group.items.value(group.best);
    QString text = isProposed ? proposal(group) : zqLocalized("Chosen to be kept, in place of the proposed one.");
    if (group.items.size() > mostInGroup) {
        text += u' ' + zqFormat(zqLocalized("The first %@ of %@ are shown; the others stay as they are."),
                                {QLocale().toString(mostInGroup), QLocale().toString(group.items.size())});
    }
    m_reason->setText(text);
}

void NearDuplicatesSheet::keepChosen()
{
    const QListWidgetItem *chosen = m_pictures->currentItem();
    if (!chosen) {
        return;
    }
    // Of what is shown, and nothing else: what came to the group by another way was not looked at.
    KeepOne::Choice choice{chosen->data(itemRole).value<ZQObjectID>(), {}};
    for (int row = 0; row < m_pictures->count(); ++row) {
        const auto item = m_pictures->item(row)->data(itemRole).value<ZQObjectID>();
        if (item != choice.kept) {
            choice.others.append(item);
        }
    }
    KeepOne(m_context).keep({choice});
    const bool isDone = std::any_of(choice.others.begin(), choice.others.end(), [this](const ZQObjectID &other) {
        const auto item = m_context.libraryItem(other);
        return !item || !item->active();
    });
    if (isDone) { // otherwise it was told why not
        endGroup();
    }
}

void NearDuplicatesSheet::endGroup()
{
    const int row = m_groupList->currentRow();
    if (row < 0 || row >= m_groups.size()) {
        return;
    }
    m_groups.removeAt(row);
    {
        const QSignalBlocker blocker(m_groupList);
        delete m_groupList->takeItem(row);
    }
    showGroup(m_groupList->currentRow());
    if (m_groups.isEmpty()) {
        m_pages->setCurrentIndex(0);
        m_keep->hide();
        m_leave->hide();
    } else {
        m_groupList->setFocus();
    }
    showState();
}
