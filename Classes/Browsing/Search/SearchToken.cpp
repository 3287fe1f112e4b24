#include "Classes/Browsing/Search/SearchToken.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <algorithm>

namespace {

QStringList names(const char *text)
{
    return QString::fromLatin1(text).split(u' ');
}

QList<SearchToken> vocabulary()
{
    using Field = SearchField;
    using Argument = SearchArgument;
    return {
        {Field::Title, Argument::Text, names("#title #tt #name"), zqKey("text"), zqKey("Title contains the text")},
        {Field::Notes, Argument::Text, names("#notes #n"), zqKey("text"), zqKey("Notes contain the text")},
        {Field::Extension, Argument::Text, names("#ext #e"), zqKey("extension"),
         zqKey("Files with this extension; * and ? are wildcards")},
        {Field::Tag, Argument::Text, names("#tag #t"), zqKey("name"), zqKey("Has the tag; * and ? are wildcards")},
        {Field::Project, Argument::Text, names("#project #p"), zqKey("name"),
         zqKey("In a project whose name contains the text")},
        {Field::Folder, Argument::Text, names("#folder #f"), zqKey("name"),
         zqKey("In a live folder of this name, or below it")},
        {Field::Kind, Argument::Kind, names("#kind"), zqKey("kind"), zqKey("Files of this kind, as PNG or font")},
        {Field::Size, Argument::Size, names("#size"), zqKey("icon … vector"), zqKey("Of this size class")},
        {Field::Color, Argument::Color, names("#color #c #colour"), zqKey("color or #3366cc"),
         zqKey("Mostly of this color; with a code, or ~ and a number behind it, near to it")},
        {Field::Like, Argument::Text, names("#like"), zqKey("name or bundleID"),
         zqKey("Looks like the picture of this name")},
        {Field::Rating, Argument::Rating, names("#rating #r"), zqKey("0 … 5"), zqKey("Fewer, as many or more stars")},
        {Field::Width, Argument::Pixels, names("#width #w"), zqKey("pixels"), zqKey("Narrower, as wide or wider")},
        {Field::Height, Argument::Pixels, names("#height #h"), zqKey("pixels"), zqKey("Lower, as high or higher")},
        {Field::Modified, Argument::Date, names("#date #d"), zqKey("date"),
         zqKey("Modified before (<), on (=) or since (>) the date, that day included")},
        {Field::Imported, Argument::Date, names("#di"), zqKey("date"),
         zqKey("Imported before (<), on (=) or since (>) the date, that day included")},
        {Field::Created, Argument::Date, names("#dc"), zqKey("date"),
         zqKey("Created before (<), on (=) or since (>) the date, that day included")},
        {Field::Hash, Argument::Text, names("#hash #h"), zqKey("SHA-1"), zqKey("The file with this digest")},
        {Field::Live, Argument::None, names("#live"), "", zqKey("In a live folder")},
        {Field::Untagged, Argument::None, names("#untagged"), "", zqKey("Has no tag of yours")},
        {Field::NoTag, Argument::None, names("#notag"), "", zqKey("Has no tag at all")},
        {Field::NoProject, Argument::None, names("#noproject #np"), "", zqKey("In no project")},
        {Field::Duplicates, Argument::None, names("#duplicates"), "", zqKey("The same file more than once")},
        {Field::DuplicatesHashes, Argument::Hashes, names("#duplicateshashes"), zqKey("SHA-1_SHA-1…"),
         zqKey("The same file more than once, with one of these digests")},
    };
}

} // namespace

bool SearchToken::compares() const
{
    return argument == SearchArgument::Pixels || argument == SearchArgument::Rating || argument == SearchArgument::Date;
}

QString SearchToken::argumentHint() const
{
    return *hint ? zqLocalized(hint) : QString();
}

QString SearchToken::meaning() const
{
    return zqLocalized(sentence);
}

const QList<SearchToken> &SearchToken::all()
{
    static const QList<SearchToken> tokens = vocabulary();
    return tokens;
}

const SearchToken *SearchToken::named(const QString &name, bool hasComparison)
{
    const QString lower = name.toLower();
    const SearchToken *found = nullptr;
    for (const SearchToken &token : all()) {
        if (token.names.contains(lower) && (!found || token.compares() == hasComparison)) {
            found = &token;
        }
    }
    return found;
}

const SearchToken &SearchToken::ofField(SearchField field)
{
    return *std::find_if(all().begin(), all().end(), [field](const SearchToken &each) { return each.field == field; });
}
