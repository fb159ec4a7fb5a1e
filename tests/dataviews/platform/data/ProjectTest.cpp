#include "columns.h"

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/property/ExceptionBase.h>

#include <vtkTable.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ProjectTest : public testing::Test
{
protected:
    ProjectTest()
    {
        m_project.signalProjectChanged.connect(
            [this](const ProjectChange& change) { m_changes.push_back(change); });
    }

    static RowBitmap rows(std::size_t count, const std::vector<std::size_t>& set)
    {
        RowBitmap bitmap(count);
        for (const std::size_t row : set) {
            bitmap.set(row);
        }
        return bitmap;
    }

    Project m_project;
    std::vector<ProjectChange> m_changes;
};

TEST_F(ProjectTest, EmptyProjectIsUsable)
{
    EXPECT_EQ(m_project.caseCount(), 0U);
    EXPECT_EQ(m_project.table().GetNumberOfColumns(), 1);
    EXPECT_THAT(m_project.variables(), IsEmpty());
    EXPECT_THAT(m_project.tagGroups(), IsEmpty());
    EXPECT_EQ(m_project.name(), "");
    EXPECT_FALSE(m_project.record(0));
    EXPECT_FALSE(m_project.record(1));
    ASSERT_FALSE(m_project.caseIDVariable().expired());
    EXPECT_TRUE(m_project.caseIDVariable().lock()->firstValue().isEmpty());
    EXPECT_EQ(&Project::project(), &Project::project());
}

TEST_F(ProjectTest, TableHoldsTheCaseIDAndTheVariablesInOrder)
{
    m_project.setSource("wing", "/studies/wing.csv");
    m_project.setCaseCount(2);
    const auto b = m_project.addVariable(realColumn("b", {1.0, 2.0}), Variable::Output);
    const auto a = m_project.addVariable(textColumn("a", {"x", "y"}), Variable::Input);

    vtkTable& table = m_project.table();
    ASSERT_EQ(table.GetNumberOfColumns(), 3);
    EXPECT_EQ(table.GetNumberOfRows(), 2);
    const auto* ids = vtkIntArray::SafeDownCast(table.GetColumn(0));
    ASSERT_NE(ids, nullptr);
    EXPECT_EQ(table.GetColumn(0), &m_project.caseIDVariable().lock()->column());
    EXPECT_EQ(table.GetColumn(1), &b.lock()->column());
    EXPECT_EQ(table.GetColumn(2), &a.lock()->column());
    EXPECT_THAT(m_project.variables(), ElementsAre(b, a));
    EXPECT_EQ(m_project.variable("a"), a);
    EXPECT_TRUE(m_project.variable("c").isNull());
    EXPECT_EQ(m_project.variable("Case ID"), m_project.caseIDVariable());
    EXPECT_EQ(m_project.caseIDVariable().lock()->nature(), Variable::Identifier);
    EXPECT_EQ(a.lock()->nature(), Variable::Input);
    EXPECT_EQ(m_project.name(), "wing") << "The source was set before the cases.";
    EXPECT_EQ(m_project.filePath(), "/studies/wing.csv");
}

TEST_F(ProjectTest, FindsCasesByDenseIDs)
{
    m_project.setCaseCount(3);

    EXPECT_EQ(m_project.caseID(0), 1U);
    EXPECT_EQ(m_project.row(1), 0U);
    EXPECT_EQ(m_project.row(3), 2U);
    EXPECT_EQ(m_project.record(2)->row(), 1U);
    for (const unsigned long long id : {0ULL, 4ULL, 0x100000001ULL, ~0ULL, 0xFFFFFFFF00000001ULL}) {
        EXPECT_FALSE(m_project.row(id)) << id;
    }
}

TEST_F(ProjectTest, FindsCasesByArbitraryIDsWithNegativeOnesWidenedWithTheirSign)
{
    constexpr int smallest = std::numeric_limits<int>::min();
    const std::vector<int> ids = {7, -1, 0, smallest, std::numeric_limits<int>::max(), 2};
    m_project.setCaseIDs(integerColumn("ids", ids));

    for (std::size_t row = 0; row < ids.size(); ++row) {
        const auto widened = static_cast<unsigned long long>(static_cast<long long>(ids[row]));
        EXPECT_EQ(m_project.caseID(row), widened);
        EXPECT_EQ(m_project.row(widened), row);
    }
    EXPECT_EQ(m_project.caseID(1), 18446744073709551615ULL);
    for (const unsigned long long id : {1ULL, 0xFFFFFFFFULL, 0x80000000ULL, 0x100000007ULL}) {
        EXPECT_FALSE(m_project.row(id)) << id;
    }
}

TEST_F(ProjectTest, RefusedCasesLeaveTheProjectAsItIs)
{
    m_project.setCaseCount(2);
    const auto variable = m_project.addVariable(realColumn("x", {1.0, 2.0}), Variable::Output);

    EXPECT_THROW(m_project.setCaseIDs(integerColumn("ids", {1, 5, 1})), ExceptionBase);
    EXPECT_THROW(m_project.setCaseCount(2147483648U), ExceptionBase);

    EXPECT_EQ(m_project.caseCount(), 2U);
    EXPECT_FALSE(variable.expired());
}

TEST_F(ProjectTest, RefusesVariablesWithoutAFreeNameOrOneValueACase)
{
    m_project.setCaseCount(2);
    m_project.addVariable(realColumn("x", {1.0, 2.0}), Variable::Output);

    EXPECT_THROW(
        m_project.addVariable(realColumn("x", {1.0, 2.0}), Variable::Output), ExceptionBase);
    EXPECT_THROW(
        m_project.addVariable(realColumn("", {1.0, 2.0}), Variable::Output), ExceptionBase);
    EXPECT_THROW(
        m_project.addVariable(realColumn("Case ID", {1.0, 2.0}), Variable::Output), ExceptionBase);
    EXPECT_THROW(m_project.addVariable(realColumn("y", {1.0}), Variable::Output), ExceptionBase);
    EXPECT_THROW(
        m_project.addVariable(realColumn("y", {1.0, 2.0, 3.0}), Variable::Output), ExceptionBase);
    EXPECT_THROW(m_project.addVariable(nullptr, Variable::Output), ExceptionBase);

    EXPECT_EQ(m_project.variables().size(), 1U);
    EXPECT_EQ(m_project.table().GetNumberOfColumns(), 2);
    m_project.addVariable(realColumn("X", {1.0, 2.0}), Variable::Output);
}

TEST_F(ProjectTest, TagsCasesByRows)
{
    m_project.setCaseCount(100);
    m_project.addTagGroup("Marks");
    m_project.addTag("Marks", "good");
    m_changes.clear();

    m_project.tagCases("good", rows(100, {1, 64, 99}), true);
    m_project.tagCases("good", rows(100, {2}), true);
    m_project.tagCases("good", rows(100, {64, 65}), false);

    EXPECT_EQ(m_project.taggedCases("good"), rows(100, {1, 2, 99}));
    EXPECT_EQ(m_project.taggedCases("unknown"), RowBitmap(100));
    EXPECT_THAT(m_project.caseTags(99), ElementsAre("good"));
    EXPECT_EQ(m_changes.size(), 3U);
    EXPECT_THROW(m_project.tagCases("unknown", RowBitmap(100), true), ExceptionBase);
    EXPECT_THROW(
        m_project.tagAuxFile(*m_project.addAuxFile(0, "/a.png"), "unknown", true), ExceptionBase);
}

TEST_F(ProjectTest, RefusesNamesOfTagsAndGroups)
{
    m_project.addTagGroup("Marks");
    m_project.addTagGroup("Images");
    m_project.addTag("Marks", "good");
    m_changes.clear();

    for (const char* name :
         {"",
          "a\tb",
          "\x7F",
          "\x01",
          "Gr\xF6\xDF"
          "e", // Latin-1
          "cut \xE2\x82",
          "surrogate \xED\xA0\x80",
          "\xEF\xBF\xBE",
          "\xEF\xBF\xBF"}) {
        EXPECT_THROW(m_project.addTagGroup(name), ExceptionBase) << name;
        EXPECT_THROW(m_project.addTag("Marks", name), ExceptionBase) << name;
    }
    EXPECT_THROW(m_project.addTagGroup("Marks"), ExceptionBase);
    EXPECT_THROW(m_project.addTag("Marks", "good"), ExceptionBase);
    EXPECT_THROW(m_project.addTag("Images", "good"), ExceptionBase)
        << "A tag belongs to one group.";
    EXPECT_THROW(m_project.addTag("unknown", "bad"), ExceptionBase);
    EXPECT_THAT(m_changes, IsEmpty());

    const std::vector<std::string> names = {"two\nlines, Größe", "\xEF\xBB\xBFmarked", "😀"};
    for (const std::string& name : names) {
        m_project.addTagGroup(name);
        m_project.addTag(name, name);
        EXPECT_THAT(m_project.tagGroup(name).lock()->tags(), ElementsAre(name));
    }
    EXPECT_TRUE(m_project.tagGroup("unknown").isNull());
}

TEST_F(ProjectTest, RemovingATagAnnouncesItsName)
{
    m_project.setCaseCount(1);
    const auto group = m_project.addTagGroup("Marks");
    m_project.addTag("Marks", "good");
    m_project.addTag("Marks", "bad");
    m_project.tagCases("good", RowBitmap(1, true), true);
    m_changes.clear();

    m_project.removeTag(group.lock()->tags().front()); // the name dies with the tag
    m_project.removeTag("unknown");

    ASSERT_EQ(m_changes.size(), 1U);
    EXPECT_FALSE(m_changes[0].studyReplaced);
    EXPECT_THAT(m_changes[0].removedTags, ElementsAre("good"));
    EXPECT_THAT(m_changes[0].removedTagGroups, IsEmpty());
    EXPECT_THAT(group.lock()->tags(), ElementsAre("bad"));
    EXPECT_FALSE(m_project.hasTag("good"));
    EXPECT_EQ(m_project.taggedCases("good"), RowBitmap(1));
}

TEST_F(ProjectTest, RemovingAGroupAnnouncesItsTagsAndItsHandle)
{
    m_project.setCaseCount(1);
    const WeakPtr<TagGroup> marks = m_project.addTagGroup("Marks");
    const WeakPtr<TagGroup> images = m_project.addTagGroup("Images");
    m_project.addTag("Marks", "good");
    m_project.addTag("Marks", "bad");
    m_project.addTag("Images", "pressure");
    m_changes.clear();
    bool expiredWhenTold = false;
    m_project.signalProjectChanged.connect(
        [&](const ProjectChange&) { expiredWhenTold = marks.expired(); });

    const std::string& name = marks.lock()->name();
    m_project.removeTagGroup(name); // the name dies with the group
    m_project.removeTagGroup("unknown");

    ASSERT_EQ(m_changes.size(), 1U);
    EXPECT_THAT(m_changes[0].removedTags, ElementsAre("good", "bad"));
    EXPECT_THAT(m_changes[0].removedTagGroups, ElementsAre(marks))
        << "Handles of what is gone still compare.";
    EXPECT_TRUE(expiredWhenTold);
    EXPECT_THAT(m_project.tagGroups(), ElementsAre(images));
    EXPECT_FALSE(m_project.hasTag("bad"));
    EXPECT_TRUE(m_project.hasTag("pressure"));
}

TEST_F(ProjectTest, TagThatWasTakenComesBackAsItWas)
{
    m_project.setCaseCount(70);
    const auto file = m_project.addAuxFile(1, "/a.png");
    const auto other = m_project.addAuxFile(2, "/b.png");
    const WeakPtr<TagGroup> group = m_project.addTagGroup("Marks");
    for (const char* tag : {"best", "good", "bad"}) {
        m_project.addTag("Marks", tag);
    }
    m_project.tagCases("good", rows(70, {1, 69}), true);
    m_project.tagAuxFiles({file, other}, "good", true);
    m_changes.clear();

    const RemovedTag removed = m_project.takeTag(group.lock()->tags()[1]);
    ASSERT_EQ(m_changes.size(), 1U);
    EXPECT_THAT(m_changes[0].removedTags, ElementsAre("good"));
    EXPECT_THAT(group.lock()->tags(), ElementsAre("best", "bad"));
    EXPECT_EQ(m_project.taggedAuxFileCount("good"), 0U);
    EXPECT_FALSE(file->hasTag("good"));

    EXPECT_TRUE(m_project.restoreTag(removed));
    EXPECT_EQ(m_changes.size(), 2U);
    EXPECT_THAT(group.lock()->tags(), ElementsAre("best", "good", "bad"));
    EXPECT_EQ(m_project.taggedCases("good"), rows(70, {1, 69}));
    EXPECT_TRUE(file->hasOwnTag("good"));
    EXPECT_THAT(m_project.taggedAuxFiles("good"), ElementsAre(file, other));

    EXPECT_FALSE(m_project.restoreTag(removed)) << "It is there.";
    m_project.removeTag("good");
    m_project.addTag("Marks", "good");
    EXPECT_FALSE(m_project.restoreTag(removed)) << "Its name is taken.";
    EXPECT_EQ(m_project.taggedAuxFileCount("good"), 0U);
    m_project.removeTagGroup("Marks");
    m_project.addTagGroup("Marks");
    EXPECT_FALSE(m_project.restoreTag(removed)) << "Its group is another one.";
    EXPECT_THROW(static_cast<void>(m_project.takeTag("good")), ExceptionBase);
}

TEST_F(ProjectTest, GroupThatWasTakenComesBackAsTheSameObject)
{
    m_project.setCaseCount(2);
    const auto file = m_project.addAuxFile(1, "/a.png");
    const WeakPtr<TagGroup> first = m_project.addTagGroup("First");
    const WeakPtr<TagGroup> marks = m_project.addTagGroup("Marks");
    const WeakPtr<TagGroup> last = m_project.addTagGroup("Last");
    m_project.addTag("Marks", "good");
    m_project.addTag("Marks", "bad");
    m_project.tagCases("bad", rows(2, {1}), true);
    m_project.tagAuxFile(*file, "good", true);
    m_changes.clear();

    const RemovedTagGroup removed = m_project.takeTagGroup(marks.lock()->name());
    ASSERT_EQ(m_changes.size(), 1U);
    EXPECT_THAT(m_changes[0].removedTags, ElementsAre("good", "bad"));
    EXPECT_THAT(m_changes[0].removedTagGroups, ElementsAre(marks));
    EXPECT_THAT(m_project.tagGroups(), ElementsAre(first, last));
    EXPECT_THAT(marks.lock()->tags(), IsEmpty()) << "Who still holds it shows no tags of it.";
    EXPECT_FALSE(file->hasTag("good"));

    EXPECT_TRUE(m_project.restoreTagGroup(removed));
    EXPECT_EQ(m_changes.size(), 2U);
    EXPECT_THAT(m_project.tagGroups(), ElementsAre(first, marks, last));
    EXPECT_EQ(m_project.tagGroup("Marks"), marks);
    EXPECT_THAT(marks.lock()->tags(), ElementsAre("good", "bad"));
    EXPECT_EQ(m_project.taggedCases("bad"), rows(2, {1}));
    EXPECT_TRUE(file->hasOwnTag("good"));

    EXPECT_FALSE(m_project.restoreTagGroup(removed)) << "It is there.";
    m_project.removeTagGroup("Marks");
    m_project.addTag("Last", "bad");
    EXPECT_FALSE(m_project.restoreTagGroup(removed)) << "The name of a tag is taken.";
    EXPECT_FALSE(m_project.hasTag("good"));
    Project other;
    EXPECT_FALSE(other.restoreTagGroup(removed)) << "It is another study's.";
    EXPECT_THROW(static_cast<void>(m_project.takeTagGroup("Marks")), ExceptionBase);
}

TEST_F(ProjectTest, AddingAndTaggingAreAnnouncedWithoutRemovals)
{
    m_project.setCaseCount(1);
    const auto file = m_project.addAuxFile(0, "/a.png");
    m_changes.clear();

    m_project.addTagGroup("Marks");
    m_project.addTag("Marks", "good");
    m_project.tagAuxFile(*file, "good", true);
    m_project.tagAuxFile(*file, "good", true); // carries it already

    ASSERT_EQ(m_changes.size(), 3U);
    for (const ProjectChange& change : m_changes) {
        EXPECT_FALSE(change.studyReplaced);
        EXPECT_THAT(change.removedTags, IsEmpty());
        EXPECT_THAT(change.removedTagGroups, IsEmpty());
    }
}

TEST_F(ProjectTest, AnotherStudyTakesThePlaceOfTheOpenOne)
{
    m_project.setSource("old", "/old.csv");
    m_project.setCaseCount(5);
    const auto oldVariable =
        m_project.addVariable(realColumn("x", {1, 2, 3, 4, 5}), Variable::Output);
    const WeakPtr<Variable> oldCaseID = m_project.caseIDVariable();
    const WeakPtr<AuxFile> oldFile = m_project.addAuxFile(0, "/old.png");
    const WeakPtr<TagGroup> oldGroup = m_project.addTagGroup("Marks");
    m_project.addTag("Marks", "good");
    Project study;
    study.setSource("new", "/new.csv");
    study.setCaseCount(2);
    const auto newVariable = study.addVariable(realColumn("x", {1, 2}), Variable::Output);
    const auto newFile = study.addAuxFile(1, "/new.png");
    study.addTagGroup("Images");
    study.addTag("Images", "pressure");
    m_changes.clear();
    bool expiredWhenTold = false;
    std::size_t casesWhenTold = 0;
    m_project.signalProjectChanged.connect([&](const ProjectChange&) {
        expiredWhenTold =
            oldVariable.expired() && oldCaseID.expired() && oldFile.expired() && oldGroup.expired();
        casesWhenTold = m_project.caseCount();
    });

    m_project.replaceStudy(study);

    EXPECT_TRUE(expiredWhenTold);
    EXPECT_EQ(casesWhenTold, 2U);
    ASSERT_EQ(m_changes.size(), 1U);
    EXPECT_TRUE(m_changes[0].studyReplaced);
    EXPECT_THAT(m_changes[0].removedTags, ElementsAre("good"));
    EXPECT_THAT(m_changes[0].removedTagGroups, ElementsAre(oldGroup));
    EXPECT_EQ(m_project.name(), "new");
    EXPECT_THAT(m_project.variables(), ElementsAre(newVariable));
    EXPECT_EQ(study.caseCount(), 0U);
    EXPECT_EQ(study.name(), "");

    m_project.tagAuxFile(*newFile, "pressure", true);
    EXPECT_TRUE(newFile->hasTag("pressure"));
    EXPECT_EQ(m_changes.size(), 2U) << "Listeners stay connected.";
    EXPECT_THAT(m_project.record(2)->auxFiles(), ElementsAre(WeakPtr<AuxFile>(newFile)));
}

} // namespace
