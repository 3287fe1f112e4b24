#include "Classes/Import/TemporaryFolder.h"

#include "Classes/Application/TemporaryArea.h"
#include "Classes/Import/ImportErrors.h"
#include "Kit/Foundation/ZQLog.h"

#include <QDir>

QString TemporaryFolder::temporaryDirectory()
{
    ZQError error;
    QString directory = TemporaryArea::newFolder(&error);
    if (directory.isEmpty()) {
        presentImportError(error);
    }
    return directory;
}

QUrl TemporaryFolder::temporaryURL()
{
    const QString directory = temporaryDirectory();
    return directory.isEmpty() ? QUrl() : QUrl::fromLocalFile(directory);
}

TemporaryFolder::~TemporaryFolder()
{
    if (!m_isKept && !QDir(m_path).removeRecursively()) {
        qCInfo(zqLogImport).noquote() << "The temporary folder" << m_path << "could not be removed";
    }
}
