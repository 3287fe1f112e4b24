#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Tests/Classes/Command/CommandFixture.h"

namespace {

class SearchCommandTest : public CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        picture(QStringLiteral("Brand/logo.png"), qRgb(1, 2, 3));
        picture(QStringLiteral("Brand/poster.png"), qRgb(4, 5, 6));
        picture(QStringLiteral("loose.png"), qRgb(7, 8, 9));
        ASSERT_EQ(run("import Brand loose.png"), 0) << context.errors.constData();
        ASSERT_EQ(run(QStringList{QStringLiteral("tag"), bundleID("poster"), QStringLiteral("--add"),
                                  QStringLiteral("summer 2026")}),
                  0);
    }
    QString bundleID(const char *title)
    {
        const auto item = zqFetchFirst<ZQLibraryBaseItem>(*delegate->managedObjectContext(),
                                                          QStringLiteral("title == %@"), {QLatin1StringView(title)});
        return item ? item->bundleID() : QString();
    }
    // The names found, sorted.
    std::string found(QStringList arguments)
    {
        arguments.prepend(QStringLiteral("search"));
        EXPECT_EQ(run(arguments), 0) << context.errors.constData();
        QStringList names;
        for (const QString &line : QString::fromUtf8(context.output).split(u'\n', Qt::SkipEmptyParts)) {
            names.append(line.section(u'\t', 1));
        }
        names.sort();
        return names.join(u' ').toStdString();
    }
    std::string found(const char *text) { return found(QStringList{QLatin1StringView(text)}); }
};

} // namespace

TEST_F(SearchCommandTest, FindsInTheLibraryAndBelowAnEntryAndPrintsItsWays)
{
    EXPECT_EQ(found("o"), "logo.png loose.png poster.png");
    EXPECT_EQ(found("#project brand -#tag \"summer 2026\""), "logo.png");
    EXPECT_EQ(found("-#noproject"), "logo.png poster.png") << "a text may begin like an option";
    EXPECT_EQ(found(""), "logo.png loose.png poster.png");
    EXPECT_EQ(found({QStringLiteral("lo"), QStringLiteral("-logo"), QStringLiteral("--in"),
                     QStringLiteral("LIBRARY/Library")}),
              "loose.png");
    EXPECT_EQ(found({QStringLiteral("--in"), QStringLiteral("PROJECTS/Brand"), QStringLiteral("--"),
                     QStringLiteral("-#tag sum*")}),
              "logo.png");
    EXPECT_EQ(found({QStringLiteral("o"), QStringLiteral("--in"), QStringLiteral("PROJECTS")}), "logo.png poster.png");
    EXPECT_EQ(run("search o --count"), 0);
    EXPECT_EQ(context.output, "3\n");
    EXPECT_EQ(run("search nothing --count"), 0);
    EXPECT_EQ(context.output, "0\n");
    EXPECT_EQ(run("search logo --json"), 0);
    ASSERT_EQ(array().size(), 1);
    EXPECT_EQ(array().first().toObject().value(QStringLiteral("bundleID")), bundleID("logo"));
}

TEST_F(SearchCommandTest, ExplainsTheConditionOfTheRowsItIsAskedFor)
{
    EXPECT_EQ(run("search #live --explain"), 0);
    EXPECT_EQ(context.output, " (  ( managed == NO ) )\n");
    EXPECT_EQ(run("search #live --explain --in PROJECTS/Brand"), 0);
    EXPECT_EQ(context.output, " (  ( item.managed == NO ) )\n");
    EXPECT_EQ(run("search #live --explain --json"), 0);
    EXPECT_EQ(object().value(QStringLiteral("predicate")), QStringLiteral(" (  ( managed == NO ) )"));
    EXPECT_EQ(run(QStringList{QStringLiteral("search"), QString(), QStringLiteral("--explain")}), 0);
    EXPECT_EQ(context.output, "TRUEPREDICATE\n");
}

TEST_F(SearchCommandTest, AMistakeIsNamedWithItsPlaceAndNothingIsFound)
{
    EXPECT_EQ(run(QStringList{QStringLiteral("search"), QStringLiteral("logo #d=31/02/2026 (")}), 2);
    EXPECT_TRUE(context.output.isEmpty());
    EXPECT_TRUE(context.errors.contains("at character 6 of the search, “#d=31/02/2026”: "))
        << context.errors.constData();
    EXPECT_TRUE(context.errors.contains("at character 20 of the search, “(”: ")) << context.errors.constData();
    EXPECT_EQ(run("search #foo --explain"), 2);
    EXPECT_EQ(run("search logo --in PROJECTS/Missing"), 2);
    EXPECT_TRUE(context.errors.contains("Missing"));
    EXPECT_EQ(run("search"), 2);
    EXPECT_EQ(run("search logo --colour"), 2) << "a misspelt option is no word";
}

TEST_F(SearchCommandTest, WhatCannotBeReadIsAnErrorAndNotNothing)
{
    const auto connection = delegate->persistentStoreCoordinator()->newConnection();
    for (const char *table : {"ZQSidebarBaseItem", "ZQLibraryBaseItem"}) {
        const auto rename = [&](const char *from, const char *to) {
            ASSERT_TRUE(connection->execute(QStringLiteral("PRAGMA legacy_alter_table=ON; ALTER TABLE %1 RENAME TO %2")
                                                .arg(QLatin1StringView(from), QLatin1StringView(to))));
        };
        rename(table, "away");
        EXPECT_EQ(run("search logo --count"), 2) << table;
        EXPECT_TRUE(context.output.isEmpty() && !context.errors.isEmpty()) << table;
        rename("away", table);
    }
    CommandLine commandLine;
    context = {};
    context.delegate = delegate.get();
    context.isAbandoned = [] { return true; };
    int status = 0;
    ASSERT_TRUE(commandLine.parse({QStringLiteral("search"), QStringLiteral("logo")}, context, &status));
    EXPECT_EQ(commandLine.run(context), 2) << "who asked has gone";
    EXPECT_TRUE(context.output.isEmpty());
}

TEST_F(SearchCommandTest, ASavedSearchIsAnEntryThatFindsWhatItsTextDoes)
{
    ASSERT_EQ(run("smart Posters -logo #project brand"), 0) << context.errors.constData();
    EXPECT_EQ(context.output, "1 smart folder made\n");
    const QStringList in = {QStringLiteral("--in"), QStringLiteral("PROJECTS/Posters")};
    EXPECT_EQ(found(QStringList{QString()} + in), "poster.png");
    EXPECT_EQ(found(QStringList{QStringLiteral("loose")} + in), "") << "a search in it narrows it";
    ASSERT_EQ(run(QStringList{QStringLiteral("items")} + in), 0);
    EXPECT_EQ(context.output, bundleID("poster").toUtf8() + "\tposter.png\n");
    ASSERT_EQ(run("sidebar"), 0);
    EXPECT_TRUE(context.output.contains("\n  Posters  (1)  -logo #project brand\n")) << context.output.constData();
    ASSERT_EQ(run("sidebar --json"), 0);
    const QJsonObject smart = array().at(1).toObject().value(QStringLiteral("children")).toArray().last().toObject();
    EXPECT_EQ(smart.value(QStringLiteral("searchText")), QStringLiteral("-logo #project brand"));
    EXPECT_EQ(smart.value(QStringLiteral("entity")), QStringLiteral("ZQSidebarSmartFolder"));
    EXPECT_EQ(smart.value(QStringLiteral("numberOfItems")), 1);

    picture(QStringLiteral("Brand/new.png"), qRgb(9, 9, 9));
    ASSERT_EQ(run(QStringList{QStringLiteral("import"), QStringLiteral("Brand/new.png"), QStringLiteral("--into"),
                              QStringLiteral("PROJECTS/Brand")}),
              0);
    EXPECT_EQ(found(QStringList{QString()} + in), "new.png poster.png");
    EXPECT_EQ(run(QStringList{QStringLiteral("import"), QStringLiteral("loose.png"), QStringLiteral("--into"),
                              QStringLiteral("PROJECTS/Posters")}),
              2);
    EXPECT_TRUE(context.errors.contains("finds its items by itself")) << context.errors.constData();

    ASSERT_EQ(run("smart --change PROJECTS/Posters logo"), 0) << context.errors.constData();
    EXPECT_EQ(context.output, "1 smart folder changed\n");
    EXPECT_EQ(found(QStringList{QString()} + in), "logo.png");

    for (const auto &[arguments, reason] : {std::pair{"smart Posters #d=31/02/2026", "at character 1 of the search"},
                                            {"smart Posters", "nothing to search for"},
                                            {"smart --in PROJECTS/Posters Other logo", "holds no smart folders"},
                                            {"smart --change PROJECTS/Brand logo", "is no smart folder"},
                                            {"smart --change PROJECTS/Posters #d=x", "of the search"},
                                            {"smart --in TAGS Other logo", "holds no smart folders"},
                                            {"smart --in Nowhere Other logo", "there is no sidebar entry"}}) {
        EXPECT_EQ(run(arguments), 2) << arguments;
        EXPECT_TRUE(context.errors.contains(reason)) << arguments << ": " << context.errors.constData();
    }
    EXPECT_EQ(run(QStringList{QStringLiteral("smart"), QStringLiteral(" "), QStringLiteral("logo")}), 2);
}
