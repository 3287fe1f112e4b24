#pragma once

#include "Models/DataModel/ZQLibraryEnvironment.h"

class tamberin_AppDelegate;

// What the entities ask of the running application.
class ModelEnvironment : public ZQLibraryEnvironment
{
public:
    explicit ModelEnvironment(tamberin_AppDelegate &delegate);
    ~ModelEnvironment() override;

    QString libraryDirectory() override;
    QString libraryPathForFilePath(const QString &path) override;
    void thumbForLibraryItem(ZQLibraryBaseItem *item) override;
    void presentError(const ZQError &error) override;
    std::optional<QStringList> userTagsOfFile(const QString &path) override;
    std::optional<QString> commentOfFile(const QString &path) override;
    void writeTagsToFile(const QString &path, const QStringList &tags, const QString &comment) override;
    bool writesTagsToFiles() override;

private:
    tamberin_AppDelegate &m_delegate;
};
