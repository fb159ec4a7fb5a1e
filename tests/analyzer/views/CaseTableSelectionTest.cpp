#include "CaseTableTestData.h"

#include <analyzer/views/CaseTableSelection.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <stdexcept>

namespace analyzer {

namespace {

using caseTableTest::Cases;
using caseTableTest::CountingMaster;
using caseTableTest::denseIDs;
using caseTableTest::fallingTable;
using RangeMode = CaseTableSelection::RangeMode;
using Origin = CaseTableSelection::Origin;

/// Cases 2, 4, 6, 8 and 10 in rows 0 to 4; the master also knows others.
class CaseTableSelectionTest : public testing::Test
{
protected:
    CaseTableSelectionTest()
    {
        m_model.setTable(fallingTable({2, 4, 6, 8, 10}));
        m_selection.signalRowsChanged.connect(
            [this](Origin origin) { m_origins.push_back(origin); });
    }

    [[nodiscard]] std::vector<std::size_t> rows() const
    {
        std::vector<std::size_t> result;
        m_selection.rows().forEach([&result](std::size_t row) { result.push_back(row); });
        return result;
    }

    using Rows = std::vector<std::size_t>;

    CaseTableModel m_model;
    boost::shared_ptr<CountingMaster> m_master = boost::make_shared<CountingMaster>();
    CaseTableSelection m_selection{m_model, m_master};
    std::vector<Origin> m_origins;
};

} // namespace

TEST_F(CaseTableSelectionTest, EveryGestureWritesOnceAndSaysWhatBecomesOfOtherCases)
{
    const struct
    {
        const char* name;
        void (*gesture)(CaseTableSelection&);
        Cases expected;
    } gestures[] = {
        {"select only", [](CaseTableSelection& s) { s.selectOnly(0); }, {2}},
        {"toggle in", [](CaseTableSelection& s) { s.toggle(0); }, {1, 2, 4, 8, 99}},
        {"toggle out", [](CaseTableSelection& s) { s.toggle(1); }, {1, 8, 99}},
        {"replace",
         [](CaseTableSelection& s) { s.selectRange(3, 1, RangeMode::Replace); },
         {4, 6, 8}},
        {"replace shown",
         [](CaseTableSelection& s) { s.selectRange(2, 3, RangeMode::ReplaceShown); },
         {1, 6, 8, 99}},
        {"add",
         [](CaseTableSelection& s) { s.selectRange(4, 4, RangeMode::Add); },
         {1, 4, 8, 10, 99}},
        {"remove",
         [](CaseTableSelection& s) { s.selectRange(0, 2, RangeMode::Remove); },
         {1, 8, 99}},
        {"all", [](CaseTableSelection& s) { s.selectAll(); }, {1, 2, 4, 6, 8, 10, 99}},
        {"clear", [](CaseTableSelection& s) { s.clear(); }, {}},
        {"invert", [](CaseTableSelection& s) { s.invert(); }, {1, 2, 6, 10, 99}},
    };

    for (const auto& item : gestures) {
        SCOPED_TRACE(item.name);
        m_master->setSelection({1, 4, 8, 99});
        m_master->writes = 0;
        m_origins.clear();

        item.gesture(m_selection);

        EXPECT_EQ(m_master->getSelections(), item.expected);
        EXPECT_EQ(m_master->writes, 1);
        EXPECT_EQ(m_origins, std::vector<Origin>{Origin::Gesture}) << "no echo";
        for (std::size_t row = 0; row < 5; ++row) {
            EXPECT_EQ(m_selection.rows().contains(row), item.expected.count(2 * row + 2) != 0)
                << row;
        }
    }
}

TEST_F(CaseTableSelectionTest, FollowsTheMasterAndTheTableWithoutWriting)
{
    m_master->setSelection({1, 4, 8});
    EXPECT_EQ(rows(), (Rows{1, 3}));
    EXPECT_EQ(m_selection.count(), 2U);

    m_model.setTable(fallingTable(denseIDs(4)));
    EXPECT_EQ(rows(), (Rows{0, 3}));
    EXPECT_EQ(m_origins, (std::vector<Origin>{Origin::Master, Origin::Table}));
    EXPECT_EQ(m_master->writes, 1);
    m_selection.toggle(1);
    EXPECT_EQ(m_master->getSelections(), (Cases{1, 2, 4, 8}));
}

TEST_F(CaseTableSelectionTest, RangesAreInTheOrderOfTheView)
{
    m_model.sort(1); // 10, 8, 6, 4, 2

    m_selection.selectRange(0, 1, RangeMode::Replace);

    EXPECT_EQ(m_master->getSelections(), (Cases{8, 10}));
}

TEST_F(CaseTableSelectionTest, SuspendedItOnlyWrites)
{
    m_master->setSelection({4});
    m_selection.suspend();

    m_master->setSelection({6, 50});
    EXPECT_EQ(rows(), Rows{1});
    m_selection.toggle(0);
    EXPECT_EQ(m_master->getSelections(), (Cases{2, 4, 50}))
        << "what is shown, and what cannot be shown";
    m_master->setSelection({8});
    EXPECT_EQ(rows(), (Rows{0, 1})) << "a gesture does not end the suspension";

    m_selection.resume();
    EXPECT_EQ(rows(), Rows{3});
    m_master->setSelection({10});
    EXPECT_EQ(rows(), Rows{4});
}

TEST_F(CaseTableSelectionTest, APreviewIsWrittenWhenItIsCommitted)
{
    m_master->setSelection({4, 99});
    m_master->writes = 0;

    m_selection.previewRange(2, 4, RangeMode::Add);
    m_selection.previewRange(2, 3, RangeMode::Add);
    EXPECT_EQ(rows(), (Rows{1, 2, 3})) << "a preview starts anew";
    EXPECT_EQ(m_master->writes, 0);
    m_selection.commitPreview();
    m_selection.commitPreview();

    EXPECT_EQ(m_master->writes, 1);
    EXPECT_EQ(m_master->getSelections(), (Cases{4, 6, 8, 99}));
    m_selection.previewRange(0, 0, RangeMode::Replace);
    m_selection.commitPreview();
    EXPECT_EQ(m_master->getSelections(), Cases{2});
}

TEST_F(CaseTableSelectionTest, APreviewGivesWayToWhateverComes)
{
    m_master->setSelection({4});

    m_selection.previewRange(0, 4, RangeMode::Replace);
    m_selection.cancelPreview();
    EXPECT_EQ(rows(), Rows{1});

    m_selection.previewRange(0, 4, RangeMode::Replace);
    m_selection.toggle(0);
    EXPECT_EQ(m_master->getSelections(), (Cases{2, 4}));

    m_selection.previewRange(0, 4, RangeMode::Replace);
    m_master->setSelection({6});
    m_selection.commitPreview();
    EXPECT_EQ(rows(), Rows{2});

    m_selection.previewRange(0, 4, RangeMode::Replace);
    m_model.setTable(fallingTable({6}));
    m_selection.commitPreview();
    EXPECT_EQ(m_master->getSelections(), Cases{6});
}

TEST_F(CaseTableSelectionTest, AFailingListenerLeavesItInStepAndListening)
{
    const boost::signals2::connection failing = m_master->signalSelectionChanged.connect(
        [](const Cases&) { throw std::runtime_error("failed"); });

    EXPECT_THROW(m_selection.selectOnly(2), std::runtime_error);
    EXPECT_EQ(m_selection.rows(), [this] {
        CaseSet unknown;
        return m_model.cases().rows(*m_master->cases(), unknown);
    }());

    failing.disconnect();
    m_master->setSelection({2});
    EXPECT_EQ(rows(), Rows{0});
}

TEST_F(CaseTableSelectionTest, EndsWithItsConnections)
{
    {
        const CaseTableSelection second(m_model, m_master);
        EXPECT_EQ(m_master->signalSelectionChanged.slotCount(), 2U);
    }

    m_model.setTable(fallingTable({1}));
    EXPECT_EQ(m_master->signalSelectionChanged.slotCount(), 1U);
}

} // namespace analyzer
