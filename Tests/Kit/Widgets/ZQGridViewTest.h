#pragma once

#include "Kit/Widgets/ZQGridView.h"

#include <QApplication>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>
#include <QtTest/QTest>

#include <gtest/gtest.h>

// As many items as a test wants, with what a grid asks of them, and the grid.
class Numbers : public ZQGridDataSource
{
public:
    explicit Numbers(qint64 count, QList<ZQGridGroup> groups = {}) : m_count(count), m_groups(std::move(groups)) {}
    qint64 count() const override { return m_count; }
    QList<ZQGridGroup> groups() const override { return m_groups; }
    ZQGridItem item(qint64 index) const override
    {
        ++asked;
        return {QStringLiteral("item %1").arg(index), QStringLiteral("png"), QSize(400, 300), false, {}};
    }
    Qt::DropAction dropAction(const QMimeData *data, qint64) const override
    {
        return data->hasUrls() ? Qt::CopyAction : Qt::IgnoreAction;
    }
    bool dropsAtIndex(const QMimeData *) const override { return takesPlaces; }
    bool drop(const QMimeData *, qint64 index, Qt::DropAction) override
    {
        dropped.append(index);
        return takesDrops;
    }
    QString emptyText() const override { return QStringLiteral("Nothing here"); }

    mutable int asked = 0;
    bool takesPlaces = true;
    bool takesDrops = true;
    QList<qint64> dropped;

private:
    qint64 m_count;
    QList<ZQGridGroup> m_groups;
};

class ZQGridViewTest : public testing::Test
{
protected:
    void show(Numbers &numbers)
    {
        view.resize(932, 700);
        view.setDataSource(&numbers);
        view.show();
        view.setFocus();
    }
    void key(int code, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(&view, Qt::Key(code), modifiers);
    }
    int columns() const { return view.gridLayout().columns(); }
    QPoint middle(qint64 index) const { return view.visualRect(index).center(); }
    void click(qint64 index, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, modifiers, middle(index));
    }
    void drag(const QPoint &from, const QPoint &to, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::mousePress(view.viewport(), Qt::LeftButton, modifiers, from);
        QMouseEvent move(QEvent::MouseMove, to, view.viewport()->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(view.viewport(), &move);
    }
    QColor pixel(const QPoint &point) { return view.viewport()->grab().toImage().pixelColor(point); }
    ZQGridView view;
};
