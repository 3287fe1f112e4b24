#include "Classes/Interface/Export/LayerActions.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Export/ExportNames.h"
#include "Classes/Export/LayeredExport.h"
#include "Classes/Export/PSDWriter.h"
#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QFileInfo>

void LayerActions::exportWithDialog()
{
    QList<LayeredPicture> pictures;
    const QList<ZQObjectID> selected = m_browser.selectedItems();
    if (const auto refused = PSDWriter::refusal({1, 1}, selected.size())) {
        m_window.user.presentError(
            ZQError::with(LayeredDocument::errorDomain, LayeredDocument::DoesNotFit, refused->reason()));
        return;
    }
    const auto items = ZQLibraryBaseItem::itemsWithIDs(selected, m_window.context);
    ZQLibraryBaseItem::lookForFiles(items);
    for (const auto &item : items) {
        pictures.append({item->exportRepresentation(), item->title(), {}, 1, item->itemURL()});
    }
    if (pictures.isEmpty()) {
        return;
    }
    static const QString extension = QStringLiteral("psd");
    FileChoice choice;
    choice.title = zqLocalized("Export as Layered PSD");
    choice.prompt = zqLocalized("Export");
    choice.suggestedName = ExportNames::nameForTitle(pictures.first().name, extension);
    choice.extensions = {extension};
    auto path = m_window.user.chooseFileToSave(choice);
    if (!path) {
        return;
    }
    if (QFileInfo(*path).suffix().compare(extension, Qt::CaseInsensitive) != 0) {
        *path += u'.' + extension;
    }
    const QFileInfo existing(*path);
    const bool replaces = existing.exists() || existing.isSymLink();
    if (replaces && m_window.user.ask({zqFormat(zqLocalized("“%@” exists already"), {existing.fileName()}),
                                       zqLocalized("The layered document takes its place."),
                                       {zqLocalized("Replace"), zqLocalized("Cancel")},
                                       {},
                                       true}) != 0) {
        return;
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
