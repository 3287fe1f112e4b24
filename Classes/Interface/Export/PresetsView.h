#pragma once

#include "Classes/Export/ExportItem.h"

#include <QList>
#include <QString>
#include <QWidget>

class ExportPresets;
class PresetCell;
class QLabel;

// The cells of all presets in rows, as many in each as the width takes. While they are edited, a drag moves one to
// where a mark shows.
class PresetsView : public QWidget
{
    Q_OBJECT
public:
    static inline const QString internalDropType = QStringLiteral("INTERNAL_DROP_TYPE"); // with nothing in it
    static constexpr QSize spacing{25, 10};

    PresetsView(ExportPresets &presets, QWidget *parent);

    void setEditing(bool isEditing);
    void setHasSelection(bool hasSelection); // without one, presets are enabled only while they are edited
    QList<PresetCell *> cells() const { return m_cells; }
    qsizetype dropIndexAt(const QPoint &point) const; // 0 to the number of presets
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

Q_SIGNALS:
    void chosen(const QString &identifier);
    void dragRequested(const QString &identifier);                            // out of the panel
    void menuRequested(const QString &identifier, const QPoint &globalPoint); // empty: of none

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void reload();
    PresetCell *makeCell(const ExportItem &preset);
    void layOut();
    void enableCells();
    int columnsFor(int width) const;
    QRect placeOf(qsizetype index) const;
    void startMove(const QString &identifier);
    void moveFocus(PresetCell *from, Qt::Key arrow);
    void setDropIndex(qsizetype index);

    ExportPresets &m_presets;
    QLabel *m_empty;
    QList<PresetCell *> m_cells;
    QString m_moved; // in the drag that goes on
    qsizetype m_dropIndex = -1;
    bool m_isEditing = false;
    bool m_hasSelection = false;
};
