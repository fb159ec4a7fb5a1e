#include "imageTableModels.h"

#include <dataviews/common/images/ImageMatrixViewProperties.h>
#include <dataviews/common/images/ImageTableModel.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <vtkCommand.h>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include <tests/support/SmallStudy.h>

using namespace imageTableModels;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using By = ImageMatrixViewProperties::RowColumnDimensionBy;
using Cell = ImageTableModel::Cell;
using PageBy = ImageMatrixViewProperties::PageDimensionBy;

/// Cases 1 to 6; case 1 has a front and a side image, case 4 a front image.
class ImageTableModelTest : public testing::Test
{
protected:
    ImageTableModelTest()
    {
        m_study.add("width", {1.0, 1.0, 2.0, 2.0, 3.0, 3.0}, Variable::Input)
            .add("height", {0.5, 1.5, 0.5, 1.5, 0.5, 1.5}, Variable::Input)
            .add("size", {1.0, 2.0, 3.0, 1.0, 2.0, 3.0})
            .open();
        Project& project = Project::project();
        project.addTagGroup("views");
        project.addTag("views", "front");
        project.addTag("views", "side");
        project.tagAuxFile(*project.addAuxFile(0, "/1/front.png"), "front", true);
        project.tagAuxFile(*project.addAuxFile(0, "/1/side.png"), "side", true);
        project.tagAuxFile(*project.addAuxFile(3, "/4/front.png"), "front", true);
        m_properties = boost::make_shared<ImageMatrixViewProperties>();
        m_properties->rowVar()->setValue(project.variable("height"));
        m_properties->columnVar()->setValue(project.variable("width"));
        m_properties->pageVar()->setValue(project.variable("size"));
        m_properties->pageValue()->setValue(Variant(1));
        m_source->setTable(&project.table());
        m_model = std::make_unique<ImageTableModel>(m_owner, m_source.Get(), m_properties);
        m_model->signalModelChanged.connect([this] { ++m_modelChanges; });
        m_model->signalDataChanged.connect([this] { ++m_dataChanges; });
    }

    ~ImageTableModelTest() override { UndoStack::history().clear(); }

    void openOtherStudy()
    {
        Project other;
        other.setCaseCount(2);
        Project::project().replaceStudy(other);
    }

    std::vector<std::string> paths(const Cell& cell)
    {
        std::vector<std::string> result;
        for (const AuxFileImageData& image : m_model->images(cell)) {
            result.push_back(image.filePath());
        }
        return result;
    }

    SmallStudy m_study{6};
    Owner m_owner;
    vtkNew<TableSource> m_source;
    boost::shared_ptr<ImageMatrixViewProperties> m_properties;
    std::unique_ptr<ImageTableModel> m_model;
    int m_modelChanges = 0;
    int m_dataChanges = 0;
};

TEST_F(ImageTableModelTest, ShowsTheCasesThatHaveTheValuesOfACell)
{
    EXPECT_EQ(m_model->rowCount(), 2);
    EXPECT_EQ(m_model->columnCount(), 3);
    EXPECT_EQ(m_model->rowHeader(1), Variant(1.5));
    EXPECT_EQ(m_model->columnHeader(2).type(), Variant::Type::Integer);
    EXPECT_THAT(m_model->caseIDs({1, 1}), ElementsAre(4U));
    EXPECT_THAT(paths({0, 0}), ElementsAre("/1/front.png", "/1/side.png"));
    EXPECT_THAT(m_model->cellsContaining(6), ElementsAre(Cell(1, 2)));
    EXPECT_EQ(m_model->firstCellWithImage(), Cell(0, 0));
    EXPECT_EQ(&m_model->owner(), &m_owner);
}

TEST_F(ImageTableModelTest, RefusesCellsOutsideTheGrid)
{
    const auto expectRefusal = [](const auto& ask) {
        try {
            ask();
            ADD_FAILURE() << "no exception";
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "invalid vector<T> subscript");
        }
    };
    for (const Cell& cell : {Cell(2, 0), Cell(0, 3), Cell(-1, 0), Cell(0, -1)}) {
        SCOPED_TRACE(testing::PrintToString(cell));
        expectRefusal([&] { (void)m_model->caseIDs(cell); });
        expectRefusal([&] { (void)m_model->caseCount(cell); });
        if (cell.first < 0 || cell.second < 0) {
            EXPECT_THAT(m_model->images(cell), IsEmpty());
        } else {
            expectRefusal([&] { (void)m_model->images(cell); });
        }
    }
    for (const int index : {-1, 3}) {
        expectRefusal([&] { (void)m_model->rowHeader(index); });
        expectRefusal([&] { (void)m_model->columnHeader(index); });
    }
}

TEST_F(ImageTableModelTest, ChangesOfTagsTellOfOtherImagesOnly)
{
    m_properties->dimensionPagesBy()->setValue(PageBy::ByTag);
    m_properties->pageValue()->setValue(Variant("side"));
    m_modelChanges = 0;
    EXPECT_THAT(paths({1, 1}), IsEmpty());

    Project& project = Project::project();
    project.tagAuxFile(*project.auxFiles(3).front(), "side", true);

    EXPECT_EQ(m_dataChanges, 1);
    EXPECT_EQ(m_modelChanges, 0);
    EXPECT_THAT(paths({1, 1}), ElementsAre("/4/front.png"));
}

TEST_F(ImageTableModelTest, ShownTagsMatterOnlyWhereADimensionIsByTag)
{
    const std::vector<std::string> one = {"front"};
    const std::vector<std::string> two = {"front", "side"};
    m_properties->tagsToShow()->setValue(one);
    EXPECT_EQ(m_modelChanges, 0);

    m_properties->dimensionColumnsBy()->setValue(By::ByTag);
    EXPECT_EQ(m_model->columnCount(), 1);
    m_properties->tagsToShow()->setValue(two);

    EXPECT_EQ(m_modelChanges, 2);
    EXPECT_EQ(m_model->columnCount(), 2);
    EXPECT_THAT(paths({0, 1}), ElementsAre("/1/side.png"));
}

TEST_F(ImageTableModelTest, FollowsTheTable)
{
    EXPECT_EQ(m_model->columnCount(), 3);

    m_source->setCaseIDs({4, 2, 2, 77});

    EXPECT_EQ(m_modelChanges, 1);
    EXPECT_EQ(m_model->columnCount(), 2);
    EXPECT_THAT(m_model->caseIDs({0, 0}), ElementsAre(2U));
    EXPECT_THAT(m_model->cellsContaining(77), IsEmpty());
}

TEST_F(ImageTableModelTest, ATableThatChangesWhileItIsMadeIsNoFurtherChange)
{
    m_source->executed = [this] { m_source->Modified(); };
    m_source->setCaseIDs({1, 2});
    m_modelChanges = 0;

    EXPECT_EQ(m_model->columnCount(), 1);

    EXPECT_EQ(m_modelChanges, 0);
}

TEST_F(ImageTableModelTest, ASuspendedModelGoesOnWithWhatItKnewUntilReset)
{
    m_model->suspend();
    m_properties->dimensionPagesBy()->setValue(PageBy::ByVariable);
    m_properties->rowVar()->setValue(WeakPtr<Variable>());
    EXPECT_EQ(m_model->rowCount(), 2);
    EXPECT_EQ(m_model->caseCount({0, 2}), 1U);
    m_source->setCaseIDs({1});
    Project::project().addTag("views", "top");
    EXPECT_EQ(m_model->columnCount(), 3);
    m_model->resume();
    m_model->resume();

    EXPECT_EQ(m_model->rowCount(), 2);
    EXPECT_EQ(m_modelChanges, 0);
    EXPECT_EQ(m_dataChanges, 0);
    m_model->reset();
    EXPECT_EQ(m_modelChanges, 1);
    EXPECT_EQ(m_model->rowCount(), 1);
    EXPECT_EQ(m_model->columnCount(), 1);
    m_source->setCaseIDs({1, 4});
    EXPECT_EQ(m_modelChanges, 2);
}

TEST_F(ImageTableModelTest, LetsGoOfAClosedStudyEvenWhileSuspended)
{
    EXPECT_EQ(m_model->images({0, 0}).size(), 2U);
    const WeakPtr<AuxFile> file = m_model->images({0, 0}).front().auxFile();
    m_model->suspend();

    openOtherStudy();

    EXPECT_TRUE(file.expired());
    EXPECT_EQ(m_modelChanges, 0);
    EXPECT_EQ(m_model->rowHeader(0), Variant(0.0));
    EXPECT_THAT(m_model->images({0, 0}), IsEmpty());
    m_model->resume();
    openOtherStudy();
    EXPECT_GE(m_modelChanges, 1);
}

TEST_F(ImageTableModelTest, NothingOfAClosedStudyIsGivenToOneWhoHearsOfItEarlier)
{
    // Connected before the model's own slot.
    m_model.reset();
    std::size_t images = 99;
    const boost::signals2::scoped_connection earlier =
        Project::project().signalProjectChanged.connect([&](const ProjectChange&) {
            images = m_model->images({0, 0}).size();
        });
    m_model = std::make_unique<ImageTableModel>(m_owner, m_source.Get(), m_properties);
    EXPECT_EQ(m_model->images({0, 0}).size(), 2U);

    openOtherStudy();

    EXPECT_EQ(images, 0U);
}

TEST_F(ImageTableModelTest, LeavesTheSourceWhenItGoes)
{
    m_model.reset();

    EXPECT_FALSE(m_source->HasObserver(vtkCommand::ModifiedEvent));
    m_source->Modified();
    Project::project().addTag("views", "top");
    m_properties->dimensionRowsBy()->setValue(By::ByTag);
}

TEST_F(ImageTableModelTest, AMillionCellsCostNoMoreThanTheirCases)
{
    constexpr int count = 3000;
    Project study;
    study.setCaseCount(count);
    study.addAuxFile(count - 1, "/last.png");
    Project::project().replaceStudy(study);
    m_properties->rowVar()->setValue(Project::project().caseIDVariable());
    m_properties->columnVar()->setValue(Project::project().caseIDVariable());
    m_source->setTable(&Project::project().table());

    EXPECT_EQ(m_model->rowCount(), count);
    EXPECT_EQ(m_model->columnCount(), count);
    EXPECT_EQ(m_model->firstCellWithImage(), Cell(count - 1, count - 1));
    EXPECT_THAT(m_model->caseIDs({7, 7}), ElementsAre(8U));
    EXPECT_EQ(m_model->caseCount({7, 8}), 0U);
    EXPECT_THAT(m_model->cellsContaining(1000), ElementsAre(Cell(999, 999)));
}

TEST_F(ImageTableModelTest, ManyCellsKeepTheirCasesInOrder)
{
    constexpr int count = 3000;
    constexpr int side = 100;
    std::vector<double> rows;
    std::vector<double> columns;
    for (int i = 0; i < count; ++i) {
        rows.push_back(i % side);
        columns.push_back(i / 2 % side);
    }
    SmallStudy study(count);
    study.add("rows", rows).add("columns", columns).open();
    Project& project = Project::project();
    project.addAuxFile(407, "/third.png");
    project.addAuxFile(7, "/first.png");
    project.addAuxFile(207, "/second.png");
    m_properties->rowVar()->setValue(project.variable("rows"));
    m_properties->columnVar()->setValue(project.variable("columns"));
    m_source->setTable(&project.table());

    EXPECT_EQ(m_model->caseCount({7, 3}), 15U);
    EXPECT_EQ(m_model->caseCount({7, 53}), 15U);
    EXPECT_EQ(m_model->caseCount({7, 4}), 0U);
    EXPECT_THAT(paths({7, 3}), ElementsAre("/first.png", "/second.png", "/third.png"));
    EXPECT_EQ(m_model->firstCellWithImage(), Cell(7, 3));
}

} // namespace
