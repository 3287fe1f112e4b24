#pragma once

#include "Classes/Interface/Browser/BrowserContent.h"
#include "Classes/Interface/WindowCommand.h"

class BrowserHead;
class QAction;
class QToolButton;

// Whether a browser shows a grid or a list, which each tab says for itself; the columns of the list, which are the same
// in all tabs and kept; and which groups are folded away.
class BrowserListStyle : public QObject
{
    Q_OBJECT
public:
    static inline const QString columnsPreference = QStringLiteral("BrowserListColumns");

    BrowserListStyle(BrowserContent &content, BrowserHead &head, ZQGridView &grid, QObject *parent = nullptr);

    void showTab(); // style, order and folded groups, as the tab has them
    void setShowsList(bool showsList);
    QList<WindowCommand> commands();

Q_SIGNALS:
    void changed(); // by a person

private:
    void showOrder();
    void sortBy(const QString &column);
    bool showsList() const;

    BrowserContent &m_content;
    BrowserHead &m_head;
    ZQGridView &m_grid;
    QToolButton *m_asGrid;
    QToolButton *m_asList;
    QAction *m_byHand;
};
