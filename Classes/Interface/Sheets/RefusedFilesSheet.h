#pragma once

#include "Classes/Application/UserInteraction.h"
#include "Classes/Interface/Sheets/Sheet.h"

class QListWidget;

// What an import left out: each file with its reason, and a way to where it lies. Main thread.
class RefusedFilesSheet : public Sheet
{
    Q_OBJECT
public:
    RefusedFilesSheet(QWidget *window, const QString &title, const QList<RefusedFile> &files);

    // Shows the folder a file lies in; of a path below an archive, that of the archive.
    static QString folderToShow(const QString &path);

private:
    void reveal() const;

    QListWidget *m_list;
};
