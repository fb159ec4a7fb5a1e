#include <dataviews/platform/selection/SelectionModel.h>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <stdexcept>
#include <vector>

#include <tests/support/RecordingSelectionModel.h>

namespace {

using testing::ElementsAre;
using Cases = std::set<unsigned long long>;

TEST(SelectionModelTest, TellsTheNewSelectionOnceAndOnlyWhenItDiffers)
{
    SelectionModel model;
    std::vector<Cases> told;
    model.signalSelectionChanged.connect([&](const Cases& cases) {
        told.push_back(cases);
        EXPECT_EQ(model.getSelections(), cases) << "The model holds something else than it tells.";
    });
    const Cases negative{std::numeric_limits<unsigned long long>::max(), 1};

    model.setSelection({});
    EXPECT_THAT(told, ElementsAre());
    model.setSelection({3, 1, 2});
    model.setSelection({1, 2, 3});
    model.setSelection(negative);
    model.setSelection({});

    EXPECT_THAT(told, ElementsAre(Cases{1, 2, 3}, negative, Cases{}));
}

TEST(SelectionModelTest, TakesASelectionLikeOneThatIsSet)
{
    SelectionModel model;
    std::vector<Cases> told;
    model.signalSelectionChanged.connect([&](const Cases& cases) { told.push_back(cases); });

    model.takeSelection({1, 2});
    model.takeSelection({2, 1});
    model.setSelection({1, 2});

    EXPECT_EQ(model.getSelections(), (Cases{1, 2}));
    EXPECT_THAT(told, ElementsAre(Cases{1, 2}));
}

TEST(SelectionModelTest, NestedChangeLeavesLaterListenersWithTheNewest)
{
    SelectionModel model;
    std::vector<Cases> before;
    std::vector<Cases> behind;
    model.signalSelectionChanged.connect([&](const Cases& cases) { before.push_back(cases); });
    model.signalSelectionChanged.connect([&](const Cases& cases) {
        if (cases == Cases{1}) {
            model.setSelection({2});
        }
    });
    model.signalSelectionChanged.connect([&](const Cases& cases) { behind.push_back(cases); });

    model.setSelection({1});

    EXPECT_EQ(model.getSelections(), Cases{2});
    EXPECT_THAT(before, ElementsAre(Cases{1}, Cases{2}));
    EXPECT_THAT(behind, testing::Each(Cases{2}));
    EXPECT_FALSE(behind.empty());
}

TEST(SelectionModelTest, ExceptionOfAListenerPassesOnWithTheSelectionSet)
{
    SelectionModel model;
    model.signalSelectionChanged.connect([](const Cases&) { throw std::runtime_error("refused"); });

    EXPECT_THROW(model.setSelection({1}), std::runtime_error);

    EXPECT_EQ(model.getSelections(), Cases{1});
}

TEST(SelectionModelTest, ListenerMayDestroyTheModel)
{
    auto model = std::make_unique<SelectionModel>();
    std::vector<Cases> behind;
    model->signalSelectionChanged.connect([&](const Cases&) { model.reset(); });
    model->signalSelectionChanged.connect([&](const Cases& cases) { behind.push_back(cases); });

    SelectionModel& dying = *model;
    dying.setSelection({1, 2, 3});

    // Listeners behind the one that destroys the model hear nothing or the truth, but no selection that is gone.
    EXPECT_THAT(behind, testing::Each(Cases{1, 2, 3}));
}

TEST(SelectionModelTest, TellsEachListenerInItsForm)
{
    SelectionModel model;
    std::vector<Cases> sets;
    std::vector<SelectionModelInterface::SharedCases> shared;
    model.signalSelectionChanged.connect([&](const CaseSelection& selection) {
        shared.push_back(selection.cases());
        if (selection->contains(1)) {
            model.setSelection({2, 5});
        }
    });
    model.signalSelectionChanged.connect([&](const Cases& cases) { sets.push_back(cases); });
    const auto cases = boost::make_shared<const CaseSet>(Cases{1, 3});

    model.takeCases(cases);

    ASSERT_EQ(shared.size(), 2U);
    EXPECT_EQ(shared[0], cases) << "It was copied.";
    EXPECT_EQ(shared[1], model.cases());
    EXPECT_THAT(sets, ElementsAre(Cases{2, 5}, Cases{2, 5}));
    EXPECT_EQ(model.getSelections(), (Cases{2, 5}));
}

TEST(SelectionModelInterfaceTest, ModelThatKnowsSetsOnlyTakesAndTellsCases)
{
    RecordingSelectionModel model;
    std::vector<Cases> told;
    model.signalSelectionChanged.connect(
        [&](const CaseSelection& selection) { told.push_back(selection->toSet()); });

    model.takeCases(boost::make_shared<const CaseSet>(Cases{4, 7}));

    EXPECT_THAT(model.takeCalls(), ElementsAre(Cases{4, 7}));
    EXPECT_THAT(told, ElementsAre(Cases{4, 7}));
    EXPECT_EQ(*model.cases(), CaseSet({4, 7}));
}

TEST(SelectionModelInterfaceTest, SubclassHearsOfNewListeners)
{
    class Model : public SelectionModel
    {
    public:
        mutable int connects = 0;

    private:
        void signalSelectionChangedConnected() const override { ++connects; }
    };

    const Model model;

    model.signalSelectionChanged.connect([](const Cases&) {});
    model.signalSelectionChanged.connect([](const Cases&) {});

    EXPECT_EQ(model.connects, 2);
}

} // namespace
