#pragma once

#include "Classes/Browsing/Search/SearchPart.h"
#include "Kit/Widgets/ZQAccessible.h"

#include <QWidget>

#include <functional>

// What was understood of a search text, a chip for each word and token with what joins them between, and what was not,
// with the reason. A click on one has its part selected in the field, its cross takes it out of the text. One stop of
// the Tab key: the arrows go from chip to chip. Chips go on in up to three rows; of more, three are shown, those that
// the arrows, the wheel or a click on the number of the others ask for. Hidden while there are only words, which need
// no explanation.
class SearchChips : public QWidget, public ZQAccessibleParts
{
    Q_OBJECT
public:
    explicit SearchChips(QWidget *parent = nullptr);
    // As it stands in the field; or a text of somewhere else, which is only explained.
    void setText(const QString &searchText, bool isInField = true);
    // What a picture that is named by its bundleID is called; null: by that.
    std::function<QString(const QString &bundleID)> titleOfPicture;
    // Where the text is just being typed, between its characters: a token that is only begun there is no mistake. -1:
    // nowhere.
    void setCursor(qsizetype cursor);
    QSize sizeHint() const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::List; }
    QAccessible::Role accessiblePartRole() const override { return QAccessible::ListItem; }
    int accessiblePartCount() const override { return count(); }
    ZQAccessiblePart accessiblePart(int index) const override;
    void pressAccessiblePart(int index) override { choose(index); }
    int count() const { return int(m_chips.size()); }
    QRect chipRect(int index) const { return m_chips[index].place; }
    QRect crossRect(int index) const;
    bool isShown(int index) const;     // in one of the rows that are
    QString joins(int index) const;    // what is drawn before the chip: "or ("
    QString closings(int index) const; // and behind it: "))"
    QString moreText() const;          // how many are in no row that is shown; empty when all are
    QRect moreRect() const;            // where that stands; empty with no text

Q_SIGNALS:
    void partChosen(qsizetype position, qsizetype length);
    void searchRequested(const QString &searchText); // without what was taken out

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;

private:
    struct Chip
    {
        QString text;
        QString reason; // what is wrong; empty for what is right
        QString meaning;
        QStringList before;  // what joins it to those before, and the brackets that open there
        int closings = 0;    // brackets that close behind it
        int row = 0;         // of all
        QRect place = {};    // in the widget, as it is scrolled
        qsizetype index = 0; // among the parts of the text
        qsizetype position = 0;
        qsizetype length = 0;
    };
    static QString spoken(const Chip &chip);
    bool isOnlyBegun(const SearchPart &part) const;
    void readParts();
    void layOut();
    void breakRows(int room);
    void placeRows();
    void scrollTo(int firstRow);
    int shownRows() const;
    void paintChip(QPainter &painter, int index) const;
    void paintJoins(QPainter &painter, int index) const;
    int chipAt(const QPoint &place) const; // -1: none
    void makeCurrent(int index);
    void choose(int index);
    void takeOut(int index);

    QString m_text;
    bool m_isInField = true;
    qsizetype m_cursor = -1;
    bool m_hasMistakes = false; // or what is only begun
    bool m_needsExplanation = false;
    QList<Chip> m_chips;
    int m_leftOut = 0; // parts that would be too many chips
    int m_rows = 1;
    int m_firstRow = 0; // that is shown
    int m_current = 0;
    int m_hovered = -1;
};
