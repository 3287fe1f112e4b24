#include "Classes/Interface/Sheets/TemplatesSheet.h"

#include "Classes/Interface/ItemPictures.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQIcon.h"
#include "Kit/Widgets/ZQThumbnailLoader.h"

#include <QBoxLayout>
#include <QDateTime>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>

#include <algorithm>
#include <utility>

namespace {

constexpr int pictureSize = 96;
constexpr QSize cellSize(124, 144);

// On a transparent square, so that every title stands at the same height.
QIcon squared(const QImage &picture, qreal ratio)
{
    const int side = int(pictureSize * ratio);
    QPixmap square(side, side);
    square.fill(Qt::transparent);
    QPainter painter(&square);
    const QImage scaled = picture.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    painter.drawImage((side - scaled.width()) / 2, (side - scaled.height()) / 2, scaled);
    painter.end();
    square.setDevicePixelRatio(ratio);
    QIcon icon(square);
    icon.addPixmap(square, QIcon::Selected); // else it takes the colour of the selection
    return icon;
}

ZQThumbnailRequest requestFor(const TemplateFile &source)
{
    return {source.picture, QFileInfo(source.picture).lastModified().toMSecsSinceEpoch(), true};
}

} // namespace

TemplatesSheet::TemplatesSheet(QWidget *window, const QString &directory,
                               std::function<bool(const TemplateFile &)> remove)
    : Sheet(window, zqLocalized("New from Template")), m_directory(directory), m_remove(std::move(remove)),
      m_pictures(new ZQThumbnailLoader(qsizetype(16) << 20, this)), m_list(new QListWidget(this)),
      m_empty(new QLabel(this)), m_removeButton(new QPushButton(zqLocalized("Remove"), this))
{
    setWidth(600);
    m_list->setAccessibleName(zqLocalized("Templates"));
    m_list->setViewMode(QListView::IconMode);
    m_list->setMovement(QListView::Static);
    m_list->setResizeMode(QListView::Adjust);
    m_list->setIconSize({pictureSize, pictureSize});
    m_list->setGridSize(cellSize);
    m_list->setWordWrap(true);
    m_list->setMinimumHeight(cellSize.height() * 2);
    m_empty->setText(zqLocalized("There are no templates yet. Add files that you begin with again and again, or open "
                                 "one whose name ends in .zttemplate with Zelto."));
    m_empty->setWordWrap(true);
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setMinimumHeight(cellSize.height());
    content()->addWidget(m_list);
    content()->addWidget(m_empty);
    auto *add = new QPushButton(zqLocalized("Add…"), this);
    add->setAutoDefault(false);
    connect(add, &QPushButton::clicked, this, [this] { done(AddCode); });
    m_removeButton->setAutoDefault(false);
    m_removeButton->setToolTip(zqLocalized("Puts the template into the trash (Del)"));
    connect(m_removeButton, &QPushButton::clicked, this, &TemplatesSheet::removeChosen);
    footer()->insertWidget(0, add);
    footer()->insertWidget(1, m_removeButton);
    addButton(zqLocalized("Cancel"), CancelCode, false);
    m_newButton = addButton(zqLocalized("New"), NewCode, true);
    m_pictures->setDecoder(&ItemPictures::pictureFor);
    connect(m_pictures, &ZQThumbnailLoader::loaded, this, &TemplatesSheet::showPictures);
    connect(m_list, &QListWidget::itemSelectionChanged, this, &TemplatesSheet::update);
    connect(m_list, &QListWidget::itemDoubleClicked, this, [this] {
        if (chosen()) {
            done(NewCode);
        }
    });
    reload();
}

void TemplatesSheet::reload()
{
    const int row = std::max(0, m_list->currentRow());
    m_templates = Templates::inFolder(m_directory);
    m_list->clear();
    for (const TemplateFile &each : std::as_const(m_templates)) {
        auto *item = new QListWidgetItem(ZQIcon::icon(QStringLiteral("project")), each.title, m_list);
        item->setToolTip(each.file.isEmpty()
                             ? zqFormat(zqLocalized("“%@” holds nothing that can be an asset"), {each.title})
                             : each.path);
    }
    m_list->setCurrentRow(std::min(row, m_list->count() - 1));
    m_list->setVisible(!m_templates.isEmpty());
    m_empty->setVisible(m_templates.isEmpty());
    showPictures();
    update();
}

void TemplatesSheet::select(const QString &title)
{
    const QList<QListWidgetItem *> found = m_list->findItems(title, Qt::MatchExactly);
    if (!found.isEmpty()) {
        m_list->setCurrentItem(found.first());
    }
}

std::optional<TemplateFile> TemplatesSheet::chosen() const
{
    const int row = m_list->currentRow();
    return row < 0 || m_templates[row].file.isEmpty() ? std::nullopt : std::optional(m_templates[row]);
}

void TemplatesSheet::showPictures()
{
    for (int row = 0; row < m_list->count(); ++row) {
        const ZQThumbnailRequest request = requestFor(m_templates[row]);
        if (request.path.isEmpty() || m_pictures->hasFailed(request)) {
            continue;
        }
        const QImage picture = m_pictures->image(request, int(pictureSize * devicePixelRatioF()));
        if (!picture.isNull()) {
            m_list->item(row)->setIcon(squared(picture, devicePixelRatioF()));
        }
    }
}

void TemplatesSheet::update()
{
    m_newButton->setEnabled(chosen().has_value());
    m_removeButton->setEnabled(m_list->currentRow() >= 0);
}

void TemplatesSheet::removeChosen()
{
    const int row = m_list->currentRow();
    if (row >= 0 && m_remove(m_templates[row])) {
        reload();
    }
}

void TemplatesSheet::showEvent(QShowEvent *event)
{
    Sheet::showEvent(event);
    if (m_list->isVisible()) { // to choose with the arrows, and Enter takes the default all the same
        m_list->setFocus();
    }
}

void TemplatesSheet::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Delete) && m_list->hasFocus()) {
        removeChosen();
        return;
    }
    Sheet::keyPressEvent(event);
}
