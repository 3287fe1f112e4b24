#pragma once

#include "Classes/Interface/Sheets/TemplatesSheet.h"
#include "Classes/Interface/WindowCommand.h"
#include "Classes/Interface/WindowContext.h"

#include <QPointer>

class ImportActions;

// Making assets of templates: the sheet that lists them, and what is chosen there. Main thread.
class TemplateActions
{
public:
    TemplateActions(WindowContext &window, ImportActions &imports, QString directory, QWidget *sheetsOn);

    // Does not wait for the person; shows anew what is listed already.
    void newFileFromTemplate(const QString &selected = {});
    QList<WindowCommand> commands();

private:
    void makeAsset(const TemplateFile &source);
    void addTemplates();
    bool remove(const TemplateFile &source);

    WindowContext &m_window;
    ImportActions &m_imports;
    const QString m_directory;
    QWidget *const m_sheetsOn;
    QPointer<TemplatesSheet> m_sheet; // while it is shown
};
