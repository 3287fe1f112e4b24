#pragma once

#include "Classes/Browsing/Search/SearchPart.h"

#include <QDate>
#include <QList>
#include <QSet>
#include <QString>

// By what a list can be refined.
enum class FacetKind { Kind, Color, Rating, Tag, Size, Imported, Folder };

// One thing a list can be refined by, and how many items remain then.
struct FacetValue
{
    QString token; // of the search language, with its argument; all of a text that say the same, as it has them
    QString title; // localised
    int stars = 0; // that stand for the title; 0 for none
    int color = 0; // the code of its swatch; 0 for none
    qint64 count = 0;
    bool isChosen = false; // the search text has the token
    friend bool operator==(const FacetValue &, const FacetValue &) = default;
};

struct Facet
{
    FacetKind kind = FacetKind::Kind;
    QList<FacetValue> values; // in the order in which they are shown; never none
    friend bool operator==(const Facet &, const Facet &) = default;

    static QString title(FacetKind kind); // localised
    // An item has one value of it, so that another one takes the place of the one that is chosen.
    static bool isExclusive(FacetKind kind) { return kind != FacetKind::Tag; }
};

// What facets have to do with a search text. Any thread.
class FacetText
{
public:
    explicit FacetText(const QString &text, const QDate &today = QDate::currentDate());

    // The tokens of a facet that ask for something, as they were typed.
    QStringList tokens(FacetKind kind) const;
    // The text without them, where nothing but blanks joins its parts and one value of the facet takes the place of
    // another; otherwise the text as it is.
    QString without(FacetKind kind) const;
    bool contains(FacetKind kind, const QString &token) const;
    // What the text becomes when the value of this token is chosen, or taken away.
    QString toggled(FacetKind kind, const QString &token) const;

private:
    struct Own
    {
        FacetKind kind;
        qsizetype index; // among the parts
        QString text;
        QString normalized;
    };
    QString m_text;
    QList<Own> m_own;
    bool m_isPlain = true; // words and tokens only
};
