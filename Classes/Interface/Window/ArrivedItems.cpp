#include "Classes/Interface/Window/ArrivedItems.h"

#include "Classes/Browsing/Content/ContentFetcher.h"
#include "Classes/Browsing/Content/LookAlikes.h"
#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/Sheets/RefusedFilesSheet.h"
#include "Classes/Interface/Sidebar/ProjectsSidebarViewController.h"
#include "Classes/Interface/Window/NearDuplicateActions.h"
#include "Classes/Interface/Window/WindowUserInteraction.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QLocale>
#include <QSet>
#include <QTimer>

#include <algorithm>

using namespace std::chrono_literals;

namespace {
QString countsOf(const ImportOutcome &outcome)
{
    const QLocale locale;
    const QString came = locale.toString(outcome.imported.size());
    return outcome.refused.isEmpty()
               ? zqFormat(zqLocalized("%@ imported"), {came})
               : zqFormat(zqLocalized("%@ imported, %@ not"), {came, locale.toString(outcome.notImported)});
}

constexpr auto lookInterval = 100ms;
constexpr int mostLooks = 30;         // something else is being fetched all the time
constexpr auto timeToDecide = 8000ms; // with a button

// In their order. Nothing when the store cannot be read, which is no sign of deletion.
std::optional<QList<ZQObjectID>> stillThere(const QList<ZQObjectID> &items, ZQManagedObjectContext &context,
                                            ZQError *error)
{
    constexpr qsizetype atOnce = 1000;
    QSet<ZQObjectID> left;
    for (qsizetype start = 0; start < items.size(); start += atOnce) {
        QVariantList batch;
        for (const ZQObjectID &id : items.sliced(start, std::min(atOnce, items.size() - start))) {
            batch.append(QVariant::fromValue(id));
        }
        const auto found =
            context.fetchObjectIDs({.entityName = ZQLibraryBaseItem::entityName(),
                                    .predicate = ZQPredicate::predicateWithFormat(
                                        QStringLiteral("SELF IN %@ AND active == YES"), {QVariant(batch)})},
                                   error);
        if (!found) {
            return std::nullopt;
        }
        left.unite(QSet<ZQObjectID>(found->begin(), found->end()));
    }
    QList<ZQObjectID> result = items;
    result.removeIf([&left](const ZQObjectID &id) { return !left.contains(id); });
    return result;
}

QString textForAlike(qsizetype count)
{
    return zqCounted({"1 looks like a picture you have", "%d look like pictures you have"}, count);
}
} // namespace

ArrivedItems::ArrivedItems(WindowContext &window, WindowUserInteraction &user, ProjectsSidebarViewController &sidebar,
                           BrowserViewController &browser, std::function<void()> showEverything, QObject *parent)
    : QObject(parent), m_window(window), m_user(user), m_sidebar(sidebar), m_browser(browser),
      m_showEverything(std::move(showEverything)), m_ticket(window.fetcher, ContentFetcher::Priority::Content),
      m_alikeTicket(window.fetcher, ContentFetcher::Priority::Idle)
{
    m_user.onImportEnd = [this](const ImportOutcome &outcome) {
        const ImportOutcome total = withEarlierParts(outcome);
        if (!total.imported.isEmpty() || !total.refused.isEmpty()) {
            m_last = total;
            Q_EMIT lastImportChanged();
        }
        lookForAlike(total);
        tellWhenShown(total, m_toldCount, 0);
    };
    m_user.onShowImport = [this] { showLastImport(); };
}

ArrivedItems::~ArrivedItems()
{
    m_user.onImportEnd = nullptr;
    m_user.onShowImport = nullptr;
}

// What belongs to another import may have come in between.
ImportOutcome ArrivedItems::withEarlierParts(const ImportOutcome &part)
{
    ImportOutcome total = m_unfinished.take(part.import);
    if (total.import.isNull()) {
        total = part;
    } else {
        total.add(part);
    }
    if (total.hasMore) {
        m_unfinished.insert(total.import, total);
    }
    m_lastTold = total.import;
    ++m_toldCount;
    return total;
}

// The rows come a moment after the items: whether they are in view is not known before.
void ArrivedItems::tellWhenShown(const ImportOutcome &outcome, int count, int looks)
{
    if (m_lastTold == outcome.import && m_toldCount != count) {
        return; // a later part says it all
    }
    if (outcome.imported.isEmpty() || looks == mostLooks || (looks > 0 && m_window.fetcher.isIdle())) {
        tell(outcome);
    } else {
        QTimer::singleShot(lookInterval, this,
                           [this, outcome, count, looks] { tellWhenShown(outcome, count, looks + 1); });
    }
}

void ArrivedItems::lookForAlike(const ImportOutcome &outcome)
{
    if (outcome.hasMore || outcome.imported.isEmpty()) {
        return;
    }
    const auto looking = std::make_shared<LookAlikes>(outcome.imported);
    m_alikeTicket.run([this, looking, index = m_alikeTicket.index(), import = outcome.import](
                          ZQManagedObjectContext &context,
                          const ContentFetcher::Ticket::IsWanted &isWanted) -> ContentFetcher::Ticket::Answer {
        if (!index || !looking->look(*index, context, isWanted) || looking->arrived().isEmpty()) {
            return {};
        }
        return [this, looking, import] { didLookForAlike(import, *looking); };
    });
}

// Where that took long, the import was told of before.
void ArrivedItems::didLookForAlike(const QUuid &import, const LookAlikes &looked)
{
    m_alike = {import, looked.arrived().size(), looked.arrived() + looked.before()};
    if (m_saidOf == import) {
        m_user.showNotification(textForAlike(m_alike.count), NotificationPlace::Browser, timeToDecide,
                                {showingAlike(zqLocalized("Show"))});
    }
}

ZQNotificationAction ArrivedItems::showingAlike(const QString &title)
{
    return {title,
            [this, items = m_alike.items] { NearDuplicateActions::findAmong(items, m_window, m_browser.window()); }};
}

void ArrivedItems::tell(const ImportOutcome &outcome)
{
    const qsizetype alike = m_alike.import == outcome.import ? m_alike.count : 0;
    QString text = outcome.summary.isEmpty() ? outcome.text() : outcome.summary;
    QList<ZQNotificationAction> actions;
    m_saidOf = outcome.import;
    if (!outcome.imported.isEmpty() && !areInView(outcome.imported)) {
        if (text.isEmpty()) {
            text = zqFormat(zqLocalized("%@ imported"), {QLocale().toString(outcome.imported.size())});
        }
        actions.append({zqLocalized("Show"), [this, outcome] { show(outcome.imported, outcome.target); }});
    }
    if (!outcome.refused.isEmpty() && !text.isEmpty()) {
        actions.append({zqLocalized("Reasons…"), [this, outcome] { showRefused(outcome); }});
    }
    if (alike > 0) {
        text += (text.isEmpty() ? QString() : QStringLiteral("\n")) + textForAlike(alike);
        actions.append(showingAlike(actions.isEmpty() ? zqLocalized("Show") : zqLocalized("Show Similar")));
    }
    if (!text.isEmpty()) {
        m_user.showNotification(text, NotificationPlace::Browser,
                                actions.isEmpty() ? outcome.time
                                                  : std::max<std::chrono::milliseconds>(outcome.time, timeToDecide),
                                actions);
    }
}

bool ArrivedItems::areInView(const QList<ZQObjectID> &items) const
{
    if (!m_browser.showsItems()) {
        return false;
    }
    const auto visible = m_browser.content().libraryItemIDs(m_browser.grid().visibleIndexes());
    const QSet<ZQObjectID> arrived(items.begin(), items.end());
    return std::any_of(visible.begin(), visible.end(),
                       [&arrived](const ZQObjectID &id) { return arrived.contains(id); });
}

// Labels cannot be chosen; what went there is in the library, as everything.
ZQObjectID ArrivedItems::placeOf(const ZQObjectID &target) const
{
    const auto item = target.isNull() ? ZQRef<ZQSidebarBaseItem>() : m_window.sidebarItem(target);
    if (item && item->active() && !item->isLabel()) {
        return target;
    }
    const auto library = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(m_window.context);
    return library ? library->objectID() : ZQObjectID();
}

void ArrivedItems::show(const QList<ZQObjectID> &items, const ZQObjectID &target)
{
    m_ticket.run(
        [this, items, target](ZQManagedObjectContext &context, const auto &) -> ContentFetcher::Ticket::Answer {
            ZQError error;
            const auto left = stillThere(items, context, &error);
            return [this, left, target, error] {
                if (!left) {
                    const QString text = zqFormat(zqLocalized("What was imported could not be looked up: %@"),
                                                  {error.localizedDescription()});
                    m_user.showNotificationWithText(text, NotificationPlace::Browser, usualNotificationTime);
                } else {
                    showLeft(*left, target);
                }
            };
        });
}

void ArrivedItems::showLeft(const QList<ZQObjectID> &left, const ZQObjectID &target)
{
    if (left.isEmpty()) {
        m_user.showNotificationWithText(zqLocalized("What was imported was deleted since."), NotificationPlace::Browser,
                                        usualNotificationTime);
        return;
    }
    m_browser.closeDetail();
    if (m_browser.content().indexesOfLibraryItems(left).count() == 0) {
        m_showEverything();
        m_sidebar.selectItems({placeOf(target)});
    }
    m_browser.selectLibraryItems(left);
    m_browser.grid().setFocus();
}

void ArrivedItems::showRefused(const ImportOutcome &outcome)
{
    QWidget *window = m_browser.window();
    const QString title = zqLocalized("These files were not imported, or not wholly");
    const auto way = outcome.imported.isEmpty() ? RefusedFilesSheet::Way::None : RefusedFilesSheet::Way::ToImported;
    (new RefusedFilesSheet(window, title, outcome.refused, way))->open([this, outcome](std::optional<int> code) {
        if (code == RefusedFilesSheet::showCode) {
            show(outcome.imported, outcome.target);
        }
    });
}

void ArrivedItems::showLastImport()
{
    if (m_last && m_last->refused.isEmpty()) {
        show(m_last->imported, m_last->target);
    } else if (m_last) {
        showRefused(*m_last);
    }
}

QList<WindowCommand> ArrivedItems::commands()
{
    return {{.id = CommandID::LastImport,
             .title = zqLocalized("Last Import"),
             .keys = {Qt::CTRL | Qt::ALT | Qt::Key_I},
             .run = [this] { showLastImport(); },
             .isEnabled = [this] { return m_last.has_value(); },
             .shown =
                 [this] {
                     return m_last ? zqFormat(zqLocalized("Last Import: %@"), {countsOf(*m_last)})
                                   : zqLocalized("Last Import");
                 }}};
}
