#include <analyzer/MainWindow.h>
#include <analyzer/ViewArea.h>
#include <analyzer/filters/FilterList.h>
#include <analyzer/tags/TagEditor.h>
#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/ListSettingInterface.h>
#include <analyzer/views/NumberSettingInterface.h>
#include <analyzer/views/StepsSettingInterface.h>
#include <analyzer/views/viewKinds.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/selection/SelectionModelInterface.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QDomDocument>
#include <QTemporaryDir>

#include <boost/pointer_cast.hpp>

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <tests/support/openStudy.h>

namespace {

using analyzer::FilterList;
using analyzer::ListedFilter;
using analyzer::MainWindow;
using analyzer::SettingInterface;

/// Somebody who does anything that can be done, in any order.
class RandomUser
{
public:
    RandomUser(MainWindow& window, unsigned seed)
        : m_window(window)
        , m_random(seed)
    {}

    /// Does something, or tries something that is refused; what it was.
    std::string act()
    {
        try {
            switch (number(20)) {
            case 0:
                return openOrCloseView();
            case 1:
            case 2:
            case 3:
                return changeFilters();
            case 4:
            case 5:
            case 6:
                return changeTags();
            case 7:
            case 8:
            case 9:
                return select();
            case 10:
                return undoAndRedo();
            case 11:
                return fit();
            default:
                return changeSetting();
            }
        } catch (const ExceptionBase& error) {
            return std::string("refused: ") + error.what();
        }
    }

private:
    std::size_t number(std::size_t end)
    {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(m_random);
    }

    double real() { return std::uniform_real_distribution<double>(-3.0, 5.0)(m_random); }

    template <class T>
    T any(const std::vector<T>& list)
    {
        if (list.empty()) {
            throw ExceptionBase("there is none");
        }
        return list[number(list.size())];
    }

    RowBitmap rows()
    {
        RowBitmap rows(Project::project().caseCount());
        for (std::size_t row = 0; row < rows.rowCount(); ++row) {
            rows.set(row, number(3) == 0);
        }
        return rows;
    }

    std::string openOrCloseView()
    {
        constexpr std::size_t mostViews = 5;
        constexpr int mostOpened = 60; // closed ones live on
        const auto views = m_window.views();
        if (m_opened < mostOpened && views.size() < mostViews && number(2) == 0) {
            ++m_opened;
            const std::string kind = any(analyzer::viewKinds());
            m_window.addView(kind);
            return "open " + kind;
        }
        if (m_opened >= mostOpened && views.size() < 3) {
            return "nothing";
        }
        const auto view = any(views);
        m_window.viewArea().close(view);
        return "close " + view->kind();
    }

    std::string select()
    {
        std::set<unsigned long long> cases;
        rows().forEach([&](std::size_t row) { cases.insert(Project::project().caseID(row)); });
        m_window.selection().setSelection(cases);
        return "select";
    }

    std::string undoAndRedo()
    {
        QUndoStack& history = UndoStack::history();
        const std::size_t steps = number(8);
        const bool isBack = number(2) == 0;
        for (std::size_t i = 0; i < steps; ++i) {
            history.undo();
        }
        for (std::size_t i = 0; i < steps && isBack; ++i) {
            history.redo();
        }
        return isBack ? "undo and redo" : "undo";
    }

    std::string fit()
    {
        const auto view = any(m_window.views());
        switch (number(3)) {
        case 0:
            view->fitData();
            break;
        case 1:
            view->resetXAxis();
            break;
        default:
            view->resetYAxis();
        }
        return "fit " + view->kind();
    }

    std::string changeSetting()
    {
        const auto view = any(m_window.views());
        const boost::shared_ptr<SettingInterface> setting = any(view->settings());
        std::string text;
        switch (setting->kind()) {
        case SettingInterface::Kind::Number: {
            const auto& range = dynamic_cast<analyzer::NumberSettingInterface&>(*setting);
            text = std::to_string(range.minimum() + number(range.maximum() - range.minimum() + 1));
            break;
        }
        case SettingInterface::Kind::Real:
            text = std::to_string(real());
            break;
        case SettingInterface::Kind::List: {
            std::vector<std::string> names;
            for (const std::string& choice : setting->choices()) {
                if (number(2) == 0) {
                    names.push_back(choice);
                }
            }
            dynamic_cast<analyzer::ListSettingInterface&>(*setting).setSelected(names);
            return view->kind() + "." + setting->name();
        }
        default:
            text = any(setting->choices());
        }
        setting->setText(text);
        return view->kind() + "." + setting->name() + "=" + text;
    }

    std::string changeFilters()
    {
        FilterList& filters = m_window.filters();
        const auto variable = any(Project::project().variables()).lock();
        switch (number(6)) {
        case 0:
            filters.addRangeFilter(variable->name(), {-0.5, real() + 3.0});
            return "add range filter on " + variable->name();
        case 1:
            filters.addValuesFilter(variable->name());
            return "add values filter on " + variable->name();
        case 2: {
            const std::string tag = any(m_window.tags().userTags());
            filters.addTagFilter(tag);
            return "add filter on tag " + tag;
        }
        case 3:
            filters.remove(any(filters.filters()));
            return "remove filter";
        default:
            break;
        }
        const FilterList::FilterPtr filter = any(filters.filters());
        switch (number(4)) {
        case 0:
            filter->enabled()->setValue(!filter->enabled()->value());
            return "switch filter on " + filter->name();
        case 1:
            filter->inverted()->setValue(!filter->inverted()->value());
            return "invert filter on " + filter->name();
        default:
            break;
        }
        if (filter->range()) {
            filter->range()->setValue({-2.0 + real(), 8.0});
        } else if (filter->values()) {
            ListedFilter::Values values;
            for (const Variant& value : filter->choices()) {
                if (number(2) == 0) {
                    values.insert(value);
                }
            }
            filter->values()->setValue(values);
        }
        return "change filter on " + filter->name();
    }

    std::string changeTags()
    {
        analyzer::TagEditor& tags = m_window.tags();
        const auto groups = tags.userGroups();
        switch (number(10)) {
        case 0:
            tags.addGroup("group " + std::to_string(number(4)));
            return "add group";
        case 1:
        case 2: {
            const std::string tag = "tag, " + std::to_string(number(8));
            tags.addTag(any(groups)->name(), tag);
            return "add " + tag;
        }
        case 3:
            if (number(3) == 0) {
                const std::string group = any(groups)->name();
                tags.removeGroup(group);
                return "remove " + group;
            } else {
                const std::string tag = any(tags.userTags());
                tags.removeTag(tag);
                return "remove " + tag;
            }
        case 4:
        case 5: {
            analyzer::TagEditor::Files files;
            rows().forEach([&](std::size_t row) {
                const auto& ofCase = Project::project().auxFiles(row);
                files.insert(files.end(), ofCase.begin(), ofCase.end());
            });
            tags.tagFiles(any(tags.userTags()), files, number(2) == 0);
            return "tag files";
        }
        default:
            tags.tagCases(any(tags.userTags()), rows(), number(2) == 0);
            return "tag cases";
        }
    }

    MainWindow& m_window;
    std::mt19937 m_random;
    int m_opened = 0;
};

/// The session without what is no part of the history: places on the screen, what the mouse does, and where somebody has
/// leafed to.
std::string sessionOf(const MainWindow& window)
{
    QDomDocument document;
    EXPECT_TRUE(document.setContent(window.sessionText(QDir::tempPath())));
    QDomElement root = document.documentElement();
    root.removeChild(root.firstChildElement(QStringLiteral("Window")));
    QDomElement study = root.firstChildElement(QStringLiteral("Study"));
    study.removeChild(
        study.firstChildElement(QStringLiteral("CaseKeys"))); // of cases named elsewhere
    const QDomNodeList views = root.elementsByTagName(QStringLiteral("View"));
    for (int i = 0; i < views.size(); ++i) {
        for (const char* name :
             {"Scroll", "Columns", "MouseMode", "SelectionShape", "Other", "CurrentImage"}) {
            QDomElement state = views.at(i).firstChildElement();
            state.removeChild(state.firstChildElement(QLatin1String(name)));
        }
    }
    for (const char* name : {"XAxis", "YAxis"}) {
        const QDomNodeList axes = root.elementsByTagName(QLatin1String(name));
        for (int i = 0; i < axes.size(); ++i) {
            // Of an axis that has never been painted it is 0 at first, which no undo can set.
            axes.at(i).toElement().removeAttribute(QStringLiteral("GridSpacing"));
        }
    }
    // The view that was active is none of the history's business either.
    root.firstChildElement(QStringLiteral("Views")).removeAttribute(QStringLiteral("Active"));
    return document.toByteArray(1).toStdString();
}

class UndoEverythingTest : public testing::TestWithParam<unsigned>
{
protected:
    UndoEverythingTest()
    {
        qSetGlobalQHashSeed(0); // attributes in the same order
        m_window->setTellsErrorsInDialogs(false);
    }

    ~UndoEverythingTest() override
    {
        m_window.reset();
        Project nothing;
        Project::project().replaceStudy(nothing);
    }

    QTemporaryDir m_folder;
    std::unique_ptr<MainWindow> m_window = std::make_unique<MainWindow>();
};

/// Jumps to the places of \p expected, in the order of \p begin to \p end, and compares.
template <class Iterator>
void expectStates(const MainWindow& window, Iterator begin, Iterator end, const char* direction)
{
    for (Iterator state = begin; state != end; ++state) {
        UndoStack::history().setIndex(state->first);
        const std::string present = sessionOf(window);
        if (present != state->second) {
            FAIL() << direction << " at " << state->first << " of " << UndoStack::history().count()
                   << "\nexpected:\n"
                   << state->second << "\npresent:\n"
                   << present;
        }
    }
}

TEST_P(UndoEverythingTest, AnythingIsUndoneToTheStartAndRedoneToTheEnd)
{
    ASSERT_TRUE(openStudyIn(*m_window, writeSmallImageStudy(m_folder.path())));
    QUndoStack& history = UndoStack::history();
    history.clear();
    history.setUndoLimit(0);

    RandomUser user(*m_window, GetParam());
    std::map<int, std::string> states{{0, sessionOf(*m_window)}};
    const int actions = GetParam() == 1 ? 10000 : 1500;
    constexpr int between = 50;
    for (int i = 1; i <= actions; ++i) {
        const std::string what = user.act();
        // What is not there any more cannot be come back to.
        states.erase(states.upper_bound(history.index()), states.end());
        if (i % between == 0 || i == actions) {
            // An entry that the next change becomes part of is not at its end yet.
            m_window->selection().setSelection({});
            m_window->selection().setSelection({1 + static_cast<unsigned long long>(i) % 12});
            states[history.index()] = sessionOf(*m_window);
        }
        ASSERT_FALSE(testing::Test::HasFailure()) << what;
    }
    ASSERT_EQ(states.rbegin()->first, history.count());

    expectStates(*m_window, states.rbegin(), states.rend(), "back");
    ASSERT_FALSE(HasFatalFailure());
    expectStates(*m_window, states.begin(), states.end(), "forward");
}

INSTANTIATE_TEST_SUITE_P(Seeds, UndoEverythingTest, testing::Values(1U, 2U, 3U));

} // namespace
