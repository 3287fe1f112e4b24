// What a search shows and what it hides: chips, refine bar, and the counts of the head and the status row.

#include "Classes/Browsing/Content/StoreSearch.h"
#include "Classes/Browsing/Index/ItemCount.h"
#include "Classes/Browsing/Search/SearchManager.h"
#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/Browser/HiddenItems.h"
#include "Classes/Interface/Browser/NearnessSlider.h"
#include "Classes/Interface/Browser/RefineBar.h"
#include "Classes/Interface/Browser/SearchChips.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QLabel>
#include <QLocale>

void BrowserViewController::makeSearchRows(QWidget *page)
{
    m_chips = new SearchChips(page);
    m_chips->titleOfPicture = [this](const QString &bundleID) {
        return StoreSearch::titleOfPicture(bundleID, m_window.context);
    };
    connect(m_chips, &SearchChips::searchRequested, this, &BrowserViewController::searchRequested);
    connect(m_chips, &SearchChips::partChosen, this, &BrowserViewController::searchPartRequested);
    m_refine = new RefineBar(m_window, page);
    connect(m_refine, &RefineBar::chosen, this, &BrowserViewController::refine);
    connect(m_refine, &RefineBar::colorChosen, this, [this](const QString &token, const QString &before) {
        const QString typed = m_content->tab().searchString();
        const bool isThere = SearchManager::contains(typed, before);
        const QString text = isThere ? SearchManager::toggled(typed, before) : typed;
        Q_EMIT searchRequested(FacetText(text).toggled(FacetKind::Color, token));
    });
}

void BrowserViewController::refine(FacetKind kind, const QString &token)
{
    Q_EMIT searchRequested(FacetText(m_content->tab().searchString()).toggled(kind, token));
}

void BrowserViewController::search(const QString &token, bool adds)
{
    const QString &text = m_content->tab().searchString();
    if (!adds) {
        Q_EMIT searchRequested(text.trimmed() == token ? QString() : token);
    } else if (!SearchManager::contains(text, token)) {
        Q_EMIT searchRequested(SearchManager::toggled(text, token));
    }
}

// A saved search is explained, and changed where it is edited.
void BrowserViewController::showChips()
{
    const TabState &tab = m_content->tab();
    const bool isTyped = !tab.filter().isEmpty() || tab.editsSearch();
    m_nearness->setText(tab.searchString());
    m_chips->setText(isTyped ? tab.searchString() : m_content->shownSearch(), isTyped);
}

void BrowserViewController::setTypedAt(qsizetype cursor)
{
    m_chips->setCursor(cursor);
}

QString BrowserViewController::countText() const
{
    if (!m_content->error().isNull()) {
        return {}; // how many there are is not known
    }
    if (m_content->isLoading()) {
        return {}; // yet
    }
    const qint64 count = m_content->count();
    if (const auto total = m_hidden->total(); total && *total > count) {
        return zqFormat(zqLocalized("%@ of %@ items"), {QLocale().toString(count), QLocale().toString(*total)});
    }
    return zqItemCount(count);
}

void BrowserViewController::updateStatus()
{
    const QLocale locale;
    const qint64 selected = m_grid->selection().count();
    const QString count = locale.toString(m_content->count());
    const qint64 hidden = m_content->isLoading() ? 0 : m_hidden->hidden();
    const QString others = locale.toString(hidden);
    if (selected == 0) {
        m_status->setText(hidden > 0 ? zqFormat(zqLocalized("%@ shown, %@ hidden"), {count, others}) : countText());
        return;
    }
    const QString text = zqFormat(zqLocalized("%@ of %@ selected"), {locale.toString(selected), count});
    m_status->setText(hidden > 0 ? text + QStringLiteral("  ·  ") + zqFormat(zqLocalized("%@ hidden"), {others})
                                 : text);
}
