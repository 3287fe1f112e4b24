#include "Classes/Tags/TagFileWriter.h"

#include "Classes/Tags/OpenMeta.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"

#include <QSet>

namespace {

QSet<QString> decomposedSet(const QStringList &tags)
{
    const QStringList decomposed = OpenMeta::decomposeArrayOfStrings(tags);
    return {decomposed.begin(), decomposed.end()};
}

void writeTags(const QString &path, const QStringList &tags)
{
    ZQError error;
    const QStringList fileTags = OpenMeta::getUserTags(path, &error).value_or(QStringList());
    if (!error.isNull() || decomposedSet(fileTags) == decomposedSet(tags)) {
        return;
    }
    error = OpenMeta::setUserTags(tags, path);
    if (!error.isNull()) {
        qCInfo(zqLogTags).noquote() << "The tags of" << path << "were not written:" << error.localizedDescription();
    }
}

void writeNotes(const QString &path, const QString &notes)
{
    const QVariant comment = OpenMeta::getXAttrMetaData(OpenMeta::finderCommentKey, path);
    const QString fileNotes = comment.typeId() == QMetaType::QString ? comment.toString() : QString();
    if (fileNotes == notes) {
        return;
    }
    const ZQError error = OpenMeta::setXAttr(notes, OpenMeta::spotlightKey(OpenMeta::finderCommentKey), path);
    if (!error.isNull()) {
        qCWarning(zqLogTags).noquote() << zqFormat(
            QStringLiteral("OpenMeta error on trying to set the Finder Comment: %@"), {error.localizedDescription()});
    }
}

} // namespace

TagFileWriter &TagFileWriter::sharedTagFileWriter()
{
    static TagFileWriter writer;
    return writer;
}

TagFileWriter::TagFileWriter() : m_queue(QStringLiteral("OpenMeta"), 1) {}

TagFileWriter::~TagFileWriter()
{
    m_queue.waitUntilAllOperationsAreFinished(); // destroying the queue would forget what still waits
}

void TagFileWriter::writeTagsToFile(const QString &path, const QStringList &tags, const std::optional<QString> &notes)
{
    m_queue.addOperationWithBlock([path, tags, notes] {
        writeTags(path, tags);
        if (notes) {
            writeNotes(path, *notes);
        }
    });
}

void TagFileWriter::waitUntilAllWritten()
{
    m_queue.waitUntilAllOperationsAreFinished();
}
