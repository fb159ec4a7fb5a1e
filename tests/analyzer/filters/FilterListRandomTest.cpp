#include <analyzer/filters/FilterList.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/FilterInterface.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include <tests/support/SmallStudy.h>

// The list, its undo and the pipeline against a plain model: undo as copies of the whole list.

using analyzer::FilterList;
using analyzer::ListedFilter;

namespace {

struct PlainFilter
{
    FilterList::FilterPtr object; ///< only to see that the same one comes back
    bool enabled = true;
    bool inverted = false;
    ListedFilter::Range range{};
    ListedFilter::Values values;
};

using PlainList = std::vector<PlainFilter>;

class RandomFilters
{
public:
    explicit RandomFilters(unsigned seed)
        : m_random(seed)
    {
        UndoStack::history().clear();
        m_study.add("number", {1.0, 2.0, 3.0}).open();
        Project::project().addTagGroup("Tags");
        Project::project().addTag("Tags", "tag");
    }

    ~RandomFilters() { UndoStack::history().clear(); }

    void step()
    {
        const std::size_t count = m_states[m_place].size();
        const std::size_t what = below(6);
        if (what == 0 || count == 0) {
            add();
        } else if (what == 1) {
            const auto index = below(count);
            m_list.remove(m_list.filters()[index]);
            PlainList& list = next();
            list.erase(list.begin() + static_cast<std::ptrdiff_t>(index));
        } else if (what == 2) {
            m_place -= m_place > 0 ? 1 : 0;
            UndoStack::history().undo();
        } else if (what == 3) {
            m_place += m_place + 1 < m_states.size() ? 1 : 0;
            UndoStack::history().redo();
        } else {
            change(below(count));
        }
    }

    void expectSame()
    {
        const PlainList& expected = m_states[m_place];
        const std::vector<FilterList::FilterPtr> filters = m_list.filters();
        ASSERT_EQ(filters.size(), expected.size());
        ASSERT_EQ(m_pipeline.filters().size(), expected.size());
        for (std::size_t i = 0; i < filters.size(); ++i) {
            const ListedFilter& filter = *filters[i];
            EXPECT_EQ(filters[i], expected[i].object);
            EXPECT_EQ(m_pipeline.filters()[i], filter.filter());
            EXPECT_EQ(filter.filter()->isEnabled(), expected[i].enabled);
            EXPECT_EQ(filter.inverted()->value(), expected[i].inverted);
            EXPECT_TRUE(!filter.range() || filter.range()->value() == expected[i].range);
            EXPECT_TRUE(!filter.values() || filter.values()->value() == expected[i].values);
        }
        ASSERT_EQ(UndoStack::history().index(), static_cast<int>(m_place));
        ASSERT_EQ(UndoStack::history().count(), static_cast<int>(m_states.size() - 1));
    }

private:
    std::size_t below(std::size_t end)
    {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(m_random);
    }

    ListedFilter::Range range() { return {-1.0 * static_cast<double>(below(9)), 1.0}; }

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
        PlainFilter filter;
        const PlainList& present = m_states[m_place];
        const bool hasRange = std::any_of(present.begin(), present.end(), [](const auto& other) {
            return other.object->kind() == ListedFilter::Kind::Range;
        });
        switch (below(3)) {
        case 0:
            filter.object = m_list.addTagFilter("tag");
            break;
        case 1:
            filter.values = {Variant(1)};
            filter.object = m_list.addValuesFilter("number", filter.values);
            break;
        default:
            if (hasRange) {
                return; // there is one at most
            }
            filter.range = range();
            filter.object = m_list.addRangeFilter("number", filter.range);
        }
        next().push_back(filter);
    }

    void change(std::size_t index)
    {
        const PlainFilter before = m_states[m_place][index];
        PlainFilter filter = before;
        const std::size_t what = below(4);
        bool moved = false;
        if (what == 0) {
            filter.enabled = !filter.enabled;
            filter.object->enabled()->setValue(filter.enabled);
        } else if (what == 1 || filter.object->kind() == ListedFilter::Kind::Tag) {
            filter.inverted = !filter.inverted;
            filter.object->inverted()->setValue(filter.inverted);
        } else if (filter.object->kind() == ListedFilter::Kind::Values) {
            filter.values = {Variant(static_cast<int>(1 + below(3)))};
            filter.object->values()->setValue(filter.values);
        } else {
            // A drag of some moves.
            filter.object->beginGesture();
            for (std::size_t move = 1 + below(4); move > 0; --move) {
                const ListedFilter::Range former = filter.range;
                filter.range = range();
                filter.object->range()->setValue(filter.range);
                moved = moved || !(filter.range == former);
            }
            filter.object->endGesture();
        }
        const bool isChanged = filter.enabled != before.enabled
            || filter.inverted != before.inverted || !(filter.range == before.range)
            || filter.values != before.values;
        if (isChanged) {
            next()[index] = filter;
        } else if (moved) {
            m_states.resize(
                m_place + 1); // there and back leaves no step, but ends what could be redone
        }
    }

    std::mt19937 m_random;
    SmallStudy m_study{3};
    DataPipelineManager m_pipeline{Project::project()};
    FilterList m_list{m_pipeline};
    std::vector<PlainList> m_states{{}};
    std::size_t m_place = 0; ///< of the present state
};

TEST(FilterListRandomTest, FollowsAPlainModelThroughUndoAndRedo)
{
    for (unsigned seed = 1; seed <= 10; ++seed) {
        RandomFilters filters(seed);
        for (int step = 0; step < 300; ++step) {
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
