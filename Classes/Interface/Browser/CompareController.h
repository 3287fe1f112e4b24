#pragma once

#include "Classes/Interface/WindowContext.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QObject>
#include <QTimer>

class BrowserContent;
class CompareView;
class QStackedWidget;
class ZQGridView;

// The comparison in a browser's place: of what is selected there, which it rates and keeps by `EditContext`. The grid's
// selection follows the current picture, and has all of them again afterwards. Main thread.
class CompareController : public QObject
{
    Q_OBJECT
public:
    CompareController(WindowContext &window, BrowserContent &content, ZQGridView &grid, QStackedWidget &stack);

    bool canOpen() const; // what is selected can be compared
    bool isOpen() const;
    void open();                               // what is selected
    void open(const QList<ZQObjectID> &items); // those of them that are shown, unless they are too few
    void close();
    QList<ZQObjectID> items() const;              // none when it is closed
    ZQRef<ZQLibraryBaseItem> currentItem() const; // null for none
    void setRating(int stars);                    // shown for the current one
    void followSoon();                            // the store has other values
    CompareView &view() { return *m_view; }

Q_SIGNALS:
    void openChanged();

private:
    QList<ZQObjectID> selectedItems() const;
    void follow();
    void keep(const ZQObjectID &item);

    WindowContext &m_window;
    BrowserContent &m_content;
    ZQGridView &m_grid;
    QStackedWidget &m_stack;
    CompareView *m_view;
    QTimer m_follow;
};
