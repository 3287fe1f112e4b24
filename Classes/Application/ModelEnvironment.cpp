#include "Classes/Application/ModelEnvironment.h"

#include "Classes/Application/LibraryBundleManager.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"

ModelEnvironment::ModelEnvironment(tamberin_AppDelegate &delegate) : m_delegate(delegate)
{
    ZQLibraryEnvironment::setCurrent(this);
}

ModelEnvironment::~ModelEnvironment()
{
    ZQLibraryEnvironment::setCurrent(nullptr);
}

QString ModelEnvironment::libraryDirectory()
{
    return m_delegate.libraryDirectory();
}

QString ModelEnvironment::libraryPathForFilePath(const QString &path)
{
    return LibraryBundleManager::libraryPathForFilePath(path);
}

void ModelEnvironment::thumbForLibraryItem(ZQLibraryBaseItem *item)
{
    if (ImportManaging *manager = m_delegate.importManager()) {
        manager->thumbForLibraryItem(item);
    }
}

void ModelEnvironment::presentError(const ZQError &error)
{
    zqOnMainThreadAndWait([&] { m_delegate.userInteraction().presentError(error); });
}

std::optional<QStringList> ModelEnvironment::userTagsOfFile(const QString &path)
{
    ZQError error;
    const std::optional<QStringList> tags = OpenMeta::getUserTags(path, &error);
    if (!error.isNull()) {
        return std::nullopt;
    }
    return tags.value_or(QStringList());
}

std::optional<QString> ModelEnvironment::commentOfFile(const QString &path)
{
    const QVariant comment = OpenMeta::getXAttrMetaData(OpenMeta::finderCommentKey, path);
    return comment.typeId() == QMetaType::QString ? std::optional(comment.toString()) : std::nullopt;
}

void ModelEnvironment::writeTagsToFile(const QString &path, const QStringList &tags, const QString &comment)
{
    TagFileWriter::sharedTagFileWriter().writeTagsToFile(path, tags,
                                                         comment.isNull() ? std::nullopt : std::optional(comment));
}

bool ModelEnvironment::writesTagsToFiles()
{
    return ZQUserDefaults::standardUserDefaults().boolForKey(QStringLiteral("ImportOpenMetaTags"));
}
