#pragma once

#include "Classes/Browsing/Content/Facets.h"

#include <QAbstractButton>

// A value that a list can be refined by, with the count of its items; or what opens those for which there is no room.
class FacetButton : public QAbstractButton
{
    Q_OBJECT
public:
    explicit FacetButton(QWidget *parent = nullptr);

    void showValue(FacetKind kind, const FacetValue &value);
    void showMore(FacetKind kind, int count);
    FacetKind kind() const { return m_kind; }
    const QString &token() const { return m_value.token; } // empty for what opens the others
    bool isMore() const { return m_value.token.isEmpty(); }
    QSize sizeHint() const override;

    // "PNG, 310 items, not chosen".
    static QString spoken(const FacetValue &value);

Q_SIGNALS:
    void moveRequested(int key); // an arrow, Home or End
    void focused();

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;

private:
    QString shownTitle() const; // empty where a swatch stands for it
    QString shownCount() const;

    FacetKind m_kind = FacetKind::Kind;
    FacetValue m_value;
    int m_more = 0;
};
