#pragma once

#include "Classes/Interface/Compare/CompareCanvas.h"
#include "Classes/Interface/Compare/CompareFacts.h"
#include "Kit/Persistence/ZQObjectID.h"

class QLabel;
class QToolButton;
class RatingField;

// One of the pictures that are compared, with its title, its stars and what is known of it. Main thread.
class ComparePane : public QWidget
{
    Q_OBJECT
public:
    struct Picture
    {
        ZQObjectID item;
        QString title;
        DetailDocument::Source source;
        int rating = 0;
    };
    explicit ComparePane(const Picture &picture, QWidget *parent = nullptr);

    const Picture &picture() const { return m_picture; }
    CompareCanvas &canvas() { return *m_canvas; }
    const CompareCanvas &canvas() const { return *m_canvas; }
    void setRating(int stars);
    void setTitle(const QString &title);
    void setCurrent(bool isCurrent); // what keys are for
    // Of the item at `index` of the facts; brief: only what differs, in one line.
    void showFacts(const QList<CompareFact> &facts, qsizetype index, bool isBrief);

Q_SIGNALS:
    void rated(int stars);
    void rejected();
    void entered(); // its stars have the focus

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void elideTitle();
    void showZoom();
    void describe(); // to those who hear of it

    Picture m_picture;
    QLabel *m_title;
    QLabel *m_zoom;
    RatingField *m_rating;
    CompareCanvas *m_canvas;
    QToolButton *m_reject;
    QLabel *m_facts;
    QString m_spoken; // the facts
    bool m_isCurrent = false;
};
