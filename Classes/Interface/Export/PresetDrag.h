#pragma once

#include "Classes/Export/ExportItem.h"
#include "Classes/Export/ExportRequest.h"

#include <QMimeData>
#include <QPointer>

#include <functional>
#include <memory>

class DirectSaveSource;
class ExportOperation;
class QDrag;
class QWidget;

// A widget of the window that takes a preset which is dropped on it, such as the one that shares.
class PresetReceiver
{
public:
    virtual ~PresetReceiver() = default;
    // Where the files will be once the export that was begun for it has ended, of which ExportManager's notifications
    // tell afterwards. Empty: none was begun.
    virtual void setFileToUploadAfterExport(const QStringList &paths) = 0;
};

// What a preset that is dragged out of the window carries: the selected items, exported when the place it is dropped on
// asks for them, and whole before it is answered. A target that says where it wants them has them written there; others
// get them in a temporary folder that stays until the application quits. While that is being written the main loop goes
// on, with its progress in the window.
//
// In the application's own windows a preset is taken by no widget but a PresetReceiver.
class PresetDrag : public QMimeData
{
    Q_OBJECT
public:
    static inline const QString presetType = QStringLiteral("application/x-zelto-export-preset");

    // Begins an export of what is dragged into that folder; null when there is none to begin. `paths`, which may be
    // null: those of the files that will be written.
    using Exporting = std::function<std::shared_ptr<ExportOperation>(const QString &folder, QStringList *paths)>;
    // The name for a target that takes one file.
    using Naming = std::function<QString()>;

    // `directSave` may be null.
    PresetDrag(Exporting exporting, Naming naming, std::unique_ptr<DirectSaveSource> directSave);
    ~PresetDrag() override;

    // Runs a drag of it from there, with the preset's icon. `mime` is the drag's from then on.
    static void run(PresetDrag *mime, const QImage &icon, QWidget *source);

    QStringList formats() const override;

protected:
    QVariant retrieveData(const QString &format, QMetaType type) const override;
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void propose();
    QStringList filesInTemporaryFolder() const;
    QByteArray saveDirectly() const;
    const ExportResult *waitFor(const std::shared_ptr<ExportOperation> &operation) const;
    bool filterDrop(QObject *object, QEvent *event);
    void dropOn(PresetReceiver &receiver);
    void didEnd(Qt::DropAction action);

    const Exporting m_exporting;
    const Naming m_naming;
    const std::unique_ptr<DirectSaveSource> m_directSave;
    QPointer<QDrag> m_drag;
    mutable std::shared_ptr<ExportOperation> m_operation; // into the temporary folder
    mutable QByteArray m_directAnswer;                    // empty: not asked for
    mutable int m_waits = 0;                              // for exports, one in the other
    mutable bool m_isToBeDeleted = false;                 // the drag, after that
};
