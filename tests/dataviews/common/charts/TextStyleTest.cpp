#include <dataviews/common/charts/TextStyle.h>

#include <vtkNew.h>
#include <vtkTextProperty.h>

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(TextStyleTest, CarriesAStyleFromOneTextToAnother)
{
    const vtkNew<vtkTextProperty> source;
    source->SetFontFamilyToTimes();
    source->SetFontSize(31);
    source->SetBold(1);
    source->SetItalic(1);
    source->SetShadow(1);
    source->SetColor(0.25, 0.5, 0.75);
    source->SetJustificationToRight();
    const vtkNew<vtkTextProperty> target;
    target->SetJustificationToCentered();

    TextStyle style(*source);
    style.writeTo(*target);

    EXPECT_EQ(std::string(target->GetFontFamilyAsString()), "Times");
    EXPECT_EQ(target->GetFontSize(), 31);
    EXPECT_EQ(target->GetBold(), 1);
    EXPECT_EQ(target->GetItalic(), 1);
    EXPECT_EQ(target->GetShadow(), 1);
    EXPECT_EQ(target->GetColor()[2], 0.75);
    EXPECT_EQ(target->GetJustification(), VTK_TEXT_CENTERED) << "Not a part of the style.";

    style.setItalic(false);
    style.setShadow(false);
    style.setColor({1.0, 0.0, 0.0});
    style.writeTo(*target);

    EXPECT_EQ(target->GetBold(), 1);
    EXPECT_EQ(target->GetItalic(), 0);
    EXPECT_EQ(target->GetShadow(), 0);
    EXPECT_EQ(target->GetColor()[0], 1.0);
    EXPECT_EQ(source->GetItalic(), 1) << "A style has no tie to where it was read.";
}

} // namespace
