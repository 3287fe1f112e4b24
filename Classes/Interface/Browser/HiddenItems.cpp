#include "Classes/Interface/Browser/HiddenItems.h"

#include "Classes/Browsing/Content/ContentBuilder.h"
#include "Classes/Interface/WindowContext.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQAccessible.h"

#include <QBoxLayout>
#include <QLocale>
#include <QTimer>
#include <QToolButton>

#include <algorithm>

namespace {

ContentQuery withoutText(ContentQuery query)
{
    query.filter.clear();
    return query;
}

// Rows of the same number: their order makes no difference.
bool isOfSameRows(const ContentQuery &a, const ContentQuery &b)
{
    return a.sidebarItems == b.sidebarItems && a.displayStyle == b.displayStyle && a.editsSearch == b.editsSearch;
}

} // namespace

HiddenItems::HiddenItems(WindowContext &window, QWidget *parent)
    : QWidget(parent), m_rest(new QTimer(this)), m_ticket(window.fetcher, ContentFetcher::Priority::Counts)
{
    auto *button = new QToolButton(this);
    button->setObjectName(QStringLiteral("Link"));
    button->setText(zqLocalized("Show all"));
    button->setAccessibleName(zqLocalized("Show all"));
    button->setToolTip(zqLocalized("Empty the search field"));
    button->setFocusPolicy(Qt::TabFocus);
    connect(button, &QToolButton::clicked, this, &HiddenItems::showAllRequested);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(button);
    zqSetAccessibleRole(this, QAccessible::Notification);
    m_rest->setSingleShot(true);
    m_rest->setInterval(700);
    connect(m_rest, &QTimer::timeout, this, &HiddenItems::announce);
    hide();
}

void HiddenItems::setContent(const ContentQuery &query, qint64 shown)
{
    m_query = query;
    m_shown = shown;
    if (query.filter.isEmpty()) {
        m_counted = query;
        m_total = shown;
        m_isStale = false;
    } else if (m_isStale || !m_total || !isOfSameRows(query, m_counted)) {
        m_total = isOfSameRows(query, m_counted) ? m_total : std::nullopt;
        count();
    }
    tell();
}

void HiddenItems::recount()
{
    m_isStale = true;
    if (!m_query.filter.isEmpty()) {
        count();
    }
}

void HiddenItems::count()
{
    ContentQuery counted = withoutText(m_query);
    counted.sortValue = ZQSortValue::ImportDate; // no order makes a difference; this one costs little
    m_ticket.run([this, query = withoutText(m_query), counted, index = m_ticket.index()](
                     ZQManagedObjectContext &context, const auto &isWanted) -> ContentFetcher::Ticket::Answer {
        const auto content = ContentBuilder(counted, context, index.get()).content(isWanted);
        if (!content || !content->error.isNull()) {
            return {};
        }
        return [this, query, total = content->rows.ids.size()] {
            m_counted = query;
            m_total = total;
            m_isStale = false;
            tell();
        };
    });
}

std::optional<qint64> HiddenItems::total() const
{
    const bool isKnown = !m_query.filter.isEmpty() && m_total && isOfSameRows(m_query, m_counted);
    return isKnown ? std::optional(std::max(*m_total, m_shown)) : std::nullopt;
}

void HiddenItems::tell()
{
    setVisible(hidden() > 0);
    m_rest->start();
    Q_EMIT changed();
}

void HiddenItems::announce()
{
    if (hidden() <= 0) {
        return;
    }
    const QLocale locale;
    const QString text =
        zqFormat(zqLocalized("%@ shown, %@ hidden"), {locale.toString(m_shown), locale.toString(hidden())});
    setAccessibleName(text);
    zqAnnounce(this, text);
}
