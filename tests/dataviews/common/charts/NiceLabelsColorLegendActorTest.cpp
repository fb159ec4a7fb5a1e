#include "OpenColorBar.h"

#include <dataviews/common/charts/NiceLabelsColorBarWidget.h>

#include <vtkDoubleArray.h>
#include <vtkLookupTable.h>
#include <vtkNew.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkScalarBarRepresentation.h>
#include <vtkTextProperty.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Rect = OpenColorBar::Rect;

class NiceLabelsColorLegendActorTest : public testing::Test
{
protected:
    NiceLabelsColorLegendActorTest()
    {
        m_window->SetOffScreenRendering(1);
        m_window->AddRenderer(m_renderer);
        m_table->SetRange(-1.0, 1.0);
        m_bar->SetLookupTable(m_table);
        m_bar->SetTitle("Pressure");
        m_bar->SetLabelFormat("%G");
        m_bar->GetPositionCoordinate()->SetValue(0.0, 0.0);
        m_bar->GetPosition2Coordinate()->SetValue(1.0, 1.0);
        m_renderer->AddActor2D(m_bar);
        resize(100, 400);
    }

    /// The bar fills the window.
    void resize(int width, int height) { m_window->SetSize(width, height); }

    void layOut(int labels)
    {
        m_bar->SetNumberOfLabels(labels);
        m_bar->layOut(*m_renderer);
    }

    /// Labels are in the frame, beside the colors and apart from each other, but for a pixel of smooth letters.
    void expectGoodPlaces()
    {
        const Rect frame = m_bar->frame();
        const Rect colors = m_bar->colors();
        const bool isVertical = m_bar->GetOrientation() == VTK_ORIENT_VERTICAL;
        constexpr double pixel = 1.0;
        double end = -1e9;
        for (const Rect& label : m_bar->labels(*m_renderer)) {
            EXPECT_GE(label.left, frame.left - pixel);
            EXPECT_LE(label.right, frame.right + pixel);
            EXPECT_GE(label.bottom, frame.bottom - pixel);
            EXPECT_LE(label.top, frame.top + pixel);
            EXPECT_GE(isVertical ? label.bottom : label.left, end - pixel);
            end = isVertical ? label.top : label.right;
            const double covered = isVertical
                ? std::min(colors.right - label.left, label.right - colors.left)
                : std::min(colors.top - label.bottom, label.top - colors.bottom);
            // VTK's rectangles are larger than the letters, by more for larger letters.
            EXPECT_LE(covered, 2.0 + 0.1 * (label.top - label.bottom)) << "It covers the colors.";
        }
    }

    vtkNew<vtkRenderWindow> m_window;
    vtkNew<vtkRenderer> m_renderer;
    vtkNew<vtkLookupTable> m_table;
    vtkNew<OpenColorBar> m_bar;
};

TEST_F(NiceLabelsColorLegendActorTest, EveryKindOfBarIsDrawnWithItsLabelsInPlace)
{
    for (const int orientation : {VTK_ORIENT_VERTICAL, VTK_ORIENT_HORIZONTAL}) {
        for (const int position :
             {vtkScalarBarActor::PrecedeScalarBar, vtkScalarBarActor::SucceedScalarBar}) {
            for (const int withNaN : {0, 1}) {
                for (const int scale : {VTK_SCALE_LINEAR, VTK_SCALE_LOG10}) {
                    for (const int labels : {1, 3, 15, 40}) {
                        SCOPED_TRACE(
                            testing::Message()
                            << "orientation " << orientation << " position " << position << " NaN "
                            << withNaN << " scale " << scale << " labels " << labels);
                        m_table->SetRange(0.001, 1000.0);
                        m_table->SetScale(scale);
                        m_bar->SetOrientation(orientation);
                        m_bar->SetTextPosition(position);
                        m_bar->SetDrawNanAnnotation(withNaN);
                        m_bar->SetNumberOfLabels(labels);
                        const bool isVertical = orientation == VTK_ORIENT_VERTICAL;
                        resize(isVertical ? 120 : 900, isVertical ? 600 : 120);

                        m_window->Render();

                        const std::vector<std::string> texts = m_bar->texts();
                        ASSERT_EQ(texts.size(), static_cast<std::size_t>(labels));
                        if (labels > 1) {
                            EXPECT_EQ(texts.front(), "0.001");
                            EXPECT_EQ(texts.back(), "1000");
                        }
                        expectGoodPlaces();
                    }
                }
            }
        }
    }
}

TEST_F(NiceLabelsColorLegendActorTest, RandomBarsHoldTheirLabelsWhereThereIsRoom)
{
    std::mt19937 random(1);
    const auto between = [&random](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    constexpr int rounds = 100;
    for (int round = 0; round < rounds && !HasFailure(); ++round) {
        const bool isVertical = between(0, 1) == 1;
        const int labels = between(1, 64);
        const int length = between(1, 1500);
        const int thickness = between(1, 300);
        m_bar->SetOrientation(isVertical ? VTK_ORIENT_VERTICAL : VTK_ORIENT_HORIZONTAL);
        m_bar->SetTextPosition(between(0, 1));
        m_bar->SetDrawNanAnnotation(between(0, 1));
        m_bar->SetTitle(between(0, 1) == 1 ? "Temperature" : "");
        m_table->SetRange(-between(1, 1000), between(1, 1000));
        resize(isVertical ? thickness : length, isVertical ? length : thickness);
        SCOPED_TRACE(
            testing::Message() << "vertical " << isVertical << " labels " << labels << " length "
                               << length << " thickness " << thickness);

        layOut(labels);

        const int shareOfLabel = length / labels;
        const bool hasRoom = isVertical ? shareOfLabel >= 20 && thickness >= 60
                                        : shareOfLabel >= 60 && thickness >= 80;
        if (hasRoom) {
            expectGoodPlaces();
        }
    }
}

TEST_F(NiceLabelsColorLegendActorTest, PrintsZeroForWhatIsZeroButForRounding)
{
    layOut(3);
    EXPECT_THAT(m_bar->texts(), ElementsAre("-1", "0", "1"));

    m_table->SetRange(-1.38778e-17, 1.0);
    layOut(3);
    EXPECT_THAT(m_bar->texts(), ElementsAre("0", "0.5", "1"));

    layOut(1);
    EXPECT_THAT(m_bar->texts(), ElementsAre("0.5"));
}

TEST_F(NiceLabelsColorLegendActorTest, ManyLabelsStandCloserToTheColors)
{
    const auto gap = [this] { return m_bar->ticks().left - m_bar->colors().right; };
    layOut(17);
    EXPECT_EQ(gap(), 2 * (m_bar->GetTextPad() + 2));

    layOut(18);
    EXPECT_EQ(gap(), 2 * m_bar->GetTextPad());
}

TEST_F(NiceLabelsColorLegendActorTest, FirstAndLastLabelStandAtTheEndsOfTheColors)
{
    layOut(11);
    const std::vector<Rect> labels = m_bar->labels(*m_renderer);
    const Rect colors = m_bar->colors();
    const auto middle = [](const Rect& rect) { return 0.5 * (rect.bottom + rect.top); };
    constexpr double fewPixels = 7.0;
    EXPECT_NEAR(middle(labels.front()), colors.bottom, fewPixels);
    EXPECT_NEAR(middle(labels.back()), colors.top, fewPixels);
}

TEST_F(NiceLabelsColorLegendActorTest, ShortTextsAreNotBlownUp)
{
    m_bar->SetTitle("x");
    layOut(1);

    const Rect label = m_bar->labels(*m_renderer).front();
    const Rect colors = m_bar->colors();
    const Rect frame = m_bar->frame();
    const Rect title = m_bar->title();
    EXPECT_LE(label.top - label.bottom, 0.12 * (colors.top - colors.bottom));
    EXPECT_GT(colors.top - colors.bottom, 0.7 * (frame.top - frame.bottom));
    EXPECT_LE(title.top - title.bottom, 0.075 * (frame.top - frame.bottom));
    EXPECT_LE(title.top, frame.top);
    EXPECT_NEAR(title.left + title.right, frame.left + frame.right, 2.0);
}

TEST_F(NiceLabelsColorLegendActorTest, BarsWithoutLabelsOfTheirOwnAreLeftToVtk)
{
    layOut(0);
    EXPECT_THAT(m_bar->texts(), IsEmpty());

    const vtkNew<vtkDoubleArray> values;
    values->InsertNextValue(0.25);
    m_bar->SetCustomLabels(values);
    m_bar->UseCustomLabelsOn();
    layOut(5);
    EXPECT_THAT(m_bar->texts(), ElementsAre("0.25"));

    m_bar->UseCustomLabelsOff();
    m_table->SetAnnotation(0.0, "steel");
    m_table->IndexedLookupOn();
    m_window->Render();
    EXPECT_THAT(m_bar->texts(), IsEmpty());
}

TEST_F(NiceLabelsColorLegendActorTest, PicturesShowTheRangeOfTheTable)
{
    m_bar->SetNumberOfLabels(2);
    m_window->Render();
    m_table->SetRange(3.0, 4.0);

    m_window->Render();

    EXPECT_THAT(m_bar->texts(), ElementsAre("3", "4"));
}

TEST(NiceLabelsColorBarWidgetTest, HasABarWithNiceLabels)
{
    const vtkNew<NiceLabelsColorBarWidget> widget;

    EXPECT_NE(NiceLabelsColorLegendActor::SafeDownCast(widget->GetScalarBarActor()), nullptr);
    EXPECT_EQ(widget->GetScalarBarActor()->GetVerticalTitleSeparation(), 3);
    EXPECT_EQ(
        widget->GetScalarBarRepresentation()->GetScalarBarActor(), widget->GetScalarBarActor());
    EXPECT_TRUE(widget->IsA("vtkScalarBarWidget"));
}

} // namespace
