#pragma once

#include "Classes/Export/ExportItem.h"

#include <QAbstractButton>

// One preset of the panel: its icon over its title. A click exports; a drag goes out of the window, or to another place
// in the panel while that is being edited.
class PresetCell : public QAbstractButton
{
    Q_OBJECT
public:
    static constexpr QSize cellSize{114, 145};

    PresetCell(const ExportItem &preset, QWidget *parent);
    const ExportItem &preset() const { return m_preset; }
    void setEditing(bool isEditing); // a click chooses it only
    QSize sizeHint() const override { return cellSize; }

Q_SIGNALS:
    void dragRequested();
    void deleteRequested();
    void moveRequested(Qt::Key arrow); // the focus to a neighbour

protected:
    void paintEvent(QPaintEvent *event) override;
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    const QImage &icon();

    const ExportItem m_preset;
    QImage m_icon; // for the pixels of the screen it is on
    QPoint m_pressPoint;
    bool m_mayDrag = false;
    bool m_isEditing = false;
};
