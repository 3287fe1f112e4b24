#pragma once

#include "Classes/Browsing/Content/Content.h"
#include "Classes/Browsing/Content/ContentFetcher.h"
#include "Classes/Browsing/Content/Facets.h"

#include <QWidget>

class FacetButton;
class QLabel;
class QToolButton;
struct WindowContext;

// By what the items that are shown can be refined, with counts; a choice is for the search text. Counts only while it
// is visible, and says so while it cannot. One stop of the Tab key: the arrow keys go from value to value.
class RefineBar : public QWidget
{
    Q_OBJECT
public:
    explicit RefineBar(WindowContext &window, QWidget *parent = nullptr);

    void setContent(const ContentQuery &query); // what is shown
    void expire();                     // another place is about to be shown: what is there can be chosen no more
    void recount();                    // what the store holds changed
    void setNextStop(QWidget *widget); // of the Tab key, after its values
    const QList<Facet> &facets() const { return m_facets; }
    void choose(FacetKind kind, const QString &token); // or takes it away
    void openColorWheel(const QWidget &anchor);        // below it

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override { return place(width, false); }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {1, heightForWidth(width())}; }

    static bool isWanted(); // as it was left
    static void setWanted(bool isWanted);

Q_SIGNALS:
    void colorChosen(const QString &token, const QString &before); // by the wheel, in place of what it chose before
    void chosen(FacetKind kind, const QString &token);             // or taken away, by what the search text has now

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void showFacets(const QList<Facet> &facets);
    void showNoFacets(); // and why
    void showFacet(const Facet &facet);
    static void putAfter(QWidget *before, QWidget *widget); // in the order of the Tab key
    FacetButton *nextButton();
    QLabel *nextCaption();
    int place(int width, bool moves) const; // the height that takes
    void openMenu(const FacetButton &button);
    void moveFrom(const FacetButton &button, int key);
    void setStop(const FacetButton *button); // of the Tab key
    static QList<FacetValue> shownValues(const Facet &facet);

    ContentQuery m_query;
    QList<Facet> m_facets;
    QList<QWidget *> m_shown;       // captions and buttons in their order
    QList<FacetButton *> m_buttons; // those in use first
    QList<QLabel *> m_captions;     // the same
    qsizetype m_buttonCount = 0;
    qsizetype m_captionCount = 0;
    QToolButton *m_wheel; // beside the colours; for the keyboard there is a command
    QLabel *m_absent;     // stands for the facets while there are none
    ContentFetcher::Ticket m_ticket;
};
