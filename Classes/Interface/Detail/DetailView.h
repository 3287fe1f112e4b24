#pragma once

#include "Classes/Browsing/Content/DetailDocument.h"
#include "Classes/Interface/Detail/DetailPainting.h"
#include "Kit/Widgets/ZQArtworkGround.h"

#include <QWidget>

class QLabel;
class QToolButton;

// One asset, large: fitted or at any zoom, panned by dragging, on a checkerboard where it is transparent; with the
// pages of a document and the frames of an animation.
class DetailView : public QWidget
{
    Q_OBJECT
public:
    explicit DetailView(QWidget *parent = nullptr);

    // Shows the stand-in at once and the file when it was read in the background.
    void showItem(const QString &title, const DetailDocument::Source &source, const QString &position);
    void setPosition(const QString &position);                       // of the same item, among others
    void setQuickLook(bool quickLook) { m_isQuickLook = quickLook; } // Space closes it, too
    void zoomToFit();
    void zoomToActualSize();
    void zoomIn();
    void zoomOut();
    double scale() const;                              // device pixels for a pixel of the picture
    bool isZoomed() const { return m_scale > 0; }      // not fitted
    QPointF center() const { return m_center; }        // what a zoomed picture has in the middle, in its pixels
    void setView(double scale, const QPointF &center); // 0: fitted. As another time; what does not fit is brought near
    bool isQuickLook() const { return m_isQuickLook; }
    bool isLoading() const { return m_document->state() == DetailDocument::State::Loading; }
    DetailDocument &document() { return *m_document; }

Q_SIGNALS:
    void closed();
    void stepRequested(int step);

protected:
    void paintEvent(QPaintEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    QRect canvas() const;
    QSizeF naturalSize() const;
    QRectF pictureRect() const;
    void zoomAt(double scale, const QPointF &anchor);
    void makeHead();
    void documentDidChange();
    void updateButtons();
    void updateWantedSide();

    DetailDocument *m_document;
    ZQArtworkTone m_tone; // of what is shown
    DetailPainting::Reductions m_reductions;
    bool m_isQuickLook = false;
    double m_scale = 0;        // 0: fitted
    QPointF m_center;          // of the picture, where the canvas's middle is, in its pixels
    bool m_showsFocus = false; // reached by Tab
    QPoint m_pressed;
    QLabel *m_title;
    QLabel *m_position;
    QWidget *m_pages; // the controls of several pages or frames
    QLabel *m_pageNumber;
    QToolButton *m_previousPage;
    QToolButton *m_nextPage;
    QToolButton *m_play;
    QToolButton *m_fit;
    QToolButton *m_actual;
    QLabel *m_zoom; // in percent of the picture's own pixels
};
