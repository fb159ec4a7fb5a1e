#include <analyzer/CommandLine.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using analyzer::CommandLine;
using analyzer::UsageError;

TEST(CommandLineTest, ReadsEverythingThatIsAskedFor)
{
    const CommandLine line = CommandLine::parse(
        {"study.csv",
         "--view",
         "scatter",
         "--view=table",
         "--view",
         "scatter",
         "--set",
         "scatter2.x=Drag = 1.5",
         "--set=scatter.legend=off",
         "--select",
         "3,7,20-40",
         "--size",
         "1600x900",
         "--screenshot",
         "a.png",
         "--export-csv=a.csv"});

    EXPECT_EQ(line.study, "study.csv");
    EXPECT_EQ(line.views, (std::vector<std::string>{"scatter", "table", "scatter"}));
    ASSERT_EQ(line.assignments.size(), 2U);
    EXPECT_EQ(line.assignments[0].view.kind, "scatter");
    EXPECT_EQ(line.assignments[0].view.number, 2U);
    EXPECT_EQ(line.assignments[0].property, "x");
    EXPECT_EQ(line.assignments[0].value, "Drag = 1.5");
    EXPECT_EQ(line.assignments[1].view.number, 1U);
    EXPECT_EQ(line.assignments[1].value, "off");
    const std::vector<std::pair<unsigned long long, unsigned long long>> ranges{
        {3, 3}, {7, 7}, {20, 40}};
    EXPECT_EQ(line.selection, ranges);
    EXPECT_EQ(line.size, QSize(1600, 900));
    EXPECT_EQ(line.screenshot, "a.png");
    EXPECT_EQ(line.exportCsv, "a.csv");
}

TEST(CommandLineTest, ReadsSessionsPicturesAndReports)
{
    const CommandLine line = CommandLine::parse(
        {"--session",
         "a.dvsession",
         "--save-session=b.dvsession",
         "--export-view",
         "scatter3d2=drag.SVG",
         "--export-view=table=cases.pdf",
         "--export-size",
         "3000x2000",
         "--export-dpi=300",
         "--report",
         "r.html"});

    EXPECT_EQ(line.session, "a.dvsession");
    EXPECT_EQ(line.saveSession, "b.dvsession");
    ASSERT_EQ(line.pictures.size(), 2U);
    EXPECT_EQ(line.pictures[0].view.kind, "scatter3d");
    EXPECT_EQ(line.pictures[0].view.number, 2U);
    EXPECT_EQ(line.pictures[0].file, "drag.SVG");
    EXPECT_EQ(line.pictures[1].view.number, 1U);
    EXPECT_EQ(line.pictureSize, QSize(3000, 2000));
    EXPECT_EQ(line.pictureDpi, 300);
    EXPECT_EQ(line.report, "r.html");
    EXPECT_EQ(CommandLine::parse({"c.dvsession", "--report", "r.html"}).session, "c.dvsession");
    EXPECT_THROW(CommandLine::parse({"s.csv", "--session", "a.dvsession"}), UsageError);
    EXPECT_THROW(CommandLine::parse({"--save-session", "a.dvsession"}), UsageError);
    for (const char* picture : {"scatter", "=a.png", "scatter=", "pie=a.png", "scatter=a.gif"}) {
        EXPECT_THROW(CommandLine::parse({"s.csv", "--export-view", picture}), UsageError)
            << picture;
    }
    EXPECT_THROW(CommandLine::parse({"s.csv", "--export-dpi", "1"}), UsageError);
}

TEST(CommandLineTest, NothingIsSelectedByAnEmptyList)
{
    const CommandLine line = CommandLine::parse({"study.csv", "--select", ""});

    EXPECT_TRUE(line.hasSelection);
    EXPECT_TRUE(line.selection.empty());
}

TEST(CommandLineTest, TakesAPathThatLooksLikeAnOptionAfterTwoDashes)
{
    EXPECT_EQ(CommandLine::parse({"--", "--info"}).study, "--info");
}

TEST(CommandLineTest, ReadsRangesToFilterBy)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();

    const struct
    {
        const char* text;
        const char* variable;
        double min;
        double max;
    } filters[] = {
        {"Drag=0.1..0.3", "Drag", 0.1, 0.3},
        {"Drag=..0.3", "Drag", -infinity, 0.3},
        {"Drag=-1e-3..", "Drag", -0.001, infinity},
        {"Drag=..", "Drag", -infinity, infinity},
        {"Drag=-inf..-2.", "Drag", -infinity, -2.0},
        {"Drag=1...5", "Drag", 1.0, 0.5}, // refused by the filter, not by its form
        {"a=b..c=1..2", "a=b..c", 1.0, 2.0},
        {"x=1..2=3..4", "x=1..2", 3.0, 4.0},
        {"=a=1..2", "=a", 1.0, 2.0},
        {"v.1 [m/s]=5..5", "v.1 [m/s]", 5.0, 5.0},
    };

    for (const auto& filter : filters) {
        SCOPED_TRACE(filter.text);
        const CommandLine line =
            CommandLine::parse({"study.csv", "--filter", "A=1..2", "--filter", filter.text});
        ASSERT_EQ(line.filters.size(), 2U);
        EXPECT_EQ(line.filters[1].variable, filter.variable);
        EXPECT_EQ(line.filters[1].range, (ValueRange_s<double>{filter.min, filter.max}));
    }
    EXPECT_TRUE(
        std::isnan(CommandLine::parse({"study.csv", "--filter=x=nan..1"}).filters[0].range.min));
}

TEST(CommandLineTest, RefusesWrongUseInOneLine)
{
    const std::vector<std::vector<std::string>> wrong{
        {"--colour"},
        {"a.csv", "b.csv"},
        {""},
        {"--info"},
        {"--view"},
        {"--view", "piechart"},
        {"a.csv", "--set", "scatter.x"},
        {"a.csv", "--set", "x=Drag"},
        {"a.csv", "--set", ".x=Drag"},
        {"a.csv", "--set", "scatter.=Drag"},
        {"a.csv", "--set", "scatter0.x=Drag"},
        {"a.csv", "--set", "piechart.x=Drag"},
        {"--set", "scatter.x=Drag"},
        {"a.csv", "--select", "3,,4"},
        {"a.csv", "--select", "7-3"},
        {"a.csv", "--select", "-3"},
        {"a.csv", "--select", "3-"},
        {"a.csv", "--select", "x"},
        {"a.csv", "--select", "99999999999999999999"},
        {"a.csv", "--filter"},
        {"a.csv", "--filter", "Drag"},
        {"a.csv", "--filter", "Drag=0.1"},
        {"a.csv", "--filter", "Drag=0.1.0.3"},
        {"a.csv", "--filter", "Drag=0.1..0.3x"},
        {"a.csv", "--filter", "Drag=1e999.."},
        {"a.csv", "--filter", "Drag=0,1..0,3"},
        {"a.csv", "--filter", "Drag={a,b}"},
        {"a.csv", "--filter", "=1..2"},
        {"a.csv", "--filter", "1..2"},
        {"a.csv", "--filter", ""},
        {"--filter", "Drag=1..2"},
        {"--size", "800"},
        {"--size", "0x600"},
        {"--size", "800x600x2"},
        {"--size", "800x-600"},
        {"--size", "99999x10"},
        {"--screenshot", ""},
        {"a.csv", "--export-csv", ""},
        {"a.csv", "--export-csv"},
        {"--export-csv", "b.csv"},
        {"--info=yes", "a.csv"},
    };
    for (const std::vector<std::string>& arguments : wrong) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        try {
            (void)CommandLine::parse(arguments);
            ADD_FAILURE() << "accepted";
        } catch (const UsageError& error) {
            EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos) << error.what();
            EXPECT_GT(std::string(error.what()).size(), 10U);
        }
    }
}

TEST(CommandLineTest, HelpNamesEveryKindAndProperty)
{
    const std::string help = CommandLine::helpText();

    for (const char* word :
         {"--info",
          "--view",
          "--set",
          "--select",
          "--filter",
          "--size",
          "--screenshot",
          "--export-csv",
          "scatter",
          "table",
          "mouse-mode",
          "selection-shape",
          "legend"}) {
        EXPECT_NE(help.find(word), std::string::npos) << word;
    }
}
