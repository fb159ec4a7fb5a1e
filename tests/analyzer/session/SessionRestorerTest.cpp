#include <analyzer/filters/FilterList.h>
#include <analyzer/session/restoreSession.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkStringArray.h>

#include <gtest/gtest.h>

#include <set>
#include <utility>

#include <tests/analyzer/session/sessionExamples.h>

using analyzer::FilterList;
using analyzer::ListedFilter;
using analyzer::Session;
using analyzer::SessionRestorer;

namespace {

using Names = std::vector<std::string>;

/// Cases called as \p names with an image for each; the length of the name is a variable.
void fill(Project& study, const Names& names, const char* lengthName = "Length")
{
    vtkNew<vtkStringArray> column;
    vtkNew<vtkDoubleArray> lengths;
    column->SetName("Name");
    lengths->SetName(lengthName);
    for (const std::string& name : names) {
        column->InsertNextValue(name);
        lengths->InsertNextValue(static_cast<double>(name.size()));
    }
    study.setSource("Study", "/data/study/table.csv");
    study.setCaseCount(names.size());
    study.addVariable(column.Get(), Variable::Identifier);
    study.addVariable(lengths.Get(), Variable::Output);
    for (std::size_t row = 0; row < names.size(); ++row) {
        study.addAuxFile(row, "/data/images/" + names[row] + ".png");
    }
}

std::set<std::string> namesOf(const Project& study, const RowBitmap& rows)
{
    std::set<std::string> names;
    rows.forEach([&](std::size_t row) {
        names.insert(study.variable("Name").lock()->value(row).toString());
    });
    return names;
}

class SessionRestorerTest : public testing::Test
{
protected:
    /// A session of the cases a to f with tags, filters and a selection.
    SessionRestorerTest()
    {
        fill(m_before, {"a", "bb", "c", "dd", "e", "f"});
        m_before.addTagGroup("Study's own");
        m_before.addTag("Study's own", "own");
        m_before.addTagGroup("Quality");
        m_before.addTag("Quality", "good");
        m_before.addTag("Quality", "bad");
        m_before.tagCases("good", rowsOf(6, {0, 1, 2}), true);
        m_before.tagAuxFile(*m_before.auxFiles(3)[0], "bad", true);
        m_before.tagAuxFile(*m_before.auxFiles(5)[0], "bad", true);

        DataPipelineManager pipeline(m_before);
        FilterList filters(pipeline);
        filters.addRangeFilter("Length", {0.0, 1.5});
        filters.addValuesFilter("Name", ListedFilter::Values{Variant("a"), Variant("c")})
            ->inverted()
            ->setValue(true);
        filters.addTagFilter("good")->enabled()->setValue(false);

        m_session.caseCount = 6;
        m_session.selection = rowsOf(6, {1, 4});
        m_session.tagGroups = analyzer::sessionTags(m_before, {"Quality", "gone"});
        m_session.filters = analyzer::sessionFilters(filters);
        m_session.keys = analyzer::caseKeys(m_before, RowBitmap(6, true));
    }

    ~SessionRestorerTest() override { UndoStack::history().clear(); }

    Project m_before;
    Session m_session;
};

/// What \p filters are, in a line for each.
Names describe(const FilterList& filters)
{
    Names result;
    for (const analyzer::SessionFilter& filter : analyzer::sessionFilters(filters)) {
        std::string line = filter.name + (filter.isEnabled ? "" : " off");
        line += filter.isInverted ? " inverted" : "";
        for (const Variant& value : filter.values) {
            line += " " + value.toString();
        }
        if (filter.kind == ListedFilter::Kind::Range) {
            line += " " + Variant(filter.range.min).toString() + ".."
                + Variant(filter.range.max).toString();
        }
        result.push_back(line);
    }
    return result;
}

} // namespace

TEST_F(SessionRestorerTest, UnchangedStudyIsAsItWas)
{
    Project after;
    fill(after, {"a", "bb", "c", "dd", "e", "f"});
    SessionRestorer restorer(m_session, after, true);
    DataPipelineManager pipeline(after);
    FilterList filters(pipeline);

    restorer.restoreTags(after);
    restorer.restoreFilters(filters);

    EXPECT_EQ(after.tagGroup("Quality").lock()->tags(), (Names{"good", "bad"}));
    EXPECT_EQ(after.taggedCases("good"), rowsOf(6, {0, 1, 2}));
    EXPECT_EQ(after.taggedAuxFileCount("bad"), 2U);
    EXPECT_TRUE(after.auxFiles(3)[0]->hasOwnTag("bad"));
    EXPECT_FALSE(after.hasTag("own"));
    EXPECT_EQ(describe(filters), (Names{"Length 0..1.5", "Name inverted a c", "good off"}));
    EXPECT_EQ(pipeline.passingRows(), rowsOf(6, {4, 5}));
    EXPECT_EQ(restorer.selection(), m_session.selection);
    EXPECT_EQ(restorer.remarks(), QStringList());
}

TEST_F(SessionRestorerTest, ChangedStudyKeepsWhatItsCasesHave)
{
    Project after;
    fill(after, {"new", "f", "e", "c", "bb", "newer", "a"}, "Size"); // without dd
    SessionRestorer restorer(m_session, after, false);
    DataPipelineManager pipeline(after);
    FilterList filters(pipeline);

    restorer.restoreTags(after);
    restorer.restoreFilters(filters);

    EXPECT_EQ(namesOf(after, after.taggedCases("good")), (std::set<std::string>{"a", "bb", "c"}));
    ASSERT_EQ(after.taggedAuxFileCount("bad"), 1U);
    EXPECT_EQ(after.taggedAuxFiles("bad")[0]->filePath(), "/data/images/f.png");
    EXPECT_EQ(namesOf(after, restorer.selection()), (std::set<std::string>{"bb", "e"}));
    EXPECT_EQ(describe(filters), (Names{"Name inverted a c", "good off"}));
    EXPECT_EQ(
        restorer.remarks(),
        (QStringList{
            "The image \"../images/dd.png\" with the tag \"bad\" is gone.",
            "The filter on \"Length\" is gone: it is not in the study.",
            "The study has changed, and these cases are not to be found in it any more: 4."}));
}

TEST_F(SessionRestorerTest, LostCasesAndRefusedFiltersAreToldInSentences)
{
    constexpr std::size_t caseCount = 2000;
    Project after;
    fill(after, {"a", "bb"});
    m_session.caseCount = caseCount;
    m_session.keys = analyzer::CaseKeys();
    m_session.keys.rows = RowBitmap(caseCount);
    m_session.tagGroups.clear();
    m_session.filters = {m_session.filters[0]};
    m_session.filters[0].name = "Name"; // holds texts
    for (const std::size_t lost : {100U, 2000U}) {
        m_session.selection = RowBitmap(caseCount);
        for (std::size_t row = 0; row < lost; row += 2) {
            m_session.selection.set(row);
        }
        SessionRestorer restorer(m_session, after, false);
        DataPipelineManager pipeline(after);
        FilterList filters(pipeline);
        restorer.restoreFilters(filters);

        EXPECT_EQ(restorer.selection(), RowBitmap(2));
        const QStringList remarks = restorer.remarks();
        ASSERT_EQ(remarks.size(), 2);
        EXPECT_TRUE(remarks[0].startsWith("The filter on \"Name\" is gone: "));
        EXPECT_TRUE(remarks[0].endsWith('.') && !remarks[0].endsWith(".."))
            << qPrintable(remarks[0]);
        EXPECT_EQ(
            remarks[1],
            QString("The study has changed, and %1 cases are not to be found in it any more.")
                .arg(lost / 2));
    }
}

TEST_F(SessionRestorerTest, WhatDoesNotFitAnUnchangedStudyIsRefused)
{
    const std::pair<const char*, std::function<void(Session&)>> faults[] = {
        {"number of cases", [](Session& session) { session.caseCount = 7; }},
        {"image", [](Session& session) { session.tagGroups[0].tags[1].files[0].row = 0; }},
        {"image", [](Session& session) { session.tagGroups[0].tags[1].files[0].path = "a\nb"; }},
        {"tags", [](Session& session) { session.tagGroups.push_back(session.tagGroups[0]); }},
        {"tags", [](Session& session) { session.tagGroups[0].tags[0].name = ""; }},
        {"tags", [](Session& session) { session.tagGroups[0].tags[0].name = "bad"; }},
        {"not in the study", [](Session& session) { session.filters[0].name = "x\ny"; }},
        {"not in the study", [](Session& session) { session.filters[2].name = "Length"; }},
        {"does not fit", [](Session& session) { session.filters[0].name = "Name"; }},
        {"does not fit", [](Session& session) { session.filters[1] = session.filters[0]; }},
        {"does not fit", [](Session& session) { session.filters[0].range.min = 9.0; }},
    };

    for (const auto& [word, damage] : faults) {
        Session session = m_session;
        damage(session);
        Project after;
        fill(after, {"a", "bb", "c", "dd", "e", "f"});
        DataPipelineManager pipeline(after);
        FilterList filters(pipeline);
        const std::string message = refusalOf([&] {
            SessionRestorer restorer(session, after, true);
            restorer.restoreTags(after);
            restorer.restoreFilters(filters);
        });
        EXPECT_NE(message.find(word), std::string::npos) << word << ": " << message;
    }
}
