#include "Classes/Interface/Export/ExportPresets.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Interface/Export/PresetIcon.h"
#include "Kit/Foundation/ZQFeatures.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageExport.h"

#include <QUndoCommand>
#include <QUndoStack>

#include <algorithm>
#include <utility>

namespace {

class PresetStep : public QUndoCommand
{
public:
    PresetStep(const QString &name, std::function<void()> redo, std::function<void()> undo)
        : QUndoCommand(name), m_redo(std::move(redo)), m_undo(std::move(undo))
    {
    }
    void redo() override { m_redo(); }
    void undo() override { m_undo(); }

private:
    std::function<void()> m_redo;
    std::function<void()> m_undo;
};

} // namespace

ExportPresets::ExportPresets(QUndoStack *undoStack, UserInteraction &user, QObject *parent)
    : QObject(parent), m_undoStack(undoStack), m_user(user), m_items(ExportItem::exportItems())
{
    for (ExportItem &item : m_items) {
        item.dragIcon = PresetIcon::dragImage(item);
    }
}

qsizetype ExportPresets::indexOf(const QString &identifier) const
{
    const auto found = std::find_if(m_items.begin(), m_items.end(),
                                    [&](const ExportItem &item) { return item.identifier == identifier; });
    return found == m_items.end() ? -1 : found - m_items.begin();
}

void ExportPresets::addItem(const ExportItem &item)
{
    ExportItem added = item;
    added.dragIcon = PresetIcon::dragImage(added);
    zqDidUseFeature(ZQFeature::AddExportPreset);
    perform(
        zqLocalized("add export preset"), [this, added] { insert(m_items.size(), added); },
        [this, added] { remove(added.identifier); });
}

void ExportPresets::deleteItem(const QString &identifier)
{
    const qsizetype index = indexOf(identifier);
    if (index < 0) {
        return;
    }
    zqDidUseFeature(ZQFeature::DeleteExportPreset);
    perform(
        zqLocalized("delete export preset"), [this, identifier] { remove(identifier); },
        [this, kept = m_items[index], index] { insert(index, kept); });
}

void ExportPresets::moveItem(const QString &identifier, qsizetype dropIndex)
{
    const qsizetype from = indexOf(identifier);
    const qsizetype to = std::clamp<qsizetype>(from < dropIndex ? dropIndex - 1 : dropIndex, 0, m_items.size() - 1);
    if (from < 0 || from == to) {
        return;
    }
    zqDidUseFeature(ZQFeature::MoveExportPreset);
    perform(
        zqLocalized("move export preset"), [this, identifier, to] { place(identifier, to); },
        [this, identifier, from] { place(identifier, from); });
}

void ExportPresets::perform(const QString &name, std::function<void()> redo, std::function<void()> undo)
{
    if (!m_undoStack) {
        redo();
        return;
    }
    const auto whileHere = [self = QPointer(this)](std::function<void()> act) {
        return [self, act = std::move(act)] {
            if (self) {
                act();
            }
        };
    };
    m_undoStack->push(new PresetStep(name, whileHere(std::move(redo)), whileHere(std::move(undo))));
}

void ExportPresets::insert(qsizetype index, const ExportItem &item)
{
    m_items.insert(std::min(index, m_items.size()), item);
    store();
    Q_EMIT changed();
}

void ExportPresets::remove(const QString &identifier)
{
    if (const qsizetype index = indexOf(identifier); index >= 0) {
        m_items.removeAt(index);
        store();
        Q_EMIT changed();
    }
}

void ExportPresets::place(const QString &identifier, qsizetype index)
{
    if (const qsizetype from = indexOf(identifier); from >= 0) {
        m_items.move(from, std::clamp<qsizetype>(index, 0, m_items.size() - 1));
        Q_EMIT changed();
    }
}

void ExportPresets::store()
{
    ZQError error;
    if (!ExportItem::storeExportItems(m_items, &error)) {
        m_user.presentError(error);
    }
}

QString ExportPresets::description(const ExportItem &item)
{
    QString format = item.extensionString();
    if (format.isEmpty()) {
        const bool hasName = item.imageFileType && zqCanEncode(*item.imageFileType);
        format = hasName ? zqNameOfFileType(*item.imageFileType) : zqLocalized("Other format");
    }
    QString what = format + QStringLiteral(", ") + item.sizeString();
    if (item.archive) {
        what = zqFormat(zqLocalized("%@, zip archive"), {what});
    }
    return item.title.isEmpty() ? what : item.title + QStringLiteral(" (") + what + u')';
}
