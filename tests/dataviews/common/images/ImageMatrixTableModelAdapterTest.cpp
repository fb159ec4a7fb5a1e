#include <dataviews/common/images/ImageDecorator.h>
#include <dataviews/common/images/ImageMatrixTableModelAdapter.h>
#include <dataviews/common/images/ImageMatrixViewProperties.h>
#include <dataviews/common/images/ImageTableModel.h>
#include <dataviews/common/images/LabelMaker.h>

#include <QSignalSpy>

#include <gmock/gmock.h>

#include <tests/dataviews/common/images/imageGrid.h>

namespace {

using testing::ElementsAre;
using State = ImageMatrixTableModelAdapter::State;
using By = ImageMatrixViewProperties::RowColumnDimensionBy;
using PagesBy = ImageMatrixViewProperties::PageDimensionBy;

class Suspender : public SuspendableInterface
{
public:
    void suspend() override {}

    void resume() override {}
};

/// Rows are y, columns x, so that each cell holds two cases, an odd one and the next.
class ImageMatrixTableModelAdapterTest : public testing::Test
{
protected:
    ImageMatrixTableModelAdapterTest()
        : m_properties(boost::make_shared<ImageMatrixViewProperties>())
        , m_model(boost::make_shared<ImageTableModel>(
              m_owner, vtkSmartPointer<StudyTable>::New(), m_properties))
    {}

    std::unique_ptr<ImageMatrixTableModelAdapter> makeAdapter(
        const boost::shared_ptr<ImageFileLoaderInterface>& loader)
    {
        return std::make_unique<ImageMatrixTableModelAdapter>(
            m_model,
            loader,
            m_properties,
            boost::make_shared<LabelMaker>(),
            boost::make_shared<ImageDecorator>());
    }

    void showOddCases()
    {
        m_properties->dimensionPagesBy()->setValue(PagesBy::ByVariable);
        m_properties->pageValue()->setValue(Variant(0.0));
    }

    static QString text(const QAbstractItemModel& model, int row, int column, int role)
    {
        return model.index(row, column).data(role).toString();
    }

    ImageStudy m_study;
    Suspender m_owner;
    boost::shared_ptr<ImageMatrixViewProperties> m_properties;
    boost::shared_ptr<ImageTableModel> m_model;
};

TEST_F(ImageMatrixTableModelAdapterTest, ShowsTheFirstImageAndMarksSeveral)
{
    const auto adapter = makeAdapter(boost::make_shared<FakeLoader>());
    ASSERT_EQ(adapter->rowCount(), 2);
    ASSERT_EQ(adapter->columnCount(), 3);
    EXPECT_EQ(adapter->rowCount(adapter->index(0, 0)), 0);

    const QImage several = adapter->index(0, 1).data(Qt::DecorationRole).value<QImage>();
    showOddCases();
    const QImage one = adapter->index(0, 1).data(Qt::DecorationRole).value<QImage>();

    EXPECT_EQ(one, pictureOf("/5-front"));
    EXPECT_NE(several, one);
    EXPECT_EQ(several.pixel(30, 19), one.pixel(30, 19));
    EXPECT_FALSE(adapter->index(0, 0).data(Qt::FontRole).isValid());
    EXPECT_FALSE(adapter->data(QModelIndex(), Qt::DecorationRole).isValid());
}

TEST_F(ImageMatrixTableModelAdapterTest, TellsWhatAnImageIs)
{
    const auto adapter = makeAdapter(boost::make_shared<FakeLoader>());

    EXPECT_TRUE(adapter->index(1, 0).data(Qt::DisplayRole).toString().isNull());
    EXPECT_EQ(
        text(*adapter, 1, 0, Qt::ToolTipRole),
        QStringLiteral("Case ID: 3\nFile Name: /3-front\n2 additional image(s) at this location."));

    m_properties->showLabels()->setValue(true);
    EXPECT_EQ(text(*adapter, 1, 0, Qt::DisplayRole), QString());
    EXPECT_EQ(
        text(*adapter, 1, 0, Qt::ToolTipRole),
        QStringLiteral("Case ID: 3\nFile Name: /3-front\n2 additional image(s) at this location."));

    m_properties->variablesInLabel()->setValue(
        {Project::project().variable("x"), Project::project().variable("y")});
    EXPECT_EQ(text(*adapter, 1, 0, Qt::DisplayRole), QStringLiteral("x=1  y=20"));
    EXPECT_EQ(
        text(*adapter, 1, 0, Qt::ToolTipRole),
        QStringLiteral("Case ID: 3\nFile Name: /3-front\n\nx=1\ny=20"
                       "\n2 additional image(s) at this location."));
    adapter->labelsChanged();
    EXPECT_EQ(adapter->labelText(), QStringLiteral("x=1  y=10"));
}

TEST_F(ImageMatrixTableModelAdapterTest, NamesRowsAndColumns)
{
    const auto adapter = makeAdapter(boost::make_shared<FakeLoader>());
    const auto header = [&adapter](int section, Qt::Orientation orientation) {
        return adapter->headerData(section, orientation, Qt::DisplayRole).toString();
    };

    EXPECT_EQ(header(2, Qt::Horizontal), QStringLiteral("3"));
    EXPECT_EQ(header(1, Qt::Vertical), QStringLiteral("20"));
    EXPECT_FALSE(adapter->headerData(2, Qt::Vertical).isValid());

    m_properties->rowVar()->setValue({});
    m_properties->tagsToShow()->setValue({"side", "front"});
    m_properties->dimensionColumnsBy()->setValue(By::ByTag);
    EXPECT_EQ(adapter->rowCount(), 1);
    EXPECT_EQ(header(0, Qt::Vertical), QStringLiteral("All"));
    EXPECT_EQ(header(0, Qt::Horizontal), QStringLiteral("side"));
}

TEST_F(ImageMatrixTableModelAdapterTest, TellsCellsWithoutCasesFromCellsWithoutImages)
{
    const auto loader = boost::make_shared<FakeLoader>();
    loader->missing = {"/1-front"};
    const auto adapter = makeAdapter(loader);
    const auto state = [&adapter](int row, int column) {
        return adapter->state(adapter->index(row, column));
    };

    EXPECT_EQ(state(0, 0), State::Unreadable);
    EXPECT_EQ(state(0, 1), State::Shown);

    m_properties->dimensionPagesBy()->setValue(PagesBy::ByVariable);
    m_properties->pageValue()->setValue(Variant(1.0));
    EXPECT_EQ(state(1, 2), State::NoImages);
    EXPECT_FALSE(adapter->index(1, 2).data(Qt::DisplayRole).isValid());
    EXPECT_FALSE(adapter->index(1, 2).data(Qt::ToolTipRole).isValid());

    m_properties->rowVar()->setValue(Project::project().variable("page"));
    EXPECT_EQ(state(0, 0), State::NoCases);
}

TEST_F(ImageMatrixTableModelAdapterTest, PicturesOfAnAsynchronousLoaderAppearAsTheyArrive)
{
    const auto loader = boost::make_shared<FakeAsyncLoader>();
    const auto adapter = makeAdapter(loader);
    showOddCases();
    adapter->setImageSize({60, 60}, 1.0);
    const QModelIndex cell = adapter->index(1, 2);

    EXPECT_FALSE(cell.data(Qt::DecorationRole).isValid());
    EXPECT_EQ(adapter->state(cell), State::Loading);
    EXPECT_EQ(loader->requested["/11-front"], QSize(60, 60));

    QSignalSpy changes(adapter.get(), &QAbstractItemModel::dataChanged);
    loader->finish("/11-front");
    ASSERT_EQ(changes.size(), 1);
    EXPECT_EQ(changes.front()[0].toModelIndex(), cell);
    EXPECT_EQ(changes.front()[1].toModelIndex(), cell);
    EXPECT_EQ(cell.data(Qt::DecorationRole).value<QImage>(), pictureOf("/11-front", {60, 60}));
    EXPECT_EQ(adapter->state(cell), State::Shown);
    loader->finish("/11-front");
    EXPECT_EQ(changes.size(), 1);

    // Until it is there at another size, the former one serves.
    adapter->setImageSize({120, 120}, 2.0);
    EXPECT_FALSE(cell.data(Qt::DecorationRole).isValid());
    EXPECT_EQ(loader->requested["/11-front"], QSize(240, 240));
    EXPECT_EQ(adapter->formerPicture(cell), pictureOf("/11-front", {60, 60}));
    loader->finish("/11-front");
    EXPECT_EQ(cell.data(Qt::DecorationRole).value<QImage>().devicePixelRatio(), 2.0);
}

TEST_F(ImageMatrixTableModelAdapterTest, SaysWhyAPictureIsNotShown)
{
    const auto loader = boost::make_shared<FakeAsyncLoader>();
    loader->problems["/1-front"] = "The file does not exist";
    const auto adapter = makeAdapter(loader);
    showOddCases();
    const QModelIndex cell = adapter->index(0, 0);

    EXPECT_EQ(adapter->state(cell), State::Loading);
    loader->finish("/1-front");

    EXPECT_EQ(adapter->state(cell), State::Unreadable);
    EXPECT_EQ(
        cell.data(Qt::ToolTipRole).toString(),
        QStringLiteral("Case ID: 1\nFile Name: /1-front\nNot shown: The file does not exist"));
}

TEST_F(ImageMatrixTableModelAdapterTest, OnlyWhatIsVisibleIsWanted)
{
    const auto loader = boost::make_shared<FakeAsyncLoader>();
    const auto adapter = makeAdapter(loader);
    showOddCases();
    for (int column = 0; column < 3; ++column) {
        EXPECT_FALSE(adapter->index(0, column).data(Qt::DecorationRole).isValid());
    }

    adapter->setVisibleCells({{0, 2}, {0, 1}});

    EXPECT_THAT(loader->visible, ElementsAre("/9-front", "/5-front"));
    QSignalSpy changes(adapter.get(), &QAbstractItemModel::dataChanged);
    loader->finish("/1-front");
    EXPECT_EQ(changes.size(), 0);
    loader->finish("/5-front");
    EXPECT_EQ(changes.size(), 1);
}

} // namespace
