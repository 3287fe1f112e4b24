#include "Classes/Interface/InfoPanelViewController.h"

#include "Classes/Interface/BrowserViewController.h"
#include "Classes/Interface/LibraryCommands.h"
#include "Classes/Interface/TagField.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <QBoxLayout>
#include <QFileInfo>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMimeDatabase>
#include <QPainter>
#include <QPlainTextEdit>
#include <QUrl>

#include <algorithm>
#include <cmath>

namespace {

constexpr qint64 mostItems = 500; // of a larger selection only the number is told

QString dateText(const QDateTime &date)
{
    if (!date.isValid()) {
        return zqLocalized("Unknown");
    }
    const QDateTime local = date.toLocalTime();
    const qint64 days = local.date().daysTo(QDate::currentDate());
    const QLocale locale;
    // The C locale's short time has seconds.
    const QString time = locale.language() == QLocale::C ? local.time().toString(QStringLiteral("HH:mm"))
                                                         : locale.toString(local.time(), QLocale::ShortFormat);
    if (days == 0) {
        return zqFormat(zqLocalized("Today, %@"), {time});
    }
    return days == 1 ? zqFormat(zqLocalized("Yesterday, %@"), {time})
                     : locale.toString(local.date(), QStringLiteral("d MMM yyyy"));
}

QString kindText(const ZQLibraryBaseItem &item)
{
    static const QMimeDatabase types;
    const QString comment =
        types.mimeTypeForFile(QStringLiteral("x.") + item.extension(), QMimeDatabase::MatchExtension).comment();
    return comment.isEmpty() ? item.extension().toUpper() : comment.left(1).toUpper() + comment.mid(1);
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
        const QImage image = m_browser.grid().thumbnailLoader().image(
            m_request, int(std::max(room.width(), room.height()) * devicePixelRatioF()));
        if (image.isNull()) {
            return;
        }
        const QSizeF natural = m_pixelSize.isEmpty() ? QSizeF(image.size()) : QSizeF(m_pixelSize);
        const QSize shown = natural.scaled(room, Qt::KeepAspectRatio).toSize();
        const QRect target(QPoint((width() - shown.width()) / 2, (height() - shown.height()) / 2), shown);
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
      m_colorBox(new QWidget(m_body)), m_colors(new QWidget(m_colorBox)), m_tags(new TagField(m_body)),
      m_notes(new QPlainTextEdit(m_body)), m_rows(new QGridLayout)
{
    setWidgetResizable(true);
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

    m_title->setObjectName(QStringLiteral("TitleField"));
    m_title->setAccessibleName(zqLocalized("Title"));
    m_title->installEventFilter(this);
    connect(m_title, &QLineEdit::editingFinished, this, &InfoPanelViewController::commitTitle);
    m_kind->setObjectName(QStringLiteral("SmallMuted"));
    m_kind->setWordWrap(true);
    auto *names = new QVBoxLayout;
    names->setSpacing(1);
    names->addWidget(m_title);
    names->addWidget(m_kind);
    m_column->addLayout(names);

    const auto section = [this](const QString &text, QWidget *content, QWidget *box) {
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
    };
    m_colors->setFixedHeight(22);
    auto *swatches = new QHBoxLayout(m_colors);
    swatches->setContentsMargins(0, 0, 0, 0);
    swatches->setSpacing(6);
    section(zqLocalized("COLORS"), m_colors, m_colorBox);
    section(zqLocalized("TAGS"), m_tags, nullptr);
    connect(m_tags, &TagField::edited, this, [this](const QStringList &tags) { tagItems(m_items, tags); });
    m_notes->setAccessibleName(zqLocalized("Notes"));
    m_notes->setFixedHeight(72);
    m_notes->setTabChangesFocus(true);
    m_notes->installEventFilter(this);
    section(zqLocalized("NOTES"), m_notes, nullptr);

    m_rows->setHorizontalSpacing(8);
    m_rows->setVerticalSpacing(5);
    m_rows->setColumnMinimumWidth(0, 70);
    m_rows->setColumnStretch(1, 1);
    const auto value = [this](const QString &name) {
        auto *label = new QLabel(m_body);
        label->setObjectName(QStringLiteral("Small"));
        label->setWordWrap(true);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        label->setAccessibleName(name);
        addRow(name, label);
        return label;
    };
    m_size = value(zqLocalized("Size"));
    m_imported = value(zqLocalized("Imported"));
    m_modified = value(zqLocalized("Modified"));
    m_source = value(zqLocalized("Source"));
    m_source->setOpenExternalLinks(true);
    m_source->setTextInteractionFlags(Qt::TextBrowserInteraction);
    m_license = value(zqLocalized("License"));
    m_column->addLayout(m_rows);
    showNothing();
}

QLabel *InfoPanelViewController::caption(const QString &text)
{
    auto *label = new QLabel(text, m_body);
    label->setObjectName(QStringLiteral("Caption"));
    return label;
}

void InfoPanelViewController::addRow(const QString &name, QWidget *value)
{
    auto *label = new QLabel(name, m_body);
    label->setObjectName(QStringLiteral("SmallMuted"));
    const int row = m_rows->rowCount();
    m_rows->addWidget(label, row, 0, Qt::AlignTop);
    m_rows->addWidget(value, row, 1, Qt::AlignTop);
}

void InfoPanelViewController::refresh()
{
    commitNotes();
    const qint64 count = m_browser.selectionCount();
    if (count == 0) {
        m_nothing->setText(zqLocalized("Nothing selected"));
        showNothing();
    } else if (count > mostItems) {
        m_nothing->setText(zqFormat(zqLocalized("%@ items selected"), {QLocale().toString(count)}));
        showNothing();
    } else {
        showItems(m_browser.selectedItems());
    }
}

void InfoPanelViewController::showNothing()
{
    m_items.clear();
    m_shownNotes.clear();
    m_body->hide();
    m_nothing->show();
}

void InfoPanelViewController::showItems(const QList<ZQObjectID> &items)
{
    const auto first = items.isEmpty() ? ZQRef<ZQLibraryBaseItem>() : m_window.libraryItem(items.first());
    if (!first) {
        showNothing();
        return;
    }
    m_items = items;
    const bool isOne = items.size() == 1;
    // One text for all, or the words for several.
    const auto common = [&](const auto &textOf) {
        const QString text = textOf(*first);
        const bool differs = std::any_of(items.begin(), items.end(), [&](const ZQObjectID &id) {
            const auto item = m_window.libraryItem(id);
            return item && textOf(*item) != text;
        });
        return differs ? zqLocalized("Multiple values") : text;
    };
    using Item = ZQLibraryBaseItem;
    m_preview->setItem(BrowserContent::thumbnailOf(*first), QSize(first->pixelWidth(), first->pixelHeight()));
    m_title->setText(isOne ? first->title() : zqFormat(zqLocalized("%@ items"), {QLocale().toString(items.size())}));
    m_title->setReadOnly(!isOne);
    qint64 bytes = 0;
    for (const ZQObjectID &id : items) {
        const auto item = m_window.libraryItem(id);
        bytes += item ? item->byteSize() : 0;
    }
    m_kind->setText(common(kindText) + QStringLiteral(" · ") +
                    QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat));
    showColors(*first);
    m_colorBox->setVisible(isOne && !ZQSidebarTag::colorNameForValue(first->mainColor()).isEmpty());

    const QStringList shared = commonTagsForItems(items);
    const bool hasOthers = std::any_of(items.begin(), items.end(), [&](const ZQObjectID &id) {
        const auto item = m_window.libraryItem(id);
        const auto tags = item ? item->tags() : QList<ZQRef<ZQSidebarTag>>();
        return std::any_of(tags.begin(), tags.end(), [&](const auto &tag) {
            return tag->active() && tag->isUserTag() && !shared.contains(tag->title());
        });
    });
    m_tags->setTags(shared, hasOthers);
    QStringList known;
    if (const auto label = ZQSidebarBaseItem::tagsLabelInManagedObjectContext(m_window.context)) {
        for (const auto &tag : label->orderedChildren()) {
            known.append(tag->title());
        }
    }
    m_tags->setKnownTags(known);

    m_shownNotes = common([](const Item &item) { return item.notes(); });
    m_notes->setPlainText(m_shownNotes);
    m_size->setText(common([](const Item &item) {
        return item.pixelWidth() > 0 ? QStringLiteral("%1 × %2").arg(item.pixelWidth()).arg(item.pixelHeight())
                                     : zqLocalized("Unknown");
    }));
    m_imported->setText(common([](const Item &item) { return dateText(item.import_date()); }));
    m_modified->setText(common([](const Item &item) { return dateText(item.modification_date()); }));
    const QString source =
        common([](const Item &item) { return item.webPageURL().isEmpty() ? item.webURL() : item.webPageURL(); });
    const QUrl url(source);
    const bool isLink = url.scheme() == QStringLiteral("http") || url.scheme() == QStringLiteral("https");
    m_source->setText(isLink
                          ? QStringLiteral("<a style=\"text-decoration:none\" href=\"%1\">%2 ↗</a>")
                                .arg(QString::fromLatin1(url.toEncoded()).toHtmlEscaped(), url.host().toHtmlEscaped())
                      : source.isEmpty() ? zqLocalized("None given")
                                         : source.toHtmlEscaped());
    const QString license = common([](const Item &item) { return item.license(); });
    m_license->setText(license.isEmpty() ? zqLocalized("None given") : license);
    m_nothing->hide();
    m_body->show();
}

void InfoPanelViewController::showColors(const ZQLibraryBaseItem &item)
{
    auto *row = static_cast<QHBoxLayout *>(m_colors->layout());
    while (QLayoutItem *old = row->takeAt(0)) {
        delete old->widget();
        delete old;
    }
    QList<int> codes = {item.mainColor()};
    for (const auto &tag : item.tags()) {
        if (tag->active() && !ZQSidebarTag::colorNameForValue(tag->kind()).isEmpty() && !codes.contains(tag->kind())) {
            codes.append(tag->kind());
        }
    }
    for (const int code : codes) {
        const QString name = ZQSidebarTag::colorNameForValue(code);
        if (name.isEmpty()) {
            continue;
        }
        auto *swatch = new QLabel(m_colors);
        QPixmap pixmap(QSize(22, 22) * devicePixelRatioF());
        pixmap.setDevicePixelRatio(devicePixelRatioF());
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(zqColor(ZQColorRole::Border), 1));
        painter.setBrush(ZQTheme::swatch(code));
        painter.drawRoundedRect(QRectF(0.5, 0.5, 21, 21), 5, 5);
        painter.end();
        swatch->setPixmap(pixmap);
        swatch->setToolTip(name);
        swatch->setAccessibleName(name);
        row->addWidget(swatch);
    }
    row->addStretch(1);
}

QStringList InfoPanelViewController::commonTagsForItems(const QList<ZQObjectID> &items) const
{
    QStringList shared;
    for (qsizetype i = 0; i < items.size(); ++i) {
        const auto item = m_window.libraryItem(items[i]);
        QStringList titles;
        for (const auto &tag : item ? item->itemTags() : QList<ZQRef<ZQSidebarTag>>()) {
            if (tag->isUserTag()) {
                titles.append(tag->title());
            }
        }
        titles.sort(Qt::CaseInsensitive);
        if (i == 0) {
            shared = titles;
        } else {
            shared.removeIf([&titles](const QString &title) { return !titles.contains(title); });
        }
    }
    return shared;
}

bool InfoPanelViewController::tagItems(const QList<ZQObjectID> &items, const QStringList &withTags)
{
    QStringList entered = withTags;
    entered.removeAll(zqLocalized("Multiple values"));
    const QStringList shared = commonTagsForItems(items);
    struct Change
    {
        ZQObjectID item;
        QStringList before;
        QStringList after;
    };
    QList<Change> changes;
    for (const ZQObjectID &id : items) {
        const auto item = m_window.libraryItem(id);
        if (!item) {
            continue;
        }
        QStringList before;
        for (const auto &tag : item->itemTags()) {
            if (tag->isUserTag()) {
                before.append(tag->title());
            }
        }
        QStringList after = before;
        after.removeIf([&](const QString &title) { return shared.contains(title) && !entered.contains(title); });
        for (const QString &title : entered) {
            if (!after.contains(title)) {
                after.append(title);
            }
        }
        if (after != before) {
            changes.append({id, before, after});
        }
    }
    if (changes.isEmpty()) {
        return false;
    }
    WindowContext &window = m_window;
    const auto apply = [&window, changes](bool isUndo) {
        for (const Change &change : changes) {
            const auto item = window.libraryItem(change.item);
            if (!item) {
                continue;
            }
            const QStringList &wanted = isUndo ? change.before : change.after;
            for (const auto &tag : item->itemTags()) {
                if (tag->isUserTag() && !wanted.contains(tag->title())) {
                    item->removeTagsObject(tag.get());
                }
            }
            for (const QString &title : wanted) {
                if (const auto tag = ZQSidebarTag::getOrCreateTagWithName(title, window.context)) {
                    item->addTagsObject(tag.get());
                }
            }
            item->writeOpenMetaToDisk();
        }
        window.save();
    };
    window.undoStack.push(new BlockUndoCommand(
        zqLocalized("edit tags"), [apply] { apply(false); }, [apply] { apply(true); }));
    return true;
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
    if (item && m_title->text() != item->title()) {
        LibraryCommands(m_window).renameItem(m_items.first(), m_title->text());
        m_title->setText(item->title());
    }
}

void InfoPanelViewController::commitNotes()
{
    const QString text = m_notes->toPlainText();
    if (!m_items.isEmpty() && text != m_shownNotes) {
        m_shownNotes = text;
        LibraryCommands(m_window).setNotes(m_items, text);
    }
}

bool InfoPanelViewController::eventFilter(QObject *object, QEvent *event)
{
    if (object == m_notes && event->type() == QEvent::FocusOut) {
        commitNotes();
    }
    if (object == m_title && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
        const auto item = m_items.size() == 1 ? m_window.libraryItem(m_items.first()) : ZQRef<ZQLibraryBaseItem>();
        m_title->setText(item ? item->title() : m_title->text());
        m_browser.grid().setFocus();
        return true;
    }
    return QScrollArea::eventFilter(object, event);
}
