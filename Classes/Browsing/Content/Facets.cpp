#include "Classes/Browsing/Content/Facets.h"

#include "Classes/Browsing/Search/SearchExpression.h"
#include "Classes/Browsing/Search/SearchManager.h"
#include "Classes/Browsing/Search/SearchTokenizer.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <algorithm>
#include <optional>

namespace {

struct FieldOfFacet
{
    SearchField field;
    FacetKind kind;
};
constexpr FieldOfFacet fields[] = {
    {SearchField::Kind, FacetKind::Kind},         {SearchField::Extension, FacetKind::Kind},
    {SearchField::Color, FacetKind::Color},       {SearchField::Rating, FacetKind::Rating},
    {SearchField::Tag, FacetKind::Tag},           {SearchField::Size, FacetKind::Size},
    {SearchField::Imported, FacetKind::Imported}, {SearchField::Folder, FacetKind::Folder},
};

std::optional<FacetKind> facetOf(const SearchPart &part, const QDate &today)
{
    if (part.kind != SearchPart::Kind::Token || part.isNegated) {
        return std::nullopt;
    }
    SearchTokenizer tokenizer(part.text, today);
    SearchLexeme lexeme = tokenizer.next();
    while (lexeme.kind != SearchLexeme::Kind::Token && lexeme.kind != SearchLexeme::Kind::End) {
        lexeme = tokenizer.next(); // NOT NOT
    }
    for (const FieldOfFacet &each : fields) {
        if (lexeme.token && lexeme.token->field == each.field) {
            return each.kind;
        }
    }
    return std::nullopt;
}

} // namespace

QString Facet::title(FacetKind kind)
{
    switch (kind) {
    case FacetKind::Kind:
        return zqLocalized("Kind");
    case FacetKind::Color:
        return zqLocalized("Color");
    case FacetKind::Rating:
        return zqLocalized("Rating");
    case FacetKind::Tag:
        return zqLocalized("Tag");
    case FacetKind::Size:
        return zqLocalized("Size");
    case FacetKind::Imported:
        return zqLocalized("Imported");
    case FacetKind::Folder:
        return zqLocalized("Folder");
    }
    return {};
}

FacetText::FacetText(const QString &text, const QDate &today) : m_text(text)
{
    SearchContext context;
    context.today = today;
    const QList<SearchPart> parts = SearchExpression::read(text, context).parts;
    for (qsizetype index = 0; index < parts.size(); ++index) {
        m_isPlain = m_isPlain && parts[index].isClause();
        if (const auto kind = facetOf(parts[index], today)) {
            m_own.append({*kind, index, parts[index].text, parts[index].normalized});
        }
    }
}

QStringList FacetText::tokens(FacetKind kind) const
{
    QStringList result;
    for (const Own &own : m_own) {
        if (own.kind == kind) {
            result.append(own.text);
        }
    }
    return result;
}

QString FacetText::without(FacetKind kind) const
{
    QString text = m_text;
    for (auto own = m_own.rbegin(); m_isPlain && Facet::isExclusive(kind) && own != m_own.rend(); ++own) {
        if (own->kind == kind) {
            text = SearchManager::without(text, own->index);
        }
    }
    return text;
}

bool FacetText::contains(FacetKind kind, const QString &token) const
{
    const auto isOf = [kind](const Own &own) { return own.kind == kind && !own.normalized.isEmpty(); };
    if (std::none_of(m_own.begin(), m_own.end(), isOf)) {
        return false; // nearly always, and reading a token takes longer
    }
    const QList<SearchPart> parts = SearchExpression::read(token, {}).parts;
    return !parts.isEmpty() && std::all_of(parts.begin(), parts.end(), [&](const SearchPart &part) {
        return std::any_of(m_own.begin(), m_own.end(),
                           [&](const Own &own) { return isOf(own) && own.normalized == part.normalized; });
    });
}

QString FacetText::toggled(FacetKind kind, const QString &token) const
{
    if (!contains(kind, token)) {
        return SearchManager::toggled(without(kind), token);
    }
    QString text = m_text;
    while (SearchManager::contains(text, token)) { // it may be there more than once
        text = SearchManager::toggled(text, token);
    }
    return text;
}
