#include <dataviews/common/selection/PlotSelectionModel.h>

#include <vtkGenericRenderWindowInteractor.h>
#include <vtkNew.h>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include <tests/support/RecordingSelectionModel.h>

namespace {

using testing::ElementsAre;
using Cases = std::set<unsigned long long>;

class PlotSelectionModelTest : public testing::Test
{
protected:
    vtkNew<vtkGenericRenderWindowInteractor> m_interactor;
    boost::shared_ptr<RecordingSelectionModel> m_master =
        boost::make_shared<RecordingSelectionModel>();
};

TEST_F(PlotSelectionModelTest, CombinesWhatWasPickedWithTheMasterByTheControlKey)
{
    struct Case
    {
        bool control;
        Cases picked;
        Cases result;
    };

    const Cases selected = {5, 7, 0xffffffffffffffff};
    const Case cases[] = {
        {false, {}, {}},
        {false, {7}, {7}},
        {false, {1, 2}, {1, 2}},
        {true, {}, selected},
        {true, {7}, {5, 0xffffffffffffffff}},
        {true, {6}, {5, 6, 7, 0xffffffffffffffff}},
        {true, {7, 8}, {5, 7, 8, 0xffffffffffffffff}},
        {true, {5, 7}, selected},
        {true,
         {0, 1, 6, 0xfffffffffffffffe},
         {0, 1, 5, 6, 7, 0xfffffffffffffffe, 0xffffffffffffffff}},
    };
    PlotSelectionModel model(m_interactor.Get(), m_master);
    // Not the key that extends: it must not matter.
    m_interactor->SetShiftKey(1);
    m_interactor->SetAltKey(1);

    for (const Case& c : cases) {
        m_master->setSelection(selected);
        (void)m_master->takeCalls();
        m_interactor->SetControlKey(c.control ? 1 : 0);

        model.setSelection(c.picked);

        EXPECT_THAT(m_master->takeCalls(), ElementsAre(c.result));
        EXPECT_EQ(model.getSelections(), c.result);
    }
}

TEST_F(PlotSelectionModelTest, RepeatsEveryChangeOfTheMasterOnce)
{
    PlotSelectionModel model(m_interactor.Get(), m_master);
    std::vector<Cases> told;
    model.signalSelectionChanged.connect([&](const Cases& cases) {
        told.push_back(cases);
        EXPECT_EQ(model.getSelections(), cases);
    });

    m_master->setSelection({1, 2});
    model.setSelection({3});

    EXPECT_THAT(told, ElementsAre(Cases{1, 2}, Cases{3}));
}

TEST_F(PlotSelectionModelTest, LetsGoOfTheMasterWhenItDies)
{
    auto model = boost::make_shared<PlotSelectionModel>(m_interactor.Get(), m_master);
    EXPECT_EQ(m_master->signalSelectionChanged.slotCount(), 1U);

    model.reset();

    EXPECT_EQ(m_master->signalSelectionChanged.slotCount(), 0U);
    EXPECT_EQ(m_master.use_count(), 1);
    EXPECT_EQ(m_interactor->GetReferenceCount(), 1);
    m_master->setSelection({1});
}

} // namespace
