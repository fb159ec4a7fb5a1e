#include <analyzer/views/Chart3DBox.h>

#include <vtkContext2D.h>
#include <vtkNew.h>
#include <vtkStdString.h>
#include <vtkTextProperty.h>

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <string>

#include <tests/support/RecordingContextDevice2D.h>

namespace analyzer {

namespace {

constexpr float letterWidth = 7.0F;
constexpr float letterHeight = 14.0F;

/// Remembers which part of the scene each text covers; letters are all equally large.
class TextDevice : public RecordingContextDevice2D
{
public:
    vtkTypeMacro(TextDevice, RecordingContextDevice2D)

        static TextDevice* New();

    std::map<std::string, vtkRectf> texts;

    void DrawString(float* middle, const vtkStdString& text) override
    {
        const double angle = TextProp->GetOrientation() * std::acos(-1.0) / 180.0;
        const auto across = static_cast<float>(std::abs(std::cos(angle)));
        const auto up = static_cast<float>(std::abs(std::sin(angle)));
        const float length = letterWidth * static_cast<float>(text.size());
        const float width = length * across + letterHeight * up;
        const float height = length * up + letterHeight * across;
        texts[text] = {middle[0] - width / 2.0F, middle[1] - height / 2.0F, width, height};
    }

    void ComputeStringBounds(const vtkStdString& text, float bounds[4]) override
    {
        bounds[0] = 0.0F;
        bounds[1] = 0.0F;
        bounds[2] = letterWidth * static_cast<float>(text.size());
        bounds[3] = letterHeight;
    }
};

vtkStandardNewMacro(TextDevice);

/// What is written on a box that is seen by \p camera.
std::map<std::string, vtkRectf> textsOf(const Chart3DCamera& camera, const vtkRectf& area)
{
    Chart3DBox box;
    box.setAxes(
        {Chart3DAxis("length", {0.0, 1000.0}),
         Chart3DAxis("width", {0.0, 1000.0}),
         Chart3DAxis("height", {0.0, 100000.0})});
    const vtkNew<TextDevice> device;
    const vtkNew<vtkContext2D> painter;
    painter->Begin(device);
    box.paint(*painter, Chart3DProjection(camera, area, box.margin()));
    painter->End();
    return device->texts;
}

} // namespace

TEST(Chart3DBoxTest, TitlesStayInTheAreaWithTheirAxes)
{
    constexpr float rounding = 0.01F;
    const vtkRectf areas[] = {
        {0.0F, 0.0F, 150.0F, 400.0F}, {20.0F, 10.0F, 400.0F, 150.0F}, {0.0F, 0.0F, 600.0F, 400.0F}};

    for (const vtkRectf& area : areas) {
        for (const double azimuth : {0.0, 30.0, 200.0}) {
            for (const double elevation : {-60.0, 0.0, 25.0}) {
                const auto texts = textsOf({azimuth, elevation, 1.0, 0.0, 0.0}, area);
                for (const char* title : {"length", "width", "height"}) {
                    SCOPED_TRACE(
                        std::string(title) + " at " + std::to_string(azimuth) + ", "
                        + std::to_string(elevation) + " in " + std::to_string(area.GetWidth()));
                    const auto found = texts.find(title);
                    if (found == texts.end()) {
                        continue; // seen from its end
                    }
                    const vtkRectf& place = found->second;
                    EXPECT_GE(place.GetLeft(), area.GetLeft() - rounding);
                    EXPECT_LE(place.GetRight(), area.GetRight() + rounding);
                    EXPECT_GE(place.GetBottom(), area.GetBottom() - rounding);
                    EXPECT_LE(place.GetTop(), area.GetTop() + rounding);
                }
                EXPECT_EQ(texts.count("height"), 1U);
            }
        }
    }
}

TEST(Chart3DBoxTest, TitleGoesOutOfSightWithItsAxis)
{
    const vtkRectf area(0.0F, 0.0F, 600.0F, 400.0F);

    const auto texts = textsOf({30.0, 25.0, 4.0, 0.0, 0.0}, area);

    ASSERT_EQ(texts.count("height"), 1U);
    EXPECT_LT(texts.at("height").GetRight(), area.GetLeft());
}

} // namespace analyzer
