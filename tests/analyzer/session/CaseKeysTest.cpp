#include <analyzer/session/CaseKeys.h>

#include <dataviews/platform/data/Project.h>

#include <QString>

#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkStringArray.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

using analyzer::CaseKeys;
using analyzer::caseKeys;
using analyzer::CaseMatch;

namespace {

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

struct Case
{
    std::string name;
    double speed;
    double load;
};

using Cases = std::vector<Case>;

/// By what cases can be told apart.
enum class Columns
{
    Name, ///< is an identifier; there are inputs too
    Inputs,
    Outputs ///< only
};

void fill(Project& study, const Cases& cases, Columns columns)
{
    vtkNew<vtkStringArray> names;
    vtkNew<vtkDoubleArray> speeds;
    vtkNew<vtkDoubleArray> loads;
    names->SetName("Name");
    speeds->SetName("Speed");
    loads->SetName("Load");
    for (const Case& one : cases) {
        names->InsertNextValue(one.name);
        speeds->InsertNextValue(one.speed);
        loads->InsertNextValue(one.load);
    }
    const Variable::Nature nature =
        columns == Columns::Outputs ? Variable::Output : Variable::Input;
    study.setCaseCount(cases.size());
    study.addVariable(speeds.Get(), nature);
    study.addVariable(loads.Get(), nature);
    if (columns == Columns::Name) {
        study.addVariable(names.Get(), Variable::Identifier);
    }
}

/// The present row for each saved one, -1 for none.
std::vector<int> match(const Cases& saved, const Cases& present, Columns columns)
{
    Project before;
    Project after;
    fill(before, saved, columns);
    fill(after, present, columns);
    const RowBitmap all(saved.size(), true);
    const CaseMatch found(caseKeys(before, all), after);

    RowBitmap lost(saved.size());
    RowBitmap rows = found.rows(all, lost);
    std::vector<int> result;
    for (std::size_t row = 0; row < saved.size(); ++row) {
        const std::optional<std::size_t> place = found.row(row);
        result.push_back(place ? static_cast<int>(*place) : -1);
        EXPECT_EQ(lost.contains(row), !place);
        EXPECT_TRUE(!place || rows.contains(*place));
    }
    EXPECT_EQ(rows.count() + lost.count(), saved.size());
    return result;
}

} // namespace

TEST(CaseKeysTest, CasesAreFoundWhereTheyAreNow)
{
    const Cases saved = {{"a", 1, 1}, {"b", 1, missing}, {"c", -0.0, 2}, {"d", 2, 2}};

    const struct
    {
        const char* what;
        Cases present;
        Columns columns;
        std::vector<int> rows;
    } changes[] = {
        {"nothing", saved, Columns::Name, {0, 1, 2, 3}},
        {"missing values and -0", saved, Columns::Inputs, {0, 1, 2, 3}},
        {"0 for -0", {{"", 0.0, 2}, {"", 1, -missing}}, Columns::Inputs, {-1, 1, 0, -1}},
        {"other order", {saved[3], saved[1], saved[0], saved[2]}, Columns::Name, {2, 1, 3, 0}},
        {"other inputs", {{"d", 9, 9}, {"c", 9, 9}, {"b", 1, 1}}, Columns::Name, {-1, 2, 1, 0}},
        {"inserted",
         {{"x", 7, 7}, saved[0], {"", 7, 8}, saved[1]},
         Columns::Inputs,
         {1, 3, -1, -1}},
        {"doubled", {saved[0], saved[1], saved[0]}, Columns::Name, {-1, 1, -1, -1}},
        {"swapped inputs", {{"", 2, 1}, {"", missing, 1}}, Columns::Inputs, {-1, -1, -1, -1}},
        {"no keys", saved, Columns::Outputs, {-1, -1, -1, -1}},
        {"no cases", {}, Columns::Name, {-1, -1, -1, -1}}};

    for (const auto& change : changes) {
        EXPECT_EQ(match(saved, change.present, change.columns), change.rows) << change.what;
    }
}

TEST(CaseKeysTest, VariableThatIsGoneFindsNobody)
{
    Project before;
    Project after;
    fill(before, {{"a", 1, 1}, {"b", 1, 1}}, Columns::Name);
    fill(after, {{"a", 1, 1}, {"b", 1, 1}}, Columns::Inputs);

    const CaseKeys keys = caseKeys(before, RowBitmap(2, true));

    EXPECT_EQ(keys.variables, std::vector<std::string>{"Name"});
    EXPECT_FALSE(CaseMatch(keys, after).row(0));
}

TEST(CaseKeysTest, CaseLikeAnotherThatIsInNoSetHasNoKey)
{
    Project study;
    fill(study, {{"", 1, 1}, {"", 1, 1}, {"", 1, 2}}, Columns::Inputs);
    RowBitmap rows(3, true);
    rows.set(1, false);

    const CaseKeys keys = caseKeys(study, rows);

    EXPECT_FALSE(keys.rows.contains(0));
    EXPECT_TRUE(keys.rows.contains(2));
    EXPECT_EQ(keys.hashes.size(), 1U);
}

TEST(CaseKeysTest, TooManyCasesGetNoKeys)
{
    Cases cases;
    for (std::size_t i = 0; i <= CaseKeys::mostCases; ++i) {
        cases.push_back({std::to_string(i), 1, 1});
    }
    Project study;
    fill(study, cases, Columns::Name);
    RowBitmap rows(cases.size(), true);
    EXPECT_TRUE(caseKeys(study, rows).hashes.empty());
    EXPECT_EQ(caseKeys(study, rows).rows, RowBitmap(cases.size()));

    rows.set(5, false);
    EXPECT_EQ(caseKeys(study, rows).hashes.size(), CaseKeys::mostCases);
}

TEST(CaseKeysTest, RandomChangesAreFollowedAsAPlainSearchDoes)
{
    std::mt19937 random(11);
    const double values[] = {0.0, -0.0, 1.0, -1.0, missing, 1e300, 1.0 + 1e-15, 3.0};
    const auto below = [&random](std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
    };
    int nextName = 0;
    const auto randomCase = [&] {
        return Case{std::to_string(nextName++), values[below(8)], values[below(8)]};
    };

    for (int round = 0; round < 200; ++round) {
        const Columns columns = round % 2 == 0 ? Columns::Name : Columns::Inputs;
        const auto keyOf = [columns](const Case& one) {
            const auto text = [](double value) {
                const double key = value == 0.0 ? 0.0 : value; // -0 is 0
                return QString::number(std::isnan(key) ? missing : key, 'g', 17).toStdString();
            };
            return columns == Columns::Name ? one.name : text(one.speed) + " " + text(one.load);
        };
        Cases saved(20);
        std::generate(saved.begin(), saved.end(), randomCase);
        Cases present = saved;
        std::shuffle(present.begin(), present.end(), random);
        present.resize(12);
        std::generate_n(std::back_inserter(present), 5, randomCase);
        present.push_back(present[below(17)]);
        std::shuffle(present.begin(), present.end(), random);

        std::vector<int> expected;
        for (const Case& one : saved) {
            const auto isLike = [&](const Case& other) { return keyOf(other) == keyOf(one); };
            const auto found = std::find_if(present.begin(), present.end(), isLike);
            const bool isAlone = std::count_if(saved.begin(), saved.end(), isLike) == 1
                && std::count_if(present.begin(), present.end(), isLike) == 1;
            expected.push_back(isAlone ? static_cast<int>(found - present.begin()) : -1);
        }
        ASSERT_EQ(match(saved, present, columns), expected) << round;
    }
}
