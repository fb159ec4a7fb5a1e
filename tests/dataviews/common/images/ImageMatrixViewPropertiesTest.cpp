#include <dataviews/common/images/ImageMatrixViewProperties.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <gtest/gtest.h>

#include <iterator>

#include <tests/support/SmallStudy.h>

namespace {

using PageDimensionBy = ImageMatrixViewProperties::PageDimensionBy;
using RowColumnDimensionBy = ImageMatrixViewProperties::RowColumnDimensionBy;

WeakPtr<Variable> variable(const char* name)
{
    return Project::project().variable(name);
}

class ImageMatrixViewPropertiesTest : public testing::Test
{
protected:
    ImageMatrixViewPropertiesTest()
    {
        m_study.add("result", {9.0, 8.0, 7.0})
            .add("width", {4.0, 5.0, 6.0}, Variable::Input)
            .add("constant", {1.0, 1.0, 1.0}, Variable::Input)
            .add("height", {0.5, 2.5, 1.5}, Variable::Input)
            .add("angle", {30.0, 10.0, 20.0}, Variable::Input)
            .add("material", {"steel", "brass", "steel"})
            .open();
        Project::project().addTagGroup("side");
        Project::project().addTag("side", "left");
        Project::project().addTag("side", "right");
        history().clear();
    }

    ~ImageMatrixViewPropertiesTest() override { history().clear(); }

    static QUndoStack& history() { return UndoStack::history(); }

    SmallStudy m_study{3};
};

TEST_F(ImageMatrixViewPropertiesTest, StartsWithInputsForColumnsRowsAndPagesInThisOrder)
{
    const ImageMatrixViewProperties properties;

    EXPECT_EQ(properties.columnVar()->value(), variable("width"));
    EXPECT_EQ(properties.rowVar()->value(), variable("height"));
    EXPECT_EQ(properties.pageVar()->value(), variable("angle"));
    EXPECT_EQ(properties.pageValue()->value(), Variant(10));
    EXPECT_EQ(properties.dimensionRowsBy()->value(), RowColumnDimensionBy::ByVariable);
    EXPECT_EQ(properties.dimensionColumnsBy()->value(), RowColumnDimensionBy::ByVariable);
    EXPECT_EQ(properties.dimensionPagesBy()->value(), PageDimensionBy::None);
    EXPECT_EQ(history().count(), 0);
}

TEST_F(ImageMatrixViewPropertiesTest, StartsWithoutVariablesWhereThereAreNone)
{
    Project nothing;
    Project::project().replaceStudy(nothing);
    const ImageMatrixViewProperties properties;

    EXPECT_TRUE(properties.columnVar()->value().isNull());
    EXPECT_TRUE(properties.rowVar()->value().isNull());
    EXPECT_TRUE(properties.pageVar()->value().isNull());
    EXPECT_TRUE(properties.pageValue()->value().isEmpty());
}

TEST_F(ImageMatrixViewPropertiesTest, ChangesAreNamedAndOnlyPageValuesMerge)
{
    ImageMatrixViewProperties properties;
    const WeakPtr<Variable> result = variable("result");

    properties.rowVar()->setValue(result);
    properties.dimensionRowsBy()->setValue(RowColumnDimensionBy::ByTag);
    properties.dimensionRowsBy()->setValue(RowColumnDimensionBy::ByVariable);
    properties.columnVar()->setValue(result);
    properties.dimensionColumnsBy()->setValue(RowColumnDimensionBy::ByTag);
    properties.pageVar()->setValue(result);
    properties.pageValue()->setValue(Variant(7));
    properties.pageValue()->setValue(Variant(8));
    properties.zoom()->setValue(30);
    properties.pageValue()->setValue(Variant(9));
    properties.dimensionPagesBy()->setValue(PageDimensionBy::ByTag);

    const char* expected[] = {
        "Change Row Variable",
        "Change Dimension Rows By",
        "Change Dimension Rows By",
        "Change Column Variable",
        "Change Dimension Columns By",
        "Change Page Variable",
        "Change Page Variable Value",
        "Change Zoom",
        "Change Page Variable Value",
        "Change Dimension Pages By"};
    ASSERT_EQ(history().count(), static_cast<int>(std::size(expected)));
    for (int i = 0; i < history().count(); ++i) {
        EXPECT_EQ(history().text(i).toStdString(), expected[i]) << i;
    }
}

TEST_F(ImageMatrixViewPropertiesTest, ChoosingPagesStartsAtTheFirstPageInOneStep)
{
    struct Case
    {
        const char* name;
        PageDimensionBy by;
        const char* pageVariable;
        std::vector<std::string> tags;
        Variant expected;
    };

    const Case cases[] = {
        {"variable", PageDimensionBy::ByVariable, "angle", {"right"}, Variant(10)},
        {"texts", PageDimensionBy::ByVariable, "material", {}, Variant("brass")},
        {"no variable", PageDimensionBy::ByVariable, "unknown", {}, Variant()},
        {"tag", PageDimensionBy::ByTag, "angle", {"right", "left"}, Variant("right")},
        {"no tag", PageDimensionBy::ByTag, "angle", {}, Variant()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ImageMatrixViewProperties properties;
        properties.pageVar()->setValue(variable(c.pageVariable));
        properties.tagsToShow()->setValue(c.tags);
        properties.pageValue()->setValue(Variant(20));
        history().clear();

        properties.choosePages(c.by);
        EXPECT_EQ(properties.dimensionPagesBy()->value(), c.by);
        EXPECT_EQ(properties.pageValue()->value(), c.expected);
        ASSERT_EQ(history().count(), 1);
        EXPECT_EQ(history().text(0).toStdString(), "Change Dimension Pages By");

        history().undo();
        EXPECT_EQ(properties.dimensionPagesBy()->value(), PageDimensionBy::None);
        EXPECT_EQ(properties.pageValue()->value(), Variant(20));
        history().redo();
        EXPECT_EQ(properties.dimensionPagesBy()->value(), c.by);
        EXPECT_EQ(properties.pageValue()->value(), c.expected);

        properties.choosePages(c.by);
        EXPECT_EQ(history().count(), 1) << "nothing was left to change";

        // Paging through afterwards is a step of its own.
        properties.pageValue()->setValue(Variant(30));
        EXPECT_EQ(history().count(), 2);
        properties.choosePages(PageDimensionBy::None);
        EXPECT_EQ(properties.pageValue()->value(), Variant(30));
        EXPECT_EQ(history().count(), 3);
    }
}

TEST_F(ImageMatrixViewPropertiesTest, ChoosingThePageVariableMovesToItsFirstPageWhereItCounts)
{
    for (const auto by :
         {PageDimensionBy::None, PageDimensionBy::ByTag, PageDimensionBy::ByVariable}) {
        SCOPED_TRACE(static_cast<int>(by));
        ImageMatrixViewProperties properties;
        properties.dimensionPagesBy()->setValue(by);
        history().clear();
        const Variant expected(by == PageDimensionBy::ByVariable ? 7 : 10);

        properties.choosePageVariable(variable("angle"));
        EXPECT_EQ(history().count(), 0) << "nothing changed";

        properties.choosePageVariable(variable("result"));
        EXPECT_EQ(properties.pageVar()->value(), variable("result"));
        EXPECT_EQ(properties.pageValue()->value(), expected);
        ASSERT_EQ(history().count(), 1);
        EXPECT_EQ(history().text(0).toStdString(), "Change Page Variable");

        history().undo();
        EXPECT_EQ(properties.pageVar()->value(), variable("angle"));
        EXPECT_EQ(properties.pageValue()->value(), Variant(10));
        history().redo();
        EXPECT_EQ(properties.pageVar()->value(), variable("result"));
        EXPECT_EQ(properties.pageValue()->value(), expected);
    }
}

} // namespace
