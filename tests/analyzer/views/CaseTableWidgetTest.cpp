#include "CaseTableTestData.h"

#include <analyzer/views/CaseTableWidget.h>
#include <analyzer/views/HoveredCase.h>

#include <QApplication>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QImage>
#include <QScrollBar>
#include <QSignalSpy>
#include <QtTest>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include <tests/support/mouseMoves.h>

namespace analyzer {

namespace {

using caseTableTest::Cases;
using caseTableTest::column;
using caseTableTest::CountingMaster;
using caseTableTest::denseIDs;
using caseTableTest::fallingTable;
using caseTableTest::table;

constexpr int caseCount = 150;
constexpr int rowsInView = 20;

/// A table of 150 cases of which 20 are visible; row r shows case r + 1.
class CaseTableWidgetTest : public testing::Test
{
protected:
    CaseTableWidgetTest()
    {
        m_model.setTable(fallingTable(denseIDs(caseCount)));
        m_widget.resize(
            400, m_widget.horizontalHeader()->sizeHint().height() + rowsInView * rowHeight() + 20);
        m_widget.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&m_widget));
    }

    [[nodiscard]] int rowHeight() const { return m_widget.verticalHeader()->defaultSectionSize(); }

    [[nodiscard]] QWidget* viewport() const { return m_widget.viewport(); }

    [[nodiscard]] int scrolled() const { return m_widget.verticalScrollBar()->value(); }

    /// In the middle of a row, which may lie outside the viewport or, in a short table, below the last one.
    [[nodiscard]] QPoint at(int viewRow) const
    {
        const int top = viewRow < m_model.rowCount() ? m_widget.rowViewportPosition(viewRow)
                                                     : viewRow * rowHeight();
        return {20, top + rowHeight() / 2};
    }

    void click(int viewRow, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::mouseClick(viewport(), Qt::LeftButton, modifiers, at(viewRow));
    }

    void moveTo(const QPoint& position, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QMouseEvent event(
            QEvent::MouseMove,
            position,
            viewport()->mapToGlobal(position),
            Qt::NoButton,
            Qt::LeftButton,
            modifiers);
        QApplication::sendEvent(viewport(), &event);
    }

    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(&m_widget, key, modifiers);
    }

    [[nodiscard]] unsigned long long caseAt(int viewRow) const
    {
        return m_model.cases().caseID(static_cast<std::size_t>(m_model.tableRow(viewRow)));
    }

    [[nodiscard]] Cases selected() const { return m_master->getSelections(); }

    [[nodiscard]] int currentRow() const { return m_widget.currentIndex().row(); }

    CaseTableModel m_model;
    boost::shared_ptr<CountingMaster> m_master = boost::make_shared<CountingMaster>();
    CaseTableSelection m_selection{m_model, m_master};
    boost::shared_ptr<HoveredCase> m_hovered = boost::make_shared<HoveredCase>();
    CaseTableWidget m_widget{m_model, m_selection, m_hovered};
};

constexpr auto ctrl = Qt::ControlModifier;
constexpr auto shift = Qt::ShiftModifier;

/// What the gestures are to do, written down once more with the plainest means.
struct Reference
{
    std::vector<unsigned long long> order;
    Cases selection;
    std::optional<unsigned long long> anchor;
    std::optional<unsigned long long> current;

    [[nodiscard]] std::optional<int> row(std::optional<unsigned long long> caseID) const
    {
        const auto place = caseID ? std::find(order.begin(), order.end(), *caseID) : order.end();
        return place == order.end() ? std::nullopt
                                    : std::optional<int>(static_cast<int>(place - order.begin()));
    }

    [[nodiscard]] unsigned long long at(int row) const
    {
        return order[static_cast<std::size_t>(row)];
    }

    void range(int first, int last, bool value)
    {
        for (int i = std::min(first, last); i <= std::max(first, last); ++i) {
            if (value) {
                selection.insert(at(i));
            } else {
                selection.erase(at(i));
            }
        }
    }

    /// A press on one row and a release on another, or a key that leads from one to the other with Shift.
    void gesture(int pressed, int released, Qt::KeyboardModifiers modifiers)
    {
        const bool extends = modifiers.testFlag(shift);
        const bool keeps = modifiers.testFlag(ctrl);
        const int from = extends ? row(anchor).value_or(pressed) : pressed;
        anchor = at(from);
        const bool value = extends || !keeps || selection.count(at(pressed)) == 0;
        if (!keeps && !extends) {
            selection.clear();
        } else if (!keeps) {
            for (const unsigned long long shown : order) {
                selection.erase(shown);
            }
        }
        range(from, released, value);
        current = at(released);
    }
};

} // namespace

TEST_F(CaseTableWidgetTest, AClickBelowTheRowsClears)
{
    m_model.setTable(fallingTable(denseIDs(3)));
    m_master->setSelection({1, 2, 77});

    click(10, ctrl);
    click(10, shift);
    EXPECT_EQ(selected(), (Cases{1, 2, 77}));
    click(10);
    EXPECT_EQ(selected(), Cases{});
}

TEST_F(CaseTableWidgetTest, ADragSelectsAndWritesOnceAtItsEnd)
{
    QTest::mousePress(viewport(), Qt::LeftButton, {}, at(4));
    moveTo(at(9));
    moveTo(at(2));
    EXPECT_EQ(m_selection.count(), 3U) << "shown already";
    EXPECT_EQ(m_master->writes, 0);
    QTest::mouseRelease(viewport(), Qt::LeftButton, {}, at(2));
    EXPECT_EQ(m_master->writes, 1);
    EXPECT_EQ(selected(), (Cases{3, 4, 5}));
    EXPECT_EQ(currentRow(), 2);

    moveTo(at(12));
    EXPECT_EQ(m_selection.count(), 3U) << "the gesture is over";
}

TEST_F(CaseTableWidgetTest, ADragBeyondTheEdgeScrolls)
{
    QTest::mousePress(viewport(), Qt::LeftButton, {}, at(18));
    moveTo(QPoint(20, viewport()->height() + 30));
    while (scrolled() < 5) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    const int last = m_widget.rowAt(viewport()->height() - 1);
    QTest::mouseRelease(viewport(), Qt::LeftButton, {}, QPoint(20, viewport()->height() + 30));

    EXPECT_EQ(selected().size(), static_cast<std::size_t>(last - 18 + 1));
    EXPECT_EQ(*selected().rbegin(), static_cast<unsigned long long>(last) + 1);
    EXPECT_EQ(m_master->writes, 1);
}

TEST_F(CaseTableWidgetTest, ADragEndsWhenSomebodyElseSelects)
{
    QTest::mousePress(viewport(), Qt::LeftButton, {}, at(4));
    m_master->setSelection({100});
    moveTo(at(9));
    QTest::mouseRelease(viewport(), Qt::LeftButton, {}, at(9));

    EXPECT_EQ(selected(), Cases{100});
    EXPECT_EQ(m_master->writes, 1);
}

TEST_F(CaseTableWidgetTest, KeysMoveAndSelect)
{
    key(Qt::Key_Down);
    EXPECT_EQ(selected(), Cases{1});
    key(Qt::Key_Down);
    key(Qt::Key_Down, shift);
    key(Qt::Key_Down, shift);
    EXPECT_EQ(selected(), (Cases{2, 3, 4}));
    key(Qt::Key_Up, shift);
    EXPECT_EQ(selected(), (Cases{2, 3}));
    key(Qt::Key_End, ctrl);
    EXPECT_EQ(currentRow(), caseCount - 1);
    EXPECT_EQ(selected(), (Cases{2, 3}));
    EXPECT_GT(scrolled(), 0);
    key(Qt::Key_Space);
    EXPECT_EQ(selected(), (Cases{2, 3, caseCount}));
    key(Qt::Key_Home);
    EXPECT_EQ(selected(), Cases{1});
    EXPECT_EQ(scrolled(), 0);
    key(Qt::Key_PageDown);
    EXPECT_EQ(selected(), Cases{caseAt(currentRow())});
    EXPECT_GT(currentRow(), rowsInView / 2);
    key(Qt::Key_PageUp);
    EXPECT_EQ(selected(), Cases{1});
    key(Qt::Key_A, ctrl);
    EXPECT_EQ(selected().size(), static_cast<std::size_t>(caseCount));
    const int writes = m_master->writes;
    key(Qt::Key_Escape);
    key(Qt::Key_Right);
    key(Qt::Key_7);
    EXPECT_EQ(m_master->writes, writes);
    EXPECT_EQ(m_widget.currentIndex().column(), 1);
}

TEST_F(CaseTableWidgetTest, KeysInAnEmptyTableDoNothing)
{
    m_model.setTable(fallingTable({}));

    for (const Qt::Key which : {Qt::Key_Down, Qt::Key_End, Qt::Key_PageUp, Qt::Key_Space}) {
        key(which);
    }

    EXPECT_EQ(m_master->writes, 0);
}

TEST_F(CaseTableWidgetTest, AMenuIsAskedForWithoutSelecting)
{
    std::vector<std::optional<unsigned long long>> asked;
    m_widget.signalMenuRequested.connect(
        [&asked](
            std::optional<unsigned long long> caseID, const QPoint&) { asked.push_back(caseID); });
    click(2);
    const auto ask = [this](QContextMenuEvent::Reason reason, const QPoint& position) {
        QContextMenuEvent event(reason, position, viewport()->mapToGlobal(position));
        QApplication::sendEvent(viewport(), &event);
    };

    QTest::mouseClick(viewport(), Qt::RightButton, {}, at(7));
    ask(QContextMenuEvent::Mouse, at(7));
    ask(QContextMenuEvent::Keyboard, at(7));
    m_model.setTable(fallingTable({1}));
    ask(QContextMenuEvent::Mouse, at(7));

    EXPECT_EQ(asked, (std::vector<std::optional<unsigned long long>>{8, 3, std::nullopt}));
    EXPECT_EQ(selected(), Cases{3});
    EXPECT_EQ(m_master->writes, 1);
}

TEST_F(CaseTableWidgetTest, HeaderClicksSortAndSortBack)
{
    QHeaderView& header = *m_widget.horizontalHeader();
    const QPoint overX(
        header.sectionViewportPosition(1) + header.sectionSize(1) / 2, header.height() / 2);
    m_master->setSelection({1});
    click(4);

    QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, overX);
    EXPECT_EQ(caseAt(0), static_cast<unsigned long long>(caseCount));
    EXPECT_EQ(header.sortIndicatorSection(), 1);
    EXPECT_EQ(header.sortIndicatorOrder(), Qt::AscendingOrder);
    EXPECT_EQ(caseAt(currentRow()), 5U) << "the current case stays current";
    EXPECT_EQ(m_widget.rowAt(at(currentRow()).y()), currentRow());
    EXPECT_LT(at(currentRow()).y(), viewport()->height()) << "and in view";

    QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, overX);
    EXPECT_EQ(caseAt(0), 1U);
    EXPECT_EQ(header.sortIndicatorOrder(), Qt::DescendingOrder);

    QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, overX);
    EXPECT_TRUE(m_model.isInTableOrder());
    EXPECT_EQ(header.sortIndicatorSection(), -1);
    EXPECT_EQ(selected(), Cases{5});
}

TEST_F(CaseTableWidgetTest, ASelectionFromElsewhereComesIntoView)
{
    const auto isInView = [this](int viewRow) {
        return viewport()->rect().contains(
            QRect(QPoint(1, at(viewRow).y() - rowHeight() / 2), QSize(1, rowHeight() - 1)));
    };
    m_master->setSelection({100, 120});
    EXPECT_TRUE(isInView(99));
    const int before = scrolled();
    m_master->setSelection({1, 100});
    EXPECT_EQ(scrolled(), before) << "one of them is visible";
    m_model.sort(1);
    m_master->setSelection({1});
    EXPECT_TRUE(isInView(caseCount - 1));
    m_widget.setFollowsSelection(false);
    m_master->setSelection({150});
    EXPECT_FALSE(isInView(0));

    EXPECT_TRUE(m_widget.scrollToCase(150));
    EXPECT_TRUE(isInView(0));
    EXPECT_EQ(currentRow(), 0);
    EXPECT_FALSE(m_widget.scrollToCase(151));
    EXPECT_EQ(selected(), Cases{150});

    m_widget.hide();
    EXPECT_TRUE(m_widget.scrollToCase(60));
    m_widget.show();
    EXPECT_TRUE(isInView(90));
}

TEST_F(CaseTableWidgetTest, AnotherTableKeepsTheCurrentCaseAndTheWidths)
{
    m_widget.setColumnWidth(1, 123);
    ASSERT_TRUE(m_widget.scrollToCase(80));
    const int y = at(79).y();

    const auto ids = column<vtkIntArray>("Case ID", denseIDs(100));
    const auto x = column<vtkDoubleArray>("x", std::vector<double>(100, 1.0));
    const auto wide =
        column<vtkStringArray>("wide", std::vector<std::string>(100, std::string(200, 'm')));
    m_model.setTable(table({ids, wide, x}));

    EXPECT_EQ(caseAt(currentRow()), 80U);
    EXPECT_EQ(at(currentRow()).y(), y);
    EXPECT_EQ(m_widget.columnWidth(2), 123);
    EXPECT_EQ(m_widget.columnWidth(1), 300) << "no wider than the limit";
    EXPECT_LT(m_widget.columnWidth(0), 300);
}

TEST_F(CaseTableWidgetTest, SelectedRowsShowInColorAndShapeWithAndWithoutFocus)
{
    QPalette palette = m_widget.palette();
    palette.setColor(QPalette::Active, QPalette::Highlight, Qt::red);
    palette.setColor(QPalette::Inactive, QPalette::Highlight, Qt::green);
    palette.setColor(QPalette::Text, Qt::blue);
    palette.setColor(QPalette::Base, Qt::white);
    m_widget.setPalette(palette);
    m_widget.setColumnWidth(1, 600);
    m_master->setSelection({3});
    for (const int scrolledTo : {0, m_widget.horizontalScrollBar()->maximum(), 100}) {
        SCOPED_TRACE(scrolledTo);
        m_widget.horizontalScrollBar()->setValue(scrolledTo);
        const QImage picture = viewport()->grab().toImage();
        const int right = viewport()->width() / 3; // the number is at the other end of its column

        EXPECT_EQ(picture.pixelColor(1, at(2).y()), QColor(Qt::blue));
        EXPECT_EQ(picture.pixelColor(right, at(2).y()), QColor(Qt::red));
        EXPECT_EQ(picture.pixelColor(1, at(3).y()), QColor(Qt::white));
        EXPECT_EQ(picture.pixelColor(right, at(3).y()), QColor(Qt::white));
    }
    EXPECT_EQ(m_widget.accessibleDescription().toStdString(), "1 of 150 cases selected");
}

TEST_F(CaseTableWidgetTest, ThousandsOfGesturesAgreeWithASet)
{
    constexpr int steps = 4000;
    std::mt19937 random(20);
    const auto below = [&random](int end) {
        return static_cast<int>(random() % static_cast<unsigned>(end));
    };
    const Qt::KeyboardModifiers modifiers[] = {
        Qt::NoModifier, Qt::NoModifier, ctrl, shift, ctrl | shift};
    std::map<int, double> values;
    Reference expected;
    std::vector<int> ids = denseIDs(caseCount);
    const auto applyTable = [&] {
        std::vector<double> x;
        for (const int id : ids) {
            x.push_back(static_cast<double>(below(12)));
            values[id] = x.back();
        }
        m_model.setTable(
            table({column<vtkIntArray>("Case ID", ids), column<vtkDoubleArray>("x", x)}));
    };
    const auto applyOrder = [&] {
        expected.order.assign(ids.begin(), ids.end());
        if (m_model.sortColumn() >= 0) {
            const double sign = m_model.sortOrder() == Qt::AscendingOrder ? 1.0 : -1.0;
            const bool byID = m_model.sortColumn() == 0;
            std::stable_sort(
                expected.order.begin(), expected.order.end(), [&](auto left, auto right) {
                    return byID
                        ? sign * static_cast<double>(left) < sign * static_cast<double>(right)
                        : sign * values[static_cast<int>(left)]
                            < sign * values[static_cast<int>(right)];
                });
        }
    };
    applyTable();
    applyOrder();

    for (int step = 0; step < steps; ++step) {
        const Qt::KeyboardModifiers with = modifiers[random() % std::size(modifiers)];
        const int kind = below(100);
        SCOPED_TRACE(
            testing::Message() << "step " << step << ", kind " << kind << ", modifiers " << with);
        const int visible = std::min(rowsInView, static_cast<int>(ids.size()));
        const int first = scrolled() + below(visible);
        const int second = scrolled() + below(visible);
        m_master->writes = 0;
        int writes = 1;
        if (kind < 35) {
            click(first, with);
            expected.gesture(first, first, with);
        } else if (kind < 55) {
            QTest::mousePress(viewport(), Qt::LeftButton, with, at(first));
            moveTo(at(scrolled() + below(visible)), with);
            moveTo(at(second), with);
            QTest::mouseRelease(viewport(), Qt::LeftButton, with, at(second));
            expected.gesture(first, second, with);
        } else if (kind < 75) {
            constexpr Qt::Key keys[] = {
                Qt::Key_Up,
                Qt::Key_Down,
                Qt::Key_PageUp,
                Qt::Key_PageDown,
                Qt::Key_Home,
                Qt::Key_End};
            const std::optional<int> before = expected.row(expected.current);
            key(keys[random() % std::size(keys)], with);
            const int now = currentRow();
            if (with == ctrl) {
                writes = 0;
                expected.current = expected.at(now);
            } else {
                if (with.testFlag(shift) && !expected.row(expected.anchor)) {
                    expected.anchor = expected.at(before.value_or(now));
                }
                expected.gesture(now, now, with);
            }
        } else if (kind < 80) {
            key(Qt::Key_Space);
            const std::optional<int> row = expected.row(expected.current);
            writes = row ? 1 : 0;
            if (row) {
                expected.gesture(*row, *row, ctrl);
            }
        } else if (kind < 82) {
            key(Qt::Key_A, ctrl);
            expected.selection.insert(expected.order.begin(), expected.order.end());
        } else if (kind < 84) {
            m_selection.invert();
            for (const unsigned long long id : expected.order) {
                if (expected.selection.erase(id) == 0) {
                    expected.selection.insert(id);
                }
            }
        } else if (kind < 92) {
            expected.selection.clear();
            for (int i = below(60); i > 0; --i) {
                expected.selection.insert(static_cast<unsigned long long>(below(caseCount + 30)));
            }
            m_master->setSelection(expected.selection);
        } else if (kind < 97) {
            m_widget.sortByNextOrder(below(2));
            applyOrder();
            writes = 0;
        } else {
            ids = denseIDs(caseCount);
            std::shuffle(ids.begin(), ids.end(), random);
            ids.resize(static_cast<std::size_t>(1 + below(caseCount)));
            if (below(2) == 0) {
                std::sort(ids.begin(), ids.end());
            }
            applyTable();
            applyOrder();
            if (!expected.row(expected.current)) {
                expected.current.reset();
            }
            writes = 0;
        }

        ASSERT_EQ(selected(), expected.selection);
        ASSERT_EQ(m_master->writes, writes);
        ASSERT_EQ(
            m_widget.currentIndex().isValid() ? std::optional<int>(currentRow()) : std::nullopt,
            expected.row(expected.current));
        for (int row = 0; row < m_model.rowCount(); ++row) {
            ASSERT_EQ(caseAt(row), expected.at(row));
            ASSERT_EQ(
                m_selection.contains(m_model.tableRow(row)),
                expected.selection.count(caseAt(row)) != 0);
        }
        ASSERT_FALSE(m_widget.selectionModel()->hasSelection());
    }
}

TEST_F(CaseTableWidgetTest, RowUnderTheMouseIsHovered)
{
    sendMouseMove(*viewport(), at(3));
    settle();
    EXPECT_EQ(m_hovered->caseID(), std::optional(caseAt(3)));

    m_widget.verticalScrollBar()->setValue(10);
    viewport()->repaint();
    settle();
    EXPECT_EQ(m_hovered->caseID(), std::optional(caseAt(13)));

    sendMouseMove(*viewport(), QPoint(viewport()->width() - 1, at(13).y()));
    settle();
    EXPECT_EQ(m_hovered->caseID(), std::nullopt) << "beside the columns";
}

TEST_F(CaseTableWidgetTest, RowOfTheHoveredCaseHasAnOutline)
{
    const auto picture = [this] { return viewport()->grab().toImage(); };
    const QImage before = picture();

    m_hovered->setCaseID(caseAt(4));
    const QImage outlined = picture();
    const QRect row = m_widget.hoveredRowRect();

    ASSERT_FALSE(row.isEmpty());
    EXPECT_TRUE(row.contains(at(4)));
    EXPECT_FALSE(row.contains(at(3)) || row.contains(at(5)));
    for (int y = 0; y < before.height(); ++y) {
        for (int x = 0; x < before.width(); ++x) {
            const bool isInside = row.adjusted(3, 3, -3, -3).contains(x, y);
            if (isInside || !row.contains(x, y)) {
                ASSERT_EQ(outlined.pixel(x, y), before.pixel(x, y)) << x << ", " << y;
            }
        }
    }
    EXPECT_EQ(outlined.pixelColor(row.left() + 50, row.top()), QColor(Qt::black));
    EXPECT_EQ(outlined.pixelColor(row.left() + 50, row.bottom()), QColor(Qt::black));
    EXPECT_EQ(outlined.pixelColor(row.right(), row.center().y()), QColor(Qt::black));
    m_hovered->setCaseID(std::nullopt);
    EXPECT_EQ(picture(), before);
}

TEST_F(CaseTableWidgetTest, HoverPaintsOnlyTheRowsThatItConcerns)
{
    m_hovered->setCaseID(caseAt(2));
    const QRect second = m_widget.hoveredRowRect();
    viewport()->repaint();
    settle();
    PaintWatcher watcher(*viewport());

    m_hovered->setCaseID(caseAt(7));
    const QRect seventh = m_widget.hoveredRowRect();
    settle();
    EXPECT_EQ(watcher.painted, QRegion(second) + seventh);

    watcher.painted = {};
    m_hovered->setCaseID(caseAt(100));
    settle();
    EXPECT_EQ(watcher.painted, QRegion(seventh));
    EXPECT_TRUE(m_widget.hoveredRowRect().isEmpty());
    EXPECT_EQ(scrolled(), 0);

    m_hovered->setCaseID(caseAt(4));
    m_widget.verticalScrollBar()->setValue(2);
    EXPECT_TRUE(m_widget.hoveredRowRect().contains(at(4)));
    m_hovered->setCaseID(5000);
    EXPECT_TRUE(m_widget.hoveredRowRect().isEmpty());
}

} // namespace analyzer
