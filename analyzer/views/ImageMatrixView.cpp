#include <analyzer/views/CellHover.h>
#include <analyzer/views/ChoiceSetting.h>
#include <analyzer/views/HoveredCellDelegate.h>
#include <analyzer/views/ImageMatrixView.h>
#include <analyzer/views/NumberSetting.h>
#include <analyzer/views/PageValueSetting.h>
#include <analyzer/views/PageValueState.h>
#include <analyzer/views/ScrollState.h>
#include <analyzer/views/TagGroupListSetting.h>
#include <analyzer/views/TagListSetting.h>
#include <analyzer/views/VariableListSetting.h>
#include <analyzer/views/VariableSetting.h>
#include <analyzer/views/filteredOutCases.h>
#include <analyzer/views/viewState.h>

#include <dataviews/common/images/ImageFileLoaderInterface.h>
#include <dataviews/common/images/ImageMatrixViewProperties.h>
#include <dataviews/common/images/ImageTableModel.h>
#include <dataviews/common/images/QImageTableView.h>
#include <dataviews/common/images/readImageFile.h>
#include <dataviews/common/serializers/TagGroupsToShowSerializer.h>
#include <dataviews/common/serializers/TagsToShowSerializer.h>
#include <dataviews/common/serializers/VariableListSerializer.h>
#include <dataviews/common/views/CvWaitCursor.h>
#include <dataviews/common/views/DataViewVisitorInterface.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/data/variantDisplayText.h>
#include <dataviews/platform/pipeline/DataPipelineManagerInterface.h>
#include <dataviews/platform/selection/SelectionModelInterface.h>
#include <dataviews/platform/serialize/Serializer.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QFileInfo>
#include <QHeaderView>
#include <QMenu>
#include <QMimeData>
#include <QUrl>
#include <QVBoxLayout>

#include <vtkTableAlgorithm.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <utility>

namespace analyzer {

namespace {

using Properties = ImageMatrixViewProperties;
using RowsBy = Properties::RowColumnDimensionBy;
using PagesBy = Properties::PageDimensionBy;

void copyToClipboard(const std::string& path)
{
    const CvWaitCursor waitCursor;
    const ImageFileReading file = readImageFile(path);
    if (file.image.isNull()) {
        throw ExceptionBase("The image \"" + path + "\" cannot be copied: " + file.problem + ".");
    }
    auto data = std::make_unique<QMimeData>();
    data->setImageData(uprightImage(file.image, path));
    data->setUrls({QUrl::fromLocalFile(QString::fromStdString(path))});
    QApplication::clipboard()->setMimeData(data.release());
}

void openFolderOf(const std::string& path)
{
    const QString folder = QFileInfo(QString::fromStdString(path)).absolutePath();
    if (!QFileInfo::exists(folder)) {
        throw ExceptionBase("The folder \"" + folder.toStdString() + "\" does not exist.");
    }
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(folder))) {
        throw ExceptionBase(
            "No program of this desktop opens the folder \"" + folder.toStdString() + "\".");
    }
}

bool acceptsAll(const Variable& /*variable*/)
{
    return true;
}

boost::shared_ptr<VariableSetting> variableSetting(
    const char* name,
    const QString& label,
    const boost::shared_ptr<corvane::PropertyAbstract<WeakPtr<Variable>>>& property,
    const VariableSetting::Write& write = {})
{
    return boost::make_shared<VariableSetting>(
        name, label.toStdString(), property, &acceptsAll, "variables", "(all)", write);
}

} // namespace

ImageMatrixView::ImageMatrixView(
    const DataPipelineManagerInterface& pipeline,
    const boost::shared_ptr<SelectionModelInterface>& selectionModel,
    const boost::shared_ptr<ImageFileLoaderInterface>& loader,
    boost::shared_ptr<HoveredCase> hovered)
    : DataViewAbstract(std::make_unique<Serializer>("ImageMatrix"), selectionModel)
    , m_pipeline(pipeline)
    , m_hovered(std::move(hovered))
    , m_widget(new QWidget)
    , m_properties(boost::make_shared<Properties>())
    , m_loader(loader)
{
    {
        // The tags that a reader made of the study's image columns.
        const UndoStack::SuspendUndoRecording noRecording;
        m_properties->tagGroupsToShow()->setValue(Project::project().tagGroups());
    }
    m_images = std::make_unique<ImageTableView>(
        *m_widget,
        vtkSmartPointer<vtkTableAlgorithm>(&pipeline.output()),
        selectionModel,
        loader,
        m_properties);
    auto* layout = new QVBoxLayout(m_widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(&m_images->widget());
    m_widget->setObjectName(QStringLiteral("ImageMatrix"));
    m_widget->setMinimumSize(160, 120);

    QImageTableView& grid = m_images->grid();
    m_widget->setFocusProxy(&grid);
    grid.setAccessibleName(tr("Image matrix"));
    grid.setContextMenuPolicy(Qt::CustomContextMenu);
    connect(&grid, &QWidget::customContextMenuRequested, this, &ImageMatrixView::openContextMenu);
    connect(&grid, &QAbstractItemView::doubleClicked, this, &ImageMatrixView::activate);
    buildSettings();
    keepState();
    watchTitle();
    buildHover();
    m_connections.add(m_pipeline.signalPipelineChanged.connect([this] { emitLeftOutChanged(); }));
    m_connections.add(Project::project().signalProjectChanged.connect(
        [this](const ProjectChange&) { keepTagsToShow(); }));
}

ImageMatrixView::~ImageMatrixView()
{
    m_connections.clear();
    m_hoverConnections.clear();
    m_hover.reset();
    m_images.reset();
    // The widget may have gone with its parent.
    delete m_widget.data();
}

void ImageMatrixView::suspend()
{
    m_connections.block();
    m_properties->suspend();
    m_images->suspend();
}

void ImageMatrixView::resume()
{
    m_connections.unblock();
    m_properties->resume();
    keepTagsToShow();
    m_images->refresh();
    m_images->resume();
    emitTitleChanged();
    emitLeftOutChanged();
}

QWidget& ImageMatrixView::widget()
{
    return *m_widget;
}

void ImageMatrixView::accept(DataViewVisitorInterface& visitor)
{
    visitor.visit(boost::shared_ptr<ImageMatrixViewInterface>(shared_from_this()));
}

void ImageMatrixView::render()
{
    m_images->grid().viewport()->repaint();
}

std::string ImageMatrixView::kind() const
{
    return "images";
}

std::string ImageMatrixView::title() const
{
    const auto name = [](RowsBy by, const WeakPtr<Variable>& handle) {
        if (by == RowsBy::ByTag) {
            return tr("tags").toStdString();
        }
        const boost::shared_ptr<Variable> variable = handle.lock();
        return variable ? variable->name() : std::string();
    };
    const std::string rows =
        name(m_properties->dimensionRowsBy()->value(), m_properties->rowVar()->value());
    const std::string columns =
        name(m_properties->dimensionColumnsBy()->value(), m_properties->columnVar()->value());
    std::string text = rows.empty() && columns.empty()
        ? tr("all cases").toStdString()
        : rows + (rows.empty() || columns.empty() ? "" : " × ") + columns;
    const PagesBy by = m_properties->dimensionPagesBy()->value();
    if (by != PagesBy::None) {
        const std::string value = variantDisplayText(m_properties->pageValue()->value());
        const boost::shared_ptr<Variable> variable = m_properties->pageVar()->value().lock();
        text += ", ";
        text += by == PagesBy::ByVariable && variable ? variable->name() + " = " + value : value;
    }
    return text;
}

const std::vector<boost::shared_ptr<SettingInterface>>& ImageMatrixView::settings() const
{
    return m_settings;
}

boost::shared_ptr<corvane::PropertyAbstract<DataViewInterface::MouseMode>> ImageMatrixView::
    mouseModeProperty() const
{
    return {};
}

boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> ImageMatrixView::zoom() const
{
    return m_properties->zoom();
}

std::vector<LeftOutCases> ImageMatrixView::leftOut() const
{
    return filteredOut(m_pipeline);
}

std::set<unsigned long long> ImageMatrixView::leftOutCaseIDs() const
{
    return caseIDs(filteredOutRows(m_pipeline));
}

void ImageMatrixView::addContextActions(QMenu& menu)
{
    if (!m_imageUnderMouse) {
        return;
    }
    const AuxFileImageData image = *m_imageUnderMouse;
    const std::string path = image.filePath();
    menu.addAction(tr("Show Image at Full &Size"), this, [this, image] {
        emitImageActivated(image.auxFile());
    });
    menu.addAction(
        tr("&Copy Image"), this, [this, path] { attempt([&path] { copyToClipboard(path); }); });
    menu.addAction(tr("Open Containing &Folder"), this, [this, path] {
        attempt([&path] { openFolderOf(path); });
    });
    menu.addAction(tr("Select &Only This Case"), this, [this, image] {
        if (!image.auxFile().expired()) {
            selectionModel().setSelection({image.record().caseID()});
        }
    });
}

std::vector<WeakPtr<AuxFile>> ImageMatrixView::selectedImages() const
{
    return m_images->selectedAuxFiles();
}

void ImageMatrixView::showTag(const std::string& tag)
{
    const UndoStack::Macro macro(tr("Show Tag %1").arg(QString::fromStdString(tag)));
    const std::vector<std::string> shown = m_properties->allTagsToShow()->value();
    if (std::find(shown.begin(), shown.end(), tag) == shown.end()) {
        std::vector<std::string> tags = m_properties->tagsToShow()->value();
        tags.push_back(tag);
        m_properties->tagsToShow()->setValue(tags);
    }
    m_properties->showLabels()->setValue(true);
}

void ImageMatrixView::layOutByTags(const std::string& group)
{
    const WeakPtr<TagGroup> handle = Project::project().tagGroup(group);
    if (handle.expired()) {
        return;
    }
    const UndoStack::Macro macro(tr("Lay Out by Tags of %1").arg(QString::fromStdString(group)));
    m_properties->tagGroupsToShow()->setValue({handle});
    m_properties->tagsToShow()->setValue({});
    m_properties->dimensionRowsBy()->setValue(RowsBy::ByTag);
}

/// Exceptions must not pass through Qt's menus.
template <class Function>
void ImageMatrixView::attempt(Function function) const
{
    try {
        function();
    } catch (const std::exception& error) {
        emitProblem(error.what());
    }
}

bool ImageMatrixView::caseIDAtPoint(unsigned long long& caseID)
{
    if (!m_imageUnderMouse) {
        return false;
    }
    caseID = m_imageUnderMouse->record().caseID();
    return true;
}

void ImageMatrixView::buildSettings()
{
    constexpr NumberSetting::Range zoomRange{0, 100, 5};
    const boost::shared_ptr<Properties> properties = m_properties;

    const auto by = [](const char* name,
                       const QString& label,
                       const boost::shared_ptr<corvane::PropertyAbstract<RowsBy>>& property) {
        return boost::make_shared<ChoiceSetting<RowsBy>>(
            SettingInterface::Kind::Choice,
            name,
            label.toStdString(),
            property,
            ChoiceSetting<RowsBy>::NamedValues{
                {"variable", RowsBy::ByVariable}, {"tag", RowsBy::ByTag}});
    };
    const auto isByVariable = [](RowsBy value) { return value == RowsBy::ByVariable; };
    const auto row = variableSetting("row", tr("Row variable"), m_properties->rowVar());
    row->enableWhile(m_properties->dimensionRowsBy(), isByVariable);
    const auto column = variableSetting("column", tr("Column variable"), m_properties->columnVar());
    column->enableWhile(m_properties->dimensionColumnsBy(), isByVariable);

    const auto pagesBy = boost::make_shared<ChoiceSetting<PagesBy>>(
        SettingInterface::Kind::Choice,
        "pages-by",
        tr("Pages by").toStdString(),
        m_properties->dimensionPagesBy(),
        ChoiceSetting<PagesBy>::NamedValues{
            {"none", PagesBy::None}, {"variable", PagesBy::ByVariable}, {"tag", PagesBy::ByTag}},
        [properties](PagesBy value) { properties->choosePages(value); });
    const auto page = variableSetting(
        "page",
        tr("Page variable"),
        m_properties->pageVar(),
        [properties](const WeakPtr<Variable>& value) { properties->choosePageVariable(value); });
    page->enableWhile(m_properties->dimensionPagesBy(), [](PagesBy value) {
        return value == PagesBy::ByVariable;
    });

    const auto labelVariables = boost::make_shared<VariableListSetting>(
        "label-variables", tr("In labels").toStdString(), m_properties->variablesInLabel());
    labelVariables->enableWhile(m_properties->showLabels(), [](bool shown) { return shown; });

    m_settings = {
        by("rows-by", tr("Rows by"), m_properties->dimensionRowsBy()),
        row,
        by("columns-by", tr("Columns by"), m_properties->dimensionColumnsBy()),
        column,
        pagesBy,
        page,
        boost::make_shared<PageValueSetting>("page-value", tr("Page").toStdString(), *m_properties),
        makeSwitchSetting("labels", tr("Labels").toStdString(), m_properties->showLabels()),
        labelVariables,
        boost::make_shared<TagGroupListSetting>(
            "tag-groups", tr("Tag groups").toStdString(), m_properties->tagGroupsToShow()),
        boost::make_shared<TagListSetting>(
            "tags", tr("Single tags").toStdString(), m_properties->tagsToShow()),
        boost::make_shared<NumberSetting>(
            "zoom", tr("Zoom").toStdString(), m_properties->zoom(), zoomRange, " %")};
}

void ImageMatrixView::keepState()
{
    SerializerInterface& state = serializer();
    viewState::keepVariable(state, "RowVariable", m_properties->rowVar());
    viewState::keepVariable(state, "ColumnVariable", m_properties->columnVar());
    viewState::keepVariable(state, "PageVariable", m_properties->pageVar());
    const std::vector<std::pair<std::string, RowsBy>> rowsBy = {
        {"Tag", RowsBy::ByTag}, {"Variable", RowsBy::ByVariable}};
    viewState::keep(state, "RowsBy", m_properties->dimensionRowsBy(), rowsBy);
    viewState::keep(state, "ColumnsBy", m_properties->dimensionColumnsBy(), rowsBy);
    viewState::keep<PagesBy>(
        state,
        "PagesBy",
        m_properties->dimensionPagesBy(),
        {{"None", PagesBy::None}, {"Tag", PagesBy::ByTag}, {"Variable", PagesBy::ByVariable}});
    state.addSubElement(
        boost::make_shared<TagGroupsToShowSerializer>(m_properties->tagGroupsToShow()));
    keepTagsToShow();
    state.addSubElement(boost::make_shared<PageValueState>("PageValue", m_properties->pageValue()));
    viewState::keep(state, "ShowLabels", m_properties->showLabels());
    state.addSubElement(boost::make_shared<VariableListSerializer>(
        "VariablesInLabel", m_properties->variablesInLabel(), viewState::variableCandidates()));
    viewState::keep(state, "Zoom", m_properties->zoom());
    state.addSubElement(boost::make_shared<ScrollState>("Scroll", m_images->grid()));
}

void ImageMatrixView::keepTagsToShow()
{
    std::set<std::string> known;
    for (const WeakPtr<TagGroup>& handle : Project::project().tagGroups()) {
        const boost::shared_ptr<TagGroup> group = handle.lock();
        known.insert(group->tags().begin(), group->tags().end());
    }
    serializer().replaceSubElement(
        boost::make_shared<TagsToShowSerializer>(m_properties->tagsToShow(), known));
}

void ImageMatrixView::watchTitle()
{
    const auto watch = [this](const auto& property) {
        m_connections.add(
            property->valueChanged.connect([this](const auto&) { emitTitleChanged(); }));
    };
    watch(m_properties->rowVar());
    watch(m_properties->columnVar());
    watch(m_properties->pageVar());
    watch(m_properties->dimensionRowsBy());
    watch(m_properties->dimensionColumnsBy());
    watch(m_properties->dimensionPagesBy());
    watch(m_properties->pageValue());
}

void ImageMatrixView::buildHover()
{
    QImageTableView& grid = m_images->grid();
    const ImageViewItemDelegate* former = &grid.imageDelegate();
    grid.setImageDelegate(new HoveredCellDelegate(*m_images, m_hovered));
    delete former;
    m_hoverConnections.add(
        m_hovered->signalHoveredCaseChanged.connect([this] { hoveredCaseChanged(); }));
    m_hover = std::make_unique<CellHover>(
        grid, m_hovered, [this](const QPoint& place) { return singleCaseAt(place); });
}

void ImageMatrixView::hoveredCaseChanged()
{
    if (!m_widget) {
        return;
    }
    QImageTableView& grid = m_images->grid();
    const auto paint = [this, &grid] {
        for (const auto& [row, column] : m_outlinedCells) {
            grid.update(grid.model()->index(row, column)); // nothing for a cell that is not there
        }
    };
    paint();
    const std::optional<unsigned long long> caseID = m_hovered->caseID();
    m_outlinedCells =
        caseID ? m_images->model().cellsContaining(*caseID) : std::vector<ImageTableModel::Cell>();
    paint();
}

std::optional<unsigned long long> ImageMatrixView::singleCaseAt(const QPoint& place) const
{
    const QModelIndex index = m_images->grid().indexAt(place);
    if (!index.isValid()) {
        return std::nullopt;
    }
    const ImageTableModel::Cell cell(index.row(), index.column());
    const ImageTableModel& model = m_images->model();
    return model.caseCount(cell) == 1 ? std::optional(*model.caseIDs(cell).begin()) : std::nullopt;
}

void ImageMatrixView::openContextMenu(const QPoint& place)
{
    // The press has selected the cell already if it was not.
    m_imageUnderMouse = firstImage(m_images->grid().indexAt(place));
    emitContextMenuRequested(m_images->grid().viewport()->mapToGlobal(place));
}

void ImageMatrixView::activate(const QModelIndex& index)
{
    const std::optional<AuxFileImageData> image = firstImage(index);
    if (image) {
        emitImageActivated(image->auxFile());
    }
}

std::optional<AuxFileImageData> ImageMatrixView::firstImage(const QModelIndex& index) const
{
    if (!index.isValid()) {
        return std::nullopt;
    }
    const std::vector<AuxFileImageData>& images =
        m_images->model().images({index.row(), index.column()});
    return images.empty() ? std::nullopt : std::optional<AuxFileImageData>(images.front());
}

} // namespace analyzer
