#include <analyzer/ViewFrame.h>

#include <dataviews/platform/selection/SelectionModel.h>

#include <QAbstractButton>
#include <QApplication>
#include <QTest>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <vector>

#include <tests/support/FakeView.h>
#include <tests/support/mouseMoves.h>

namespace analyzer {

namespace {

using Cases = std::set<unsigned long long>;

/// A view that leaves out what it is told to.
class LeavingView : public FakeView
{
public:
    LeavingView()
        : FakeView(new QWidget) // the frame's
    {
        widget().resize(400, 300);
    }

    void setLeftOut(const std::vector<LeftOutCases>& leftOut, const Cases& cases = {})
    {
        m_leftOut = leftOut;
        m_cases = cases;
        emitLeftOutChanged();
    }

    [[nodiscard]] std::vector<LeftOutCases> leftOut() const override
    {
        ++questions;
        return m_leftOut;
    }

    [[nodiscard]] Cases leftOutCaseIDs() const override { return m_cases; }

    mutable int questions = 0;

private:
    std::vector<LeftOutCases> m_leftOut;
    Cases m_cases;
};

class ViewFrameTest : public testing::Test
{
protected:
    void SetUp() override
    {
        m_frame->resize(500, 400);
        m_frame->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_frame.get()));
    }

    void leaveOut(const std::vector<LeftOutCases>& leftOut, const Cases& cases = {})
    {
        m_view->setLeftOut(leftOut, cases);
        settle();
    }

    boost::shared_ptr<LeavingView> m_view = boost::make_shared<LeavingView>();
    boost::shared_ptr<SelectionModel> m_selection = boost::make_shared<SelectionModel>();
    std::unique_ptr<ViewFrame> m_frame = std::make_unique<ViewFrame>(m_view, m_selection);
};

} // namespace

TEST_F(ViewFrameTest, LineSaysHowManyAndWhy)
{
    const struct
    {
        std::vector<LeftOutCases> leftOut;
        const char* text;
    } lines[] = {
        {{{31, "without Drag"}, {6, "filtered"}}, "37 not drawn: 31 without Drag, 6 filtered"},
        {{{1234567, "without <b>R&D</b>"}, {1000, "filtered"}},
         "1,235,567 not drawn: 1,234,567 without <b>R&D</b>, 1,000 filtered"},
        {{}, ""},
    };

    for (const auto& line : lines) {
        leaveOut(line.leftOut);

        EXPECT_EQ(m_frame->text(), line.text);
        EXPECT_EQ(m_frame->line().isVisible(), !line.leftOut.empty());
        if (!line.leftOut.empty()) {
            EXPECT_EQ(m_frame->line().accessibleName(), line.text);
        }
    }
}

TEST_F(ViewFrameTest, ClickAndKeySelectTheCases)
{
    leaveOut({{3, "filtered"}}, {2, 5, 9});
    EXPECT_TRUE(m_frame->line().focusPolicy() & Qt::TabFocus);

    QTest::mouseClick(&m_frame->line(), Qt::LeftButton);
    EXPECT_EQ(m_selection->getSelections(), (Cases{2, 5, 9}));

    m_selection->setSelection({});
    QTest::keyClick(&m_frame->line(), Qt::Key_Space);
    EXPECT_EQ(m_selection->getSelections(), (Cases{2, 5, 9}));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(ViewFrameTest, ViewKeepsItsSizeOnceTheLineWasThere)
{
    settle();
    const int whole = m_view->widget().height();
    EXPECT_EQ(whole, m_frame->height());

    leaveOut({{3, "filtered"}});
    const int withLine = m_view->widget().height();
    EXPECT_LT(withLine, whole);
    leaveOut({});

    EXPECT_FALSE(m_frame->line().isVisible());
    EXPECT_EQ(m_view->widget().height(), withLine);
}

TEST_F(ViewFrameTest, ManyChangesAreShownOnce)
{
    settle();
    m_view->questions = 0;

    for (std::size_t count = 1; count <= 5; ++count) {
        m_view->setLeftOut({{count, "filtered"}});
    }
    settle();

    EXPECT_EQ(m_view->questions, 1);
    EXPECT_EQ(m_frame->text(), "5 not drawn: 5 filtered");
}

TEST_F(ViewFrameTest, FrameOutOfSightAsksNothingAndIsRightWhenItAppears)
{
    m_frame->hide();
    m_view->questions = 0;

    leaveOut({{3, "filtered"}});
    EXPECT_EQ(m_view->questions, 0);
    m_frame->show();

    EXPECT_EQ(m_frame->text(), "3 not drawn: 3 filtered");
}

TEST_F(ViewFrameTest, LongLineIsCutShortAndInFullInTheToolTip)
{
    leaveOut({{3, "filtered"}});
    EXPECT_EQ(m_frame->line().toolTip(), "Select these cases");

    const std::string name = "<i>" + std::string(1000, 'n') + "</i>";
    leaveOut({{3, "without " + name}});

    EXPECT_LT(m_frame->minimumSizeHint().width(), 300);
    EXPECT_EQ(m_frame->width(), 500);
    EXPECT_TRUE(m_frame->line().toolTip().contains(
        QString::fromStdString(name).toHtmlEscaped() + "<br>Select these cases"));
}

TEST_F(ViewFrameTest, ViewMayGoFirst)
{
    leaveOut({{3, "filtered"}}, {1});
    m_view.reset();

    QTest::mouseClick(&m_frame->line(), Qt::LeftButton);

    EXPECT_EQ(m_selection->getSelections(), Cases{});
}

} // namespace analyzer
