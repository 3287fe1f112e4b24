#pragma once

#include "Classes/Browsing/SearchPart.h"

#include <QWidget>

// What was understood of a search text, a chip for each word and token, and what was not, with the reason. Hidden while
// there are only words, which need no explanation.
class SearchChips : public QWidget
{
    Q_OBJECT
public:
    explicit SearchChips(QWidget *parent = nullptr);
    void setText(const QString &searchText);
    QSize sizeHint() const override;

protected:
    bool event(QEvent *event) override; // what a chip means, where the pointer is
    void paintEvent(QPaintEvent *event) override;

private:
    struct Chip
    {
        QString text;
        QString reason; // what is wrong; empty for what is right
        QString meaning;
        QRect place; // of a widget as wide as it needs
    };
    void layOut();

    QList<Chip> m_chips;
};
