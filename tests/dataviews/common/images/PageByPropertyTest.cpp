#include <dataviews/common/images/PageByProperty.h>

#include <dataviews/platform/undo/UndoStack.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

using PageDimensionBy = ImageMatrixViewProperties::PageDimensionBy;

TEST(PageByPropertyTest, IsOnExactlyForPagesByVariableAndOffEndsAllPages)
{
    ImageMatrixViewProperties properties;
    PageByProperty pageBy(properties);
    const auto dimension = properties.dimensionPagesBy();
    for (const auto by :
         {PageDimensionBy::None, PageDimensionBy::ByTag, PageDimensionBy::ByVariable}) {
        SCOPED_TRACE(static_cast<int>(by));
        dimension->setValue(by);
        EXPECT_EQ(pageBy.value(), by == PageDimensionBy::ByVariable);

        pageBy.setValue(false);
        EXPECT_EQ(dimension->value(), PageDimensionBy::None);

        dimension->setValue(by);
        pageBy.setValue(true);
        EXPECT_EQ(dimension->value(), PageDimensionBy::ByVariable);
    }
    UndoStack::history().clear();
}

TEST(PageByPropertyTest, TellsAndRecordsChangesOnlyAndOutlivesTheProperties)
{
    auto properties = std::make_unique<ImageMatrixViewProperties>();
    PageByProperty pageBy(*properties);
    int told = 0;
    pageBy.valueChanged.connect([&told](bool) { ++told; });
    UndoStack::history().clear();

    pageBy.setValue(false);
    EXPECT_EQ(told, 0);
    properties.reset();
    pageBy.setValue(true);
    pageBy.setValue(true);

    EXPECT_EQ(told, 1);
    EXPECT_TRUE(pageBy.value());
    EXPECT_EQ(UndoStack::history().count(), 1);
    UndoStack::history().clear();
}

} // namespace
