#pragma once

#include "Classes/Browsing/Content/Content.h"
#include "Classes/Browsing/Content/ContentFetcher.h"

#include <QWidget>

#include <optional>

class QTimer;
struct WindowContext;

// How many rows a search text hides of those that are to be seen without it, and the way back to them. Hidden while it
// hides none.
class HiddenItems : public QWidget
{
    Q_OBJECT
public:
    explicit HiddenItems(WindowContext &window, QWidget *parent = nullptr);

    // The rows of this query are shown.
    void setContent(const ContentQuery &query, qint64 shown);
    void recount(); // what the store holds changed
    // With the hidden ones; nothing without a text, and while it is not known.
    std::optional<qint64> total() const;
    qint64 hidden() const { return total().value_or(m_shown) - m_shown; }

Q_SIGNALS:
    void changed();
    void showAllRequested();

private:
    void count();
    void tell();
    void announce();

    ContentQuery m_query;
    qint64 m_shown = 0;
    ContentQuery m_counted; // what the total is of
    std::optional<qint64> m_total;
    bool m_isStale = false;
    QTimer *m_rest; // what is read out are not all steps of typing
    ContentFetcher::Ticket m_ticket;
};
