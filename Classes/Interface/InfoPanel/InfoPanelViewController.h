#pragma once

#include "Classes/Browsing/Content/ContentFetcher.h"
#include "Classes/Browsing/Content/SelectionSummary.h"
#include "Classes/Interface/WindowCommand.h"
#include "Classes/Interface/WindowContext.h"

#include <QScrollArea>

class BrowserViewController;
class QAction;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class DocumentSize;
class LivePlace;
class MissedFiles;
class QVBoxLayout;
class PaletteStrip;
class RatingField;
class TagField;

// What is known of the selected items, and the fields to change it. Values that differ read "Multiple values".
class InfoPanelViewController : public QScrollArea
{
    Q_OBJECT
public:
    InfoPanelViewController(WindowContext &window, BrowserViewController &browser, QWidget *parent = nullptr);
    // The selection or what it holds changed. False when that has to be asked again, since the edits of many items
    // under way change it all the while.
    bool refresh();
    void editTitle();
    bool commitEditing(); // takes what was typed; false when the title cannot be taken

    // Gives the items these tags: common ones no longer entered go, entered ones come, those of only some stay. True
    // when an item changed. One undo step.
    bool tagItems(const QList<ZQObjectID> &items, const QStringList &withTags);
    QStringList commonTagsForItems(const QList<ZQObjectID> &items) const;

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    class Preview;
    QLabel *caption(const QString &text);
    QLabel *addValue(const QString &name);
    QLineEdit *addField(const QString &name);
    void addRow(const QString &name, QWidget *value);
    void addSection(const QString &text, QWidget *content, QWidget *box = nullptr);
    void makeHead();
    void makeRows();
    void showNothing();
    void showSummary(const QList<ZQObjectID> &items, const SelectionSummary &found);
    void showPicture(const ZQLibraryBaseItem &item, bool isOne);
    void showSize(const ZQLibraryBaseItem &item);
    void showPlace(const ZQLibraryBaseItem &item);
    void showTags(const SelectionSummary &summary);
    void showColors(const ZQLibraryBaseItem &item);
    void searchColor(const QString &argument, bool adds);
    void returnToItems();
    void commitTitle();
    bool isTitleToCome(const ZQLibraryBaseItem &item, bool isSameSelection);
    bool isTypingNotes() const; // and has not left the field
    void commitNotes();
    void commitField(QLineEdit *field);

    WindowContext &m_window;
    BrowserViewController &m_browser;
    QList<ZQObjectID> m_items;
    SelectionSummary m_summary; // as shown
    QString m_titleToCome;      // of a renaming that waits for its turn; empty: of none
    QWidget *m_body;
    QLabel *m_nothing;
    QVBoxLayout *m_column;
    Preview *m_preview;
    QLineEdit *m_title;
    QLabel *m_kind;
    LivePlace *m_place;
    RatingField *m_rating;
    QWidget *m_colorBox;
    PaletteStrip *m_colors;
    TagField *m_tags;
    QPlainTextEdit *m_notes;
    QGridLayout *m_rows;
    MissedFiles *m_missed;
    QLabel *m_size;
    DocumentSize *m_documentSize;
    QLabel *m_imported;
    QLabel *m_modified;
    QLineEdit *m_source;
    QAction *m_openSource;
    QLineEdit *m_license;
    ContentFetcher::Ticket m_summaryTicket;
};
