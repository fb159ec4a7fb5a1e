#include <analyzer/study/headerColumns.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using analyzer::HeaderColumn;
using analyzer::headerColumns;

TEST(headerColumnsTest, NamesAreUniqueAndEveryChangeIsTold)
{
    struct Case
    {
        std::vector<std::string> header;
        std::vector<std::string> names;
    };

    const std::vector<Case> cases = {
        {{"x", "x", "x"}, {"x", "x (2)", "x (3)"}},
        {{"x", "x (2)", "x"}, {"x", "x (2)", "x (3)"}},
        {{"", "Column 1", ""}, {"Column 1 (2)", "Column 1", "Column 3"}},
        {{"  x\t", "x"}, {"x", "x (2)"}},
        {{"in:x", "OUT: x", "Out:"}, {"x", "x (2)", "Column 3"}},
        {{"Case ID"}, {"Case ID (2)"}},
        {{"a\tb\x01"
          "c\nd"},
         {"a b c\nd"}},
        {{"FILE", "FILE"}, {"FILE", "FILE (2)"}},
    };
    for (const Case& expected : cases) {
        SCOPED_TRACE(testing::PrintToString(expected.header));

        const std::vector<HeaderColumn> columns = headerColumns(expected.header);

        std::vector<std::string> names;
        for (std::size_t index = 0; index < columns.size(); ++index) {
            names.push_back(columns[index].name);
            const bool isMarked = columns[index].nature.has_value();
            EXPECT_EQ(
                columns[index].note.empty(),
                names[index] == expected.header[index] || (isMarked && index == 0));
        }
        EXPECT_EQ(names, expected.names);
    }
}

TEST(headerColumnsTest, RecognisesTheMarksOfTheDialects)
{
    using Mark = HeaderColumn::Mark;

    const std::vector<HeaderColumn> columns = headerColumns(
        {"FILE",
         "FILE_acutance",
         " FILE x",
         "file",
         "PROFILE",
         "img",
         "IMG_top",
         "image",
         "In:w",
         "OUT:v",
         "inside"});

    const std::vector<Mark> marks = {
        Mark::File,
        Mark::File,
        Mark::File,
        Mark::None,
        Mark::None,
        Mark::Image,
        Mark::Image,
        Mark::None,
        Mark::None,
        Mark::None,
        Mark::None};
    for (std::size_t index = 0; index < columns.size(); ++index) {
        EXPECT_EQ(columns[index].mark, marks[index]) << columns[index].name;
    }
    EXPECT_EQ(columns[8].nature, Variable::Input);
    EXPECT_EQ(columns[8].name, "w");
    EXPECT_EQ(columns[9].nature, Variable::Output);
    EXPECT_FALSE(columns[10].nature.has_value());
}
