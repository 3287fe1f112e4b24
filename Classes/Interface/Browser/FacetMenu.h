#pragma once

#include "Classes/Browsing/Content/Facets.h"

#include <QFrame>

class QLineEdit;
class QListWidget;
class QListWidgetItem;

// All values of a facet in a list that goes away with a choice; typing finds among them.
class FacetMenu : public QFrame
{
    Q_OBJECT
public:
    explicit FacetMenu(const Facet &facet, QWidget *parent = nullptr);
    void popUp(const QWidget &anchor); // below it

Q_SIGNALS:
    void chosen(FacetKind kind, const QString &token);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void find(const QString &text);
    void choose(const QListWidgetItem *item);

    Facet m_facet;
    QLineEdit *m_field;
    QListWidget *m_list;
};
