#pragma once

#include <QWidget>

class QToolButton;

// What the head of the browser offers for the search that is shown: to save it, or to put it into the smart folder that
// is shown. What is not offered is hidden. Main thread.
class SavedSearchButtons : public QWidget
{
    Q_OBJECT
public:
    explicit SavedSearchButtons(QWidget *parent = nullptr);
    void setOffers(bool save, bool update);

Q_SIGNALS:
    void saveRequested();
    void updateRequested();

private:
    QToolButton *makeButton(const QString &title, const QString &tip);

    QToolButton *m_update;
    QToolButton *m_save;
};
