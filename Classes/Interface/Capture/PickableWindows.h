#pragma once

#include "Classes/Capture/ScreenSource.h"

#include <QList>
#include <QObject>
#include <QRect>

// The windows that can be picked, as they were when the choice began, front to back, and the one that is highlighted,
// for the views of all screens. Main thread.
class PickableWindows : public QObject
{
    Q_OBJECT
public:
    explicit PickableWindows(const ScreenSource &source, QObject *parent = nullptr);

    bool isEmpty() const { return m_windows.isEmpty(); }
    std::optional<quint32> highlighted() const; // its number
    QRect highlightedBounds() const;            // in pixels of the whole desktop
    QRect screenOfHighlighted() const;          // the one that shows most of it, as above; empty: none does
    QString highlightedName() const;            // its program and its title
    void highlightAt(const QPoint &pixel);      // of the whole desktop: the first that contains it, or none
    void highlightNext(int step);               // 1, or -1; from none, the first or the last

Q_SIGNALS:
    void changed();

private:
    void highlight(qsizetype index);

    QList<QVariantMap> m_windows;
    QList<QRect> m_screens;
    qsizetype m_index = -1;
};
