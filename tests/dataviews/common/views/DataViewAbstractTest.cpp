#include <dataviews/common/views/DataViewAbstract.h>

#include <dataviews/platform/serialize/Serializer.h>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <tests/support/RecordingSelectionModel.h>

namespace {

using testing::ElementsAre;
using Cases = std::set<unsigned long long>;

/// Notes its end.
class MortalSerializer : public Serializer
{
public:
    MortalSerializer(std::string name, std::vector<std::string>& ends)
        : Serializer(std::move(name))
        , m_ends(ends)
    {}

    MortalSerializer(const MortalSerializer&) = delete;
    MortalSerializer& operator=(const MortalSerializer&) = delete;

    ~MortalSerializer() override { m_ends.push_back(name()); }

private:
    std::vector<std::string>& m_ends;
};

class MinimalView : public DataViewAbstract
{
public:
    using DataViewAbstract::DataViewAbstract;
    using DataViewAbstract::mouseMode;
    using DataViewAbstract::operator=;
    MinimalView(MinimalView& other) = default;

    void suspend() override {}

    void resume() override {}

    void accept(DataViewVisitorInterface& /*visitor*/) override {}

    void render() override {}

    [[nodiscard]] QWidget& widget() override { throw std::logic_error("The view has no widget."); }
};

class ViewWithCases : public MinimalView
{
public:
    using MinimalView::MinimalView;

    std::optional<unsigned long long> m_caseUnderMouse;

protected:
    bool caseIDAtPoint(unsigned long long& caseID) override
    {
        caseID = m_caseUnderMouse.value_or(caseID);
        return m_caseUnderMouse.has_value();
    }
};

class DataViewAbstractTest : public testing::Test
{
protected:
    std::unique_ptr<SerializerInterface> serializer(const std::string& name)
    {
        return std::make_unique<MortalSerializer>(name, m_ends);
    }

    std::vector<std::string> m_ends;
    boost::shared_ptr<RecordingSelectionModel> m_selection =
        boost::make_shared<RecordingSelectionModel>();
};

TEST_F(DataViewAbstractTest, ClickRule)
{
    struct Case
    {
        Cases selected;
        std::optional<unsigned long long> clicked;
        std::vector<Cases> calls;
    };

    const Case cases[] = {
        {{}, {}, {{}}}, // the model decides that this is no change
        {{1, 2}, {}, {{}}},
        {{1, 2, 3}, 2, {}},
        {{1, 2, 3}, 4, {{4}}},
        {{}, 0, {{0}}},
    };
    ViewWithCases view(serializer("View"), m_selection);

    for (const Case& c : cases) {
        m_selection->setSelection(c.selected);
        (void)m_selection->takeCalls();
        view.m_caseUnderMouse = c.clicked;

        view.adjustSelectionForMouseClickAtPoint();

        EXPECT_EQ(m_selection->takeCalls(), c.calls);
    }
}

TEST_F(DataViewAbstractTest, ViewThatKnowsNoCasesClearsTheSelectionOnEveryClick)
{
    MinimalView view(serializer("View"), m_selection);
    m_selection->setSelection({0, 1});
    (void)m_selection->takeCalls();

    view.adjustSelectionForMouseClickAtPoint();

    EXPECT_THAT(m_selection->takeCalls(), ElementsAre(Cases{}));
}

TEST_F(DataViewAbstractTest, MouseModeStartsAtSelectAndTakesAnyValue)
{
    const MinimalView view(serializer("View"), m_selection);
    EXPECT_EQ(view.mouseMode()->value(), DataViewInterface::Select);
    EXPECT_EQ(view.mouseMode(), view.mouseMode());

    view.mouseMode()->setValue(static_cast<DataViewInterface::MouseMode>(17));

    EXPECT_EQ(view.mouseMode()->value(), 17);
}

TEST_F(DataViewAbstractTest, CopyTakesTheSerializerAndSharesTheRest)
{
    MinimalView original(serializer("Original"), m_selection);
    SerializerInterface* const moved = &original.serializer();

    {
        MinimalView copy(original);

        EXPECT_EQ(&copy.serializer(), moved);
        EXPECT_EQ(copy.domName(), "Original");
        copy.mouseMode()->setValue(DataViewInterface::Zoom);
        EXPECT_EQ(original.mouseMode()->value(), DataViewInterface::Zoom);
        copy.adjustSelectionForMouseClickAtPoint();
        EXPECT_EQ(m_selection->takeCalls().size(), 1U);
    }
    EXPECT_THAT(m_ends, ElementsAre("Original"));
}

TEST_F(DataViewAbstractTest, AssignmentDestroysTheSerializerOfBeforeAndSurvivesItself)
{
    const auto otherSelection = boost::make_shared<RecordingSelectionModel>();
    MinimalView source(serializer("Source"), m_selection);
    MinimalView target(serializer("Target"), otherSelection);

    static_cast<DataViewAbstract&>(target) = source;

    EXPECT_THAT(m_ends, ElementsAre("Target"));
    EXPECT_EQ(target.domName(), "Source");
    EXPECT_EQ(target.mouseMode(), source.mouseMode());
    EXPECT_EQ(otherSelection.use_count(), 1);

    DataViewAbstract& alias = target;
    static_cast<DataViewAbstract&>(target) = alias;
    EXPECT_EQ(target.domName(), "Source");
    EXPECT_THAT(m_ends, ElementsAre("Target"));
}

TEST_F(DataViewAbstractTest, LetsGoOfTheSelectionBeforeItDestroysTheSerializer)
{
    class SelectionEnd : public RecordingSelectionModel
    {
    public:
        explicit SelectionEnd(std::vector<std::string>& ends)
            : m_ends(ends)
        {}

        SelectionEnd(const SelectionEnd&) = delete;
        SelectionEnd& operator=(const SelectionEnd&) = delete;

        ~SelectionEnd() override { m_ends.emplace_back("selection"); }

    private:
        std::vector<std::string>& m_ends;
    };

    auto view = std::make_unique<MinimalView>(
        serializer("serializer"), boost::make_shared<SelectionEnd>(m_ends));
    const boost::weak_ptr<void> mouseMode = view->mouseMode();

    view.reset();

    EXPECT_TRUE(mouseMode.expired());
    EXPECT_THAT(m_ends, ElementsAre("selection", "serializer"));
}

} // namespace
