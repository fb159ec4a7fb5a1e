#include <dataviews/common/charts/CategoryLegend.h>
#include <dataviews/common/charts/ChartXY.h>

#include <vtkBrush.h>
#include <vtkContext2D.h>
#include <vtkContextScene.h>
#include <vtkPlotPoints.h>
#include <vtkTextProperty.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include <tests/support/OffScreenChart.h>
#include <tests/support/RecordingContextDevice2D.h>
#include <tests/support/caseTable.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr float letterWidth = 8.0F;
constexpr float letterHeight = 14.0F;

/// Remembers discs and texts, whose letters all have one size; bold ones are twice as wide.
class RecordingTextDevice : public RecordingContextDevice2D
{
public:
    struct Disc
    {
        float x;
        float y;
        float radius;
        ColorBytes color;
    };

    struct Text
    {
        float x;
        float y;
        std::string text;
    };

    vtkTypeMacro(RecordingTextDevice, RecordingContextDevice2D) static RecordingTextDevice* New()
    {
        VTK_STANDARD_NEW_BODY(RecordingTextDevice);
    }

    std::vector<Disc> discs;
    std::vector<Text> texts;
    int measured = 0;

    [[nodiscard]] std::vector<std::string> lines() const
    {
        std::vector<std::string> lines;
        for (const Text& text : texts) {
            lines.push_back(text.text);
        }
        return lines;
    }

    void DrawString(float* point, const vtkStdString& string) override
    {
        texts.push_back({point[0], point[1], string});
    }

    void ComputeStringBounds(const vtkStdString& string, float bounds[4]) override
    {
        ++measured;
        const float width = TextProp->GetBold() != 0 ? 2.0F * letterWidth : letterWidth;
        bounds[0] = 0.0F;
        bounds[1] = 0.0F;
        bounds[2] = width * static_cast<float>(string.size());
        bounds[3] = letterHeight;
    }

    void DrawEllipticArc(float x, float y, float rX, float, float, float) override
    {
        const unsigned char* color = Brush->GetColor();
        discs.push_back({x, y, rX, {color[0], color[1], color[2]}});
    }
};

class CategoryLegendTest : public testing::Test
{
protected:
    CategoryLegendTest()
    {
        m_painter->Begin(m_device);
        m_legend->SetPoint(30.5F, 40.0F);
    }

    ~CategoryLegendTest() override { m_painter->End(); }

    void addEntries(std::size_t count)
    {
        std::vector<CategoryLegend::Entry> entries;
        for (std::size_t i = 0; i < count; ++i) {
            entries.push_back({"entry " + std::to_string(i), categoryColor(i, false)});
        }
        m_legend->setEntries(entries);
    }

    [[nodiscard]] vtkRectf bounds() { return m_legend->GetBoundingRect(m_painter); }

    void paint()
    {
        m_device->discs.clear();
        m_device->texts.clear();
        m_device->rectangles.clear();
        m_legend->Paint(m_painter);
    }

    /// The last painted discs and texts are inside the frame, each text right of its disc, and apart from each other.
    void expectGoodPlaces()
    {
        const vtkRectf frame = bounds();
        std::vector<vtkRectf> rows;
        const std::size_t titles = m_device->texts.size() - m_device->discs.size();
        for (std::size_t i = 0; i < m_device->discs.size(); ++i) {
            SCOPED_TRACE(i);
            const RecordingTextDevice::Disc& disc = m_device->discs[i];
            const RecordingTextDevice::Text& text = m_device->texts[i + titles];
            EXPECT_GT(text.x, disc.x + disc.radius);
            EXPECT_NEAR(text.y + 0.5F * letterHeight, disc.y, 1.0F);
            const float left = disc.x - disc.radius;
            const float right = text.x + letterWidth * static_cast<float>(text.text.size());
            const float reach = std::max(0.5F * letterHeight, disc.radius);
            rows.emplace_back(left, disc.y - reach, right - left, 2.0F * reach);
            EXPECT_TRUE(left >= frame.GetLeft() && right <= frame.GetRight());
            EXPECT_TRUE(disc.y - reach >= frame.GetBottom() && disc.y + reach <= frame.GetTop());
            for (std::size_t j = 0; j < i; ++j) {
                EXPECT_FALSE(rows[i].IntersectsWith(rows[j])) << "with " << j;
            }
        }
    }

    vtkNew<RecordingTextDevice> m_device;
    vtkNew<vtkContext2D> m_painter;
    vtkSmartPointer<CategoryLegend> m_legend = vtkSmartPointer<CategoryLegend>::New();
};

TEST_F(CategoryLegendTest, ListsTitleAndEntriesAndIsAsLargeAsTheyAre)
{
    m_legend->setTitle("Material");
    m_legend->setEntries({{"steel", {1, 2, 3}}, {"aluminium", {4, 5, 6}}});

    paint();

    EXPECT_THAT(m_device->lines(), ElementsAre("Material", "steel", "aluminium"));
    ASSERT_EQ(m_device->discs.size(), 2U);
    EXPECT_EQ(m_device->discs[0].color, (ColorBytes{1, 2, 3}));
    EXPECT_EQ(m_device->discs[1].color, (ColorBytes{4, 5, 6}));
    EXPECT_GT(m_device->texts[0].y, m_device->texts[1].y + letterHeight);
    expectGoodPlaces();
    const float padding = 5.0F;
    EXPECT_EQ(bounds().GetHeight(), 3.0F * (letterHeight + padding) + padding);
    EXPECT_EQ(bounds().GetWidth(), 2.0F * padding + 8.0F * 2.0F * letterWidth) << "Bold title.";

    m_legend->setTitle("");
    EXPECT_EQ(bounds().GetHeight(), 2.0F * (letterHeight + padding) + padding);
    m_legend->setMarkerSize(40.0F);
    paint();
    EXPECT_EQ(m_device->discs[0].radius, 20.0F);
    expectGoodPlaces();
}

TEST_F(CategoryLegendTest, IsMeasuredOncePerUpdateOrChange)
{
    const vtkNew<ChartXY> chart;
    m_legend->SetChart(chart);
    addEntries(20);
    const auto isMeasured = [this] {
        m_device->measured = 0;
        (void)bounds();
        return m_device->measured > 0;
    };

    EXPECT_TRUE(isMeasured());
    EXPECT_FALSE(isMeasured());
    chart->SetSize(vtkRectf(0.0F, 0.0F, 300.0F, 200.0F));
    EXPECT_FALSE(isMeasured());
    m_legend->Update();
    EXPECT_TRUE(isMeasured());
    m_legend->GetLabelProperties()->SetFontSize(20);
    EXPECT_TRUE(isMeasured());
    m_legend->setTitle("x");
    EXPECT_TRUE(isMeasured());
}

TEST_F(CategoryLegendTest, IsVisibleOnlyWithEntriesAndWhenWanted)
{
    m_legend->setTitle("Material");
    EXPECT_FALSE(m_legend->GetVisible());
    m_legend->Update();
    paint();
    EXPECT_THAT(m_device->rectangles, IsEmpty());
    EXPECT_THAT(m_device->texts, IsEmpty());

    addEntries(1);
    EXPECT_TRUE(m_legend->GetVisible());
    m_legend->SetVisible(false);
    EXPECT_FALSE(m_legend->GetVisible());
}

TEST_F(CategoryLegendTest, LongNamesAreShortenedBetweenCharacters)
{
    std::string euros;
    for (int i = 0; i < CategoryLegend::longestName; ++i) {
        euros += "€";
    }
    const std::string almost(CategoryLegend::longestName - 1, 'x');

    const struct
    {
        std::string name;
        std::string shown;
    } cases[] = {
        {almost + "ö", almost + "ö"},
        {almost + "xx", almost + "…"},
        {almost + "öö", almost + "…"},
        {euros + "€", euros.substr(0, euros.size() - 3) + "…"},
        {almost.substr(2) + "  more", almost.substr(2) + "…"},
        {"two\nlines", "two lines"},
    };

    for (const auto& [name, shown] : cases) {
        m_legend->setEntries({{name, {}}});
        m_legend->setTitle(name);
        paint();
        EXPECT_EQ(m_device->texts.back().text, shown);
        EXPECT_EQ(m_device->texts.front().text, shown);
    }
}

TEST_F(CategoryLegendTest, FlowsIntoColumnsThatFitTheChart)
{
    const vtkNew<ChartXY> chart;
    m_legend->SetChart(chart);
    m_legend->setTitle("Material");
    constexpr std::size_t count = 23;
    addEntries(count);

    const struct
    {
        float chartHeight;
        std::size_t columns;
    } cases[] = {
        {0.0F, 1}, // not laid out yet
        {2000.0F, 1},
        {500.0F, 2}, // 460 pixels take the title and 22 rows
        {200.0F, 4},
        {20.0F, count}, // no room at all: one row
    };

    for (const auto& [chartHeight, columns] : cases) {
        SCOPED_TRACE(chartHeight);
        chart->SetSize(vtkRectf(0.0F, 0.0F, 800.0F, chartHeight));
        m_legend->Update();

        paint();

        EXPECT_EQ(m_device->discs.size(), count);
        std::vector<float> lefts;
        for (const auto& disc : m_device->discs) {
            lefts.push_back(disc.x);
        }
        EXPECT_TRUE(std::is_sorted(lefts.begin(), lefts.end())) << "Columns are read downwards.";
        lefts.erase(std::unique(lefts.begin(), lefts.end()), lefts.end());
        EXPECT_EQ(lefts.size(), columns);
        if (chartHeight > 100.0F) {
            EXPECT_LE(bounds().GetHeight(), chartHeight - 40.0F);
        }
        expectGoodPlaces();
    }
}

TEST(CategoryLegendInChartTest, IsDrawnInTheCornerOfTheChart)
{
    OffScreenChart<ChartXY> chart(400, 300);
    vtkNew<vtkPlotPoints> plot;
    plot->SetInputData(caseTable({1, 2}, {0.0, 1.0}), 1, 2);
    plot->SetColor(0, 0, 0, 255);
    chart->AddPlot(plot);
    const auto legend = vtkSmartPointer<CategoryLegend>::New();
    chart->addLegend(legend);
    chart.render();
    EXPECT_EQ(chart.redPixels(), 0);

    legend->setTitle("Material");
    legend->setEntries({{"steel", {255, 0, 0}}, {"gypsum", {0, 0, 255}}});
    legend->setMarkerSize(20.0F);
    chart.view().GetScene()->SetDirty(true);
    chart.render();

    constexpr double disc = 3.14 * 10.0 * 10.0;
    EXPECT_NEAR(chart.redPixels(), disc, 0.15 * disc);
    const vtkRectf rect = legend->GetBoundingRect(nullptr);
    EXPECT_NEAR(rect.GetRight(), 380.0, 1.0);
    EXPECT_NEAR(rect.GetTop(), 280.0, 1.0);
}

} // namespace
