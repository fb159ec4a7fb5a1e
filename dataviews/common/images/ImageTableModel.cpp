#include <dataviews/common/images/CaseGrid.h>
#include <dataviews/common/images/CellImages.h>
#include <dataviews/common/images/GridSettings.h>
#include <dataviews/common/images/ImageMatrixViewProperties.h>
#include <dataviews/common/images/ImageTableModel.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/selection/CaseSet.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>
#include <dataviews/platform/vtk/vtkCvCommandProxy.h>

#include <QScopedValueRollback>

#include <vtkCommand.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <boost/unordered_map.hpp>

#include <utility>

class ImageTableModel::Implementation
{
public:
    Implementation(
        ImageTableModel& model,
        SuspendableInterface& owner,
        vtkSmartPointer<vtkTableAlgorithm> source,
        boost::shared_ptr<ImageMatrixViewProperties> properties);
    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;
    ~Implementation();

    void suspend();
    void resume();
    void reset();

    [[nodiscard]] SuspendableInterface& owner() const { return m_owner; }

    /// The grid, after whatever has to be computed for it.
    const CaseGrid& grid();
    const std::vector<AuxFileImageData>& images(const Cell& cell);
    const std::set<unsigned long long>& caseIDs(const Cell& cell);
    std::size_t caseCount(const Cell& cell);
    std::optional<Cell> firstCellWithImage();

private:
    void listenToProperties();
    void observeSource();
    void leaveSource();
    void settingsChanged();
    void tableChanged();
    void projectChanged(bool isOtherStudy);
    void forgetStudy();
    void forgetCells();
    vtkTable* updatedTable();

    ImageTableModel& m_model;
    SuspendableInterface& m_owner;
    vtkSmartPointer<vtkTableAlgorithm> m_source;
    boost::shared_ptr<ImageMatrixViewProperties> m_properties;
    vtkSmartPointer<vtkCvCommandProxy> m_command;
    unsigned long m_observer = 0;
    bool m_isSuspended = false;
    bool m_isUpdatingSource = false;

    /// As they were at the last change that was noticed: a suspended model goes on with them.
    GridSettings m_settings;
    CaseGrid m_grid;
    bool m_isGridCurrent = false;
    CellImages m_cellImages;
    // Nodes, so that references into them last.
    boost::unordered_map<Cell, std::set<unsigned long long>> m_caseIDs; ///< by representative cell
    boost::unordered_map<Cell, std::size_t> m_caseCounts; ///< by representative cell
    boost::unordered_map<Cell, std::vector<AuxFileImageData>> m_images;

    SignalConnectionCollection
        m_projectConnections; ///< never blocked: closed studies must be let go of
    SignalConnectionCollection m_connections;
};

ImageTableModel::Implementation::Implementation(
    ImageTableModel& model,
    SuspendableInterface& owner,
    vtkSmartPointer<vtkTableAlgorithm> source,
    boost::shared_ptr<ImageMatrixViewProperties> properties)
    : m_model(model)
    , m_owner(owner)
    , m_source(std::move(source))
    , m_properties(std::move(properties))
    , m_command(vtkCvCommandProxy::New([this] { tableChanged(); }))
    , m_settings(GridSettings::of(*m_properties))
    , m_cellImages(m_grid)
{
    m_projectConnections.add(Project::project().signalProjectChanged.connect(
        [this](const ProjectChange& change) { projectChanged(change.studyReplaced); }));
    listenToProperties();
    observeSource();
}

ImageTableModel::Implementation::~Implementation()
{
    // VTK may hold the command until an event that it is just sending is over.
    m_command->setCallback({});
    leaveSource();
}

void ImageTableModel::Implementation::listenToProperties()
{
    const auto listenTo = [this](const auto& property) {
        m_connections.add(
            property->valueChanged.connect([this](const auto&) { settingsChanged(); }));
    };
    listenTo(m_properties->rowVar());
    listenTo(m_properties->columnVar());
    listenTo(m_properties->pageVar());
    listenTo(m_properties->dimensionRowsBy());
    listenTo(m_properties->dimensionColumnsBy());
    listenTo(m_properties->dimensionPagesBy());
    listenTo(m_properties->pageValue());
    m_connections.add(m_properties->allTagsToShow()->valueChanged.connect(
        [this](const std::vector<std::string>&) {
            if (m_settings.useTags()) {
                settingsChanged();
            }
        }));
}

void ImageTableModel::Implementation::observeSource()
{
    if (m_observer == 0) {
        m_observer = m_source->AddObserver(vtkCommand::ModifiedEvent, m_command, 0.0F);
    }
}

void ImageTableModel::Implementation::leaveSource()
{
    if (m_observer != 0) {
        m_source->RemoveObserver(std::exchange(m_observer, 0));
    }
}

void ImageTableModel::Implementation::suspend()
{
    m_isSuspended = true;
    m_connections.block();
    leaveSource();
}

void ImageTableModel::Implementation::resume()
{
    m_isSuspended = false;
    m_connections.unblock();
    observeSource();
}

void ImageTableModel::Implementation::reset()
{
    m_grid.forgetTable();
    settingsChanged();
}

void ImageTableModel::Implementation::settingsChanged()
{
    m_settings = GridSettings::of(*m_properties);
    forgetCells();
    m_model.signalModelChanged();
}

void ImageTableModel::Implementation::tableChanged()
{
    if (m_isUpdatingSource) {
        return; // what is being asked for now
    }
    m_grid.forgetTable();
    forgetCells();
    m_model.signalModelChanged();
}

void ImageTableModel::Implementation::projectChanged(bool isOtherStudy)
{
    if (isOtherStudy) {
        forgetStudy();
        if (!m_isSuspended) {
            settingsChanged();
        }
    } else if (!m_isSuspended) {
        m_images.clear();
        m_model.signalDataChanged();
    }
}

void ImageTableModel::Implementation::forgetStudy()
{
    m_grid.forget();
    m_cellImages.forget();
    forgetCells();
}

void ImageTableModel::Implementation::forgetCells()
{
    m_isGridCurrent = false;
    m_caseIDs.clear();
    m_caseCounts.clear();
    m_images.clear();
}

vtkTable* ImageTableModel::Implementation::updatedTable()
{
    if (!m_isUpdatingSource) {
        const QScopedValueRollback<bool> updating(m_isUpdatingSource, true);
        m_source->Update();
    }
    return m_source->GetOutput();
}

const CaseGrid& ImageTableModel::Implementation::grid()
{
    // Another listener may ask before the project has told of its new study here.
    if (m_isGridCurrent && !m_grid.isOfOpenStudy()) {
        forgetStudy();
    }
    if (!m_isGridCurrent) {
        m_grid.update(m_settings, updatedTable());
        const bool isPageByTag = m_settings.pagesBy == GridSettings::PageBy::ByTag;
        m_cellImages.setPageTag(
            isPageByTag ? std::make_optional(m_settings.pageValue.toString()) : std::nullopt);
        m_isGridCurrent = true;
    }
    return m_grid;
}

const std::vector<AuxFileImageData>& ImageTableModel::Implementation::images(const Cell& cell)
{
    static const std::vector<AuxFileImageData> none;
    if (cell.first < 0 || cell.second < 0) {
        return none;
    }
    grid().checkCell(cell);
    const auto place = m_images.find(cell);
    return place != m_images.end()
        ? place->second
        : m_images.emplace(cell, m_cellImages.images(cell)).first->second;
}

const std::set<unsigned long long>& ImageTableModel::Implementation::caseIDs(const Cell& cell)
{
    grid().checkCell(cell);
    // Of cells that differ in tags alone, one keeps the set: it may have a million members.
    const Cell holder = m_grid.representative(cell);
    const auto place = m_caseIDs.find(holder);
    return place != m_caseIDs.end()
        ? place->second
        : m_caseIDs.emplace(holder, m_grid.caseIDs(holder)).first->second;
}

std::size_t ImageTableModel::Implementation::caseCount(const Cell& cell)
{
    grid().checkCell(cell);
    const Cell holder = m_grid.representative(cell);
    const auto place = m_caseCounts.find(holder);
    return place != m_caseCounts.end()
        ? place->second
        : m_caseCounts.emplace(holder, m_grid.caseCount(holder)).first->second;
}

std::optional<ImageTableModel::Cell> ImageTableModel::Implementation::firstCellWithImage()
{
    grid();
    return m_cellImages.firstCell();
}

ImageTableModel::ImageTableModel(
    SuspendableInterface& owner,
    vtkSmartPointer<vtkTableAlgorithm> source,
    boost::shared_ptr<ImageMatrixViewProperties> properties)
    : signalModelChanged([this] { signalModelChangedConnected(); })
    , signalDataChanged([this] { signalDataChangedConnected(); })
    , m_implementation(
          std::make_unique<Implementation>(*this, owner, std::move(source), std::move(properties)))
{}

ImageTableModel::~ImageTableModel() = default;

void ImageTableModel::suspend()
{
    m_implementation->suspend();
}

void ImageTableModel::resume()
{
    m_implementation->resume();
}

SuspendableInterface& ImageTableModel::owner() const
{
    return m_implementation->owner();
}

int ImageTableModel::rowCount() const
{
    return static_cast<int>(m_implementation->grid().rows().size());
}

int ImageTableModel::columnCount() const
{
    return static_cast<int>(m_implementation->grid().columns().size());
}

const std::vector<AuxFileImageData>& ImageTableModel::images(const Cell& cell) const
{
    return m_implementation->images(cell);
}

void* ImageTableModel::extraData(const Cell& /*cell*/)
{
    return nullptr;
}

const void* ImageTableModel::extraData(const Cell& /*cell*/) const
{
    return nullptr;
}

Variant ImageTableModel::rowHeader(int row) const
{
    const GridDimension& rows = m_implementation->grid().rows();
    rows.checkIndex(row);
    return rows.header(row);
}

Variant ImageTableModel::columnHeader(int column) const
{
    const GridDimension& columns = m_implementation->grid().columns();
    columns.checkIndex(column);
    return columns.header(column);
}

const std::set<unsigned long long>& ImageTableModel::caseIDs(const Cell& cell) const
{
    return m_implementation->caseIDs(cell);
}

std::size_t ImageTableModel::caseCount(const Cell& cell) const
{
    return m_implementation->caseCount(cell);
}

std::vector<ImageTableModel::Cell> ImageTableModel::cellsContaining(unsigned long long caseID) const
{
    return m_implementation->grid().cellsContaining(caseID);
}

std::set<unsigned long long> ImageTableModel::caseIDsOf(const std::vector<Cell>& cells) const
{
    return casesOf(cells).toSet();
}

CaseSet ImageTableModel::casesOf(const std::vector<Cell>& cells) const
{
    const CaseGrid& grid = m_implementation->grid();
    for (const Cell& cell : cells) {
        grid.checkCell(cell);
    }
    return grid.casesOf(cells);
}

std::vector<ImageTableModel::Cell> ImageTableModel::cellsContainingAny(
    const std::set<unsigned long long>& caseIDs) const
{
    return cellsContainingAny(CaseSet(caseIDs));
}

std::vector<ImageTableModel::Cell> ImageTableModel::cellsContainingAny(const CaseSet& cases) const
{
    return m_implementation->grid().cellsContainingAny(cases);
}

std::optional<ImageTableModel::Cell> ImageTableModel::firstCellWithImage() const
{
    return m_implementation->firstCellWithImage();
}

void ImageTableModel::reset()
{
    m_implementation->reset();
}

void ImageTableModel::signalModelChangedConnected() const {}

void ImageTableModel::signalDataChangedConnected() const {}
