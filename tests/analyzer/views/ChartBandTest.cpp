#include <analyzer/views/ChartBand.h>
#include <analyzer/views/LinePlotView.h>
#include <analyzer/views/ScatterPlotView.h>

#include <dataviews/common/charts/ChartXY.h>

#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/serialize/SerializerInterface.h>
#include <dataviews/platform/undo/UndoStack.h>
#include <dataviews/platform/vtk/vtkCvCommandProxy.h>

#include <QDomDocument>
#include <QMouseEvent>
#include <QTest>

#include <vtkAxis.h>
#include <vtkCommand.h>
#include <vtkRenderWindow.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <tests/analyzer/views/ChartSettings.h>
#include <tests/support/SmallStudy.h>
#include <tests/support/mouseMoves.h>

namespace {

using analyzer::ChartBand;
using analyzer::ChartViewAbstract;
using Cases = std::set<unsigned long long>;

constexpr int caseCount = 300;
const std::array<const char*, 4> shapes = {"rectangle", "lasso", "x-range", "y-range"};

/// Charts of random points in a window, a third of the cases filtered out and gray, dragged over by a real mouse.
class ChartBandTest : public testing::Test
{
protected:
    void SetUp() override
    {
        std::uniform_real_distribution<double> number(0.0, 10.0);
        std::vector<double> xs;
        std::vector<double> ys;
        std::vector<double> groups;
        for (int i = 0; i < caseCount; ++i) {
            xs.push_back(number(m_random));
            ys.push_back(number(m_random));
            groups.push_back(i % 3);
        }
        m_study.add("X", xs, Variable::Input)
            .add("Y", ys)
            .add("Group", groups, Variable::Input)
            .open();
    }

    void TearDown() override
    {
        m_view.reset();
        UndoStack::history().clear();
    }

    template <class View>
    void show()
    {
        m_view = boost::make_shared<View>(analyzer::ViewServices{m_pipeline, m_master, {}, {}, {}});
        m_widget = &m_view->widget();
        settingOf(*m_view, "legend").setText("off"); // it would take some of the presses
        m_widget->resize(500, 400);
        m_widget->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_widget));
        QTest::mouseMove(m_widget, QPoint(250, 200));
        m_view->render();
        UndoStack::history().clear();
    }

    void filter()
    {
        m_pipeline.addFilter(boost::make_shared<RangeFilter>(
            Project::project().variable("Y"), ValueRange_s<double>{0.0, 7.0}));
        settingOf(*m_view, "filtered-out").setText("gray");
        m_view->render();
    }

    void press(const QPoint& place, Qt::KeyboardModifiers keys = Qt::NoModifier)
    {
        QTest::mousePress(m_widget, Qt::LeftButton, keys, place);
    }

    void move(const QPoint& place, Qt::KeyboardModifiers keys = Qt::NoModifier)
    {
        QMouseEvent event(
            QEvent::MouseMove,
            place,
            m_widget->mapToGlobal(place),
            Qt::NoButton,
            Qt::LeftButton,
            keys);
        QApplication::sendEvent(m_widget, &event);
    }

    void release(const QPoint& place, Qt::KeyboardModifiers keys = Qt::NoModifier)
    {
        QTest::mouseRelease(m_widget, Qt::LeftButton, keys, place);
        settle();
    }

    [[nodiscard]] QPoint somewhere()
    {
        return {
            110 + static_cast<int>(m_random() % 350U), 40 + static_cast<int>(m_random() % 280U)};
    }

    /// What the band says after its next look at the chart.
    [[nodiscard]] QString text() const
    {
        settle();
        return m_view->band().text();
    }

    [[nodiscard]] Cases selected() const { return m_master->getSelections(); }

    [[nodiscard]] static QString textOfChange(const Cases& before, const Cases& after)
    {
        const auto without = [](const Cases& cases, const Cases& others) {
            std::vector<unsigned long long> rest;
            std::set_difference(
                cases.begin(), cases.end(), others.begin(), others.end(), std::back_inserter(rest));
            return rest.size();
        };
        return ChartBand::changeText({without(after, before), without(before, after)});
    }

    void dragAtRandom()
    {
        settingOf(*m_view, "selection-shape").setText(shapes[m_random() % shapes.size()]);
        const Qt::KeyboardModifiers keys =
            m_random() % 2 == 0 ? Qt::ControlModifier : Qt::NoModifier;
        QPoint place = somewhere();
        press(place, keys);
        for (auto moves = 1 + m_random() % 5; moves > 0; --moves) {
            place = somewhere();
            move(place, keys);
        }
        const QString foretold = text();
        EXPECT_FALSE(m_view->band().overlay()->isHidden());
        const Cases before = selected();
        release(place, keys);
        EXPECT_EQ(foretold.toStdString(), textOfChange(before, selected()).toStdString());
        EXPECT_TRUE(m_view->band().overlay()->isHidden());
    }

    void dragOften()
    {
        filter();
        m_master->setSelection({0, 1, 2, 3, 290, 291, 292});
        std::size_t largest = 0;
        constexpr int rounds = 60;
        for (int round = 0; round < rounds; ++round) {
            SCOPED_TRACE(round);
            dragAtRandom();
            largest = std::max(largest, selected().size());
        }
        EXPECT_GT(largest, 50U) << "the drags go over many points";
    }

    [[nodiscard]] std::vector<double> ranges() const
    {
        std::vector<double> ends(4);
        m_view->chart().GetAxis(vtkAxis::BOTTOM)->GetRange(ends.data());
        m_view->chart().GetAxis(vtkAxis::LEFT)->GetRange(ends.data() + 2);
        return ends;
    }

    std::mt19937 m_random{5};
    SmallStudy m_study{caseCount};
    DataPipelineManager m_pipeline{Project::project()};
    boost::shared_ptr<SelectionModel> m_master = boost::make_shared<SelectionModel>();
    boost::shared_ptr<ChartViewAbstract> m_view;
    QWidget* m_widget = nullptr;
};

} // namespace

TEST_F(ChartBandTest, TellsWhatLettingGoWillChangeInAScatterChart)
{
    show<analyzer::ScatterPlotView>();
    dragOften();
}

TEST_F(ChartBandTest, TellsWhatLettingGoWillChangeInAChartOfLines)
{
    show<analyzer::LinePlotView>();
    settingOf(*m_view, "color").setText("Group");
    dragOften();
}

TEST_F(ChartBandTest, ChangesAreToldWithSignsAndCommas)
{
    EXPECT_EQ(ChartBand::changeText({1204, 17}), QString::fromUtf8("+1,204 −17"));
    EXPECT_EQ(ChartBand::changeText({1000000, 0}), QString::fromUtf8("+1,000,000"));
    EXPECT_EQ(ChartBand::changeText({0, 3}), QString::fromUtf8("−3"));
    EXPECT_EQ(ChartBand::changeText({0, 0}), QString::fromUtf8("±0"));
}

TEST_F(ChartBandTest, FollowsTheControlKeyAndTheSelection)
{
    show<analyzer::ScatterPlotView>();
    settingOf(*m_view, "selection-shape").setText("x-range");
    m_master->setSelection({1});
    press(QPoint(100, 200));
    move(QPoint(480, 210));
    const QString replacing = text();
    EXPECT_TRUE(replacing.startsWith(QLatin1Char('+')));

    m_master->setSelection({});
    EXPECT_NE(text(), replacing);
    m_master->setSelection({9999}); // no case of the chart
    EXPECT_TRUE(text().endsWith(QString::fromUtf8(" −1")));
    QTest::keyPress(m_widget, Qt::Key_Control);
    EXPECT_FALSE(text().contains(QString::fromUtf8("−")));
    QTest::keyRelease(m_widget, Qt::Key_Control);
    EXPECT_TRUE(text().endsWith(QString::fromUtf8(" −1")));
    release(QPoint(480, 210));
}

TEST_F(ChartBandTest, NothingIsRenderedWhileABandIsDragged)
{
    show<analyzer::ScatterPlotView>();
    QTest::qWait(100); // what the window still had to paint
    int pictures = 0;
    vtkRenderWindow& window = *static_cast<QVTKOpenGLNativeWidget*>(m_widget)->renderWindow();
    const auto count = vtkCvCommandProxy::New([&] { ++pictures; });
    const unsigned long tag = window.AddObserver(vtkCommand::EndEvent, count);
    for (const auto mode : {DataViewInterface::Select, DataViewInterface::Zoom}) {
        m_view->mouseModeProperty()->setValue(mode);
        for (const char* shape : shapes) {
            settingOf(*m_view, "selection-shape").setText(shape);
            const std::vector<double> before = ranges();
            press(QPoint(150, 100));
            for (int i = 1; i < 10; ++i) {
                move(QPoint(150 + 20 * i, 160 + (i % 3) * 60));
                EXPECT_EQ(text().isEmpty(), mode == DataViewInterface::Zoom);
                EXPECT_FALSE(m_view->band().overlay()->isHidden());
            }
            QTest::qWait(60);
            EXPECT_EQ(pictures, 0) << shape;
            QTest::keyClick(m_widget, Qt::Key_Escape);
            release(QPoint(330, 100));
            EXPECT_EQ(ranges(), before);
            QTest::qWait(60);
            pictures = 0;
        }
    }
    window.RemoveObserver(tag);
}

TEST_F(ChartBandTest, ADragBesideAnAxisSelectsAlongIt)
{
    show<analyzer::ScatterPlotView>();
    m_master->setSelection({7});
    vtkAxis& bottom = *m_view->chart().GetAxis(vtkAxis::BOTTOM);
    const int y = m_widget->height() - static_cast<int>(bottom.GetPoint1()[1]) + 8;

    QTest::mouseMove(m_widget, QPoint(120, y));
    press(QPoint(120, y));
    release(QPoint(120, y));
    EXPECT_EQ(selected(), Cases({7})) << "a click there is none on empty space";

    press(QPoint(120, y));
    move(QPoint(300, y));
    const QString foretold = text();
    const Cases before = selected();
    release(QPoint(300, y));
    EXPECT_EQ(foretold, textOfChange(before, selected()));
    EXPECT_GT(selected().size(), 50U);
}

TEST_F(ChartBandTest, EscapeTakesADragBack)
{
    show<analyzer::ScatterPlotView>();
    m_master->setSelection({7, 8});
    const std::vector<double> before = ranges();
    for (const auto mode :
         {DataViewInterface::Select, DataViewInterface::Pan, DataViewInterface::Zoom}) {
        SCOPED_TRACE(mode);
        m_view->mouseModeProperty()->setValue(mode);
        press(QPoint(150, 100));
        move(QPoint(250, 200));
        move(QPoint(300, 250));
        EXPECT_EQ(ranges() == before, mode != DataViewInterface::Pan);
        QTest::keyClick(m_widget, Qt::Key_Escape);
        EXPECT_EQ(ranges(), before);
        EXPECT_TRUE(text().isEmpty());
        EXPECT_TRUE(m_view->band().overlay()->isHidden());
        move(QPoint(320, 280));
        EXPECT_TRUE(text().isEmpty());
        release(QPoint(320, 280));
        EXPECT_EQ(ranges(), before);
        EXPECT_EQ(selected(), Cases({7, 8}));
        EXPECT_EQ(UndoStack::history().count(), 0);
    }
    // The next drag is one again.
    m_view->mouseModeProperty()->setValue(DataViewInterface::Select);
    press(QPoint(110, 20));
    move(QPoint(480, 330));
    release(QPoint(480, 330));
    EXPECT_GT(selected().size(), 100U);
}

TEST_F(ChartBandTest, TheShapeIsASettingAndPartOfTheSavedState)
{
    show<analyzer::ScatterPlotView>();
    for (const char* shape : shapes) {
        settingOf(*m_view, "selection-shape").setText(shape);
        EXPECT_EQ(UndoStack::history().count(), 0);
        QDomDocument document;
        QDomElement root = document.createElement(QStringLiteral("Root"));
        document.appendChild(root);
        m_view->serializer().serialize(root);

        settingOf(*m_view, "selection-shape").setText("rectangle");
        m_view->serializer().deserialize(root);
        EXPECT_EQ(settingOf(*m_view, "selection-shape").text(), shape);

        // States of before this setting are read, and leave it as it is.
        QDomElement state = root.firstChildElement();
        state.removeChild(state.firstChildElement(QStringLiteral("SelectionShape")));
        m_view->serializer().deserialize(root);
        EXPECT_EQ(settingOf(*m_view, "selection-shape").text(), shape);
    }
    EXPECT_NE(refusalOf(*m_view, "selection-shape", "circle"), "");
}
