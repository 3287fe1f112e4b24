#pragma once

#include "Classes/Application/UserInteraction.h"
#include "Classes/Interface/Sheets/Sheet.h"

class QListWidget;

// What an import left out: each file with its reason, and a way to where it lies. Main thread.
class RefusedFilesSheet : public Sheet
{
    Q_OBJECT
public:
    static constexpr int showCode = 2; // the person wants to see what was imported
    enum class Way { None, ToImported };

    RefusedFilesSheet(QWidget *window, const QString &title, const QList<RefusedFile> &files, Way way);

    // Shows the folder a file lies in; of a path below an archive, that of the archive.
    static QString folderToShow(const QString &path);

private:
    void reveal() const;

    QListWidget *m_list;
};
