#include "Classes/Interface/Export/ExportPanelViewController.h"

#include "Classes/Export/ExportManager.h"
#include "Classes/Export/ExportOperation.h"
#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/Export/DirectSaveSource.h"
#include "Classes/Interface/Export/ExportEditPanel.h"
#include "Classes/Interface/Export/ExportPresets.h"
#include "Classes/Interface/Export/PresetDrag.h"
#include "Classes/Interface/Export/PresetIcon.h"
#include "Classes/Interface/Export/PresetsView.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQFeatures.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageExport.h"
#include "Kit/Widgets/ZQIcon.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QSet>
#include <QShortcut>
#include <QToolButton>

#include <utility>

namespace {
const QString lastFolderKey = QStringLiteral("ExportFolder"); // of the last export by a click
} // namespace

ExportPanelViewController::ExportPanelViewController(WindowContext &window, BrowserViewController &browser,
                                                     QWidget *parent)
    : QScrollArea(parent), m_window(window), m_browser(browser),
      m_presets(new ExportPresets(window.undoStack, window.user, this)), m_view(new PresetsView(*m_presets, this)),
      m_new(new QToolButton(this)), m_editing(new QWidget(this)), m_edit(new ExportEditPanel(m_editing)),
      m_hint(new QLabel(zqLocalized("Select items to export them."), this))
{
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(zqLocalized("Quick export"));
    makePage();
    connect(m_view, &PresetsView::chosen, this, &ExportPanelViewController::exportWithPreset);
    connect(m_view, &PresetsView::dragRequested, this, &ExportPanelViewController::startDrag);
    connect(m_view, &PresetsView::menuRequested, this, &ExportPanelViewController::showMenu);
    connect(m_new, &QToolButton::clicked, this, [this] { edit(nullptr); });
    connect(m_edit, &ExportEditPanel::saveRequested, this, &ExportPanelViewController::save);
    connect(m_edit, &ExportEditPanel::cancelRequested, this, [this] { setEditing(false); });
    connect(&browser, &BrowserViewController::selectionChanged, this, &ExportPanelViewController::refresh);
    auto *escape = new QShortcut(QKeySequence::Cancel, this);
    escape->setContext(Qt::WidgetWithChildrenShortcut);
    connect(escape, &QShortcut::activated, this, &ExportPanelViewController::cancelOperation);
    setEditing(false);
    refresh();
}

void ExportPanelViewController::makePage()
{
    auto *page = new QWidget(this);
    page->setObjectName(QStringLiteral("ExportPanel"));
    page->setAttribute(Qt::WA_StyledBackground);
    setWidget(page);
    m_new->setObjectName(QStringLiteral("NewPreset"));
    m_new->setText(zqLocalized("Edit presets…"));
    m_new->setIcon(ZQIcon::icon(QStringLiteral("plus")));
    m_new->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_new->setAccessibleName(zqLocalized("Edit presets"));
    m_new->setToolTip(zqLocalized("Make a preset, or move and delete those above."));
    m_new->setFocusPolicy(Qt::TabFocus);
    m_hint->setObjectName(QStringLiteral("SmallMuted"));
    m_hint->setAlignment(Qt::AlignCenter);
    m_hint->setWordWrap(true);
    auto *line = new QFrame(m_editing);
    line->setObjectName(QStringLiteral("Hairline"));
    line->setFixedHeight(1);
    auto *caption = new QLabel(zqLocalized("NEW PRESET"), m_editing);
    caption->setObjectName(QStringLiteral("Caption"));
    auto *fields = new QVBoxLayout(m_editing);
    fields->setContentsMargins(12, 0, 12, 0);
    fields->setSpacing(12);
    fields->addWidget(line);
    fields->addWidget(caption);
    fields->addWidget(m_edit);
    // Two cells and the space between them, and a scroll bar, fit into the width the panel usually has.
    auto *column = new QVBoxLayout(page);
    column->setContentsMargins(4, 12, 4, 14);
    column->setSpacing(12);
    column->addWidget(m_view);
    column->addWidget(m_hint);
    column->addWidget(m_new, 0, Qt::AlignHCenter);
    column->addWidget(m_editing);
    column->addStretch(1);
}

void ExportPanelViewController::refresh()
{
    const bool hasSelection = m_browser.selectionCount() > 0;
    m_view->setHasSelection(hasSelection);
    m_hint->setVisible(!hasSelection && !isEditing() && !m_presets->items().isEmpty());
}

// Exporting.

std::shared_ptr<ExportOperation> ExportPanelViewController::exportItemsToURL(const QString &URL,
                                                                             const ExportItem &exportItem,
                                                                             const QList<ZQObjectID> &items,
                                                                             QStringList *paths)
{
    QList<ZQObjectID> each = items;
    QSet<ZQObjectID> seen;
    each.removeIf([&seen](const ZQObjectID &id) {
        const bool isKnown = seen.contains(id);
        seen.insert(id);
        return isKnown;
    });
    if (each.isEmpty()) {
        return nullptr;
    }
    zqDidUseFeature(ZQFeature::ExportItems);
    const ExportRequest request = ExportRequest::with(exportItem, each, URL);
    if (paths) {
        ExportRequest silent = request;
        silent.tellsPerson = false; // the export says what is missing
        *paths = ExportManager::filenamesForItems(silent);
    }
    return ExportManager::sharedExportManager().exportItems(request);
}

void ExportPanelViewController::exportWithPreset(const QString &identifier)
{
    const qsizetype index = m_presets->indexOf(identifier);
    const QList<ZQObjectID> items = m_browser.selectedItems(); // as they are now, and not behind the dialogue
    if (index < 0 || items.isEmpty()) {
        return;
    }
    const ExportItem preset = m_presets->items()[index];
    FileChoice choice;
    choice.title = zqLocalized("Please choose the location where the images will be saved");
    choice.prompt = zqLocalized("Export");
    choice.directory = true;
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    choice.startFolder = defaults.stringForKey(lastFolderKey);
    const QStringList folders = m_window.user.chooseFilesToOpen(choice);
    if (!folders.isEmpty()) {
        defaults.setObjectForKey(folders.first(), lastFolderKey);
        exportItemsToURL(folders.first(), preset, items);
    }
}

void ExportPanelViewController::startDrag(const QString &identifier)
{
    const qsizetype index = m_presets->indexOf(identifier);
    const QList<ZQObjectID> items = m_browser.selectedItems();
    if (index < 0 || items.isEmpty()) {
        return;
    }
    const ExportItem preset = m_presets->items()[index];
    const auto exporting = [items, preset](const QString &folder, QStringList *paths) {
        return exportItemsToURL(folder, preset, items, paths);
    };
    const auto naming = [first = items.first(1), preset] {
        return ExportManager::proposedName(ExportRequest::with(preset, first, {}));
    };
    QImage icon = PresetIcon::dragImage(preset, devicePixelRatioF() / PresetIcon::dragScale);
    icon.setDevicePixelRatio(devicePixelRatioF());
    PresetDrag::run(new PresetDrag(exporting, naming, DirectSaveSource::make()), icon, this);
}

void ExportPanelViewController::addTo(QMenu &menu)
{
    for (const ExportItem &preset : m_presets->items()) {
        menu.addAction(QPixmap::fromImage(preset.dragIcon), ExportPresets::description(preset), this,
                       [this, identifier = preset.identifier] { exportWithPreset(identifier); });
    }
}

// Editing.

bool ExportPanelViewController::isEditing() const
{
    return !m_editing->isHidden();
}

void ExportPanelViewController::setEditing(bool isEditing)
{
    const bool hadFocus = m_editing->isAncestorOf(focusWidget());
    m_editing->setVisible(isEditing);
    m_new->setVisible(!isEditing);
    m_view->setEditing(isEditing);
    refresh();
    if (hadFocus && !isEditing) {
        m_new->setFocus();
    }
}

void ExportPanelViewController::edit(const ExportItem *like)
{
    if (like) {
        m_edit->startWith(*like);
    } else {
        m_edit->start();
    }
    setEditing(true);
    m_edit->formatMenu().setFocus();
    widget()->layout()->activate();
    ensureWidgetVisible(m_editing);
}

void ExportPanelViewController::save()
{
    m_presets->addItem(m_edit->item());
    setEditing(false);
}

void ExportPanelViewController::showMenu(const QString &identifier, const QPoint &globalPoint)
{
    const qsizetype index = m_presets->indexOf(identifier);
    QMenu menu(this);
    if (index >= 0) {
        const ExportItem preset = m_presets->items()[index];
        menu.addAction(zqLocalized("Export…"), this, [this, identifier] { exportWithPreset(identifier); })
            ->setEnabled(m_browser.selectionCount() > 0);
        menu.addSeparator();
        menu.addAction(zqLocalized("New Preset like This…"), this, [this, preset] { edit(&preset); })
            ->setEnabled(!preset.imageFileType || zqCanEncode(*preset.imageFileType));
        menu.addAction(zqLocalized("Delete Preset"), this, [this, identifier] { m_presets->deleteItem(identifier); });
        menu.addSeparator();
    }
    menu.addAction(zqLocalized("Edit presets…"), this, [this] { edit(nullptr); })->setEnabled(!isEditing());
    menu.exec(globalPoint);
}

// The edit panel first, when it is open.
void ExportPanelViewController::cancelOperation()
{
    if (isEditing()) {
        setEditing(false);
    } else {
        Q_EMIT closeRequested();
    }
}
