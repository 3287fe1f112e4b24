#include "Classes/Interface/InfoPanel/InfoPanelViewController.h"

#include "Classes/Browsing/Content/ContentFetcher.h"
#include "Classes/Browsing/Index/ItemCount.h"
#include "Classes/Browsing/Search/SearchManager.h"
#include "Classes/Browsing/Search/SearchToken.h"
#include "Classes/Editing/ItemEdits.h"
#include "Classes/Editing/LibraryCommands.h"
#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/InfoPanel/DocumentSize.h"
#include "Classes/Interface/InfoPanel/LivePlace.h"
#include "Classes/Interface/InfoPanel/MissedFiles.h"
#include "Classes/Interface/InfoPanel/PaletteStrip.h"
#include "Classes/Interface/InfoPanel/TagField.h"
#include "Classes/Interface/ItemPictures.h"
#include "Classes/Interface/RatingField.h"
#include "Classes/Tags/FileTags.h"
#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/OpenMetaPrefs.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Widgets/ZQIcon.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <QAction>
#include <QBoxLayout>
#include <QDesktopServices>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPainter>
#include <QPlainTextEdit>
#include <QUrl>

#include <algorithm>

namespace {

// The address that opens, when the text is one.
QUrl linkOf(const QString &text)
{
    const QUrl url(text.trimmed());
    const bool isLink = url.scheme() == QStringLiteral("http") || url.scheme() == QStringLiteral("https");
    return isLink && !url.host().isEmpty() ? url : QUrl();
}

// Differing values stand in the placeholder: typing replaces them, leaving the field does not.
// Leaves cursor and selection alone where nothing changes, and all selected where all was.
void setShown(QLineEdit *field, const QString &text)
{
    if (field->text() == text) {
        return;
    }
    const bool isAllSelected = field->hasFocus() && field->hasSelectedText() && field->selectedText() == field->text();
    field->setText(text);
    field->setCursorPosition(0);
    if (isAllSelected) {
        field->selectAll();
    }
}

void showIn(QLineEdit *field, const CommonText &value, const QString &whenEmpty)
{
    field->setPlaceholderText(value.differs ? zqLocalized("Multiple values") : whenEmpty);
    if (!field->hasFocus() || !field->isModified()) {
        setShown(field, value.differs ? QString() : value.text);
    }
}

// Of the files that are there, and how many are not.
QString sizeOf(const SelectionSummary &summary)
{
    const QString size = QLocale().formattedDataSize(summary.bytes, 1, QLocale::DataSizeSIFormat);
    if (summary.missing == 0) {
        return size;
    }
    if (summary.count == 1) {
        return zqLocalized("the file is missing");
    }
    const QString missing = summary.missing == 1
                                ? zqLocalized("1 file is missing")
                                : zqFormat(zqLocalized("%@ files are missing"), {QLocale().toString(summary.missing)});
    return size + QStringLiteral(" · ") + missing;
}

} // namespace

class InfoPanelViewController::Preview : public QWidget
{
public:
    Preview(BrowserViewController &browser, QWidget *parent) : QWidget(parent), m_browser(browser)
    {
        setFixedHeight(176);
        setAccessibleName(zqLocalized("Preview"));
        connect(&browser.grid().thumbnailLoader(), &ZQThumbnailLoader::loaded, this, [this](const QString &path) {
            if (path == m_request.path) {
                update();
            }
        });
    }
    void setItem(const ZQThumbnailRequest &request, QSize pixelSize)
    {
        m_request = request;
        m_pixelSize = pixelSize;
        update();
    }

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.setPen(Qt::NoPen);
        painter.setBrush(zqColor(ZQColorRole::Cell));
        painter.drawRoundedRect(rect(), 6, 6);
        const QSize room = size() - QSize(26, 26);
        const auto [image, tone] = m_browser.grid().thumbnailLoader().thumbnail(
            m_request, int(std::max(room.width(), room.height()) * devicePixelRatioF()));
        if (image.isNull()) {
            return;
        }
        const QSizeF natural = m_pixelSize.isEmpty() ? QSizeF(image.size()) : QSizeF(m_pixelSize);
        const QSize shown = natural.scaled(room, Qt::KeepAspectRatio).toSize();
        const QRect target(QPoint((width() - shown.width()) / 2, (height() - shown.height()) / 2), shown);
        zqPaintArtworkGround(painter, target, zqArtworkGround(tone, ZQTheme::current().isDark()));
        painter.drawImage(target,
                          image.scaled(shown * devicePixelRatioF(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }

private:
    BrowserViewController &m_browser;
    ZQThumbnailRequest m_request;
    QSize m_pixelSize;
};

InfoPanelViewController::InfoPanelViewController(WindowContext &window, BrowserViewController &browser, QWidget *parent)
    : QScrollArea(parent), m_window(window), m_browser(browser), m_body(new QWidget(this)),
      m_nothing(new QLabel(zqLocalized("Nothing selected"))), m_column(new QVBoxLayout),
      m_preview(new Preview(browser, m_body)), m_title(new QLineEdit(m_body)), m_kind(new QLabel(m_body)),
      m_place(new LivePlace(m_body)), m_rating(new RatingField(m_body)), m_colorBox(new QWidget(m_body)),
      m_colors(new PaletteStrip(window.user, m_colorBox)), m_tags(new TagField(m_body)),
      m_notes(new QPlainTextEdit(m_body)), m_rows(new QGridLayout), m_missed(new MissedFiles(this)),
      m_summaryTicket(window.fetcher, ContentFetcher::Priority::Summary)
{
    connect(m_missed, &MissedFiles::becameSure, this, &InfoPanelViewController::refresh);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus); // its fields take it
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto *page = new QWidget(this);
    page->setObjectName(QStringLiteral("InfoPanel"));
    page->setAttribute(Qt::WA_StyledBackground);
    setWidget(page);
    auto *pageLayout = new QVBoxLayout(page);
    pageLayout->setContentsMargins(16, 14, 16, 14);
    m_nothing->setObjectName(QStringLiteral("Muted"));
    m_nothing->setAlignment(Qt::AlignCenter);
    pageLayout->addWidget(m_nothing);
    pageLayout->addWidget(m_body);
    pageLayout->addStretch(1);
    m_body->setLayout(m_column);
    m_column->setContentsMargins(0, 0, 0, 0);
    m_column->setSpacing(14);
    m_column->addWidget(m_preview);
    makeHead();
    connect(m_colors, &PaletteStrip::colorChosen, this, &InfoPanelViewController::searchColor);
    connect(m_colors, &PaletteStrip::mainColorChosen, &m_browser, [this](const QString &name) {
        m_browser.refine(FacetKind::Color,
                         SearchToken::ofField(SearchField::Color).name() + u' ' + SearchManager::quoted(name));
    });
    addSection(zqLocalized("COLORS"), m_colors, m_colorBox);
    addSection(zqLocalized("TAGS"), m_tags);
    connect(m_tags, &TagField::edited, this, [this](const QStringList &tags) { tagItems(m_items, tags); });
    m_notes->setAccessibleName(zqLocalized("Notes"));
    m_notes->setFixedHeight(72);
    m_notes->setTabChangesFocus(true);
    m_notes->installEventFilter(this);
    addSection(zqLocalized("NOTES"), m_notes);
    makeRows();
    m_column->addLayout(m_rows);
    showNothing();
}

void InfoPanelViewController::makeHead()
{
    m_title->setObjectName(QStringLiteral("TitleField"));
    m_title->setAccessibleName(zqLocalized("Title"));
    m_title->installEventFilter(this);
    connect(m_title, &QLineEdit::editingFinished, this, &InfoPanelViewController::commitTitle);
    connect(m_title, &QLineEdit::returnPressed, this, &InfoPanelViewController::returnToItems);
    connect(m_title, &QLineEdit::textChanged, this, [this](const QString &text) {
        QFont plain = m_title->font();
        plain.setStyleStrategy(QFont::PreferDefault);
        m_title->setFont(ZQTheme::fontForName(plain, text));
    });
    m_kind->setObjectName(QStringLiteral("SmallMuted"));
    m_kind->setWordWrap(true);
    connect(m_rating, &RatingField::edited, this,
            [this](double rating) { m_browser.rate(OpenMeta::starsForRating(rating)); });
    connect(&m_browser, &BrowserViewController::rated, this, [this](int stars) { m_rating->setRating(stars, false); });
    auto *names = new QVBoxLayout;
    names->setSpacing(1);
    names->addWidget(m_title);
    names->addWidget(m_kind);
    names->addWidget(m_place);
    names->addSpacing(6);
    names->addWidget(m_rating);
    m_column->addLayout(names);
}

void InfoPanelViewController::makeRows()
{
    m_rows->setHorizontalSpacing(8);
    m_rows->setVerticalSpacing(5);
    m_rows->setColumnMinimumWidth(0, 70);
    m_rows->setColumnStretch(1, 1);
    m_size = addValue(zqLocalized("Size"));
    m_documentSize = new DocumentSize(this);
    connect(m_documentSize, &DocumentSize::didRead, this, [this](const QString &path, const QString &text) {
        const auto item = m_items.size() == 1 ? m_window.libraryItem(m_items.first()) : ZQRef<ZQLibraryBaseItem>();
        if (item && item->itemURL() == path) {
            m_size->setText(text);
        }
    });
    m_imported = addValue(zqLocalized("Imported"));
    m_modified = addValue(zqLocalized("Modified"));
    m_source = addField(zqLocalized("Source"));
    m_license = addField(zqLocalized("License"));
    m_openSource = m_source->addAction(ZQIcon::icon(QStringLiteral("open-outside")), QLineEdit::TrailingPosition);
    connect(m_openSource, &QAction::triggered, this, [this] { QDesktopServices::openUrl(linkOf(m_source->text())); });
    connect(m_source, &QLineEdit::textChanged, this, [this](const QString &text) {
        const QUrl link = linkOf(text);
        m_openSource->setVisible(link.isValid());
        m_openSource->setToolTip(zqFormat(zqLocalized("Open %@"), {link.host()}));
    });
    m_openSource->setVisible(false);
}

void InfoPanelViewController::addSection(const QString &text, QWidget *content, QWidget *box)
{
    auto *layout = box ? new QVBoxLayout(box) : new QVBoxLayout;
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(5);
    layout->addWidget(caption(text));
    layout->addWidget(content);
    if (box) {
        m_column->addWidget(box);
    } else {
        m_column->addLayout(layout);
    }
}

QLabel *InfoPanelViewController::caption(const QString &text)
{
    auto *label = new QLabel(text, m_body);
    label->setObjectName(QStringLiteral("Caption"));
    return label;
}

QLabel *InfoPanelViewController::addValue(const QString &name)
{
    auto *label = new QLabel(m_body);
    label->setObjectName(QStringLiteral("Small"));
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setAccessibleDescription(name); // what is heard first is the value
    addRow(name, label);
    return label;
}

QLineEdit *InfoPanelViewController::addField(const QString &name)
{
    auto *field = new QLineEdit(m_body);
    field->setObjectName(QStringLiteral("InlineField"));
    field->setAccessibleName(name);
    field->installEventFilter(this);
    connect(field, &QLineEdit::editingFinished, this, [this, field] { commitField(field); });
    addRow(name, field);
    return field;
}

void InfoPanelViewController::addRow(const QString &name, QWidget *value)
{
    auto *label = new QLabel(name, m_body);
    label->setObjectName(QStringLiteral("SmallMuted"));
    label->setBuddy(value);
    const int row = m_rows->rowCount();
    const bool isField = qobject_cast<QLineEdit *>(value) != nullptr;
    m_rows->addWidget(label, row, 0, isField ? Qt::AlignVCenter : Qt::AlignTop);
    m_rows->addWidget(value, row, 1, isField ? Qt::AlignVCenter : Qt::AlignTop);
}

bool InfoPanelViewController::refresh()
{
    const QList<ZQObjectID> items = m_browser.selectedItems();
    if (items != m_items || !isTypingNotes()) { // what is typed is one edit, not one a batch of another
        commitNotes();
    }
    if (items.isEmpty()) {
        showNothing();
        return true;
    }
    if (items.size() <= ItemEdits::mostAtOnce) {
        showSummary(items, *SelectionSummary::of(items, m_window.context, [] { return true; }));
        return true;
    }
    if (items != m_items) { // until it is known what they have in common
        m_nothing->setText(zqFormat(zqLocalized("%@ items selected"), {QLocale().toString(items.size())}));
        m_items.clear();
        m_body->hide();
        m_nothing->show();
    }
    if (m_window.isBusy()) {
        return false;
    }
    m_summaryTicket.run([this, items](ZQManagedObjectContext &context, const auto &isWanted) {
        const auto summary = SelectionSummary::of(items, context, isWanted);
        return [this, items, summary] {
            if (summary && m_browser.selectionCount() == items.size()) {
                showSummary(items, *summary);
            }
        };
    });
    return true;
}

void InfoPanelViewController::showNothing()
{
    m_missed->forget();
    m_items.clear();
    m_tags->dropTyped();
    m_summary = {};
    m_nothing->setText(zqLocalized("Nothing selected"));
    m_body->hide();
    m_nothing->show();
}

void InfoPanelViewController::showSummary(const QList<ZQObjectID> &items, const SelectionSummary &found)
{
    const auto first = m_window.libraryItem(items.first());
    if (!first || found.count == 0) {
        showNothing();
        return;
    }
    const SelectionSummary summary = m_missed->settled(found, m_summary, items == m_items);
    const bool isOne = items.size() == 1;
    const bool isTyping = items == m_items && isTypingNotes();
    const auto isTyped = [isSame = items == m_items](const QLineEdit *field) {
        return isSame && field->hasFocus() && field->isModified();
    };
    const CommonText notesBefore = m_summary.notes;
    if (items != m_items) {
        m_tags->dropTyped();
    }
    const bool keepsTitle = isTyped(m_title) || isTitleToCome(*first, items == m_items);
    m_items = items;
    m_summary = summary;
    showPicture(*first, isOne);
    if (!keepsTitle) {
        setShown(m_title, isOne ? first->title() : zqItemCount(items.size()));
    }
    m_title->setReadOnly(!isOne);
    m_title->setFocusPolicy(isOne ? Qt::StrongFocus : Qt::NoFocus);
    m_kind->setText(summary.kind.shown() + QStringLiteral(" · ") + sizeOf(summary));
    m_rating->setRating(summary.rating, summary.ratingDiffers);
    showTags(summary);
    m_notes->setPlaceholderText(summary.notes.differs ? zqLocalized("Multiple values") : QString());
    if (isTyping) {
        m_summary.notes = notesBefore; // what the typing began from
    } else {
        m_notes->setPlainText(summary.notes.differs ? QString() : summary.notes.text);
    }
    showSize(*first);
    showPlace(*first);
    m_imported->setText(summary.imported.shown());
    m_modified->setText(summary.modified.shown());
    for (const auto &[field, value] : {std::pair{m_source, summary.source}, {m_license, summary.license}}) {
        if (!isTyped(field)) {
            showIn(field, value, zqLocalized("None given"));
        }
    }
    m_nothing->hide();
    m_body->show();
}

void InfoPanelViewController::showPicture(const ZQLibraryBaseItem &item, bool isOne)
{
    m_preview->setItem(ItemPictures::thumbnailOf(item), QSize(item.pixelWidth(), item.pixelHeight()));
    showColors(item);
    m_colorBox->setVisible(isOne && !m_colors->isEmpty());
}

void InfoPanelViewController::showSize(const ZQLibraryBaseItem &item)
{
    QString text = m_summary.size.shown();
    const QString path = item.itemURL();
    if (m_items.size() == 1 && item.pixelWidth() == 0 && DocumentSize::isDocument(path)) {
        const QString known = m_documentSize->textFor(path);
        text = known.isEmpty() ? text : known;
    }
    m_size->setText(text);
}

void InfoPanelViewController::showPlace(const ZQLibraryBaseItem &item)
{
    const bool isOne = m_items.size() == 1;
    const bool isLive = !m_summary.liveFolder.differs && !m_summary.liveFolder.text.isEmpty();
    m_place->setPath(!isLive ? QString() : isOne ? item.itemURL() : m_summary.liveFolder.text, !isOne);
}

void InfoPanelViewController::showTags(const SelectionSummary &summary)
{
    m_tags->setTags(summary.tags, summary.hasOtherTags);
    QStringList known = OpenMetaPrefs::recentTags();
    if (const auto label = ZQSidebarBaseItem::tagsLabelInManagedObjectContext(m_window.context)) {
        for (const auto &tag : label->orderedChildren()) {
            if (!known.contains(tag->title())) {
                known.append(tag->title());
            }
        }
    }
    m_tags->setKnownTags(known);
}

void InfoPanelViewController::showColors(const ZQLibraryBaseItem &item)
{
    if (const ZQPalette palette = ZQPalette::fromBytes(item.palette()); !palette.colors.isEmpty()) {
        m_colors->showPalette(palette, item.title());
        return;
    }
    QList<int> codes = {item.mainColor()};
    for (const auto &tag : item.tags()) {
        if (tag->active() && !ZQSidebarTag::colorNameForValue(tag->kind()).isEmpty() && !codes.contains(tag->kind())) {
            codes.append(tag->kind());
        }
    }
    const bool hasMainColor = !ZQSidebarTag::colorNameForValue(item.mainColor()).isEmpty();
    m_colors->showMainColors(hasMainColor ? codes : QList<int>());
}

void InfoPanelViewController::searchColor(const QString &argument, bool adds)
{
    m_browser.search(SearchToken::ofField(SearchField::Color).name() + u' ' + argument, adds);
}

QStringList InfoPanelViewController::commonTagsForItems(const QList<ZQObjectID> &items) const
{
    if (items == m_items && items.size() > ItemEdits::mostAtOnce) {
        return m_summary.tags; // reading them again would hold up the window
    }
    return SelectionSummary::of(items, m_window.context, [] { return true; })->tags;
}

bool InfoPanelViewController::tagItems(const QList<ZQObjectID> &items, const QStringList &withTags)
{
    return ItemEdits(m_window).tagItems(items, commonTagsForItems(items), withTags);
}

// The next key is for the items again.
void InfoPanelViewController::returnToItems()
{
    if (m_browser.grid().isVisible()) {
        m_browser.grid().setFocus();
    }
}

void InfoPanelViewController::editTitle()
{
    m_title->setFocus();
    m_title->selectAll();
}

bool InfoPanelViewController::commitEditing()
{
    commitNotes();
    const QString typed = m_title->text();
    commitTitle();
    return m_items.size() != 1 || m_title->text() == typed;
}

void InfoPanelViewController::commitTitle()
{
    if (m_items.size() != 1 || m_title->isReadOnly()) {
        return;
    }
    const auto item = m_window.libraryItem(m_items.first());
    // What nobody typed is not taken: the field may be behind what another edit made of the title.
    if (!item || !m_title->isModified() ||
        m_title->text() == (m_titleToCome.isEmpty() ? item->title() : m_titleToCome)) {
        return;
    }
    const QString typed = m_title->text();
    LibraryCommands(m_window).renameItem(m_items.first(), typed);
    if (m_window.isBusy()) { // it waits for its turn
        m_titleToCome = typed;
        m_title->setText(typed); // typed and taken: undo is the window's from here on
    } else {
        m_title->setText(item->title());
    }
}

// Whether the field shows the title that the item is going to have.
bool InfoPanelViewController::isTitleToCome(const ZQLibraryBaseItem &item, bool isSameSelection)
{
    if (!isSameSelection || !m_window.isBusy() || item.title() == m_titleToCome) {
        m_titleToCome.clear();
    }
    return !m_titleToCome.isEmpty();
}

bool InfoPanelViewController::isTypingNotes() const
{
    const QString shown = m_summary.notes.differs ? QString() : m_summary.notes.text;
    return m_notes->hasFocus() && m_notes->toPlainText() != shown;
}

void InfoPanelViewController::commitNotes()
{
    QString text = m_notes->toPlainText();
    const QString shown = m_summary.notes.differs ? QString() : m_summary.notes.text;
    if (!m_items.isEmpty() && text != shown) {
        const auto item = m_items.size() == 1 ? m_window.libraryItem(m_items.first()) : ZQRef<ZQLibraryBaseItem>();
        if (item && item->notes() != shown) { // another program's came while the person was typing
            text = FileTags::joinedComments(text, item->notes());
        }
        m_summary.notes = {text, false};
        ItemEdits(m_window).setNotes(m_items, text);
    }
}

void InfoPanelViewController::commitField(QLineEdit *field)
{
    const bool isSource = field == m_source;
    CommonText &shown = isSource ? m_summary.source : m_summary.license;
    const QString text = field->text().trimmed();
    if (m_items.isEmpty() || !field->isModified() || text == (shown.differs ? QString() : shown.text)) {
        return;
    }
    field->setModified(false);
    shown = {text, false};
    ItemEdits edits(m_window);
    isSource ? edits.setSource(m_items, text) : edits.setLicense(m_items, text);
}

bool InfoPanelViewController::eventFilter(QObject *object, QEvent *event)
{
    if (object == m_notes && event->type() == QEvent::FocusOut) {
        commitNotes();
    }
    const bool isEscape = event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape;
    if (isEscape && (object == m_source || object == m_license)) {
        auto *field = static_cast<QLineEdit *>(object);
        field->setModified(false);
        m_browser.grid().setFocus();
        showIn(field, object == m_source ? m_summary.source : m_summary.license, zqLocalized("None given"));
        return true;
    }
    if (isEscape && object == m_notes) {
        returnToItems();
        return true;
    }
    if (isEscape && object == m_title) {
        const auto item = m_items.size() == 1 ? m_window.libraryItem(m_items.first()) : ZQRef<ZQLibraryBaseItem>();
        m_title->setText(item ? item->title() : m_title->text());
        m_browser.grid().setFocus();
        return true;
    }
    return QScrollArea::eventFilter(object, event);
}
