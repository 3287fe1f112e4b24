#include "Classes/Interface/Export/PresetDrag.h"

#include "Classes/Application/TemporaryArea.h"
#include "Classes/Export/ExportOperation.h"
#include "Classes/Interface/Export/DirectSaveSource.h"
#include "Classes/Interface/Export/PresetIcon.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QApplication>
#include <QDir>
#include <QDrag>
#include <QDropEvent>
#include <QFileInfo>
#include <QPixmap>
#include <QTimer>
#include <QUrl>
#include <QWidget>

#include <chrono>
#include <utility>

namespace {

const QString uriList = QStringLiteral("text/uri-list");

// Nobody took what was written there. Only a folder of the temporary area is ours to remove.
void removeWhenFinished(const std::shared_ptr<ExportOperation> &operation, const QString &folder)
{
    constexpr std::chrono::milliseconds interval{200};
    if (folder.isEmpty() || !folder.startsWith(TemporaryArea::folder() + u'/')) {
        return;
    }
    if (!operation->isFinished()) {
        QTimer::singleShot(interval, qApp, [operation, folder] { removeWhenFinished(operation, folder); });
    } else if (!QDir(folder).removeRecursively()) {
        qCInfo(zqLogApplication).noquote() << "The folder" << folder << "of a drag goes when Zelto quits";
    }
}

// Empty, which is logged, where none can be made.
QString newFolder()
{
    ZQError error;
    const QString folder = TemporaryArea::newFolder(&error);
    if (folder.isEmpty()) {
        qCWarning(zqLogApplication) << "Cannot make a folder for what is dragged:" << error.localizedDescription();
    }
    return folder;
}

} // namespace

PresetDrag::PresetDrag(Exporting exporting, Naming naming, std::unique_ptr<DirectSaveSource> directSave)
    : m_exporting(std::move(exporting)), m_naming(std::move(naming)), m_directSave(std::move(directSave))
{
    setData(presetType, {});
}

PresetDrag::~PresetDrag() = default;

void PresetDrag::run(PresetDrag *mime, const QImage &icon, QWidget *source)
{
    auto *drag = new QDrag(source);
    drag->setMimeData(mime);
    drag->setPixmap(QPixmap::fromImage(icon));
    drag->setHotSpot({PresetIcon::dragSize.width() / 2, PresetIcon::dragSize.height() / 2});
    mime->m_drag = drag;
    drag->installEventFilter(mime);
    qApp->installEventFilter(mime);
    QTimer::singleShot(0, mime, &PresetDrag::propose); // the drag has its window then
    const QPointer<PresetDrag> guard(mime);
    const Qt::DropAction action = drag->exec(Qt::CopyAction);
    if (guard) {
        qApp->removeEventFilter(mime);
        mime->didEnd(action);
    }
}

void PresetDrag::propose()
{
    if (m_directSave) {
        m_directSave->propose(m_naming());
    }
}

// A target may have looked at the files on the way to where it was let go.
void PresetDrag::didEnd(Qt::DropAction action)
{
    if (action == Qt::IgnoreAction && m_operation) {
        m_operation->cancel();
        removeWhenFinished(m_operation, m_operation->request().destinationURL);
    }
}

QStringList PresetDrag::formats() const
{
    QStringList result = QMimeData::formats();
    if (m_directSave) {
        result.prepend(DirectSaveSource::format);
    }
    result.append(uriList);
    return result;
}

QVariant PresetDrag::retrieveData(const QString &format, QMetaType type) const
{
    if (format == DirectSaveSource::format && m_directSave) {
        return saveDirectly();
    }
    if (format != uriList) {
        return QMimeData::retrieveData(format, type);
    }
    QVariantList urls;
    for (const QString &path : filesInTemporaryFolder()) {
        urls.append(QUrl::fromLocalFile(path));
    }
    return urls;
}

// The toolkit deletes the drag when the target says that it is over, which it may do while it is waiting for us; and
// whoever asked us still goes on with this object afterwards.
const ExportResult *PresetDrag::waitFor(const std::shared_ptr<ExportOperation> &operation) const
{
    if (!operation) {
        return nullptr;
    }
    ++m_waits;
    zqRunMainLoopUntil([operation] { return operation->isFinished(); });
    if (--m_waits == 0 && std::exchange(m_isToBeDeleted, false) && m_drag) {
        m_drag->deleteLater();
    }
    return &operation->result();
}

QStringList PresetDrag::filesInTemporaryFolder() const
{
    if (!m_operation) {
        const QString folder = newFolder();
        if (folder.isEmpty()) {
            return {};
        }
        m_operation = m_exporting(folder, nullptr);
    }
    const ExportResult *const result = waitFor(m_operation);
    return result ? result->written : QStringList();
}

// Where a name was proposed, the target names one file. Several are written beside it under their own names.
QByteArray PresetDrag::saveDirectly() const
{
    if (!m_directAnswer.isEmpty()) {
        return m_directAnswer;
    }
    m_directAnswer = DirectSaveSource::failed;
    const QString path = m_directSave->address();
    const QString folder = QFileInfo(path).path();
    if (path.isEmpty() || !QFileInfo(folder).isDir()) {
        return m_directAnswer;
    }
    const std::shared_ptr<ExportOperation> operation = m_exporting(folder, nullptr); // the result is its
    const ExportResult *const result = waitFor(operation);
    if (!result || result->written.isEmpty()) {
        m_directAnswer = result && result->isCancelled ? DirectSaveSource::cancelled : DirectSaveSource::failed;
        return m_directAnswer;
    }
    if (result->written.size() == 1 && result->written.first() != path) {
        zqMoveNoReplace(result->written.first(), path); // the target chose another name, which may be taken by now
    }
    m_directAnswer = DirectSaveSource::saved;
    return m_directAnswer;
}

// In our own windows.

bool PresetDrag::eventFilter(QObject *object, QEvent *event)
{
    if (object == m_drag) {
        if (event->type() == QEvent::DeferredDelete && m_waits > 0) {
            m_isToBeDeleted = true;
            return true;
        }
        return false;
    }
    return filterDrop(object, event);
}

bool PresetDrag::filterDrop(QObject *object, QEvent *event)
{
    const QEvent::Type type = event->type();
    const bool isDrag = type == QEvent::DragEnter || type == QEvent::DragMove || type == QEvent::Drop;
    if (!isDrag || !object->isWidgetType()) {
        return false;
    }
    auto *const drop = static_cast<QDropEvent *>(event);
    if (drop->mimeData() != this) {
        return false;
    }
    auto *const receiver = dynamic_cast<PresetReceiver *>(object);
    if (!receiver) {
        drop->ignore();
        return true;
    }
    drop->setDropAction(Qt::CopyAction);
    drop->accept();
    if (type == QEvent::Drop) {
        dropOn(*receiver);
    }
    return true;
}

void PresetDrag::dropOn(PresetReceiver &receiver)
{
    const QString folder = newFolder();
    QStringList paths;
    const bool didBegin = !folder.isEmpty() && m_exporting(folder, &paths);
    receiver.setFileToUploadAfterExport(didBegin ? paths : QStringList());
}
