#pragma once

#include <QWidget>

class QStackedWidget;
class ZQSwitch;

// The pane at the right of the window, with a switch between what is known of the selected items and how they go out.
class SidePanel : public QWidget
{
    Q_OBJECT
public:
    enum class Page { Info, Export };

    explicit SidePanel(QWidget *parent = nullptr);
    void setPages(QWidget *info, QWidget *exportPanel); // becomes their parent

    Page page() const;
    void setPage(Page page); // whether it is shown or not
    bool shows(Page page) const { return !isHidden() && this->page() == page; }

Q_SIGNALS:
    void pageChanged();

private:
    ZQSwitch *m_switch;
    QStackedWidget *m_stack;
};
