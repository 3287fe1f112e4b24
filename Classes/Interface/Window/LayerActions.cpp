#include "Classes/Interface/Window/LayerActions.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Export/ExportNames.h"
#include "Classes/Export/LayeredExport.h"
#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QFileInfo>

void LayerActions::exportWithDialog()
{
    QList<LayeredPicture> pictures;
    for (const ZQObjectID &id : m_browser.selectedItems()) {
        if (const auto item = m_window.libraryItem(id)) {
            pictures.append({item->exportRepresentation(), item->title(), {}, 1, item->itemURL()});
        }
    }
    if (pictures.isEmpty()) {
        return;
    }
    static const QString extension = QStringLiteral("psd");
    FileChoice choice;
    choice.title = zqLocalized("Export as Layered PSD");
    choice.prompt = zqLocalized("Export");
    choice.name = ExportNames::safeTitle(pictures.first().name) + u'.' + extension;
    choice.extensions = {extension};
    auto path = m_window.user.chooseFileToSave(choice);
    if (!path) {
        return;
    }
    // Replacing was agreed to for the name that was chosen, and for no other.
    bool replaces = QFileInfo::exists(*path);
    if (QFileInfo(*path).suffix().compare(extension, Qt::CaseInsensitive) != 0) {
        *path += u'.' + extension;
        replaces = false;
    }
    LayeredExport::begin(pictures, *path, replaces, m_window.user,
                         tamberin_AppDelegate::sharedDelegate()->backgroundOperationQueue());
}

QList<WindowCommand> LayerActions::commands()
{
    return {{CommandID::ExportLayers,
             zqLocalized("Export as Layered PSD…"),
             {},
             [this] { exportWithDialog(); },
             [this] { return m_browser.selectionCount() > 0; }}};
}
