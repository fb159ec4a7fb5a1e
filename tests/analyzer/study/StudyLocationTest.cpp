#include "TemporaryFolder.h"

#include <analyzer/study/StudyError.h>
#include <analyzer/study/StudyLocation.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using analyzer::locateStudy;
using analyzer::StudyError;
using analyzer::StudyLocation;
using testing::HasSubstr;

namespace {

std::string refusal(const std::string& path)
{
    try {
        return "taken: " + locateStudy(path).tablePath;
    } catch (const StudyError& error) {
        return error.what();
    }
}

} // namespace

TEST(StudyLocationTest, FindsTheTableOfFilesAndFolders)
{
    const TemporaryFolder home;
    const std::string root = home.path().string();
    home.write("sweep.cdb/data.csv", "");
    home.write("sweep.cdb/other.csv", "");
    home.write("one.v2/Only.CSV", "");
    home.write("one.v2/readme.txt", "");
    home.write("one.v2/deeper/more.csv", "");

    struct Case
    {
        const char* path;
        const char* table;
        const char* folder;
        const char* name;
    };

    for (const Case& expected :
         {Case{"sweep.cdb", "sweep.cdb/data.csv", "sweep.cdb", "sweep"},
          Case{"sweep.cdb/", "sweep.cdb/data.csv", "sweep.cdb", "sweep"},
          Case{"sweep.cdb/data.csv", "sweep.cdb/data.csv", "sweep.cdb", "sweep"},
          Case{"sweep.cdb/other.csv", "sweep.cdb/other.csv", "sweep.cdb", "other"},
          Case{"one.v2", "one.v2/Only.CSV", "one.v2", "one.v2"},
          Case{"one.v2/../one.v2/Only.CSV", "one.v2/Only.CSV", "one.v2", "Only"}}) {
        SCOPED_TRACE(expected.path);

        const StudyLocation location = locateStudy(root + '/' + expected.path);

        EXPECT_EQ(location.tablePath, root + '/' + expected.table);
        EXPECT_EQ(location.folder, root + '/' + expected.folder);
        EXPECT_EQ(location.name, expected.name);
    }
}

TEST(StudyLocationTest, RefusesFoldersWithoutOneTable)
{
    const TemporaryFolder home;
    const std::string root = home.path().string();
    home.write("none/readme.txt", "");
    home.write("sweep.cdb/other.csv", "");
    for (const char* name : {"a.csv", "b.csv", "c.csv", "d.csv", "e.csv", "f.csv", "g.csv"}) {
        home.write(std::string("many/") + name, "");
    }

    EXPECT_THAT(refusal(root + "/none"), HasSubstr("/none\": the folder holds no CSV file."));
    EXPECT_THAT(refusal(root + "/sweep.cdb"), HasSubstr("this Cinema database has no data.csv."));
    EXPECT_THAT(
        refusal(root + "/many"),
        HasSubstr("\"a.csv\", \"b.csv\", \"c.csv\", \"d.csv\", \"e.csv\" and 2 more."));
    EXPECT_THAT(refusal(root + "/gone"), HasSubstr("there is no such file or folder."));
    EXPECT_THAT(refusal(""), HasSubstr("this is no path"));
}
