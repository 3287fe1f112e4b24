#include "Classes/Browsing/Search/LikeArgument.h"

#include "Classes/Browsing/Search/SearchTokenizer.h"
#include "Models/DataModel/ZQSidebarSmartFolder.h"

#include <QRegularExpression>

#include <algorithm>

LikeArgument LikeArgument::of(const QString &text)
{
    static const QRegularExpression withNumber(QStringLiteral("^(.+)~([0-9]{1,3})$"));
    const auto match = withNumber.match(text);
    const int apart = match.hasMatch() ? match.captured(2).toInt() : 0;
    return match.hasMatch() && apart <= 100 ? LikeArgument{match.captured(1), std::min(apart, farthestApart)}
                                            : LikeArgument{text};
}

QString LikeArgument::text() const
{
    return apart == farthestApart ? name : name + u'~' + QString::number(apart);
}

int LikeArgument::likeness(int distance)
{
    return std::max(0, 100 - distance * 100 / unrelated);
}

std::optional<LikeArgument::Place> LikeArgument::in(const QString &searchText)
{
    if (searchText.size() > ZQSidebarSmartFolder::longestSearchText) {
        return std::nullopt;
    }
    SearchTokenizer tokenizer(searchText, QDate::currentDate());
    bool isNegated = false;
    for (SearchLexeme lexeme = tokenizer.next(); lexeme.kind != SearchLexeme::Kind::End; lexeme = tokenizer.next()) {
        const bool isLike = lexeme.kind == SearchLexeme::Kind::Token && lexeme.token &&
                            lexeme.token->field == SearchField::Like && lexeme.hasArgument;
        if (isLike && !isNegated && lexeme.unclosedQuote < 0) {
            return Place{of(lexeme.text), lexeme.argumentPosition, lexeme.end() - lexeme.argumentPosition};
        }
        isNegated = lexeme.kind == SearchLexeme::Kind::Not;
    }
    return std::nullopt;
}
