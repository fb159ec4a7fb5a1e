#include <analyzer/filters/FilterList.h>
#include <analyzer/tags/TagEditor.h>

#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/property/ExceptionBase.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include <tests/support/SmallStudy.h>

// The editor and its undo against a plain model: undo as copies of all tags.

using analyzer::FilterList;
using analyzer::TagEditor;

namespace {

constexpr std::size_t caseCount = 70;

struct PlainTag
{
    std::string name;
    std::set<std::size_t> cases;
    std::set<std::size_t> files; ///< by the rows of their cases

    bool operator==(const PlainTag& other) const
    {
        return name == other.name && cases == other.cases && files == other.files;
    }
};

struct PlainGroup
{
    std::string name;
    std::vector<PlainTag> tags;

    bool operator==(const PlainGroup& other) const
    {
        return name == other.name && tags == other.tags;
    }
};

struct PlainState
{
    std::vector<PlainGroup> groups;
    std::vector<std::string> filters;

    bool operator==(const PlainState& other) const
    {
        return groups == other.groups && filters == other.filters;
    }
};

class RandomTags
{
public:
    explicit RandomTags(unsigned seed)
        : m_random(seed)
    {
        UndoStack::history().clear();
        Project study;
        study.setCaseCount(caseCount);
        for (std::size_t row = 0; row < caseCount; ++row) {
            study.addAuxFile(row, "/a.png");
        }
        Project::project().replaceStudy(study);
    }

    RandomTags(const RandomTags&) = delete;
    RandomTags& operator=(const RandomTags&) = delete;

    ~RandomTags()
    {
        UndoStack::history().clear();
        Project nothing;
        Project::project().replaceStudy(nothing);
    }

    void step()
    {
        switch (below(12)) {
        case 0:
            addGroup();
            break;
        case 1:
        case 2:
            addTag();
            break;
        case 3:
            removeTag();
            break;
        case 4:
            below(3) == 0 ? removeGroup() : addFilter();
            break;
        case 5:
        case 6:
            undo();
            break;
        case 7:
            redo();
            break;
        case 8:
            tagFiles();
            break;
        default:
            tagCases();
        }
    }

    bool undo()
    {
        UndoStack::history().undo();
        m_place -= m_place > 0 ? 1 : 0;
        return m_place > 0;
    }

    bool redo()
    {
        UndoStack::history().redo();
        m_place += m_place + 1 < m_states.size() ? 1 : 0;
        return m_place + 1 < m_states.size();
    }

    void expectSame() const
    {
        ASSERT_EQ(UndoStack::history().index(), static_cast<int>(m_place));
        ASSERT_EQ(UndoStack::history().count(), static_cast<int>(m_states.size() - 1));
        ASSERT_TRUE(present() == m_states[m_place]);
        ASSERT_EQ(m_editor.userGroups().size(), m_states[m_place].groups.size());
    }

private:
    std::size_t below(std::size_t end)
    {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(m_random);
    }

    std::string anyName(const char* kind) { return kind + std::to_string(below(6)); }

    /// What the project says.
    [[nodiscard]] PlainState present() const
    {
        const Project& project = Project::project();
        PlainState state;
        for (const WeakPtr<TagGroup>& handle : project.tagGroups()) {
            const boost::shared_ptr<TagGroup> group = handle.lock();
            state.groups.push_back({group->name(), {}});
            for (const std::string& tag : group->tags()) {
                PlainTag plain{tag, {}, {}};
                project.taggedCases(tag).forEach(
                    [&plain](std::size_t row) { plain.cases.insert(row); });
                for (const boost::shared_ptr<AuxFile>& file : project.taggedAuxFiles(tag)) {
                    plain.files.insert(file->row());
                }
                state.groups.back().tags.push_back(plain);
            }
        }
        for (const FilterList::FilterPtr& filter : m_filters.filters()) {
            state.filters.push_back(filter->name());
        }
        return state;
    }

    /// The state that follows the present one; what could be redone is gone.
    PlainState& next()
    {
        m_states.resize(m_place + 1);
        m_states.push_back(m_states.back());
        ++m_place;
        return m_states.back();
    }

    void addGroup()
    {
        const std::string name = anyName("group");
        try {
            m_editor.addGroup(name);
            next().groups.push_back({name, {}});
        } catch (const ExceptionBase&) { // it is there, which expectSame() sees
        }
    }

    void addTag()
    {
        const std::string group = anyName("group");
        const std::string tag = anyName("tag");
        try {
            m_editor.addTag(group, tag);
        } catch (const ExceptionBase&) {
            return;
        }
        std::vector<PlainGroup>& groups = next().groups;
        auto place = std::find_if(groups.begin(), groups.end(), [&group](const PlainGroup& other) {
            return other.name == group;
        });
        if (place == groups.end()) {
            place = groups.insert(place, PlainGroup{group, {}});
        }
        place->tags.push_back({tag, {}, {}});
    }

    static PlainTag* find(PlainState& state, const std::string& name)
    {
        for (PlainGroup& group : state.groups) {
            for (PlainTag& tag : group.tags) {
                if (tag.name == name) {
                    return &tag;
                }
            }
        }
        return nullptr;
    }

    void removeTag()
    {
        const std::string name = anyName("tag");
        if (find(m_states[m_place], name) == nullptr) {
            return;
        }
        m_editor.removeTag(name);
        PlainState& state = next();
        for (PlainGroup& group : state.groups) {
            erase(group.tags, [&name](const PlainTag& tag) { return tag.name == name; });
        }
        erase(state.filters, [&name](const std::string& filter) { return filter == name; });
    }

    void removeGroup()
    {
        if (m_states[m_place].groups.empty()) {
            return;
        }
        const std::size_t index = below(m_states[m_place].groups.size());
        m_editor.removeGroup(m_states[m_place].groups[index].name);
        PlainState& state = next();
        const PlainGroup group = state.groups[index];
        state.groups.erase(state.groups.begin() + static_cast<std::ptrdiff_t>(index));
        for (const PlainTag& tag : group.tags) {
            erase(state.filters, [&tag](const std::string& filter) { return filter == tag.name; });
        }
    }

    void addFilter()
    {
        const std::string name = anyName("tag");
        if (find(m_states[m_place], name) != nullptr) {
            m_filters.addTagFilter(name);
            next().filters.push_back(name);
        }
    }

    void tagCases()
    {
        const std::string name = anyName("tag");
        PlainTag* tag = find(m_states[m_place], name);
        if (tag == nullptr) {
            return;
        }
        const bool carry = below(3) != 0;
        RowBitmap rows(caseCount);
        std::set<std::size_t> cases = tag->cases;
        const std::size_t first = below(caseCount);
        const std::size_t stride = 1 + below(4);
        for (std::size_t row = first; row < std::min(first + below(40), caseCount); row += stride) {
            rows.set(row);
        }
        rows.forEach([&](std::size_t row) {
            carry ? static_cast<void>(cases.insert(row)) : static_cast<void>(cases.erase(row));
        });
        m_editor.tagCases(name, rows, carry);
        if (cases != tag->cases) {
            find(next(), name)->cases = cases;
        }
    }

    void tagFiles()
    {
        const std::string name = anyName("tag");
        PlainTag* tag = find(m_states[m_place], name);
        if (tag == nullptr) {
            return;
        }
        const bool carry = below(3) != 0;
        TagEditor::Files files;
        std::set<std::size_t> rows = tag->files;
        for (std::size_t count = below(5); count > 0; --count) {
            const std::size_t row = below(caseCount);
            files.push_back(Project::project().auxFiles(row)[0]);
            carry ? static_cast<void>(rows.insert(row)) : static_cast<void>(rows.erase(row));
        }
        m_editor.tagFiles(name, files, carry);
        if (rows != tag->files) {
            find(next(), name)->files = rows;
        }
    }

    template <class T, class Predicate>
    static void erase(std::vector<T>& list, Predicate predicate)
    {
        list.erase(std::remove_if(list.begin(), list.end(), predicate), list.end());
    }

    std::mt19937 m_random;
    DataPipelineManager m_pipeline{Project::project()};
    FilterList m_filters{m_pipeline};
    TagEditor m_editor{m_filters};
    std::vector<PlainState> m_states{{}};
    std::size_t m_place = 0; ///< of the present state
};

TEST(TagEditorRandomTest, FollowsAPlainModelThroughUndoAndRedo)
{
    for (unsigned seed = 1; seed <= 4; ++seed) {
        RandomTags tags(seed);
        for (int step = 0; step < 2000; ++step) {
            SCOPED_TRACE("seed " + std::to_string(seed) + ", step " + std::to_string(step));
            tags.step();
            tags.expectSame();
            if (testing::Test::HasFatalFailure()) {
                return;
            }
        }
        while (tags.undo()) {
            tags.expectSame();
        }
        tags.expectSame();
        while (tags.redo()) {
            tags.expectSame();
        }
        tags.expectSame();
    }
}

} // namespace
