#include <dataviews/common/selection/SelectionConverterInterface.h>
#include <dataviews/common/selection/TableViewSelectionSynchronizer.h>

#include <dataviews/platform/selection/SelectionModelInterface.h>

#include <QItemSelectionModel>
#include <QStandardItemModel>
#include <QTableView>
#include <QTest>

#include <boost/make_shared.hpp>
#include <boost/signals2/connection.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <rapidcheck.h>
#include <tests/support/RecordingSelectionModel.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Cases = std::set<unsigned long long>;
/// Cells are numbered row by row.
using Cells = std::set<int>;

constexpr int side = 3;
constexpr int cellCount = side * side;
constexpr unsigned long long none = 0;
constexpr unsigned long long largest = std::numeric_limits<unsigned long long>::max();

/// A table of three by three cells, each of which shows one case or none.
class CaseTable
{
public:
    CaseTable()
    {
        m_view.setModel(&m_model);
        m_view.setEditTriggers(QAbstractItemView::NoEditTriggers);
        m_view.resize(600, 400);
        m_view.show();
    }

    /// Resets the model.
    void fill(const std::vector<unsigned long long>& cases)
    {
        m_cases = cases;
        m_model.clear();
        m_model.setRowCount(side);
        m_model.setColumnCount(side);
    }

    [[nodiscard]] unsigned long long caseOf(int cell) const
    {
        return m_cases[static_cast<std::size_t>(cell)];
    }

    [[nodiscard]] Cells cellsOf(const Cases& cases) const
    {
        Cells cells;
        for (int cell = 0; cell < cellCount; ++cell) {
            if (cases.count(caseOf(cell)) != 0) {
                cells.insert(cell);
            }
        }
        return cells;
    }

    [[nodiscard]] Cases casesOf(const Cells& cells) const
    {
        Cases cases;
        for (const int cell : cells) {
            if (caseOf(cell) != none) {
                cases.insert(caseOf(cell));
            }
        }
        return cases;
    }

    [[nodiscard]] QModelIndex index(int cell) const
    {
        return m_model.index(cell / side, cell % side);
    }

    [[nodiscard]] static Cells selectedCells(const QItemSelectionModel& selection)
    {
        Cells cells;
        for (const QModelIndex& index : selection.selectedIndexes()) {
            cells.insert(index.row() * side + index.column());
        }
        return cells;
    }

    [[nodiscard]] Cells selected() const { return selectedCells(*m_view.selectionModel()); }

    void click(int cell, Qt::KeyboardModifiers keys = Qt::NoModifier)
    {
        const QPoint place = m_view.visualRect(index(cell)).center();
        QTest::mouseClick(m_view.viewport(), Qt::LeftButton, keys, place);
    }

    [[nodiscard]] QTableView& view() { return m_view; }

private:
    std::vector<unsigned long long> m_cases;
    QStandardItemModel m_model;
    QTableView m_view;
};

/// Counts what it is asked for, and fails on demand.
class CellConverter : public SelectionConverterInterface
{
public:
    explicit CellConverter(const CaseTable& table)
        : m_table(table)
    {}

    [[nodiscard]] Cases toCaseIDs(const QItemSelectionModel& selectionModel) override
    {
        failIfToldSo();
        return m_table.casesOf(CaseTable::selectedCells(selectionModel));
    }

    [[nodiscard]] QItemSelection toItemSelection(const Cases& caseIDs) override
    {
        ++m_writes;
        failIfToldSo();
        QItemSelection selection;
        for (const int cell : m_table.cellsOf(caseIDs)) {
            selection.select(m_table.index(cell), m_table.index(cell));
        }
        return selection;
    }

    void failNextTime() { m_fails = true; }

    /// How often the table was written since the last take.
    [[nodiscard]] int takeWrites() { return std::exchange(m_writes, 0); }

private:
    void failIfToldSo()
    {
        if (std::exchange(m_fails, false)) {
            throw std::runtime_error("The converter fails.");
        }
    }

    const CaseTable& m_table;
    int m_writes = 0;
    bool m_fails = false;
};

/// A table in step with a master. Case 1 is shown in two cells, case 99 in none.
class TableViewSelectionSynchronizerTest : public testing::Test
{
protected:
    TableViewSelectionSynchronizerTest() { m_table.fill({1, 2, 3, 4, 1, 5, 6, none, largest}); }

    void synchronize(const Cases& masterSelection = {})
    {
        m_master->setSelection(masterSelection);
        m_synchronizer =
            std::make_unique<TableViewSelectionSynchronizer>(m_master, m_table.view(), m_converter);
        forget();
    }

    void forget()
    {
        (void)m_master->takeCalls();
        (void)m_converter->takeWrites();
    }

    void expectTableReachesMasterOnce()
    {
        forget();
        m_table.click(5, Qt::ControlModifier);
        EXPECT_THAT(m_master->takeCalls(), ElementsAre(m_table.casesOf(m_table.selected())));
        EXPECT_EQ(m_converter->takeWrites(), 0);
    }

    void expectMasterReachesTableOnce()
    {
        forget();
        m_master->setSelection({3});
        EXPECT_THAT(m_table.selected(), ElementsAre(2));
        EXPECT_THAT(m_master->takeCalls(), ElementsAre(Cases{3}));
        EXPECT_EQ(m_converter->takeWrites(), 1);
    }

    CaseTable m_table;
    boost::shared_ptr<RecordingSelectionModel> m_master =
        boost::make_shared<RecordingSelectionModel>();
    boost::shared_ptr<CellConverter> m_converter = boost::make_shared<CellConverter>(m_table);
    std::unique_ptr<TableViewSelectionSynchronizer> m_synchronizer;
};

TEST_F(TableViewSelectionSynchronizerTest, ShowsTheMasterAtConstructionAndDoesNotWriteIt)
{
    m_table.click(3);
    m_master->setSelection({1, 99, largest});
    (void)m_master->takeCalls();

    const TableViewSelectionSynchronizer synchronizer(m_master, m_table.view(), m_converter);

    EXPECT_THAT(m_table.selected(), ElementsAre(0, 4, 8));
    EXPECT_THAT(m_master->takeCalls(), IsEmpty());
}

TEST_F(TableViewSelectionSynchronizerTest, SelectionKeepsTheActiveHighlightWithoutFocus)
{
    QPalette palette = m_table.view().palette();
    palette.setColor(QPalette::Active, QPalette::Highlight, Qt::green);
    palette.setColor(QPalette::Inactive, QPalette::Highlight, Qt::gray);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, Qt::yellow);
    palette.setColor(QPalette::Inactive, QPalette::Base, Qt::red);
    m_table.view().setPalette(palette);

    synchronize();

    palette.setColor(QPalette::Inactive, QPalette::Highlight, Qt::green);
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        for (const auto role : {QPalette::Highlight, QPalette::HighlightedText, QPalette::Base}) {
            EXPECT_EQ(m_table.view().palette().color(group, role), palette.color(group, role))
                << "group " << group << ", role " << role;
        }
    }
}

TEST_F(TableViewSelectionSynchronizerTest, SelectionMadeInTheTableReachesTheMasterOnce)
{
    struct Step
    {
        std::string name;
        int cell;
        Qt::KeyboardModifiers keys;
        std::vector<Cases> calls;
        Cells selected;
    };

    const Step steps[] = {
        {"one of two cells of a case", 0, Qt::NoModifier, {{1}}, {0}},
        {"the same again", 0, Qt::NoModifier, {}, {0}},
        {"the other cell of the case", 4, Qt::ControlModifier, {{1}}, {0, 4}},
        {"a further case", 8, Qt::ControlModifier, {{1, largest}}, {0, 4, 8}},
        {"a cell is taken off", 0, Qt::ControlModifier, {{1, largest}}, {4, 8}},
        {"a cell of no case", 7, Qt::NoModifier, {{}}, {7}},
        {"a range", 5, Qt::ShiftModifier, {{1, 5, largest}}, {4, 5, 7, 8}},
    };
    synchronize({99});

    for (const Step& step : steps) {
        SCOPED_TRACE(step.name);
        m_table.click(step.cell, step.keys);

        EXPECT_EQ(m_master->takeCalls(), step.calls);
        EXPECT_EQ(m_converter->takeWrites(), 0);
        EXPECT_EQ(m_table.selected(), step.selected);
    }
    expectMasterReachesTableOnce();
}

TEST_F(TableViewSelectionSynchronizerTest, ChangeOfTheMasterReachesTheTableOnce)
{
    synchronize({2});

    m_master->setSelection({1, 99});
    EXPECT_THAT(m_table.selected(), ElementsAre(0, 4));
    EXPECT_EQ(m_converter->takeWrites(), 1);
    m_master->setSelection({99});
    EXPECT_THAT(m_table.selected(), IsEmpty());
    EXPECT_EQ(m_converter->takeWrites(), 1);
    EXPECT_THAT(m_master->takeCalls(), ElementsAre(Cases{1, 99}, Cases{99}));
    expectTableReachesMasterOnce();
}

TEST_F(TableViewSelectionSynchronizerTest, SuspensionClosesOnlyTheWayToTheTable)
{
    synchronize({2});
    m_synchronizer->suspend();
    m_synchronizer->suspend();

    m_master->setSelection({3});
    EXPECT_THAT(m_table.selected(), ElementsAre(1));
    (void)m_master->takeCalls();
    m_table.click(5);
    EXPECT_THAT(m_master->takeCalls(), ElementsAre(Cases{5}));
    m_master->setSelection({3});
    EXPECT_THAT(m_table.selected(), ElementsAre(5)) << "The click ended the suspension.";
    EXPECT_EQ(m_converter->takeWrites(), 0);

    m_synchronizer->resume();
    EXPECT_THAT(m_table.selected(), ElementsAre(2));
    expectMasterReachesTableOnce();
}

TEST_F(TableViewSelectionSynchronizerTest, ResumeMakesTheRoundTripIfTheTableChanges)
{
    struct Case
    {
        std::string name;
        Cases master;
        Cells selected;
        std::vector<Cases> calls;
    };

    // The table shows case 1 each time.
    const Case cases[] = {
        {"same selection", {1}, {0, 4}, {}},
        {"another case", {2}, {1}, {{2}}},
        {"a case that is not shown drops out", {2, 99}, {1}, {{2}}},
        {"it stays if the table does not change", {1, 99}, {0, 4}, {}},
        {"nothing that is shown", {99}, {}, {{}}},
    };

    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        synchronize({1});
        m_synchronizer->suspend();
        m_master->setSelection(c.master);
        forget();

        m_synchronizer->resume();

        EXPECT_EQ(m_table.selected(), c.selected);
        EXPECT_EQ(m_master->takeCalls(), c.calls);
        EXPECT_EQ(m_converter->takeWrites(), 1);
        expectTableReachesMasterOnce();
        m_synchronizer.reset();
    }
}

TEST_F(TableViewSelectionSynchronizerTest, MasterSelectionIsShownAgainAfterAResetAndKept)
{
    for (const bool suspended : {false, true}) {
        SCOPED_TRACE(suspended);
        synchronize({1, 2, 99});
        if (suspended) {
            m_synchronizer->suspend();
        }

        m_table.fill({none, none, 1, none, none, none, 1, 7, none});
        EXPECT_THAT(m_table.selected(), IsEmpty());
        m_synchronizer->showMasterSelection();

        EXPECT_THAT(m_table.selected(), ElementsAre(2, 6));
        if (suspended) {
            m_synchronizer->resume();
            EXPECT_THAT(m_table.selected(), ElementsAre(2, 6));
        }
        EXPECT_THAT(m_master->takeCalls(), IsEmpty());
        EXPECT_THAT(m_master->getSelections(), ElementsAre(1, 2, 99));
        expectTableReachesMasterOnce();
        m_synchronizer.reset();
    }
}

TEST_F(TableViewSelectionSynchronizerTest, ExceptionLeavesBothDirectionsOpen)
{
    synchronize();
    bool masterFails = false;
    const boost::signals2::scoped_connection listener =
        m_master->signalSelectionChanged.connect([&](const Cases& /*unused*/) {
            if (std::exchange(masterFails, false)) {
                throw std::runtime_error("A listener fails.");
            }
        });
    const auto selectCell = [this](int cell) {
        m_table.view().selectionModel()->select(m_table.index(cell), QItemSelectionModel::Select);
    };
    const std::pair<std::string, std::function<void()>> cases[] = {
        {"a listener of the master",
         [&] {
             masterFails = true;
             selectCell(1);
         }},
        {"the converter, from the table",
         [&] {
             m_converter->failNextTime();
             selectCell(1);
         }},
        {"the converter, from the master",
         [&] {
             m_converter->failNextTime();
             m_master->setSelection({4});
         }},
        {"the converter, when asked to show the master", [&] {
             m_converter->failNextTime();
             m_synchronizer->showMasterSelection();
         }}};

    // A step of one direction would mend the other one.
    for (const auto& [name, step] : cases) {
        SCOPED_TRACE(name);
        EXPECT_THROW(step(), std::runtime_error);
        expectTableReachesMasterOnce();
        m_master->setSelection({});
        EXPECT_THROW(step(), std::runtime_error);
        expectMasterReachesTableOnce();
        m_master->setSelection({});
    }
}

TEST_F(TableViewSelectionSynchronizerTest, ChangeMadeWhileAnotherIsToldDoesNotDoubleTheDirections)
{
    synchronize();
    QItemSelectionModel* selection = m_table.view().selectionModel();

    // A listener of the table answers a change of the master with another one.
    auto answer = QObject::connect(selection, &QItemSelectionModel::selectionChanged, [&] {
        if (m_master->getSelections() == Cases{4}) {
            m_master->setSelection({6});
        }
    });
    m_master->setSelection({4});
    EXPECT_THAT(m_table.selected(), ElementsAre(6));
    QObject::disconnect(answer);
    expectTableReachesMasterOnce();

    // A listener of the master answers a selection in the table with another one.
    const boost::signals2::scoped_connection answerOfMaster =
        m_master->signalSelectionChanged.connect([&](const Cases& cases) {
            if (cases == Cases{4}) {
                m_table.click(6);
            }
        });
    m_table.click(3);
    EXPECT_THAT(m_master->getSelections(), ElementsAre(6));
    expectMasterReachesTableOnce();
}

/// Writes down what it is asked to do.
class RecordingSynchronizer : public TableViewSelectionSynchronizer
{
public:
    using TableViewSelectionSynchronizer::TableViewSelectionSynchronizer;

    std::vector<std::string> steps;

protected:
    void beginMasterSelectionMonitoring() override
    {
        steps.emplace_back("begin");
        TableViewSelectionSynchronizer::beginMasterSelectionMonitoring();
    }

    void endMasterSelectionMonitoring() override
    {
        steps.emplace_back("end");
        TableViewSelectionSynchronizer::endMasterSelectionMonitoring();
    }

private:
    void setLocalSelectionsToMaster(const Cases& selection) override
    {
        steps.push_back("show " + std::to_string(*selection.begin()));
    }
};

TEST_F(TableViewSelectionSynchronizerTest, HooksOfADerivedClassEncloseTheWrite)
{
    RecordingSynchronizer synchronizer(m_master, m_table.view(), m_converter);
    const boost::signals2::scoped_connection listener = m_master->signalSelectionChanged.connect(
        [&](const Cases& /*unused*/) { synchronizer.steps.emplace_back("told"); });
    m_table.click(3);
    EXPECT_THAT(synchronizer.steps, ElementsAre("end", "told", "begin"));

    synchronizer.steps.clear();
    m_master->setSelection({2});
    synchronizer.showMasterSelection();
    synchronizer.suspend();
    synchronizer.resume();
    EXPECT_THAT(synchronizer.steps, ElementsAre("told", "show 2", "show 2", "show 2"));
}

TEST_F(TableViewSelectionSynchronizerTest, NeitherSideHearsOfTheOtherAfterItsEnd)
{
    synchronize({1});
    m_synchronizer.reset();

    m_table.click(5);
    EXPECT_THAT(m_master->takeCalls(), IsEmpty());
    m_master->setSelection({2});
    EXPECT_THAT(m_table.selected(), ElementsAre(5));
    EXPECT_EQ(m_master->signalSelectionChanged.slotCount(), 0U);
}

/// Any order of steps of either side against what the rules say of both.
class RandomSteps
{
public:
    RandomSteps()
    {
        refill();
        m_synchronizer =
            std::make_unique<TableViewSelectionSynchronizer>(m_master, m_table.view(), m_converter);
        (void)m_converter->takeWrites();
    }

    void step()
    {
        m_expectedCalls.clear();
        m_expectedWrites = 0;
        switch (*rc::gen::inRange(0, 7)) {
        case 0:
            click(Qt::NoModifier);
            break;
        case 1:
            click(Qt::ControlModifier);
            break;
        case 2:
            writeMaster();
            break;
        case 3:
            m_synchronizer->suspend();
            m_suspended = true;
            break;
        case 4:
            resume();
            break;
        case 5:
            refill();
            m_cells.clear();
            break;
        default:
            m_synchronizer->showMasterSelection();
            showCases();
        }
        RC_ASSERT(m_table.selected() == m_cells);
        RC_ASSERT(m_master->getSelections() == m_cases);
        RC_ASSERT(m_master->takeCalls() == m_expectedCalls);
        RC_ASSERT(m_converter->takeWrites() == m_expectedWrites);
    }

private:
    void click(Qt::KeyboardModifiers keys)
    {
        const int cell = *rc::gen::inRange(0, cellCount);
        Cells cells = keys == Qt::NoModifier ? Cells{} : m_cells;
        if (cells.erase(cell) == 0) {
            cells.insert(cell);
        }
        m_table.click(cell, keys);
        change(cells);
    }

    void writeMaster()
    {
        m_cases = *rc::gen::container<Cases>(rc::gen::inRange<unsigned long long>(1, 9));
        m_expectedCalls.push_back(m_cases);
        m_master->setSelection(m_cases);
        if (!m_suspended) {
            showCases();
        }
    }

    void resume()
    {
        m_synchronizer->resume();
        m_suspended = false;
        m_expectedWrites = 1;
        change(m_table.cellsOf(m_cases));
    }

    void refill()
    {
        m_table.fill(*rc::gen::container<std::vector<unsigned long long>>(
            cellCount, rc::gen::inRange<unsigned long long>(none, 7)));
    }

    /// The table tells the master if anything is different.
    void change(const Cells& cells)
    {
        if (cells != m_cells) {
            m_cells = cells;
            m_cases = m_table.casesOf(cells);
            m_expectedCalls.push_back(m_cases);
        }
    }

    void showCases()
    {
        m_cells = m_table.cellsOf(m_cases);
        ++m_expectedWrites;
    }

    CaseTable m_table;
    boost::shared_ptr<RecordingSelectionModel> m_master =
        boost::make_shared<RecordingSelectionModel>();
    boost::shared_ptr<CellConverter> m_converter = boost::make_shared<CellConverter>(m_table);
    std::unique_ptr<TableViewSelectionSynchronizer> m_synchronizer;
    Cells m_cells;
    Cases m_cases;
    bool m_suspended = false;
    std::vector<Cases> m_expectedCalls;
    int m_expectedWrites = 0;
};

TEST(TableViewSelectionSynchronizerPropertyTest, TableAndMasterFollowTheRulesInAnyOrderOfSteps)
{
    const bool holds = rc::check("selections and writes of both sides", [] {
        RandomSteps steps;
        const int count = *rc::gen::inRange(0, 40);
        for (int i = 0; i < count; ++i) {
            steps.step();
        }
    });
    EXPECT_TRUE(holds);
}

} // namespace
