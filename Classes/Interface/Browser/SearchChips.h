#pragma once

#include "Classes/Browsing/SearchPart.h"

#include <QWidget>

// What was understood of a search text, a chip for each word and token, and what was not, with the reason. A click on
// one has its part selected in the field, its cross takes it out of the text. One stop of the Tab key: the arrows go
// from chip to chip. Hidden while there are only words, which need no explanation.
class SearchChips : public QWidget
{
    Q_OBJECT
public:
    explicit SearchChips(QWidget *parent = nullptr);
    // As it stands in the field; or a text of somewhere else, which is only explained.
    void setText(const QString &searchText, bool isInField = true);
    QSize sizeHint() const override;
    int count() const { return int(m_chips.size()); }
    QRect chipRect(int index) const { return m_chips[index].place; }
    QRect crossRect(int index) const;

Q_SIGNALS:
    void partChosen(qsizetype position, qsizetype length);
    void searchRequested(const QString &searchText); // without what was taken out

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;

private:
    struct Chip
    {
        QString text;
        QString reason; // what is wrong; empty for what is right
        QString meaning;
        QRect place;         // of a widget as wide as it needs
        qsizetype index = 0; // among the parts of the text
        qsizetype position = 0;
        qsizetype length = 0;
    };
    void layOut();
    void paintChip(QPainter &painter, int index) const;
    int chipAt(const QPoint &place) const; // -1: none
    void makeCurrent(int index);
    void choose(int index);
    void takeOut(int index);

    QString m_text;
    bool m_isInField = true;
    QList<Chip> m_chips;
    int m_current = 0;
    int m_hovered = -1;
};
