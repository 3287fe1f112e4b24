#pragma once

#include "Classes/Export/ExportItem.h"
#include "Classes/Interface/WindowContext.h"

#include <QScrollArea>

#include <memory>

class BrowserViewController;
class ExportEditPanel;
class ExportOperation;
class ExportPresets;
class PresetsView;
class QLabel;
class QMenu;
class QToolButton;

// The "Quick export" panel: presets that a click, or a drag out of the window, exports the selected items with; and an
// edit panel below them, in which presets are made, while they can be moved and deleted. Main thread.
class ExportPanelViewController : public QScrollArea
{
    Q_OBJECT
public:
    ExportPanelViewController(WindowContext &window, BrowserViewController &browser, QWidget *parent = nullptr);

    ExportPresets &presets() { return *m_presets; }
    PresetsView &presetsView() { return *m_view; }
    ExportEditPanel &editPanel() { return *m_edit; }
    void refresh(); // the selection changed

    bool isEditing() const;
    void setEditing(bool isEditing);
    // Asks for the folder, and exports the selected items there.
    void exportWithPreset(const QString &identifier);
    // Begins the export of the items, those that are there several times once, into the folder; whatever exports from
    // this panel does it here. Null when there are none, or no library. `paths`, for whoever needs them before they
    // are written: those that the files will have; thousands take their time.
    static std::shared_ptr<ExportOperation> exportItemsToURL(const QString &URL, const ExportItem &exportItem,
                                                             const QList<ZQObjectID> &items,
                                                             QStringList *paths = nullptr);
    // One entry for each preset, to export what is selected.
    void addTo(QMenu &menu);

Q_SIGNALS:
    void closeRequested(); // by Esc

private:
    void makePage();
    void startDrag(const QString &identifier);
    void showMenu(const QString &identifier, const QPoint &globalPoint);
    void edit(const ExportItem *like); // null: a plain one
    void save();
    void cancelOperation();

    WindowContext &m_window;
    BrowserViewController &m_browser;
    ExportPresets *m_presets;
    PresetsView *m_view;
    QToolButton *m_new;
    QWidget *m_editing; // the edit panel and its caption
    ExportEditPanel *m_edit;
    QLabel *m_hint;
};
