#include "TemporaryFolder.h"

#include <analyzer/study/ReadCancelled.h>
#include <analyzer/study/StudyError.h>
#include <analyzer/study/StudyReader.h>
#include <analyzer/study/studyInfo.h>

#include <dataviews/platform/data/Project.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

using analyzer::ReadCancelled;
using analyzer::ReadProgress;
using analyzer::ReadStudy;
using analyzer::StudyError;
using analyzer::StudyReader;
using analyzer::StudyReport;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

namespace fs = std::filesystem;

namespace {

ReadStudy readAt(const std::string& path, std::size_t chunkBytes = 5)
{
    ReadProgress progress;
    return StudyReader(chunkBytes).read(path, progress);
}

ReadStudy readText(const std::string& text)
{
    const TemporaryFolder folder;
    return readAt(folder.write("table.csv", text));
}

/// "name:n 1|2|" for a variable of numbers, "name:t …" for one of texts; a missing value is "~".
std::vector<std::string> dump(const Project& project)
{
    std::vector<std::string> dumped;
    for (const WeakPtr<Variable>& handle : project.variables()) {
        const boost::shared_ptr<Variable> variable = handle.lock();
        std::string line = variable->name() + (variable->isNumeric() ? ":n " : ":t ");
        for (std::size_t row = 0; row < project.caseCount(); ++row) {
            const Variant value = variable->value(row);
            line += (value.isEmpty() ? "~" : value.toString()) + '|';
        }
        dumped.push_back(line);
    }
    return dumped;
}

std::string refusal(const std::string& path)
{
    try {
        return "taken: " + std::to_string(readAt(path).report.cases);
    } catch (const StudyError& error) {
        return error.what();
    }
}

/// "tag path" of every file, relative to \p folder.
std::vector<std::string> images(const Project& project, const fs::path& folder)
{
    std::vector<std::string> found;
    for (std::size_t row = 0; row < project.caseCount(); ++row) {
        for (const boost::shared_ptr<AuxFile>& file : project.auxFiles(row)) {
            EXPECT_EQ(file->ownTags().size(), 1U);
            found.push_back(
                std::to_string(row + 1) + ' ' + file->ownTags().front() + ' '
                + fs::path(file->filePath()).lexically_relative(folder).string());
        }
    }
    return found;
}

} // namespace

TEST(StudyReaderTest, FindsDelimitersTypesAndMissingValues)
{
    struct Case
    {
        std::string text;
        std::vector<std::string> variables;
        std::size_t missing = 0;
    };

    const std::vector<Case> cases = {
        {"a,b\n1,x\n2.5,y\n", {"a:n 1|2.5|", "b:t x|y|"}},
        {"a;b\n1,5;2\n-2,25;3\n", {"a:n 1.5|-2.25|", "b:n 2|3|"}},
        {"a;b\n1.5;2\n2.5;3\n", {"a:n 1.5|2.5|", "b:n 2|3|"}},
        {"a, kW;b, A\n1,5;2,5\n", {"a, kW:n 1.5|", "b, A:n 2.5|"}},
        {"a\tb\n1,5\t2\n", {"a:t 1,5|", "b:n 2|"}},
        {"a,b\n1,2;3\n4,5;6\n", {"a:n 1|4|", "b:t 2;3|5;6|"}},
        {"\"a;\",\"b;\"\n1,2\n", {"a;:n 1|", "b;:n 2|"}},
        {"only\n1\n2\n", {"only:n 1|2|"}},
        {"a,b\n1,\n,x\nNaN,NA\nNA,NaN\nnull,-\n-,null\n",
         {"a:n 1|~|~|~|~|~|", "b:t ~|x|NA|NaN|-|null|"},
         6},
        {"a,b,c\nNaN,NA,\nnan,NA,\n", {"a:n ~|~|", "b:t NA|NA|", "c:n ~|~|"}, 4},
        {"a,b\n1,NA\n2.0,\n,late\n", {"a:n 1|2|~|", "b:t NA|~|late|"}, 2},
        {"a,b\n1.50,x\n2,y\nlate,z\n", {"a:t 1.50|2|late|", "b:t x|y|z|"}},
        {"a,b\n8123,x\n03,y\n", {"a:t 8123|03|", "b:t x|y|"}},
        {"a,b\n9007199254740993,1\n1,1\n", {"a:t 9007199254740993|1|", "b:n 1|1|"}},
        {"a;b\n1.234,5;1\n2;2\n", {"a:t 1.234,5|2|", "b:n 1|2|"}},
        {"a;b\n1.234;1,5\n2;2\n", {"a:t 1.234|2|", "b:n 1.5|2|"}},
        {"a;b\n1.5;x\n2,5;y\n", {"a:t 1.5|2,5|", "b:t x|y|"}},
        {"a,b\n\n1,2\n,\n \n\"\",\"\"\n3,4\n\n", {"a:n 1|3|", "b:n 2|4|"}},
        {"\n  \na,b\n1,2\n", {"a:n 1|", "b:n 2|"}},
        {"\n  \na,b\n1,2\nlate,3\n", {"a:t 1|late|", "b:n 2|3|"}},
        {"a,b\nx,1\n  ,\ny,2\n", {"a:t x|y|", "b:n 1|2|"}},
        {"\xef\xbb\xbf\"a\",b\n1,2\n", {"a:n 1|", "b:n 2|"}},
        {",,x\n1,,2\n3,,4\n", {"Column 1:n 1|3|", "x:n 2|4|"}},
        {"a,b\n1,2\n\x1a", {"a:n 1|", "b:n 2|"}},
        {"a,b\n\xe4,1\n", {"a:t ä|", "b:n 1|"}},
        {"\xc3\xa4,b\n\xe2\x82\xac,1\n", {"ä:t €|", "b:n 1|"}},
    };
    for (const Case& expected : cases) {
        SCOPED_TRACE(testing::PrintToString(expected.text));

        const ReadStudy study = readText(expected.text);

        EXPECT_EQ(dump(*study.project), expected.variables);
        EXPECT_EQ(study.report.missingValues, expected.missing);
        EXPECT_EQ(study.report.refusedLineCount, 0U);
        EXPECT_EQ(study.project->tagGroups().size(), 0U);
    }
}

TEST(StudyReaderTest, TellsWhatItChanged)
{
    struct Case
    {
        std::string text;
        std::string note;
    };

    const std::vector<Case> cases = {
        {"x,x\n1,2\n", "Column 2 is called \"x (2)\", for the name \"x\" is taken."},
        {",x\n1,2\n", "Column 1 has no name and is called \"Column 1\"."},
        {"x,\n1,\n", "Column 2 has neither a name nor values and is left out."},
        {"a,b\n1,2\n03,2\n",
         "Column \"a\" is kept as text: it holds whole numbers with leading zeros, such as "
         "\"03\"."},
        {"a,b\n1,2\n9007199254740993,2\n",
         "Column \"a\" is kept as text: it holds numbers too large to be exact, such as "
         "\"9007199254740993\"."},
        {"a;b\n1.234,5;1\n",
         "Column \"a\" is kept as text: it holds points although the file has decimal commas, and "
         "a point may part "
         "thousands."},
        {"a,b\n1,2\n\xe4,3\n", "The file is no UTF-8 from line 3 on and is read as Latin-1."},
        {"a\n1\n\x1a", "The Ctrl-Z that closes the file is left out."},
        {"a,FILE\n1,x.vti\n",
         "Column \"FILE\" is kept as text: its fields do not end like names of images."},
        {"1,2,a\n3,4,b\n",
         "The first line looks like values, not like the names of columns that a study begins "
         "with."},
    };
    for (const Case& expected : cases) {
        SCOPED_TRACE(testing::PrintToString(expected.text));

        EXPECT_THAT(readText(expected.text).report.notes, ElementsAre(expected.note));
    }
    EXPECT_THAT(readText("a,b\n03,2\nplain text,2\n").report.notes, IsEmpty());
}

TEST(StudyReaderTest, FillsShortRowsAndCutsLongOnes)
{
    const ReadStudy study = readText("a,b,c\n1,\"x\ny\",3\n4\n5,6,7,8\n\n,,,9\nlate,2,3\n");

    EXPECT_THAT(
        dump(*study.project),
        ElementsAre("a:t 1|4|5|~|late|", "b:t x\ny|~|6|~|2|", "c:n 3|~|7|~|3|"));
    EXPECT_EQ(study.report.missingValues, 5U);
    EXPECT_EQ(study.report.refusedLineCount, 3U);
    EXPECT_THAT(
        analyzer::studyInfo(*study.project, study.report),
        testing::StrEq(
            "cases: 5\nvariables: 3\nimages: 0\nmissing values: 5\nrefused lines: 3\n"
            "note: Line 4 has 1 field for 3 columns; the others are missing.\n"
            "note: Line 5 has 4 fields for 3 columns; the fields that are too many are left out.\n"
            "note: Line 7 has 4 fields for 3 columns; the fields that are too many are left "
            "out.\n"));
}

TEST(StudyReaderTest, CountsAllRefusedLinesAndListsTheFirst)
{
    std::string text = "a,b\n";
    for (int row = 0; row < 250; ++row) {
        text += "1\n";
    }

    const ReadStudy study = readText(text);

    EXPECT_EQ(study.report.refusedLineCount, 250U);
    EXPECT_EQ(study.report.refusedLines.size(), StudyReport::maxListed);
    EXPECT_THAT(
        analyzer::studyInfo(*study.project, study.report),
        EndsWith("note: 150 more refused lines are not listed.\n"));
}

TEST(StudyReaderTest, ReadsACinemaDatabase)
{
    const TemporaryFolder home;
    home.write(
        "sweep.cdb/data.csv",
        "phi,FILE,FILE_top,FILE_DATA\n0,i/0.png, "
        "i/0t.JPG,a.vti\n,i/1.png,,b.vti\n180,../2.png,https://x.org/t.png,\n");
    const fs::path folder = home.path() / "sweep.cdb";

    const ReadStudy study = readAt(folder.string());

    EXPECT_EQ(study.project->name(), "sweep");
    EXPECT_EQ(study.project->filePath(), (folder / "data.csv").string());
    EXPECT_THAT(dump(*study.project), ElementsAre("phi:n 0|~|180|", "FILE_DATA:t a.vti|b.vti|~|"));
    EXPECT_THAT(
        images(*study.project, folder),
        ElementsAre("1 FILE i/0.png", "1 FILE_top i/0t.JPG", "2 FILE i/1.png"));
    ASSERT_EQ(study.project->tagGroups().size(), 1U);
    EXPECT_EQ(study.project->tagGroups().front().lock()->name(), "Images");
    EXPECT_THAT(study.project->tagGroups().front().lock()->tags(), ElementsAre("FILE", "FILE_top"));
    EXPECT_EQ(study.report.images, 3U);
    EXPECT_EQ(study.report.missingValues, 3U);
    EXPECT_EQ(study.report.missingImages, 1U);
    EXPECT_THAT(
        study.report.notes,
        ElementsAre(
            "Case 3: the image \"../2.png\" in column \"FILE\" is left out: it leaves the study's "
            "folder.",
            "Case 3: the image \"https://x.org/t.png\" in column \"FILE_top\" is left out: it is a "
            "web address and is "
            "not fetched.",
            "Column \"FILE_DATA\" is kept as text: its fields do not end like names of images."));
}

TEST(StudyReaderTest, ReadsADesignExplorerTable)
{
    const TemporaryFolder home;
    const std::string table = home.write(
        "box.csv",
        "Description,IN:width,in: height,Out:volume,IMG,img_top,threeD\n"
        "1_1,1,7,5,1.png,t1.png,1.json\n2_1,2,7,5,2.png,,2.json\n");

    const ReadStudy study = readAt(table);

    EXPECT_EQ(study.project->name(), "box");
    EXPECT_THAT(
        dump(*study.project),
        ElementsAre(
            "Description:t 1_1|2_1|",
            "width:n 1|2|",
            "height:n 7|7|",
            "volume:n 5|5|",
            "threeD:t 1.json|2.json|"));
    std::vector<Variable::Nature> natures;
    for (const WeakPtr<Variable>& variable : study.project->variables()) {
        natures.push_back(variable.lock()->nature());
    }
    EXPECT_THAT(
        natures,
        ElementsAre(
            Variable::Identifier,
            Variable::Input,
            Variable::Input,
            Variable::Output,
            Variable::Identifier));
    EXPECT_THAT(
        images(*study.project, home.path()),
        ElementsAre("1 IMG 1.png", "1 img_top t1.png", "2 IMG 2.png"));
}

TEST(StudyReaderTest, ColumnsMarkedForImagesThatHoldNoneAreVariables)
{
    const ReadStudy study = readText("FILE,FILE_n,img,img_count\n03,1,a.txt,5\n,2,,6\n");

    EXPECT_THAT(
        dump(*study.project),
        ElementsAre("FILE:t 03|~|", "FILE_n:t 1|2|", "img:t a.txt|~|", "img_count:n 5|6|"));
    EXPECT_EQ(study.project->tagGroups().size(), 0U);
}

TEST(StudyReaderTest, ListsTheFirstRefusedImagesAndCountsTheOthers)
{
    std::string text = "x,img\n";
    for (int row = 0; row < 130; ++row) {
        text += std::to_string(row) + ",http://x.org/a.png\n";
    }

    const ReadStudy study = readText(text);

    EXPECT_EQ(study.report.images, 0U);
    ASSERT_EQ(study.report.notes.size(), StudyReport::maxListed + 1);
    EXPECT_EQ(
        study.report.notes.back(),
        "30 more images in column \"img\" are left out for such reasons.");
}

TEST(StudyReaderTest, RefusesWhatIsNoStudyWithLineAndReason)
{
    const TemporaryFolder home;
    std::string wide = "c";
    wide.append(1000000, ',');

    struct Case
    {
        std::string content;
        std::string reason;
    };

    const std::vector<Case> cases = {
        {"", ": the file is empty."},
        {"\xef\xbb\xbf", ": the file is empty."},
        {"\x1a", ": the file is empty."},
        {"\n  \n\n", ": the file holds blank lines only."},
        {"a,b\n", ": there is a header and no case below it."},
        {"a,b\n,\n\n", ": there is a header and no case below it."},
        {std::string("a,b\n1,\0", 7), ": the file holds NUL bytes and is no text."},
        {"\xff\xfe"
         "a",
         ": the file is UTF-16 text; save it as UTF-8."},
        {"\x89PNG\r\n\x1a\n\x01\x02", ": the file holds control characters and is no text."},
        {"a,b\n1,2\n3,\"4\n5,6\n", ", line 3: the quote that opens a field here is never closed."},
        {"a,b\n1,\"2\"x\n", ", line 2: text follows the closing quote of a field."},
        {wide + "\n" + wide, ", line 1: the header has more than 10000 columns."},
    };
    for (const Case& expected : cases) {
        const std::string path = home.write("bad.csv", expected.content);

        EXPECT_EQ(refusal(path), "Cannot read the study \"" + path + '"' + expected.reason);
    }
}

TEST(StudyReaderTest, ASmallFileOfShortRowsCannotFillTheMemory)
{
    std::string text = "c";
    text.append(9999, ',');
    for (int row = 0; row < 1010; ++row) {
        text += "\n1";
    }
    const TemporaryFolder home;

    EXPECT_THAT(
        refusal(home.write("short.csv", text)),
        EndsWith(", line 1002: the rows up to here lack more than 10 million fields, most of what "
                 "they should have."));
}

TEST(StudyReaderTest, RefusesWhatIsNoFileWithoutWaiting)
{
    const TemporaryFolder home;
    const fs::path pipe = home.path() / "pipe.csv";
    ASSERT_EQ(mkfifo(pipe.c_str(), S_IRUSR | S_IWUSR), 0);
    fs::create_directories(home.path() / "folder/data.csv");
    fs::create_symlink("nowhere.csv", home.path() / "broken.csv");

    EXPECT_THAT(refusal(pipe.string()), EndsWith("pipe.csv\": it is a pipe, not a file."));
    EXPECT_THAT(
        refusal((home.path() / "folder").string()),
        EndsWith("data.csv\": it is a folder, not a file."));
    EXPECT_THAT(refusal("/dev/null"), EndsWith(": it is a device, not a file."));
    EXPECT_THAT(
        refusal((home.path() / "broken.csv").string()),
        EndsWith("there is no such file or folder."));
    EXPECT_THAT(
        refusal((home.path() / "gone.csv").string()), EndsWith("there is no such file or folder."));
}

TEST(StudyReaderTest, RefusesAFileThatMayNotBeRead)
{
    if (geteuid() == 0) {
        GTEST_SKIP() << "permissions do not stop the superuser";
    }
    const TemporaryFolder home;
    const std::string path = home.write("closed.csv", "a\n1\n");
    fs::permissions(path, fs::perms::none);

    EXPECT_THAT(refusal(path), EndsWith("closed.csv\": you are not allowed to read it."));
}

TEST(StudyReaderTest, StopsWhenCancelled)
{
    const TemporaryFolder home;
    std::string text = "a,b\n";
    for (int row = 0; row < 2000000; ++row) {
        text += "1,two\n";
    }
    const std::string path = home.write("large.csv", text);
    ReadProgress before;
    before.cancel();
    ReadProgress during;

    EXPECT_THROW((void)StudyReader().read(path, before), ReadCancelled);
    // In chunks of a byte the reader is at it far longer than the other thread takes to see the first one.
    std::thread other([&during] {
        while (during.fraction() == 0.0) {
            std::this_thread::yield();
        }
        during.cancel();
    });
    EXPECT_THROW((void)StudyReader(1).read(path, during), ReadCancelled);
    other.join();
}

TEST(StudyReaderTest, ProgressEndsAtOneWithAndWithoutASecondPass)
{
    const TemporaryFolder home;
    for (const char* text : {"a\n1\n2\n", "a\n1\nlate\n"}) {
        ReadProgress progress;

        (void)StudyReader(1).read(home.write("table.csv", text), progress);

        EXPECT_EQ(progress.fraction(), 1.0);
    }
}
