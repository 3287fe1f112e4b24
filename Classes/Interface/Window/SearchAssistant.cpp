#include "Classes/Interface/Window/SearchAssistant.h"

#include "Classes/Browsing/Search/SearchExpression.h"
#include "Classes/Browsing/Search/SearchNames.h"
#include "Classes/Interface/Window/CompletionList.h"
#include "Classes/Interface/WindowContext.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace {

constexpr qsizetype mostNames = 100;
constexpr int hintWidth = 380;
constexpr int below = 6;

// What is only not finished yet is no mistake while somebody types.
bool isUnfinished(const SearchPart &part, qsizetype cursor)
{
    switch (part.problem) {
    case SearchProblem::UnclosedQuote:
    case SearchProblem::OpenBracket:
    case SearchProblem::StrayOperator:
        return true;
    default:
        return cursor >= part.position && cursor <= part.end();
    }
}

} // namespace

SearchAssistant::SearchAssistant(WindowContext &window, QLineEdit &field, QObject *parent)
    : QObject(parent), m_field(field), m_list(new CompletionList(field.window())), m_hint(new QLabel(field.window())),
      m_rest(new QTimer(this)), m_ticket(window.fetcher, ContentFetcher::Priority::Typing)
{
    m_hint->setObjectName(QStringLiteral("FieldHint"));
    m_hint->setTextFormat(Qt::PlainText);
    m_hint->setWordWrap(true);
    m_hint->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_hint->hide();
    m_rest->setSingleShot(true);
    m_rest->setInterval(900);
    connect(m_rest, &QTimer::timeout, this, &SearchAssistant::showHint);
    connect(&field, &QLineEdit::textEdited, this, &SearchAssistant::edited);
    connect(&field, &QLineEdit::textChanged, this, [this] {
        m_rest->start();
        showHint();
    });
    connect(&field, &QLineEdit::cursorPositionChanged, this, &SearchAssistant::cursorMoved);
    connect(m_list, &CompletionList::taken, this, &SearchAssistant::take);
    field.installEventFilter(this);
}

void SearchAssistant::setText(const QString &text)
{
    if (text == m_field.text()) {
        return;
    }
    m_isReplacing = true;
    m_field.selectAll();
    m_field.insert(text);
    m_isReplacing = false;
    closeList();
}

void SearchAssistant::select(qsizetype position, qsizetype length)
{
    m_field.setFocus();
    m_field.setSelection(int(position), int(length));
    closeList();
    m_rest->stop();
    showHint();
}

void SearchAssistant::edited()
{
    if (!m_isReplacing) {
        offer();
    }
}

void SearchAssistant::cursorMoved()
{
    if (!m_list->isHidden() && !m_isReplacing) {
        offer();
    }
    if (m_field.hasFocus()) {
        Q_EMIT typingChanged(m_field.cursorPosition());
    }
    showHint();
}

void SearchAssistant::fetchNames(SearchField field)
{
    const SearchToken *token = m_completions.token;
    m_namesOf = token;
    m_names.clear();
    m_ticket.run([this, field, token, index = m_ticket.index()](
                     ZQManagedObjectContext &context, const auto &isWanted) -> ContentFetcher::Ticket::Answer {
        const auto names = SearchNames::of(field, context, index.get(), isWanted);
        if (!names) {
            return {};
        }
        return [this, token, names = *names] {
            if (m_namesOf == token && m_completions.token == token && m_field.hasFocus()) {
                m_names = names;
                offer();
            }
        };
    });
}

// Of the library first, then what the token may always be followed by.
QList<SearchCompletion> SearchAssistant::fitting()
{
    QList<SearchCompletion> options;
    const SearchToken *token = m_completions.token;
    if (token && SearchNames::has(token->field)) {
        if (m_namesOf != token) {
            fetchNames(token->field);
        }
        options = SearchNames::matching(m_names, m_completions.typed, mostNames);
    }
    for (const SearchCompletion &option : std::as_const(m_completions.options)) {
        const bool isKnown = std::any_of(options.begin(), options.end(),
                                         [&option](const SearchCompletion &each) { return each.text == option.text; });
        if (!isKnown) {
            options.append(option);
        }
    }
    const bool isThere = token && options.size() == 1 && options.first().text == m_completions.typed;
    return isThere ? QList<SearchCompletion>() : options;
}

void SearchAssistant::offer()
{
    const QString text = m_field.text();
    m_completions = SearchCompletions::at(text, m_field.cursorPosition());
    if (!m_completions.token) {
        m_namesOf = nullptr; // asked for anew the next time
    }
    const QList<SearchCompletion> options = m_field.hasFocus() ? fitting() : QList<SearchCompletion>();
    if (options.isEmpty()) {
        m_list->hide();
    } else {
        m_list->setOptions(options);
        place(*m_list);
        m_list->show();
        m_list->raise();
    }
    showHint();
}

void SearchAssistant::take(int row)
{
    const auto completed = m_completions.completed(m_field.text(), m_list->options().at(row));
    m_isReplacing = true;
    m_field.selectAll();
    m_field.insert(completed.text);
    m_field.setCursorPosition(int(completed.cursor));
    m_isReplacing = false;
    offer();
}

// What is there already, or else what is offered first.
int SearchAssistant::rowForTab() const
{
    const QList<SearchCompletion> &options = m_list->options();
    const QString typed =
        m_completions.token ? m_completions.typed : m_field.text().mid(m_completions.position, m_completions.length);
    const auto same = std::find_if(options.begin(), options.end(), [&typed](const SearchCompletion &option) {
        return option.text.compare(typed, Qt::CaseInsensitive) == 0 ||
               (!option.shortForm.isEmpty() && option.shortForm.compare(typed, Qt::CaseInsensitive) == 0);
    });
    return same != options.end() ? int(same - options.begin()) : 0;
}

void SearchAssistant::closeList()
{
    m_list->hide();
    showHint();
}

bool SearchAssistant::pressed(const QKeyEvent &keys)
{
    if (m_list->isHidden()) {
        if (keys.key() != Qt::Key_Down || keys.modifiers() != Qt::NoModifier) {
            return false;
        }
        offer();
        return !m_list->isHidden();
    }
    switch (keys.key()) {
    case Qt::Key_Down:
        m_list->step(1);
        return true;
    case Qt::Key_Up:
        m_list->step(-1);
        return true;
    case Qt::Key_PageDown:
        m_list->page(1);
        return true;
    case Qt::Key_PageUp:
        m_list->page(-1);
        return true;
    case Qt::Key_Escape:
        closeList();
        return true;
    case Qt::Key_Tab:
        take(m_list->current() ? m_list->currentRow() : rowForTab());
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (m_list->current()) {
            take(m_list->currentRow());
            return true;
        }
        closeList();
        return false;
    default:
        return false;
    }
}

bool SearchAssistant::eventFilter(QObject *object, QEvent *event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride: // Esc is the list's before it is the field's
        if (!m_list->isHidden() && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
            event->accept();
            return true;
        }
        break;
    case QEvent::KeyPress:
        return pressed(*static_cast<QKeyEvent *>(event));
    case QEvent::FocusIn:
        showHint();
        Q_EMIT typingChanged(m_field.cursorPosition());
        break;
    case QEvent::FocusOut:
        Q_EMIT typingChanged(-1);
        m_list->hide();
        m_hint->hide();
        break;
    case QEvent::Move:
    case QEvent::Resize:
        place(*m_list);
        place(*m_hint);
        break;
    default:
        break;
    }
    return QObject::eventFilter(object, event);
}

void SearchAssistant::showHint()
{
    const bool isWanted = m_field.hasFocus() && m_list->isHidden() && !m_field.text().trimmed().isEmpty();
    const QList<SearchPart> problems =
        isWanted ? SearchExpression::read(m_field.text(), {}).problems() : QList<SearchPart>();
    const qsizetype cursor = m_field.cursorPosition();
    const SearchPart *shown = nullptr;
    for (const SearchPart &problem : problems) {
        const bool isAtCursor = cursor >= problem.position && cursor <= problem.end();
        if ((!isUnfinished(problem, cursor) || !m_rest->isActive()) && (!shown || isAtCursor)) {
            shown = &problem;
        }
    }
    if (!shown) {
        m_hint->hide();
        return;
    }
    if (m_hint->isHidden() || m_hint->text() != shown->meaning) {
        m_hint->setText(shown->meaning);
        m_hint->setAccessibleName(shown->meaning);
        m_hint->setMaximumWidth(hintWidth);
        m_hint->ensurePolished();
        const QSize whole = m_hint->fontMetrics().size(Qt::TextSingleLine, shown->meaning);
        const int width = std::min(hintWidth, whole.width() + 2 * 14);
        m_hint->resize(width, m_hint->heightForWidth(width));
        place(*m_hint);
        m_hint->show();
        m_hint->raise();
        QAccessibleEvent event(m_hint, QAccessible::Alert);
        QAccessible::updateAccessibility(&event);
    }
}

// Not farther to the left or right than the window goes.
void SearchAssistant::place(QWidget &widget) const
{
    const QWidget *window = m_field.window();
    const QPoint corner = m_field.mapTo(window, QPoint(m_field.width(), m_field.height()));
    const int x = std::clamp(corner.x() - widget.width(), 0, std::max(0, window->width() - widget.width()));
    widget.move(x, corner.y() + below);
}
