#pragma once

#include <QImage>
#include <QWidget>

#include <memory>

class ZQOperationQueue;
class QLabel;
class QToolButton;

// One asset, large: fitted or at any zoom, panned by dragging, on a checkerboard where it is transparent.
class DetailView : public QWidget
{
    Q_OBJECT
public:
    explicit DetailView(QWidget *parent = nullptr);
    ~DetailView() override;

    // Shows the stand-in at once and the file when it was read in the background.
    void showItem(const QString &title, const QString &path, QSize pixelSize, const QImage &standIn,
                  const QString &position);
    void setQuickLook(bool quickLook) { m_isQuickLook = quickLook; } // Space closes it, too
    void zoomToFit();
    void zoomToActualSize();
    double scale() const; // device pixels for a pixel of the picture
    bool isLoading() const { return m_isLoading; }

Q_SIGNALS:
    void closed();
    void stepRequested(int step);

protected:
    void paintEvent(QPaintEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    QRect canvas() const;
    QSizeF naturalSize() const;
    QRectF pictureRect() const;
    void zoomAt(double scale, const QPointF &anchor);
    void updateButtons();

    QString m_path;
    QSize m_pixelSize;
    QImage m_image;
    bool m_isLoading = false;
    bool m_isFailed = false;
    bool m_isQuickLook = false;
    double m_scale = 0;        // 0: fitted
    QPointF m_center;          // of the picture, where the canvas's middle is, in its pixels
    bool m_showsFocus = false; // reached by Tab
    QPoint m_pressed;
    quint64 m_generation = 0;
    std::unique_ptr<ZQOperationQueue> m_queue;
    QLabel *m_title;
    QLabel *m_position;
    QToolButton *m_fit;
    QToolButton *m_actual;
};
