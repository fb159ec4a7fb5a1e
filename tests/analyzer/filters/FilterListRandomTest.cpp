#include <analyzer/filters/FilterList.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/property/ExceptionBase.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include <tests/support/SmallStudy.h>

// The list, its undo and the pipeline against a plain model: filters as plain values, undo as copies of the whole list,
// and cases decided one by one.

using analyzer::FilterList;
using analyzer::ListedFilter;

namespace {

constexpr std::size_t caseCount = 150;

struct PlainFilter
{
    FilterList::FilterPtr object; ///< only to see that the same one comes back
    ListedFilter::Kind kind;
    std::string name;
    bool enabled = true;
    bool inverted = false;
    ListedFilter::Range range{};
    ListedFilter::Values values;
};

using PlainList = std::vector<PlainFilter>;

bool passes(const PlainFilter& filter, std::size_t row)
{
    const Project& project = Project::project();
    if (filter.kind == ListedFilter::Kind::Tag) {
        const std::vector<std::string> tags = project.caseTags(row);
        return (std::find(tags.begin(), tags.end(), filter.name) != tags.end()) != filter.inverted;
    }
    const Variant value = project.variable(filter.name).lock()->value(row);
    if (filter.kind == ListedFilter::Kind::Values) {
        return (filter.values.count(value) != 0) != filter.inverted;
    }
    if (value.isEmpty()) {
        return false;
    }
    const double number = value.toReal();
    return (number >= filter.range.min && number <= filter.range.max) != filter.inverted;
}

class RandomFilters
{
public:
    explicit RandomFilters(unsigned seed)
        : m_random(seed)
    {
        UndoStack::history().clear();
        std::vector<double> reals(caseCount);
        std::vector<double> wholes(caseCount);
        std::vector<std::string> texts(caseCount);
        for (std::size_t row = 0; row < caseCount; ++row) {
            reals[row] = chance(5) ? std::numeric_limits<double>::quiet_NaN() : real();
            wholes[row] = static_cast<double>(below(4));
            texts[row] = std::string(below(3), 'x');
        }
        m_study.add("real", reals).add("whole", wholes).add("text", texts).open();
        Project::project().addTagGroup("Tags");
        Project::project().addTag("Tags", "tag");
        RowBitmap tagged(caseCount);
        for (std::size_t row = 0; row < caseCount; ++row) {
            tagged.set(row, chance(2));
        }
        Project::project().tagCases("tag", tagged, true);
    }

    ~RandomFilters() { UndoStack::history().clear(); }

    void step()
    {
        switch (below(8)) {
        case 0:
        case 1:
            add();
            return;
        case 2:
            remove();
            return;
        case 3:
        case 4:
            change();
            return;
        case 5:
            drag();
            return;
        case 6:
            if (m_place > 0) {
                --m_place;
            }
            UndoStack::history().undo();
            return;
        default:
            if (m_place + 1 < m_states.size()) {
                ++m_place;
            }
            UndoStack::history().redo();
            return;
        }
    }

    void expectSame()
    {
        const PlainList& expected = m_states[m_place];
        const std::vector<FilterList::FilterPtr> filters = m_list.filters();
        ASSERT_EQ(filters.size(), expected.size());
        for (std::size_t i = 0; i < filters.size(); ++i) {
            EXPECT_EQ(filters[i], expected[i].object);
            EXPECT_EQ(filters[i]->enabled()->value(), expected[i].enabled);
            EXPECT_EQ(filters[i]->inverted()->value(), expected[i].inverted);
            EXPECT_EQ(m_pipeline.filters()[i], filters[i]->filter());
        }
        for (std::size_t row = 0; row < caseCount; ++row) {
            const bool passesAll =
                std::all_of(expected.begin(), expected.end(), [row](const PlainFilter& filter) {
                    return !filter.enabled || passes(filter, row);
                });
            ASSERT_EQ(m_pipeline.passingRows().contains(row), passesAll) << "row " << row;
        }
        ASSERT_EQ(UndoStack::history().index(), static_cast<int>(m_place));
        ASSERT_EQ(UndoStack::history().count(), static_cast<int>(m_states.size() - 1));
    }

private:
    std::size_t below(std::size_t end)
    {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(m_random);
    }

    bool chance(std::size_t oneIn) { return below(oneIn) == 0; }

    double real() { return std::uniform_real_distribution<double>(-1.0, 1.0)(m_random); }

    ListedFilter::Range range()
    {
        const double one = real() * 2.0;
        const double other = chance(4) ? std::numeric_limits<double>::infinity() : real();
        return {std::min(one, other), std::max(one, other)};
    }

    ListedFilter::Values values(const std::string& name)
    {
        ListedFilter::Values chosen;
        const auto variable = Project::project().variable(name).lock();
        for (std::size_t row = 0; row < 3; ++row) {
            chosen.insert(variable->value(below(caseCount)));
        }
        return chosen;
    }

    /// The state that follows the present one; what could be redone is gone.
    PlainList& next()
    {
        m_states.resize(m_place + 1);
        m_states.push_back(m_states.back());
        ++m_place;
        return m_states.back();
    }

    void add()
    {
        const PlainList& present = m_states[m_place];
        PlainFilter filter;
        if (chance(4)) {
            filter.kind = ListedFilter::Kind::Tag;
            filter.name = "tag";
            filter.object = m_list.addTagFilter("tag");
        } else if (chance(2)) {
            filter.kind = ListedFilter::Kind::Values;
            filter.name = chance(2) ? "text" : "whole";
            filter.values = values(filter.name);
            filter.object = m_list.addValuesFilter(filter.name, filter.values);
        } else {
            filter.kind = ListedFilter::Kind::Range;
            filter.name = chance(2) ? "real" : "whole";
            filter.range = range();
            const bool taken =
                std::any_of(present.begin(), present.end(), [&filter](const PlainFilter& other) {
                    return other.kind == ListedFilter::Kind::Range && other.name == filter.name;
                });
            if (taken) {
                EXPECT_THROW(m_list.addRangeFilter(filter.name, filter.range), ExceptionBase);
                return;
            }
            filter.object = m_list.addRangeFilter(filter.name, filter.range);
        }
        next().push_back(filter);
    }

    void remove()
    {
        const std::size_t count = m_states[m_place].size();
        if (count == 0) {
            return;
        }
        const std::size_t index = below(count);
        m_list.remove(m_list.filters()[index]);
        PlainList& list = next();
        list.erase(list.begin() + static_cast<std::ptrdiff_t>(index));
    }

    void change()
    {
        const std::size_t count = m_states[m_place].size();
        if (count == 0) {
            return;
        }
        const std::size_t index = below(count);
        PlainFilter filter = m_states[m_place][index];
        const std::size_t what = below(3);
        if (what == 0) {
            filter.enabled = !filter.enabled;
            filter.object->enabled()->setValue(filter.enabled);
        } else if (what == 1 || filter.kind == ListedFilter::Kind::Tag) {
            filter.inverted = !filter.inverted;
            filter.object->inverted()->setValue(filter.inverted);
        } else if (filter.kind == ListedFilter::Kind::Range) {
            filter.range = range();
            filter.object->range()->setValue(filter.range);
        } else {
            const ListedFilter::Values before = filter.values;
            filter.values = values(filter.name);
            filter.object->values()->setValue(filter.values);
            if (filter.values == before) {
                return; // no change, no entry
            }
        }
        next()[index] = filter;
    }

    void drag()
    {
        const PlainList& present = m_states[m_place];
        const auto place =
            std::find_if(present.begin(), present.end(), [](const PlainFilter& filter) {
                return filter.kind == ListedFilter::Kind::Range;
            });
        if (place == present.end()) {
            return;
        }
        const auto index = static_cast<std::size_t>(place - present.begin());
        const FilterList::FilterPtr object = place->object;
        ListedFilter::Range last{};
        object->beginGesture();
        for (int move = 0; move < 4; ++move) {
            last = range();
            object->range()->setValue(last);
        }
        object->endGesture();
        next()[index].range = last;
    }

    std::mt19937 m_random;
    SmallStudy m_study{caseCount};
    DataPipelineManager m_pipeline{Project::project()};
    FilterList m_list{m_pipeline};
    std::vector<PlainList> m_states{{}};
    std::size_t m_place = 0; ///< of the present state
};

TEST(FilterListRandomTest, FollowsAPlainModelThroughUndoAndRedo)
{
    for (unsigned seed = 1; seed <= 10; ++seed) {
        RandomFilters filters(seed);
        for (int step = 0; step < 150; ++step) {
            SCOPED_TRACE("seed " + std::to_string(seed) + ", step " + std::to_string(step));
            filters.step();
            filters.expectSame();
            if (testing::Test::HasFailure()) {
                return;
            }
        }
    }
}

} // namespace
