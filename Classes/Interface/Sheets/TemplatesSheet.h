#pragma once

#include "Classes/Import/Templates.h"
#include "Classes/Interface/Sheets/Sheet.h"

#include <functional>
#include <optional>

class QLabel;
class QListWidget;
class QPushButton;
class ZQThumbnailLoader;

// The templates with their pictures and titles, of which one is made into an asset. They can be removed here, which
// puts them into the trash. Main thread.
class TemplatesSheet : public Sheet
{
    Q_OBJECT
public:
    enum Code { CancelCode = 1, NewCode = 2, AddCode = 3 }; // the last: the person wants to add some

    // `remove` says itself why it could not.
    TemplatesSheet(QWidget *window, const QString &directory, std::function<bool(const TemplateFile &)> remove);

    void reload();                     // what lies in the folder now
    void select(const QString &title); // that one, where it is there
    std::optional<TemplateFile> chosen() const;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void showPictures();
    void update();
    void removeChosen();

    const QString m_directory;
    const std::function<bool(const TemplateFile &)> m_remove;
    QList<TemplateFile> m_templates;
    ZQThumbnailLoader *m_pictures;
    QListWidget *m_list;
    QLabel *m_empty;
    QPushButton *m_removeButton;
    QPushButton *m_newButton;
};
