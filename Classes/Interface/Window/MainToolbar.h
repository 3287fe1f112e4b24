#pragma once

#include <QWidget>

class CloudButton;
class QLineEdit;
class QToolButton;
class ZQTabStrip;

// The row at the top of the window: its panes' buttons, the tabs, the search field and the menu. Main thread.
class MainToolbar : public QWidget
{
    Q_OBJECT
public:
    explicit MainToolbar(QWidget *parent = nullptr);

    ZQTabStrip &tabStrip() { return *m_tabStrip; }
    QLineEdit &search() { return *m_search; }
    QToolButton &menuButton() { return *m_menuButton; }
    CloudButton &cloudButton() { return *m_cloudButton; }
    void showAdds(bool tags); // what the button of a new entry makes: a tag, or a project
    void showPanes(bool isSidebarShown, bool isInfoPanelShown, bool isExportPanelShown);

Q_SIGNALS:
    void sidebarRequested(); // shown or hidden
    void infoPanelRequested();
    void exportPanelRequested();
    void newProjectRequested();
    void importRequested();

private:
    QToolButton *makeButton(const QString &icon, const QString &name);

    QToolButton *m_sidebarButton;
    QToolButton *m_infoButton;
    QToolButton *m_exportButton;
    CloudButton *m_cloudButton;
    QToolButton *m_menuButton;
    QToolButton *m_addButton;
    ZQTabStrip *m_tabStrip;
    QLineEdit *m_search;
};
