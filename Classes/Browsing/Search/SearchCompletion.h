#pragma once

#include "Classes/Browsing/Search/SearchToken.h"

#include <QDate>

// One thing that can be put in while a search is typed: a token or what stands behind it.
struct SearchCompletion
{
    QString text;         // "#width", or "blue"
    QString shortForm;    // "#w"; empty for none
    QString argumentHint; // localised
    QString meaning;      // one line, localised
    int color = 0;        // the code of the colour it stands for; 0 for none
};

// What fits where somebody types.
struct SearchCompletions
{
    // `cursor` counts from 0, between the characters of `text`. Nothing fits within words and quotes.
    static SearchCompletions at(const QString &text, qsizetype cursor, const QDate &today = QDate::currentDate());

    struct Completed
    {
        QString text;
        qsizetype cursor; // behind what was put in
    };
    Completed completed(const QString &text, const SearchCompletion &completion) const;

    QList<SearchCompletion> options;
    qsizetype position = 0; // what the completion replaces
    qsizetype length = 0;
    // Whose argument is typed; null while the token itself is. Tags, projects and folders are for the caller, who has
    // them, to offer: their token comes without options, and with what was typed of the argument.
    const SearchToken *token = nullptr;
    QString typed;
};
