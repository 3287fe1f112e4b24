#include "Classes/Browsing/Search/SearchCompletion.h"

#include <gtest/gtest.h>

namespace {

const QDate today(2026, 3, 14);

// `text` with "|" at the cursor.
SearchCompletions at(QString text)
{
    const qsizetype cursor = text.indexOf(u'|');
    return SearchCompletions::at(text.remove(u'|'), cursor, today);
}

std::string options(const char *text)
{
    QStringList texts;
    for (const SearchCompletion &option : at(QString::fromUtf8(text)).options) {
        texts.append(option.text);
    }
    return texts.join(u' ').toStdString();
}

// The first completion put in, with "|" at the cursor.
std::string completed(const char *text)
{
    QString plain = QString::fromUtf8(text);
    const SearchCompletions completions = at(plain);
    if (completions.options.isEmpty()) {
        return "none";
    }
    auto [result, cursor] = completions.completed(plain.remove(u'|'), completions.options.first());
    return result.insert(cursor, u'|').toStdString();
}

} // namespace

TEST(SearchCompletionTest, OptionsFitWhatIsTypedBeforeTheCursor)
{
    EXPECT_EQ(at(QStringLiteral("#|")).options.size(), SearchToken::all().size());
    EXPECT_EQ(options("logo #dup|"), "#duplicates #duplicateshashes");
    EXPECT_EQ(options("#TI|"), "#title");
    EXPECT_EQ(options("(-#wi|"), "#width");
    EXPECT_EQ(options("#np|"), "#noproject") << "by its short form";
    EXPECT_EQ(options("#t|itle x"), "#title #tag");
    EXPECT_EQ(options("#xy|"), "");
    EXPECT_EQ(options("logo|"), "");
    EXPECT_EQ(options("\"#ti|"), "");
    EXPECT_EQ(options("|#ti"), "");
    EXPECT_EQ(options("#live |"), "");
    EXPECT_EQ(options("#color b|"), "black blue");
    EXPECT_EQ(options("#color = b|"), "black blue");
    EXPECT_EQ(options("#color #3366cc|"), "#3366cc~4 #3366cc~10 #3366cc~20");
    EXPECT_EQ(options("#color blue~1|"), "blue~10");
    EXPECT_EQ(options("#size |"), "none icon small medium large vector");
    EXPECT_EQ(options("#size vec|"), "vector");
    EXPECT_EQ(options("#d=|"), "today yesterday 7d 2026-03 2026");
    EXPECT_EQ(options("#d |"), "") << "first comes what to compare by";
    EXPECT_EQ(options("#d=2|"), "2026-03 2026");
    EXPECT_EQ(options("#r>|"), "5 4 3 2 1 0");
    EXPECT_EQ(options("#kind |"), "image font brush document video");
    EXPECT_EQ(options("#c |"), "white black gray red orange yellow green blue purple pink none");
    const SearchCompletions tag = at(QStringLiteral("a #tag \"summer 2|"));
    ASSERT_TRUE(tag.token);
    EXPECT_EQ(tag.token->field, SearchField::Tag);
    EXPECT_EQ(tag.typed, QStringLiteral("summer 2"));
    EXPECT_EQ(tag.position, 7);
    for (const SearchCompletion &option : at(QStringLiteral("#|")).options) {
        const SearchToken &token = *SearchToken::named(option.text, true);
        EXPECT_FALSE(option.meaning.isEmpty()) << option.text.toStdString();
        EXPECT_EQ(option.argumentHint.isEmpty(), token.argument == SearchArgument::None) << option.text.toStdString();
        EXPECT_EQ(option.shortForm, token.shortName());
    }
}

TEST(SearchCompletionTest, WhatIsPutInLeavesTheRestAndGoesOnBehindIt)
{
    EXPECT_EQ(completed("logo #ti|"), "logo #title |");
    EXPECT_EQ(completed("#wi|"), "#width>|");
    EXPECT_EQ(completed("#di|"), "#di=|");
    EXPECT_EQ(completed("#wi|>100"), "#width|>100");
    EXPECT_EQ(completed("#proj| brand"), "#project| brand");
    EXPECT_EQ(completed("#wid|th>100"), "#width|>100");
    EXPECT_EQ(completed("#c bla|"), "#c black |");
    EXPECT_EQ(completed("#c b|lue x"), "#c black| x");
    EXPECT_EQ(completed("#d=y| x"), "#d=yesterday| x");
    EXPECT_EQ(completed("#c \"whi|"), "#c white |");
    EXPECT_EQ(completed("x|"), "none");
    const SearchCompletions tags = at(QStringLiteral("#tag su| x"));
    const auto put = tags.completed(QStringLiteral("#tag su x"), {QStringLiteral("summer 2026"), {}, {}, {}});
    EXPECT_EQ(put.text, QStringLiteral("#tag \"summer 2026\" x"));
}
