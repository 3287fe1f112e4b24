#pragma once

#include "Classes/Browsing/Content/ContentFetcher.h"
#include "Classes/Browsing/Search/SearchCompletion.h"

#include <QObject>

class CompletionList;
class QKeyEvent;
class QLabel;
class QLineEdit;
class QTimer;
struct WindowContext;

// Helps who types into the search field: completes tokens and what stands behind them in a list below it, and says
// below it what is wrong. Main thread.
class SearchAssistant : public QObject
{
    Q_OBJECT
public:
    SearchAssistant(WindowContext &window, QLineEdit &field, QObject *parent = nullptr);

    // As if it had been typed, so that it can be undone.
    void setText(const QString &text);
    void select(qsizetype position, qsizetype length);

Q_SIGNALS:
    void typingChanged(qsizetype cursor); // where the field is typed into; -1: it has no focus

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void edited();
    void cursorMoved();
    void offer();
    QList<SearchCompletion> fitting();
    void fetchNames(SearchField field);
    void take(int row);
    bool pressed(const QKeyEvent &keys); // whether the list took it
    int rowForTab() const;               // where nothing is chosen
    void closeList();
    void showHint();
    void place(QWidget &widget) const; // below the field

    QLineEdit &m_field;
    CompletionList *m_list;
    QLabel *m_hint;
    QTimer *m_rest;
    SearchCompletions m_completions;
    QList<SearchCompletion> m_names; // of the library, for the token they were asked for
    const SearchToken *m_namesOf = nullptr;
    bool m_isReplacing = false;
    ContentFetcher::Ticket m_ticket;
};
