// What is written from the definitions of commands, whatever words those are made of.

#include "Classes/Command/CommandDescription.h"

#include <QRegularExpression>

#include <CLI/CLI.hpp>

#include <gtest/gtest.h>

namespace {

CommandDescription described()
{
    CLI::App program("Keeps things.", "zelto");
    static std::string word;
    static std::vector<std::string> words;
    static double number = 0;
    program.add_option("--library", word, "The library")->type_name("DIR");
    CLI::App *odd = program.add_subcommand("odd", "Don't \\ be [odd]: it's 100%");
    odd->footer(".begins with a dot\n'quoted' \\end\n–dash");
    odd->add_option("--kind", word, "Which")->check(CLI::IsMember({"one", "two"}))->required();
    odd->add_option("--percent", number, "How much")->check(CLI::Range(0.5, 4.0))->type_name("P");
    odd->add_option("--count", number, "1 to 100")->check(CLI::Range(1, 100))->type_name("N");
    odd->add_option("--most", number, "How many")->check(CLI::Range(1.0, 16777216.0))->type_name("N");
    odd->add_option("--set", words, "An attribute")->type_name("KEY=VALUE")->allow_extra_args(false);
    odd->add_option("url", word, "An address")->type_name("zelto:import:JSON");
    odd->add_option("files", words, "Pictures")->type_name("FILE[@X,Y]");
    program.add_subcommand("hidden", "For scripts")->group("");
    return zqDescribeCommands(program);
}

TEST(CommandDescription, KnowsWhatEachValueIs)
{
    const CommandDescription program = described();
    ASSERT_EQ(program.all().size(), 1);
    struct Expected
    {
        const char *label;
        CommandValue kind;
        const char *meaning;
    };
    const std::vector<Expected> expected = {
        {"--kind {one,two}", CommandValue::Choice, "Which"},
        {"--percent P", CommandValue::Text, "How much (0.5 to 4)"},
        {"--count N", CommandValue::Text, "1 to 100"},
        {"--most N", CommandValue::Text, "How many"},
        {"--set KEY=VALUE", CommandValue::Text, "An attribute"},
        {"zelto:import:JSON", CommandValue::Text, "An address"},
        {"FILE[@X,Y]", CommandValue::File, "Pictures"},
    };
    const CommandDescription &odd = program.commands.first();
    ASSERT_EQ(odd.options.size(), qsizetype(expected.size()));
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const CommandOption &option = odd.options[qsizetype(i)];
        EXPECT_EQ(option.label(), QString::fromUtf8(expected[i].label));
        EXPECT_EQ(option.kind, expected[i].kind) << expected[i].label;
        EXPECT_EQ(option.meaning, QString::fromUtf8(expected[i].meaning));
    }
    EXPECT_EQ(odd.synopsis(), QStringLiteral("--kind {one,two} [--percent P] [--count N] [--most N] [--set KEY=VALUE]… "
                                             "[zelto:import:JSON] [FILE[@X,Y]]…"));
}

TEST(CommandDescription, TextIsNoRequestOfTheManual)
{
    const QString manual = zqCommandsAsManual(described(), QStringLiteral("1.0"));
    static const QRegularExpression requests(QStringLiteral("^[.'](?!(TH|SH|SS|TP|PP|B|br|nf|fi)\\b).*$"),
                                             QRegularExpression::MultilineOption);
    EXPECT_EQ(requests.match(manual).captured(), QString());
    EXPECT_TRUE(manual.contains(QStringLiteral("\n\\&.begins with a dot\n\\(aqquoted\\(aq \\eend\n\\[u2013]dash\n")));
    EXPECT_TRUE(manual.contains(QStringLiteral("Don\\(aqt \\e be [odd]: it\\(aqs 100%.")));
}

TEST(CommandDescription, ShellsReadTextAsText)
{
    const CommandDescription program = described();
    struct Expected
    {
        const char *shell;
        const char *line;
    };
    const std::vector<Expected> expected = {
        {"bash", "'odd|--kind') _zelto_words 'one two'; return ;;"},
        {"bash", "*'|--library') _zelto_directories; return ;;"},
        {"zsh", "'odd:Don'\\''t \\\\ be [odd]\\: it'\\''s 100%'"},
        {"zsh", "'(--kind)--kind=[Which]:value:(one two)'"},
        {"fish", "-a odd -d 'Don\\'t \\\\ be [odd]: it\\'s 100%'"},
    };
    for (const auto &[shell, line] : expected) {
        const QString script = zqCompletionsForShell(QString::fromLatin1(shell), program);
        EXPECT_TRUE(script.contains(QString::fromUtf8(line))) << shell << ": " << line;
        EXPECT_FALSE(script.contains(QStringLiteral("hidden"))) << shell;
    }
    EXPECT_TRUE(zqCompletionsForShell(QStringLiteral("ksh"), program).isNull());
}

} // namespace
