#pragma once

#include "Classes/Interface/Compare/ComparePane.h"
#include "Kit/Imaging/ZQPictureDifference.h"

#include <QPointer>
#include <QWidget>

#include <memory>
#include <utility>

class QGridLayout;
class QLabel;
class QPushButton;
class QStackedWidget;
class QToolButton;
class ZQOperationQueue;

// Two to nine pictures side by side, zoomed and panned together, or two of one size by their difference; with what is
// known of them, and what differs in bold. One of them is current: it is rated, taken out or kept by keys. What that
// does to the library is for whoever listens. Main thread.
class CompareView : public QWidget
{
    Q_OBJECT
public:
    using Picture = ComparePane::Picture;
    explicit CompareView(QWidget *parent = nullptr);
    ~CompareView() override;

    static constexpr int fewest = 2;
    static constexpr int most = 9;

    void showPictures(const QList<Picture> &pictures);
    void clear(); // nothing is read or held any longer
    QList<ZQObjectID> items() const;
    ZQObjectID currentItem() const; // null for none
    void setCurrentItem(const ZQObjectID &item);
    void setFacts(const QList<CompareFact> &facts); // in the order of `items`
    void setRating(const ZQObjectID &item, int stars);
    void setTitle(const ZQObjectID &item, const QString &title);
    void take(const ZQObjectID &item); // it is no longer there
    void setNote(const QString &note); // what is known of all of them together

    void zoomToFit();
    void zoomToActualSize(); // of the current one
    void zoomIn();
    void zoomOut();
    bool showsDifference() const { return m_showsDifference; }
    void setShowsDifference(bool shows);

Q_SIGNALS:
    void closed();
    void currentChanged(const ZQObjectID &item);
    void itemsChanged(); // one was taken out, or came back
    void rated(const ZQObjectID &item, int stars);
    void keepRequested(const ZQObjectID &item); // in place of the others

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QToolButton *textButton(const QString &text, const QString &toolTip);
    QWidget *makeHead();
    QWidget *makeFoot();
    ComparePane *addPane(const Picture &picture, qsizetype at);
    ComparePane *currentPane() const; // null for none
    ComparePane *paneOf(const ZQObjectID &item) const;
    CompareCanvas *zoomedCanvas() const; // what the zoom is for; null for none
    void removePane(ComparePane *pane);
    void reject(ComparePane *pane);
    void bringBack();
    void choose(qsizetype index);
    void markCurrent(ComparePane *pane);
    void layOut();
    void showFacts();
    void updateTexts();
    void fitHead();
    void follow(const CompareCanvas *origin, const CompareZoom &view);
    void fitTogether();
    bool canShowDifference() const;
    void updateDifference();
    void startDifference(const QImage &first, const QImage &second);
    void showDifference(const ZQPictureDifference &difference);

    struct Rejected
    {
        Picture picture;
        qsizetype at;
    };

    QList<ComparePane *> m_panes;
    QList<QWidget *> m_empty; // behind the last of them, where the row has room
    QPointer<ComparePane> m_current;
    QList<Rejected> m_rejected; // the last one last
    QList<CompareFact> m_facts;
    QString m_note;
    bool m_isLinked = true;
    bool m_showsDifference = false;
    std::pair<qint64, qint64> m_differenceOf; // the pictures it was made of, or is being
    quint64 m_generation = 0;
    QString m_differenceText;
    QStackedWidget *m_pages;
    QWidget *m_grid;
    QGridLayout *m_cells;
    CompareCanvas *m_difference;
    QWidget *m_head;
    QLabel *m_title;
    QLabel *m_count;
    QToolButton *m_sideBySide;
    QToolButton *m_differenceButton;
    QToolButton *m_linked;
    QToolButton *m_fit;
    QToolButton *m_actual;
    QLabel *m_status;
    QToolButton *m_bringBack;
    QPushButton *m_keep;
    std::unique_ptr<ZQOperationQueue> m_queue;
};
