#pragma once

#include <QWidget>

class BrowserContent;
class QPushButton;

// Where there are no items: buttons for what can be done about it, below what the grid says instead of them. Hidden
// while there is something to see, or nothing to do. Main thread.
class EmptyState : public QWidget
{
    Q_OBJECT
public:
    explicit EmptyState(QWidget *parent = nullptr);
    void showFor(const BrowserContent &content);

Q_SIGNALS:
    void everythingRequested(); // without the search
    void importRequested();
    void enableRequested(); // of the live folder that is shown
    void useRequested();    // of what lies in its place

private:
    QPushButton *m_everything;
    QPushButton *m_import;
    QPushButton *m_enable;
    QPushButton *m_use;
};
