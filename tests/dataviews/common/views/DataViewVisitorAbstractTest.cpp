#include <dataviews/common/views/DataViewVisitorAbstract.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <type_traits>

class LinePlotInterface
{};

namespace {

class LinePlotVisitor : public DataViewVisitorAbstract
{
public:
    using DataViewVisitorAbstract::assertStatus;
    using DataViewVisitorAbstract::DataViewVisitorAbstract;
    using DataViewVisitorAbstract::visit;

    void visit(boost::shared_ptr<LinePlotInterface> /*view*/) override { ++m_linePlots; }

    int m_linePlots = 0;
    int m_others = 0;

protected:
    void visitAnyViewType() override { ++m_others; }
};

template <class View>
int othersAfterVisiting(LinePlotVisitor& visitor)
{
    static_cast<DataViewVisitorInterface&>(visitor).visit(boost::shared_ptr<View>());
    return visitor.m_others;
}

TEST(DataViewVisitorAbstractTest, KindsThatAreNotOverriddenEndInTheCatchAllOnceEach)
{
    LinePlotVisitor visitor;

    EXPECT_EQ(othersAfterVisiting<ImageDiffViewInterface>(visitor), 1);
    EXPECT_EQ(othersAfterVisiting<ImageMatrixViewInterface>(visitor), 2);
    EXPECT_EQ(othersAfterVisiting<LinePlotInterface>(visitor), 2);
    EXPECT_EQ(visitor.m_linePlots, 1);
    EXPECT_EQ(othersAfterVisiting<ScatterPlot2DInterface>(visitor), 3);
    EXPECT_EQ(othersAfterVisiting<ScatterPlot3DInterface>(visitor), 4);
    EXPECT_EQ(othersAfterVisiting<SelectedCasesViewInterface>(visitor), 5);
    EXPECT_EQ(othersAfterVisiting<SelectedImageViewInterface>(visitor), 6);
    EXPECT_EQ(othersAfterVisiting<TableViewInterface>(visitor), 7);
    EXPECT_EQ(visitor.m_linePlots, 1);
}

TEST(DataViewVisitorAbstractTest, ReleasesTheViewAndKeepsItsStatus)
{
    class CatchAllVisitor : public DataViewVisitorAbstract
    {
    public:
        using DataViewVisitorAbstract::assertStatus;
        using DataViewVisitorAbstract::DataViewVisitorAbstract;
    };

    CatchAllVisitor visitor(DataViewVisitorAbstract::AssertOnAnyViewType);
    const auto view = boost::make_shared<LinePlotInterface>();

    static_cast<DataViewVisitorInterface&>(visitor).visit(view);

    EXPECT_EQ(view.use_count(), 1);
    EXPECT_EQ(
        CatchAllVisitor(visitor).assertStatus(), DataViewVisitorAbstract::AssertOnAnyViewType);
    EXPECT_EQ(CatchAllVisitor().assertStatus(), 1);
    EXPECT_TRUE(std::is_abstract_v<DataViewVisitorAbstract>);
}

} // namespace
