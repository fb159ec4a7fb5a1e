#include "imageTableModels.h"

#include <dataviews/common/images/ImageMatrixViewProperties.h>
#include <dataviews/common/images/ImageTableModel.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <vtkDoubleArray.h>
#include <vtkStringArray.h>
#include <vtkVariant.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <utility>

using namespace imageTableModels;

// The typed passes and caches against the definition of the grid, case by case over records and variants.

namespace {

using By = ImageMatrixViewProperties::RowColumnDimensionBy;
using Cell = ImageTableModel::Cell;
using PageBy = ImageMatrixViewProperties::PageDimensionBy;
using Cases = std::set<unsigned long long>;

constexpr double missing = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

const std::vector<std::string> tagNames = {"front", "side", "top", "1"};

/// The grid as it is defined, worked out anew for each answer.
class Definition
{
public:
    Definition(const ImageMatrixViewProperties& properties, vtkTable& table)
        : m_properties(properties)
        , m_table(table)
    {}

    [[nodiscard]] std::vector<Variant> rowHeaders() const
    {
        return headers(m_properties.dimensionRowsBy()->value(), m_properties.rowVar()->value());
    }

    [[nodiscard]] std::vector<Variant> columnHeaders() const
    {
        return headers(
            m_properties.dimensionColumnsBy()->value(), m_properties.columnVar()->value());
    }

    [[nodiscard]] Cases tableCases() const
    {
        Cases ids;
        for (vtkIdType row = 0; row < m_table.GetNumberOfRows(); ++row) {
            ids.insert(static_cast<unsigned long long>(
                static_cast<long long>(m_table.GetValue(row, 0).ToInt())));
        }
        return ids;
    }

    /// Whether the case \p id of the table belongs to \p cell with the headers \p row and \p column.
    [[nodiscard]] bool holds(
        unsigned long long id, const Cell& cell, const Variant& row, const Variant& column) const
    {
        const By rowsBy = m_properties.dimensionRowsBy()->value();
        const By columnsBy = m_properties.dimensionColumnsBy()->value();
        if (rowsBy == By::ByTag && columnsBy == By::ByTag) {
            return cell.first == cell.second;
        }
        const std::optional<Record> record = Project::project().record(id);
        const auto has = [&record](const WeakPtr<Variable>& variable, const Variant& value) {
            return variable.expired() || record->value(variable) == value;
        };
        return record && (rowsBy == By::ByTag || has(m_properties.rowVar()->value(), row))
            && (columnsBy == By::ByTag || has(m_properties.columnVar()->value(), column))
            && (m_properties.dimensionPagesBy()->value() != PageBy::ByVariable
                || has(m_properties.pageVar()->value(), m_properties.pageValue()->value()));
    }

    /// The files of the case \p id, which is in the cell with the headers \p row and \p column, that are there too.
    [[nodiscard]] std::vector<const AuxFile*> files(
        unsigned long long id, const Variant& row, const Variant& column) const
    {
        std::vector<const AuxFile*> found;
        const std::optional<Record> record = Project::project().record(id);
        for (const WeakPtr<AuxFile>& handle :
             record ? record->auxFiles() : std::vector<WeakPtr<AuxFile>>()) {
            const boost::shared_ptr<AuxFile> file = handle.lock();
            if ((m_properties.dimensionPagesBy()->value() != PageBy::ByTag
                 || file->hasTag(m_properties.pageValue()->value().toString()))
                && (m_properties.dimensionRowsBy()->value() != By::ByTag
                    || file->hasTag(row.toString()))
                && (m_properties.dimensionColumnsBy()->value() != By::ByTag
                    || file->hasTag(column.toString()))) {
                found.push_back(file.get());
            }
        }
        return found;
    }

private:
    [[nodiscard]] std::vector<Variant> headers(By by, const WeakPtr<Variable>& variable) const
    {
        if (by == By::ByTag) {
            const std::vector<std::string> tags = m_properties.allTagsToShow()->value();
            return {tags.begin(), tags.end()};
        }
        if (variable.expired()) {
            return {Variant(0.0)};
        }
        std::set<Variant> values;
        for (const unsigned long long id : tableCases()) {
            if (const std::optional<Record> record = Project::project().record(id)) {
                values.insert(record->value(variable));
            }
        }
        return {values.begin(), values.end()};
    }

    const ImageMatrixViewProperties& m_properties;
    vtkTable& m_table;
};

class RandomGrid
{
public:
    explicit RandomGrid(unsigned seed)
        : m_random(seed)
    {
        openStudy();
        m_properties = boost::make_shared<ImageMatrixViewProperties>();
        changeTable();
        m_model = std::make_unique<ImageTableModel>(m_owner, m_source.Get(), m_properties);
        m_model->signalModelChanged.connect([this] { ++modelChanges; });
        m_model->signalDataChanged.connect([this] { ++dataChanges; });
    }

    ~RandomGrid()
    {
        m_model.reset();
        Project nothing;
        Project::project().replaceStudy(nothing);
        UndoStack::history().clear();
    }

    RandomGrid(const RandomGrid&) = delete;
    RandomGrid& operator=(const RandomGrid&) = delete;

    void change();
    void expectDefinition();

    int modelChanges = 0;
    int dataChanges = 0;

private:
    int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(m_random); }

    template <class T>
    T oneOf(const std::vector<T>& values)
    {
        return values[static_cast<std::size_t>(below(static_cast<int>(values.size())))];
    }

    void openStudy();
    void addVariables(Project& study);
    void addFiles(Project& study);
    void changeTable();
    void changeTags();
    WeakPtr<Variable> randomVariable();
    Variant randomPageValue();

    void expectHeaders();
    void expectCell(const Cell& cell);
    void expectCellsContaining(unsigned long long id);
    void expectCasesOf(const std::vector<Cell>& cells);
    void expectCellsContainingAny(const Cases& cases);
    void expectFirstCellWithImage();

    std::mt19937 m_random;
    int m_caseCount = 0;
    Owner m_owner;
    vtkNew<TableSource> m_source;
    boost::shared_ptr<ImageMatrixViewProperties> m_properties;
    std::unique_ptr<ImageTableModel> m_model;
    std::vector<Variant> m_rows; ///< headers by definition
    std::vector<Variant> m_columns;
    Cases m_cases;
};

void RandomGrid::openStudy()
{
    Project study;
    m_caseCount = oneOf<int>({0, 1, 7, 40, 40, 150, 400});
    if (below(2) == 0) {
        study.setCaseCount(static_cast<std::size_t>(m_caseCount));
    } else {
        vtkNew<vtkIntArray> ids;
        for (int i = 0; i < m_caseCount; ++i) {
            ids->InsertNextValue(3 * i - 10);
        }
        if (below(2) == 0) {
            std::shuffle(ids->GetPointer(0), ids->GetPointer(0) + m_caseCount, m_random);
        }
        study.setCaseIDs(ids.Get());
    }
    addVariables(study);
    addFiles(study);
    Project::project().replaceStudy(study);
}

void RandomGrid::addVariables(Project& study)
{
    const std::vector<std::pair<const char*, std::vector<double>>> numbers = {
        {"real", {missing, -infinity, -2.5, -0.0, 0.0, 0.5, 1.0, infinity}},
        {"whole", {missing, -0.0, 0.0, 1.0, 2.0, 9007199254740992.0}},
        {"one", {1.0}}};
    for (const auto& [name, values] : numbers) {
        vtkNew<vtkDoubleArray> column;
        column->SetName(name);
        for (int row = 0; row < m_caseCount; ++row) {
            column->InsertNextValue(oneOf(values));
        }
        study.addVariable(column.Get(), Variable::Input);
    }
    vtkNew<vtkDoubleArray> many;
    vtkNew<vtkStringArray> texts;
    many->SetName("many");
    texts->SetName("text");
    for (int row = 0; row < m_caseCount; ++row) {
        many->InsertNextValue(below(m_caseCount) == 0 ? missing : 0.1 * (below(3000) - 1500));
        texts->InsertNextValue(
            oneOf<std::string>({"", "a", "b", "1", "longer than a short text is", "\xc3\xa4"}));
    }
    study.addVariable(many.Get(), Variable::Output);
    study.addVariable(texts.Get(), Variable::Output);
}

void RandomGrid::addFiles(Project& study)
{
    study.addTagGroup("views");
    for (const std::string& tag : tagNames) {
        study.addTag("views", tag);
    }
    const int most = oneOf<int>({1, 1, 2, 20});
    for (int row = 0; row < m_caseCount; ++row) {
        const int count = below(most) == 0 ? below(3) : 0;
        for (int i = 0; i < count && most > 1; ++i) {
            const auto file = study.addAuxFile(
                static_cast<std::size_t>(row), std::to_string(row) + "/" + std::to_string(i));
            for (const std::string& tag : tagNames) {
                study.tagAuxFile(*file, tag, below(3) == 0);
            }
        }
    }
}

void RandomGrid::changeTable()
{
    std::vector<int> ids;
    const int share = below(3);
    for (int row = 0; row < m_caseCount; ++row) {
        if (below(2) < share) {
            ids.push_back(
                static_cast<int>(Project::project().caseID(static_cast<std::size_t>(row))));
        }
    }
    if (below(3) == 0) {
        for (int i = below(5); i > 0; --i) {
            ids.push_back(oneOf<int>({-3, 0, 5000, 100000, ids.empty() ? 1 : ids.front()}));
        }
        std::shuffle(ids.begin(), ids.end(), m_random);
    }
    if (below(4) == 0) {
        m_source->setTable(&Project::project().table());
    } else {
        m_source->setCaseIDs(ids);
    }
}

void RandomGrid::changeTags()
{
    Project& project = Project::project();
    RowBitmap rows(project.caseCount());
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        rows.set(row, below(8) == 0);
    }
    project.tagCases(oneOf(tagNames), rows, below(2) == 0);
}

WeakPtr<Variable> RandomGrid::randomVariable()
{
    if (below(8) == 0) {
        vtkNew<vtkIntArray> column;
        column->SetName("of no study");
        const auto gone = boost::make_shared<Variable>(column.Get(), Variable::Input);
        return below(2) == 0 ? WeakPtr<Variable>() : WeakPtr<Variable>(gone);
    }
    return Project::project().variable(
        oneOf<std::string>({"real", "whole", "one", "many", "text", "Case ID"}));
}

Variant RandomGrid::randomPageValue()
{
    const boost::shared_ptr<Variable> variable = m_properties->pageVar()->value().lock();
    if (variable && m_caseCount > 0 && below(3) != 0) {
        return variable->value(static_cast<std::size_t>(below(m_caseCount)));
    }
    return oneOf<Variant>(
        {Variant(),
         Variant(1),
         Variant(1.0),
         Variant(-0.0),
         Variant(missing),
         Variant("1"),
         Variant("front"),
         Variant("nobody's")});
}

/// Makes one random change and checks what is told about it.
void RandomGrid::change()
{
    modelChanges = 0;
    dataChanges = 0;
    int steeringChanges = 0;
    const auto set = [&steeringChanges](const auto& property, const auto& value) {
        steeringChanges += property->value() == value ? 0 : 1;
        property->setValue(value);
    };
    switch (below(12)) {
    case 0:
    case 1:
        set(m_properties->rowVar(), randomVariable());
        break;
    case 2:
    case 3:
        set(m_properties->columnVar(), randomVariable());
        break;
    case 4:
        set(m_properties->pageVar(), randomVariable());
        break;
    case 5:
        set(m_properties->pageValue(), randomPageValue());
        break;
    case 6:
        set(m_properties->dimensionRowsBy(), below(3) == 0 ? By::ByTag : By::ByVariable);
        break;
    case 7:
        set(m_properties->dimensionColumnsBy(), below(3) == 0 ? By::ByTag : By::ByVariable);
        break;
    case 8:
        set(m_properties->dimensionPagesBy(),
            oneOf<PageBy>({PageBy::None, PageBy::ByTag, PageBy::ByVariable}));
        break;
    case 9: {
        std::vector<std::string> tags = tagNames;
        std::shuffle(tags.begin(), tags.end(), m_random);
        tags.resize(static_cast<std::size_t>(below(4)));
        m_properties->tagsToShow()->setValue(tags);
        return;
    }
    case 10:
        changeTags();
        EXPECT_EQ(modelChanges, 0);
        return;
    default:
        if (below(2) == 0) {
            changeTable();
            EXPECT_GE(modelChanges, 1);
        } else {
            UndoStack::history().undo();
        }
        return;
    }
    EXPECT_EQ(modelChanges, steeringChanges);
    EXPECT_EQ(dataChanges, 0);
}

void RandomGrid::expectDefinition()
{
    m_source->Update();
    const Definition definition(*m_properties, *m_source->GetOutput());
    m_rows = definition.rowHeaders();
    m_columns = definition.columnHeaders();
    m_cases = definition.tableCases();
    const auto cellCount = static_cast<int>(m_rows.size() * m_columns.size());
    const auto columnCount = static_cast<int>(m_columns.size());
    // Any question may be the first one after a change.
    std::vector<std::function<void()>> questions = {
        [this] { expectHeaders(); }, [this] { expectFirstCellWithImage(); }};
    const int maxCells = 60;
    for (int i = 0; i < std::min(cellCount, maxCells); ++i) {
        const int index = cellCount <= maxCells ? i : below(cellCount);
        questions.push_back([=] { expectCell({index / columnCount, index % columnCount}); });
    }
    for (int i = 0; i < 3; ++i) {
        const int id = below(3 * m_caseCount + 1) - 5;
        questions.push_back([=] {
            expectCellsContaining(static_cast<unsigned long long>(static_cast<long long>(id)));
        });
    }
    if (cellCount > 0) {
        std::vector<Cell> cells;
        for (int i = below(8); i > 0; --i) {
            const int index = below(cellCount);
            cells.emplace_back(index / columnCount, index % columnCount);
        }
        questions.push_back([=] { expectCasesOf(cells); });
    }
    std::set<unsigned long long> some;
    for (int i = below(12); i > 0; --i) {
        some.insert(static_cast<unsigned long long>(below(m_caseCount + 10)));
    }
    questions.push_back([=] { expectCellsContainingAny(some); });
    std::shuffle(questions.begin(), questions.end(), m_random);
    for (const auto& ask : questions) {
        ask();
    }
}

void RandomGrid::expectHeaders()
{
    ASSERT_EQ(m_model->rowCount(), static_cast<int>(m_rows.size()));
    ASSERT_EQ(m_model->columnCount(), static_cast<int>(m_columns.size()));
    for (int row = 0; row < m_model->rowCount(); ++row) {
        const Variant& expected = m_rows[static_cast<std::size_t>(row)];
        EXPECT_EQ(m_model->rowHeader(row).type(), expected.type());
        EXPECT_TRUE(m_model->rowHeader(row) == expected) << expected.toString();
    }
    for (int column = 0; column < m_model->columnCount(); ++column) {
        const Variant& expected = m_columns[static_cast<std::size_t>(column)];
        EXPECT_TRUE(m_model->columnHeader(column) == expected) << expected.toString();
    }
}

void RandomGrid::expectCell(const Cell& cell)
{
    const Definition definition(*m_properties, *m_source->GetOutput());
    const Variant& row = m_rows[static_cast<std::size_t>(cell.first)];
    const Variant& column = m_columns[static_cast<std::size_t>(cell.second)];
    Cases expected;
    std::vector<std::pair<unsigned long long, const AuxFile*>> expectedFiles;
    for (const unsigned long long id : m_cases) {
        if (definition.holds(id, cell, row, column)) {
            expected.insert(id);
            for (const AuxFile* file : definition.files(id, row, column)) {
                expectedFiles.emplace_back(id, file);
            }
        }
    }
    EXPECT_EQ(m_model->caseCount(cell), expected.size());
    EXPECT_EQ(m_model->caseIDs(cell), expected);
    const std::vector<AuxFileImageData>& images = m_model->images(cell);
    ASSERT_EQ(images.size(), expectedFiles.size());
    for (std::size_t i = 0; i < images.size(); ++i) {
        EXPECT_EQ(images[i].record().caseID(), expectedFiles[i].first);
        EXPECT_EQ(images[i].auxFile().lock().get(), expectedFiles[i].second);
    }
    EXPECT_EQ(&m_model->images(cell), &images);
    EXPECT_EQ(&m_model->caseIDs(cell), &m_model->caseIDs(cell));
}

void RandomGrid::expectCellsContaining(unsigned long long id)
{
    const Definition definition(*m_properties, *m_source->GetOutput());
    std::vector<Cell> expected;
    for (int r = 0; m_cases.count(id) != 0 && r < static_cast<int>(m_rows.size()); ++r) {
        for (int c = 0; c < static_cast<int>(m_columns.size()); ++c) {
            if (definition.holds(
                    id,
                    {r, c},
                    m_rows[static_cast<std::size_t>(r)],
                    m_columns[static_cast<std::size_t>(c)])) {
                expected.emplace_back(r, c);
            }
        }
    }
    EXPECT_EQ(m_model->cellsContaining(id), expected);
}

void RandomGrid::expectCasesOf(const std::vector<Cell>& cells)
{
    Cases expected;
    for (const Cell& cell : cells) {
        const Cases& cases = m_model->caseIDs(cell);
        expected.insert(cases.begin(), cases.end());
    }
    EXPECT_EQ(m_model->caseIDsOf(cells), expected);
}

void RandomGrid::expectCellsContainingAny(const Cases& cases)
{
    std::set<Cell> expected;
    for (const unsigned long long id : cases) {
        for (const Cell& cell : m_model->cellsContaining(id)) {
            expected.insert(cell);
        }
    }
    EXPECT_EQ(
        m_model->cellsContainingAny(cases), std::vector<Cell>(expected.begin(), expected.end()));
}

void RandomGrid::expectFirstCellWithImage()
{
    const Definition definition(*m_properties, *m_source->GetOutput());
    std::vector<unsigned long long> casesWithFiles;
    for (const unsigned long long id : m_cases) {
        const std::optional<Record> record = Project::project().record(id);
        if (record && !record->auxFiles().empty()) {
            casesWithFiles.push_back(id);
        }
    }
    std::optional<Cell> expected;
    for (int r = 0; !expected && r < static_cast<int>(m_rows.size()); ++r) {
        const Variant& row = m_rows[static_cast<std::size_t>(r)];
        for (int c = 0; !expected && c < static_cast<int>(m_columns.size()); ++c) {
            const Variant& column = m_columns[static_cast<std::size_t>(c)];
            for (const unsigned long long id : casesWithFiles) {
                if (definition.holds(id, {r, c}, row, column)
                    && !definition.files(id, row, column).empty()) {
                    expected = Cell(r, c);
                }
            }
        }
    }
    EXPECT_EQ(m_model->firstCellWithImage(), expected);
}

TEST(ImageTableModelPropertyTest, AnswersAsDefinedAfterAnySequenceOfChanges)
{
    constexpr unsigned studies = 120;
    constexpr int changes = 25;
    for (unsigned seed = 0; seed < studies; ++seed) {
        RandomGrid grid(seed);
        for (int step = 0; step < changes; ++step) {
            SCOPED_TRACE("study " + std::to_string(seed) + ", change " + std::to_string(step));
            grid.expectDefinition();
            grid.change();
            if (HasFailure()) {
                return;
            }
        }
    }
}

} // namespace
