#pragma once

#include "Classes/Browsing/Content/DetailDocument.h"
#include "Classes/Interface/Detail/DetailPainting.h"
#include "Kit/Widgets/ZQAccessible.h"
#include "Kit/Widgets/ZQArtworkGround.h"

#include <QPointF>
#include <QWidget>

#include <optional>

// What a canvas shows of its picture: `zoom` times as large as it fits, with the place `center`, in parts of the
// picture, in the middle. Pictures of one shape and different sizes thus show the same part at the same size.
struct CompareZoom
{
    double zoom = 1;
    QPointF center{0.5, 0.5};
    bool operator==(const CompareZoom &) const = default;
};

// One of the pictures that are compared, zoomed by the wheel and panned by dragging. Main thread.
class CompareCanvas : public QWidget, public ZQAccessibleThing
{
    Q_OBJECT
public:
    explicit CompareCanvas(QWidget *parent = nullptr);

    void open(const DetailDocument::Source &source);
    const DetailDocument &document() const { return *m_document; }
    DetailDocument &document() { return *m_document; }
    // In place of a document's picture; `message` where there is none.
    void showImage(const QImage &image, const QString &message);

    const CompareZoom &view() const { return m_view; }
    void setView(const CompareZoom &view);
    QSizeF naturalSize() const;
    double roomScale() const;         // at which the picture fills the room, in device pixels for one of its own
    void setLargestFit(double scale); // a fitted picture is shown at no more than that; 0: as the room has it
    double scale() const;             // device pixels for a pixel of the picture
    void zoomTo(double scale);        // about the middle
    void zoomBy(double factor, std::optional<QPointF> anchor = {});
    void panBy(const QPointF &distance); // of what is seen, in parts of the room
    QString zoomText() const;            // empty while nothing is shown
    void setCurrent(bool isCurrent);     // of several

    QAccessible::Role accessibleRole() const override { return QAccessible::Graphic; }
    QString accessibleValueText() const override { return zoomText(); }
    void completeAccessibleState(QAccessible::State &state) const override;
    QMap<QString, QString> accessibleActions() const override;
    void doAccessibleAction(const QString &name) override;

Q_SIGNALS:
    void viewChanged(const CompareZoom &view); // by the person
    void scaleChanged();                       // by anybody
    void documentChanged();
    void roomChanged();
    void chosen(); // it has the focus

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    const QImage &shownImage() const;
    QRectF pictureRect() const;
    QSizeF shownSize(double zoom) const; // in points
    double fitScale() const;
    void change(double zoom, const QPointF &center);
    void updateWantedSide();

    DetailDocument *m_document;
    QImage m_image; // in place of the document's
    QString m_message;
    bool m_isPlain = false; // shows those
    ZQArtworkTone m_tone;
    DetailPainting::Reductions m_reductions;
    CompareZoom m_view;
    double m_largestFit = 0;
    bool m_showsFocus = false;     // not for who pressed on it
    std::optional<bool> m_current; // none: it is the only one
    QPointF m_pressed;
};
