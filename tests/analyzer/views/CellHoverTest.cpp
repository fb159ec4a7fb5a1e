#include <analyzer/views/CellHover.h>
#include <analyzer/views/HoveredCase.h>

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QAbstractScrollArea>
#include <QTest>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

#include <tests/support/mouseMoves.h>

namespace analyzer {

namespace {

using CaseID = std::optional<unsigned long long>;

/// Its cases are stripes of 20 pixels, from case 1 on; every third stripe has none.
class CellHoverTest : public testing::Test
{
protected:
    CellHoverTest()
    {
        m_connections.add(m_hovered->signalHoveredCaseChanged.connect(
            [this] { m_changes.push_back(m_hovered->caseID()); }));
        m_view.resize(200, 400);
        m_view.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&m_view));
        settle();
    }

    [[nodiscard]] CaseID caseAt(const QPoint& place) const
    {
        const int stripe = (place.y() + m_scrolled) / 20 + 1;
        return stripe % 3 == 0 ? CaseID() : CaseID(stripe);
    }

    [[nodiscard]] static QPoint stripe(int number) { return {50, number * 20 - 10}; }

    void moveTo(int number)
    {
        sendMouseMove(*m_view.viewport(), stripe(number));
        settle();
    }

    int m_scrolled = 0;
    QAbstractScrollArea m_view;
    boost::shared_ptr<HoveredCase> m_hovered = boost::make_shared<HoveredCase>();
    std::vector<CaseID> m_changes;
    SignalConnectionCollection m_connections;
    std::unique_ptr<CellHover> m_hover = std::make_unique<CellHover>(
        m_view, m_hovered, [this](const QPoint& place) { return caseAt(place); });
};

} // namespace

TEST_F(CellHoverTest, CaseUnderTheMouseIsHovered)
{
    for (const int number : {1, 2, 3, 4, 4, 1}) {
        moveTo(number);
    }
    sendLeave(*m_view.viewport());

    EXPECT_EQ(m_changes, (std::vector<CaseID>{1, 2, {}, 4, 1, {}}));
}

TEST_F(CellHoverTest, QueuedMovesAreAnsweredOnce)
{
    for (const int number : {1, 2, 4}) {
        sendMouseMove(*m_view.viewport(), stripe(number));
    }
    settle();

    EXPECT_EQ(m_changes, std::vector<CaseID>{4});
}

TEST_F(CellHoverTest, ButtonsAndHidingEndTheHover)
{
    const struct
    {
        const char* name;
        std::function<void()> action;
    } actions[] = {
        {"press", [this] { QTest::mousePress(m_view.viewport(), Qt::LeftButton); }},
        {"drag", [this] { sendMouseMove(*m_view.viewport(), stripe(1), Qt::LeftButton); }},
        {"a move that is still queued",
         [this] {
             sendMouseMove(*m_view.viewport(), stripe(2));
             sendLeave(*m_view.viewport());
         }},
        {"hide", [this] { m_view.hide(); }},
        {"its maker goes", [this] { m_hover.reset(); }},
    };

    for (const auto& action : actions) {
        SCOPED_TRACE(action.name);
        moveTo(1);
        ASSERT_EQ(m_hovered->caseID(), CaseID(1));

        action.action();
        settle();

        EXPECT_EQ(m_hovered->caseID(), CaseID());
    }
}

TEST_F(CellHoverTest, WhatScrollsBelowTheMouseIsHovered)
{
    moveTo(1);

    m_scrolled = 60;
    m_view.viewport()->repaint();
    settle();

    EXPECT_EQ(m_hovered->caseID(), CaseID(4));
}

TEST_F(CellHoverTest, CaseOfAnotherViewIsLeftAlone)
{
    moveTo(1);
    m_hovered->setCaseID(7);

    sendLeave(*m_view.viewport());
    EXPECT_EQ(m_hovered->caseID(), CaseID(7));
    moveTo(3);
    EXPECT_EQ(m_hovered->caseID(), CaseID(7));
}

TEST(CellHoverLifeTest, ViewMayGoFirst)
{
    const auto hovered = boost::make_shared<HoveredCase>();
    auto view = std::make_unique<QAbstractScrollArea>();
    const CellHover hover(*view, hovered, [](const QPoint&) { return CaseID(1); });
    sendMouseMove(*view->viewport(), {5, 5});

    view.reset();
    settle();

    EXPECT_EQ(hovered->caseID(), CaseID());
}

} // namespace analyzer
