#include <dataviews/common/images/AsyncImageLoaderInterface.h>
#include <dataviews/common/images/ImageDecorator.h>
#include <dataviews/common/images/ImageFileLoaderInterface.h>
#include <dataviews/common/images/ImageMatrixTableModelAdapter.h>
#include <dataviews/common/images/ImageMatrixViewProperties.h>
#include <dataviews/common/images/LabelMaker.h>
#include <dataviews/common/images/zoomLevelToImageSize.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/data/variantDisplayText.h>

#include <boost/format.hpp>
#include <boost/pointer_cast.hpp>

#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>

namespace {

using Cell = ImageTableModel::Cell;
using By = ImageMatrixViewProperties::RowColumnDimensionBy;

constexpr const char* separatorInCell = "  ";
constexpr const char* separatorInToolTip = "\n";

} // namespace

ImageMatrixTableModelAdapter::ImageMatrixTableModelAdapter(
    boost::shared_ptr<ImageTableModel> model,
    boost::shared_ptr<ImageFileLoaderInterface> loader,
    boost::shared_ptr<ImageMatrixViewProperties> properties,
    boost::shared_ptr<LabelMaker> labelMaker,
    boost::shared_ptr<ImageDecorator> decorator,
    QObject* parent)
    : QAbstractTableModel(parent)
    , m_model(std::move(model))
    , m_loader(std::move(loader))
    , m_asyncLoader(boost::dynamic_pointer_cast<AsyncImageLoaderInterface>(m_loader))
    , m_properties(std::move(properties))
    , m_labelMaker(std::move(labelMaker))
    , m_decorator(std::move(decorator))
    , m_size(zoomLevelToImageSize(m_properties->zoom()->value()))
{
    m_connections.add(m_model->signalModelChanged.connect([this] { modelChanged(); }));
    m_connections.add(m_model->signalDataChanged.connect([this] { imagesChanged(); }));
    if (m_asyncLoader) {
        m_connections.add(m_asyncLoader->signalImageArrived.connect(
            [this](const std::string& path) { imageArrived(path); }));
    }
}

ImageMatrixTableModelAdapter::~ImageMatrixTableModelAdapter() = default;

int ImageMatrixTableModelAdapter::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_model->rowCount();
}

int ImageMatrixTableModelAdapter::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_model->columnCount();
}

QVariant ImageMatrixTableModelAdapter::data(const QModelIndex& index, int role) const
{
    if (!index.isValid()) {
        return {};
    }
    const Cell cell = cellOf(index);
    switch (role) {
    case Qt::DisplayRole: {
        const AuxFileImageData* first = firstImage(cell);
        return first == nullptr ? QVariant() : QVariant(label(*first));
    }
    case Qt::DecorationRole:
        return decoration(cell);
    case Qt::ToolTipRole:
        return firstImage(cell) == nullptr ? QVariant() : QVariant(toolTip(cell));
    default:
        return {};
    }
}

QVariant ImageMatrixTableModelAdapter::headerData(
    int section, Qt::Orientation orientation, int role) const
{
    const int count = orientation == Qt::Horizontal ? columnCount() : rowCount();
    if ((role != Qt::DisplayRole && role != Qt::ToolTipRole) || section < 0 || section >= count) {
        return {};
    }
    return headerText(section, orientation, role);
}

void ImageMatrixTableModelAdapter::setImageSize(const QSize& size, double devicePixelRatio)
{
    m_size = size * devicePixelRatio;
    m_devicePixelRatio = devicePixelRatio;
    m_awaited.clear();
}

void ImageMatrixTableModelAdapter::setVisibleCells(const std::vector<Cell>& cells)
{
    if (!m_asyncLoader) {
        return;
    }
    const std::vector<std::string> paths = firstPaths(cells);
    const std::unordered_set<std::string> known(paths.begin(), paths.end());
    const auto forgetOthers = [&known](auto& map) {
        for (auto place = map.begin(); place != map.end();) {
            place = known.count(place->first) == 0 ? map.erase(place) : std::next(place);
        }
    };
    forgetOthers(m_awaited);
    forgetOthers(m_lastPictures);
    m_asyncLoader->setVisible(paths);
}

void ImageMatrixTableModelAdapter::prefetchCells(const std::vector<Cell>& cells)
{
    if (!m_asyncLoader) {
        return;
    }
    // The images of a cell are found all at once: where there are very many, that waits until it is shown.
    constexpr std::size_t manyCases = 200;
    std::vector<Cell> fast;
    std::copy_if(cells.begin(), cells.end(), std::back_inserter(fast), [this](const Cell& cell) {
        return m_model->caseCount(cell) <= manyCases;
    });
    m_asyncLoader->prefetch(firstPaths(fast), m_size);
}

ImageMatrixTableModelAdapter::State ImageMatrixTableModelAdapter::state(
    const QModelIndex& index) const
{
    const Cell cell = cellOf(index);
    const AuxFileImageData* first = firstImage(cell);
    if (first == nullptr) {
        return m_model->caseCount(cell) == 0 ? State::NoCases : State::NoImages;
    }
    const boost::shared_ptr<QImage> image = picture(first->filePath(), cell);
    if (!image) {
        return State::Loading;
    }
    return image->isNull() ? State::Unreadable : State::Shown;
}

bool ImageMatrixTableModelAdapter::isStack(const QModelIndex& index) const
{
    const Cell cell = cellOf(index);
    return firstImage(cell) != nullptr && m_model->images(cell).size() > 1;
}

QImage ImageMatrixTableModelAdapter::formerPicture(const QModelIndex& index) const
{
    const AuxFileImageData* first = firstImage(cellOf(index));
    const auto place =
        first == nullptr ? m_lastPictures.end() : m_lastPictures.find(first->filePath());
    return place == m_lastPictures.end() ? QImage() : place->second.plain;
}

QString ImageMatrixTableModelAdapter::labelText() const
{
    if (!m_labelText) {
        const std::optional<Cell> cell =
            m_properties->showLabels()->value() ? m_model->firstCellWithImage() : std::nullopt;
        const AuxFileImageData* first = cell ? firstImage(*cell) : nullptr;
        m_labelText = first == nullptr ? QString() : label(*first);
    }
    return *m_labelText;
}

void ImageMatrixTableModelAdapter::labelsChanged()
{
    m_labelText.reset();
    if (rowCount() > 0 && columnCount() > 0) {
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    }
}

Cell ImageMatrixTableModelAdapter::cellOf(const QModelIndex& index)
{
    return {index.row(), index.column()};
}

/// Null for a cell without images. The files of a study go all at once, so that the first stands for all of them.
const AuxFileImageData* ImageMatrixTableModelAdapter::firstImage(const Cell& cell) const
{
    if (cell.first >= m_model->rowCount() || cell.second >= m_model->columnCount()) {
        return nullptr;
    }
    const std::vector<AuxFileImageData>& images = m_model->images(cell);
    const auto first =
        std::find_if(images.begin(), images.end(), [](const AuxFileImageData& image) {
            return !image.auxFile().expired();
        });
    return first == images.end() ? nullptr : &*first;
}

/// The files whose pictures \p cells show, each once.
std::vector<std::string> ImageMatrixTableModelAdapter::firstPaths(
    const std::vector<Cell>& cells) const
{
    std::vector<std::string> paths;
    std::unordered_set<std::string> known;
    for (const Cell& cell : cells) {
        const AuxFileImageData* first = firstImage(cell);
        if (first != nullptr && known.insert(first->filePath()).second) {
            paths.push_back(first->filePath());
        }
    }
    return paths;
}

/// The picture as it is shown; empty if it is awaited.
boost::shared_ptr<QImage> ImageMatrixTableModelAdapter::picture(
    const std::string& path, const Cell& cell) const
{
    if (!m_asyncLoader) {
        return m_loader->image(path);
    }
    boost::shared_ptr<QImage> image = m_asyncLoader->request(path, m_size);
    if (!image) {
        std::vector<Cell>& cells = m_awaited[path];
        if (std::find(cells.begin(), cells.end(), cell) == cells.end()) {
            cells.push_back(cell);
        }
    }
    return image;
}

QVariant ImageMatrixTableModelAdapter::decoration(const Cell& cell) const
{
    const AuxFileImageData* first = firstImage(cell);
    if (first == nullptr) {
        return {};
    }
    const std::string path = first->filePath();
    const boost::shared_ptr<QImage> shared = picture(path, cell);
    if (!shared) {
        return {};
    }
    const bool isOfSeveral = m_model->images(cell).size() > 1;
    if (!m_asyncLoader || shared->isNull()) {
        return isOfSeveral ? m_decorator->decorate(*shared) : *shared;
    }
    ShownPicture& shown = m_lastPictures[path];
    if (shown.source != shared->cacheKey()
        || shown.plain.devicePixelRatio() != m_devicePixelRatio) {
        shown = {shared->cacheKey(), *shared, QImage()};
        shown.plain.setDevicePixelRatio(m_devicePixelRatio);
    }
    if (!isOfSeveral) {
        return shown.plain;
    }
    if (shown.marked.isNull()) {
        // Once a picture, not at every paint.
        shown.marked = m_decorator->decorate(shown.plain);
    }
    return shown.marked;
}

QString ImageMatrixTableModelAdapter::label(const AuxFileImageData& image) const
{
    if (!m_properties->showLabels()->value()) {
        return {};
    }
    return QString::fromStdString(m_labelMaker->label(
        m_properties->variablesInLabel()->value(), image.record(), separatorInCell));
}

QString ImageMatrixTableModelAdapter::toolTip(const Cell& cell) const
{
    const AuxFileImageData& first = *firstImage(cell);
    std::string labelPart;
    if (m_properties->showLabels()->value()) {
        const std::string text = m_labelMaker->label(
            m_properties->variablesInLabel()->value(), first.record(), separatorInToolTip);
        labelPart = text.empty() ? std::string() : "\n\n" + text;
    }
    const std::string path = first.filePath();
    std::string text = str(
        boost::format("%1%: %2%\nFile Name: %3%%4%") % "Case ID"
        % first.record().value(Project::project().caseIDVariable()).toString() % path % labelPart);
    const std::size_t count = m_model->images(cell).size();
    if (count > 1) {
        text += str(boost::format("\n%1% additional image(s) at this location.") % (count - 1));
    }
    const std::string problem = m_asyncLoader ? m_asyncLoader->problem(path) : std::string();
    if (!problem.empty()) {
        text += "\nNot shown: " + problem;
    }
    return QString::fromStdString(text);
}

QString ImageMatrixTableModelAdapter::headerText(
    int section, Qt::Orientation orientation, int role) const
{
    const bool isColumn = orientation == Qt::Horizontal;
    const By by = isColumn ? m_properties->dimensionColumnsBy()->value()
                           : m_properties->dimensionRowsBy()->value();
    const WeakPtr<Variable> variable =
        isColumn ? m_properties->columnVar()->value() : m_properties->rowVar()->value();
    if (by == By::ByVariable && variable.expired()) {
        return tr("All");
    }
    const Variant value = isColumn ? m_model->columnHeader(section) : m_model->rowHeader(section);
    // A header may be too narrow for its text, and two may read the same.
    return QString::fromStdString(
        role == Qt::ToolTipRole && value.type() != Variant::Type::Empty
            ? value.toString()
            : variantDisplayText(value));
}

void ImageMatrixTableModelAdapter::modelChanged()
{
    // The model computes nothing before it is asked, so that the views are told before it has other rows.
    beginResetModel();
    m_labelText.reset();
    m_awaited.clear();
    endResetModel();
}

void ImageMatrixTableModelAdapter::imagesChanged()
{
    m_awaited.clear();
    labelsChanged();
}

void ImageMatrixTableModelAdapter::imageArrived(const std::string& path)
{
    const auto place = m_awaited.find(path);
    if (place == m_awaited.end()) {
        return;
    }
    const std::vector<Cell> cells = std::move(place->second);
    m_awaited.erase(place);
    for (const auto& [row, column] : cells) {
        Q_EMIT dataChanged(index(row, column), index(row, column), {Qt::DecorationRole});
    }
}
