#include "Classes/Interface/Window/SavedSearchActions.h"

#include "Classes/Browsing/Search/SearchExpression.h"
#include "Classes/Browsing/Search/SearchManager.h"
#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/Browser/SavedSearchButtons.h"
#include "Classes/Interface/Sidebar/ProjectsSidebarViewController.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQSidebarSmartFolder.h"

#include <QLineEdit>
#include <QSignalBlocker>

#include <utility>

namespace {

constexpr std::chrono::milliseconds timeToRead{8000};

bool searches(const QString &text)
{
    return !SearchExpression::read(text, {}).predicateString.isEmpty();
}

} // namespace

SavedSearchActions::SavedSearchActions(WindowContext &window, BrowserViewController &browser,
                                       ProjectsSidebarViewController &sidebar, QLineEdit &search, QObject *parent)
    : QObject(parent), m_window(window), m_commands(window), m_browser(browser), m_sidebar(sidebar), m_search(search),
      m_ticket(window.fetcher, ContentFetcher::Priority::Counts)
{
    SavedSearchButtons &buttons = browser.savedSearchButtons();
    connect(&buttons, &SavedSearchButtons::saveRequested, this, &SavedSearchActions::saveSearch);
    connect(&buttons, &SavedSearchButtons::updateRequested, this, &SavedSearchActions::updateSearch);
    connect(&sidebar, &ProjectsSidebarViewController::editSearchRequested, this, &SavedSearchActions::editSearch);
    connect(&browser, &BrowserViewController::viewChanged, this, &SavedSearchActions::update);
    connect(&browser, &BrowserViewController::titleChanged, this, &SavedSearchActions::update);
    connect(&search, &QLineEdit::editingFinished, this, [this] {
        if (isEditing() && m_browser.content().filter().isEmpty()) {
            endEditing(); // Esc, or nothing typed
        }
    });
}

ZQRef<ZQSidebarBaseItem> SavedSearchActions::shownSmartFolder() const
{
    const auto single = m_browser.content().singleItem();
    return single && single->isSmartFolder() ? single : nullptr;
}

QString SavedSearchActions::savedText() const
{
    const auto smart = zqCast<ZQSidebarSmartFolder>(shownSmartFolder());
    return smart ? smart->searchText() : QString();
}

bool SavedSearchActions::isEditing() const
{
    return m_browser.content().tab().editsSearch();
}

bool SavedSearchActions::canSave() const
{
    const QString text = m_browser.content().filter();
    const bool isUnchanged = isEditing() && text == savedText().trimmed();
    // Only the text of a smart folder always stays.
    const auto fits = [this] { return !shownSmartFolder() || wholeText().size() <= SearchManager::longestText; };
    return !isUnchanged && searches(text) && fits();
}

bool SavedSearchActions::canUpdate() const
{
    return canSave() && shownSmartFolder() && savedText().size() <= SearchManager::longestText;
}

QString SavedSearchActions::wholeText() const
{
    const TabState &tab = m_browser.content().tab();
    return SavedSearchText::forQuery(
        {.sidebarItems = tab.sidebarSelectedItems(), .filter = tab.filter(), .editsSearch = tab.editsSearch()},
        m_window.context);
}

SavedSearchText::Shown SavedSearchActions::shown() const
{
    TabState &tab = m_browser.content().tab();
    SavedSearchText::Shown shown{.query = tab.contentQuery()};
    if (const Content *content = tab.content()) {
        shown.items = content->rows.related;
    }
    return shown;
}

void SavedSearchActions::compare(const SavedSearchText::Shown &shown, const QString &text)
{
    m_ticket.run([this, shown, text, index = m_ticket.index()](ZQManagedObjectContext &context,
                                                               const auto &isWanted) -> ContentFetcher::Ticket::Answer {
        const auto result = SavedSearchText::compare(shown, text, context, index.get(), isWanted);
        if (!result || result->isSame()) {
            return {};
        }
        return [this, sentence = result->sentence()] {
            m_window.user.showNotificationWithText(sentence, NotificationPlace::Browser, timeToRead);
        };
    });
}

void SavedSearchActions::update()
{
    // Who goes elsewhere leaves the text that was edited behind, and what could be undone in it, and finds it again
    // there.
    const TabState &tab = m_browser.content().tab();
    const bool isElsewhere = std::exchange(m_place, tab.sidebarSelectedItems()) != tab.sidebarSelectedItems();
    if (const QString text = tab.searchString(); isElsewhere || m_search.text() != text) {
        const QSignalBlocker blocker(&m_search);
        m_search.setText(text);
    }
    const bool save = canSave();
    const bool mayUpdate = canUpdate();
    const bool mayEdit = bool(shownSmartFolder());
    m_browser.savedSearchButtons().setOffers(save, mayUpdate);
    const bool isSame = save == m_couldSave && mayUpdate == m_couldUpdate && mayEdit == m_couldEdit;
    m_couldSave = save;
    m_couldUpdate = mayUpdate;
    m_couldEdit = mayEdit;
    if (!isSame) {
        Q_EMIT changed();
    }
}

void SavedSearchActions::endEditing()
{
    m_browser.content().setEditsSearch(false);
    m_search.setText(QString()); // not to be undone there: what comes of it is undone as a change of the library
    update();
}

void SavedSearchActions::saveSearch()
{
    if (!canSave()) {
        return;
    }
    const QString text = wholeText();
    const QString typed = m_browser.content().filter();
    const TabState &tab = m_browser.content().tab();
    const SidebarCommands::Order order{tab.sortKeysValue(), tab.sortDirectionValue()};
    const SavedSearchText::Shown before = shown();
    endEditing();
    Q_EMIT sidebarRequested();
    if (m_sidebar.addSmartFolder(text, typed, order)) {
        compare(before, text);
    }
}

void SavedSearchActions::editSearch()
{
    if (!shownSmartFolder()) {
        return;
    }
    m_browser.content().setEditsSearch(true);
    m_search.setText(savedText());
    m_search.setFocus();
    update();
}

void SavedSearchActions::updateSearch()
{
    if (!canUpdate()) {
        return;
    }
    const QString text = wholeText();
    const SavedSearchText::Shown before = shown();
    m_commands.setSearchText(shownSmartFolder(), text);
    endEditing();
    compare(before, text);
}

QList<WindowCommand> SavedSearchActions::commands()
{
    return {{CommandID::SaveSearch,
             zqLocalized("Save Search…"),
             {Qt::CTRL | Qt::Key_S},
             [this] { saveSearch(); },
             [this] { return canSave(); }},
            {CommandID::EditSearch,
             zqLocalized("Edit Search…"),
             {},
             [this] { editSearch(); },
             [this] { return bool(shownSmartFolder()); }},
            {CommandID::UpdateSearch,
             zqLocalized("Update Search"),
             {Qt::CTRL | Qt::SHIFT | Qt::Key_S},
             [this] { updateSearch(); },
             [this] { return canUpdate(); }}};
}
