#include <analyzer/views/CaseValuesTable.h>
#include <analyzer/views/ChoiceSetting.h>
#include <analyzer/views/ImageCanvas.h>
#include <analyzer/views/ImageCanvasCaption.h>
#include <analyzer/views/SelectedImageGrid.h>
#include <analyzer/views/SelectedImageSerializer.h>
#include <analyzer/views/SelectedImageView.h>
#include <analyzer/views/SelectedImageWidget.h>
#include <analyzer/views/viewState.h>

#include <dataviews/common/images/ImageCache.h>
#include <dataviews/common/views/DataViewVisitorInterface.h>
#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/UndoablePropertyProxy.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManagerInterface.h>
#include <dataviews/platform/property/ExceptionBase.h>
#include <dataviews/platform/property/ValidatorInterface.h>
#include <dataviews/platform/selection/SelectionModelInterface.h>
#include <dataviews/platform/serialize/Serializer.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <vtkIntArray.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <boost/lexical_cast.hpp>
#include <boost/make_shared.hpp>

#include <algorithm>
#include <utility>

namespace analyzer {

namespace {

constexpr int slowLoadingMs =
    150; ///< a picture that comes sooner takes the place of the one before without a blink

QString tr(const char* text)
{
    return QCoreApplication::translate("SelectedImageView", text);
}

QString fileName(const AuxFile& file)
{
    return QFileInfo(QString::fromStdString(file.filePath())).fileName();
}

QString nativePath(const AuxFile& file)
{
    return QDir::toNativeSeparators(QString::fromStdString(file.filePath()));
}

QString joinedTags(const AuxFile& file)
{
    QStringList tags;
    for (const std::string& tag : file.tags()) {
        tags.append(QString::fromStdString(tag));
    }
    return tags.join(QStringLiteral(", "));
}

class ImageCountValidator : public corvane::ValidatorInterface<std::uint64_t>
{
public:
    [[nodiscard]] corvane::ValidationResult validate(const std::uint64_t& count) const override
    {
        const std::vector<std::uint64_t>& counts = SelectedImageView::imageCounts();
        if (std::find(counts.begin(), counts.end(), count) != counts.end()) {
            return corvane::ValidationResult();
        }
        std::string known;
        for (const std::uint64_t possible : counts) {
            known += (known.empty() ? "" : ", ") + std::to_string(possible);
        }
        return corvane::ValidationResult(
            "The number of images at once must be one of " + known + ", not "
            + std::to_string(count) + ".");
    }
};

constexpr int widestNamesPx = 100000; ///< of a session
constexpr char automatic[] = "automatic";

template <class T>
std::string ownText(const std::optional<T>& value)
{
    return value ? boost::lexical_cast<std::string>(*value) : automatic;
}

/// What the user has set himself, from 0 to \p largest, or nothing.
template <class T>
std::optional<T> readOwn(const std::string& text, const T& largest)
{
    if (text == automatic) {
        return std::nullopt;
    }
    const auto value = boost::lexical_cast<T>(text);
    if (!(value >= T() && value <= largest)) {
        throw ExceptionBase(
            "The room for the values must be from 0 to " + boost::lexical_cast<std::string>(largest)
            + ", not " + text + ".");
    }
    return value;
}

} // namespace

SelectedImageView::SelectedImageView(
    const DataPipelineManagerInterface& pipeline,
    boost::shared_ptr<SelectionModelInterface> selectionModel,
    boost::shared_ptr<ImageCache> cache,
    boost::shared_ptr<HoveredCase> hovered)
    : DataViewAbstract(std::make_unique<Serializer>("SelectedImage"), selectionModel)
    , m_pipeline(pipeline)
    , m_hovered(std::move(hovered))
    , m_widget(new SelectedImageWidget)
    , m_list(Project::project())
    , m_cache(std::move(cache))
{
    buildWidget();
    buildSettings();
    buildSerializer();
    m_connections.add(selectionModel->signalSelectionChanged.connect(
        [this](const CaseSelection& selection) { takeSelection(*selection); }));
    m_connections.add(m_pipeline.signalPipelineChanged.connect([this] { takeCases(); }));
    m_lastingConnections.add(Project::project().signalProjectChanged.connect(
        [this](const ProjectChange& change) { projectChanged(change); }));
    m_lastingConnections.add(m_hovered->signalHoveredCaseChanged.connect([this] { showHover(); }));
    takeCases();
}

SelectedImageView::~SelectedImageView()
{
    m_connections.clear();
    m_lastingConnections.clear();
    // The widget may have gone with its parent.
    delete m_widget.data();
}

void SelectedImageView::buildWidget()
{
    m_widget->setObjectName(QStringLiteral("SelectedImage"));
    m_widget->setAccessibleName(tr("Image of the selected cases"));
    SelectedImageWidget& widget = *m_widget;
    QObject::connect(&widget, &SelectedImageWidget::previousRequested, &widget, [this] {
        const std::size_t first = firstOfPage(m_place);
        if (first > 0) {
            walkTo(firstOfPage(first - 1));
        }
    });
    QObject::connect(&widget, &SelectedImageWidget::nextRequested, &widget, [this] {
        walkTo(firstOfPage(m_place) + m_imagesAtOnce->value());
    });
    QObject::connect(&widget, &SelectedImageWidget::firstRequested, &widget, [this] { walkTo(0); });
    QObject::connect(&widget, &SelectedImageWidget::lastRequested, &widget, [this] {
        if (m_list.count() > 0) {
            walkTo(firstOfPage(m_list.count() - 1));
        }
    });

    const auto addCell = [this](std::size_t number) {
        ImageCanvas& canvas = m_widget->grid().canvas(number);
        m_canvases.add(canvas);
        QObject::connect(&canvas, &ImageCanvas::pressed, &canvas, [this, number] {
            if (number < m_cells.size() && !m_cells[number]->file.expired()) {
                walkTo(firstOfPage(m_place) + number);
            }
        });
        QObject::connect(
            &canvas, &ImageCanvas::menuRequested, &canvas, [this](const QPoint& place) {
                emitContextMenuRequested(place);
            });
    };
    addCell(0);
    QObject::connect(&widget.grid(), &SelectedImageGrid::cellAdded, &widget, addCell);

    m_slowLoading.setSingleShot(true);
    m_slowLoading.setInterval(slowLoadingMs);
    QObject::connect(&m_slowLoading, &QTimer::timeout, &m_slowLoading, [this] {
        for (std::size_t i = 0; m_widget && i < m_cells.size(); ++i) {
            if (m_cells[i]->loader.isLoading()) {
                m_widget->grid().canvas(i).setMessage(tr("Reading the image..."));
            }
        }
    });
}

void SelectedImageView::buildSettings()
{
    m_imagesAtOnce = boost::make_shared<corvane::UndoablePropertyProxy<std::uint64_t>>(
        "Images At Once",
        boost::make_shared<corvane::Property<std::uint64_t>>(
            1, boost::make_shared<ImageCountValidator>()));
    ChoiceSetting<std::uint64_t>::NamedValues counts;
    for (const std::uint64_t count : imageCounts()) {
        counts.emplace_back(std::to_string(count), count);
    }
    m_settings = {
        makeSwitchSetting("fit", tr("Fit to window").toStdString(), fitToWindow()),
        boost::make_shared<ChoiceSetting<std::uint64_t>>(
            SettingInterface::Kind::Choice,
            "images",
            tr("Images at once").toStdString(),
            m_imagesAtOnce,
            counts)};

    m_lastingConnections.add(m_imagesAtOnce->valueChanged.connect([this](std::uint64_t) {
        if (!m_isSuspended && m_list.count() > 0) {
            showPlace(m_place);
        }
    }));
    m_widget->setFitting(fitToWindow()->value());
    m_lastingConnections.add(fitToWindow()->valueChanged.connect([this](bool fits) {
        if (m_widget) {
            m_widget->setFitting(fits);
        }
    }));
    SelectedImageWidget& widget = *m_widget;
    QObject::connect(&widget, &SelectedImageWidget::fitRequested, &widget, [this] {
        fitToWindow()->setValue(true);
    });
    QObject::connect(&widget, &SelectedImageWidget::actualSizeRequested, &widget, [this] {
        m_canvases.showActualSize();
    });
}

void SelectedImageView::buildSerializer()
{
    SerializerInterface& parent = serializer();
    viewState::keep(parent, "Images", m_imagesAtOnce);
    m_canvases.keepIn(parent);
    parent.addSubElement(boost::make_shared<SelectedImageSerializer>(
        "CurrentImage",
        [this] { return m_wanted.expired() ? m_current : m_wanted; },
        [this](const WeakPtr<AuxFile>& file) { showImage(file); }));
    parent.addSubElement(boost::make_shared<GenericSerializer<std::string>>(
        "ValuesShare",
        [this] { return ownText(m_widget ? m_widget->valuesShare() : std::nullopt); },
        [this](const std::string& text) {
            const std::optional<double> share = readOwn(text, 1.0);
            if (m_widget) {
                m_widget->setValuesShare(share);
            }
        }));
    parent.addSubElement(boost::make_shared<GenericSerializer<std::string>>(
        "NamesWidth",
        [this] { return ownText(m_widget ? m_widget->values().nameWidth() : std::nullopt); },
        [this](const std::string& text) {
            const std::optional<int> width = readOwn(text, widestNamesPx);
            if (m_widget) {
                m_widget->values().setNameWidth(width);
            }
        }));
    parent.addSubElement(boost::make_shared<GenericSerializer<int>>(
        "ValuesRow",
        [this] { return m_widget ? m_widget->values().firstRow() : 0; },
        [this](int row) {
            if (m_widget) {
                m_widget->values().setFirstRow(row);
            }
        }));
}

void SelectedImageView::showImage(const WeakPtr<AuxFile>& file)
{
    const boost::shared_ptr<AuxFile> locked = file.lock();
    if (!locked) {
        return;
    }
    m_wanted = {};
    const std::optional<std::size_t> place = m_isSuspended ? std::nullopt : m_list.placeOf(*locked);
    if (place) {
        showPlace(*place);
        return;
    }
    m_wanted = file;
}

void SelectedImageView::suspend()
{
    m_isSuspended = true;
    m_connections.block();
}

void SelectedImageView::resume()
{
    m_isSuspended = false;
    m_connections.unblock();
    takeCases();
}

QWidget& SelectedImageView::widget()
{
    return *m_widget;
}

void SelectedImageView::accept(DataViewVisitorInterface& visitor)
{
    visitor.visit(boost::shared_ptr<SelectedImageViewInterface>(shared_from_this()));
}

void SelectedImageView::render()
{
    m_widget->repaint();
}

std::string SelectedImageView::kind() const
{
    return "selected-image";
}

std::string SelectedImageView::title() const
{
    const boost::shared_ptr<AuxFile> file = m_current.lock();
    return (file ? fileName(*file) : tr("no image")).toStdString();
}

const std::vector<boost::shared_ptr<SettingInterface>>& SelectedImageView::settings() const
{
    return m_settings;
}

boost::shared_ptr<corvane::PropertyAbstract<DataViewInterface::MouseMode>> SelectedImageView::
    mouseModeProperty() const
{
    return {};
}

boost::shared_ptr<corvane::PropertyAbstract<bool>> SelectedImageView::fitToWindow() const
{
    return m_canvases.fitToWindow();
}

boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> SelectedImageView::imagesAtOnce() const
{
    return m_imagesAtOnce;
}

const std::vector<std::uint64_t>& SelectedImageView::imageCounts()
{
    static const std::vector<std::uint64_t> counts{1, 2, 3, 4, 6, 9};
    return counts;
}

bool SelectedImageView::isLoading() const
{
    return std::any_of(m_cells.begin(), m_cells.end(), [](const std::unique_ptr<Cell>& shown) {
        return shown->loader.isLoading();
    });
}

SelectedImageWidget& SelectedImageView::imageWidget() const
{
    return *m_widget;
}

bool SelectedImageView::caseIDAtPoint(unsigned long long& caseID)
{
    const boost::shared_ptr<AuxFile> file = m_current.lock();
    if (!file) {
        return false;
    }
    caseID = Project::project().caseID(file->row());
    return true;
}

void SelectedImageView::takeCases()
{
    m_pipeline.output().Update();
    vtkTable* table = m_pipeline.output().GetOutput();
    if (const vtkIntArray* caseIDs = vtkIntArray::SafeDownCast(table->GetColumn(0))) {
        m_list.setCases(*caseIDs);
    } else {
        m_list.clear();
    }
    takeSelection(*selectionModel().cases());
}

void SelectedImageView::takeSelection(const CaseSet& selection)
{
    m_list.setSelection(selection);
    chooseImage(!selection.isEmpty());
}

void SelectedImageView::chooseImage(bool hasSelection)
{
    if (const boost::shared_ptr<AuxFile> wanted = m_wanted.lock()) {
        if (const std::optional<std::size_t> place = m_list.placeOf(*wanted)) {
            m_wanted = {};
            showPlace(*place);
            return;
        }
    }
    if (hasSelection) {
        m_wanted = {};
    }
    if (m_list.count() == 0) {
        showNothing(hasSelection);
        return;
    }
    const boost::shared_ptr<AuxFile> current = m_current.lock();
    showPlace(current ? m_list.placeOf(*current).value_or(0) : 0);
}

std::size_t SelectedImageView::firstOfPage(std::size_t place) const
{
    return place - place % m_imagesAtOnce->value();
}

void SelectedImageView::walkTo(std::size_t place)
{
    if (place < m_list.count()) {
        m_wanted = {};
        showPlace(place);
    }
}

void SelectedImageView::showPlace(std::size_t place)
{
    const std::size_t first = firstOfPage(place);
    const std::size_t most = std::min<std::size_t>(m_imagesAtOnce->value(), m_list.count());
    const std::size_t shown = std::min(most, m_list.count() - first);
    std::vector<boost::shared_ptr<AuxFile>> files;
    for (std::size_t i = 0; i < shown; ++i) {
        files.push_back(m_list.file(first + i));
        if (!files.back()) {
            showNothing(true); // another study has come, and the pipeline is about to tell
            return;
        }
    }
    m_place = place;
    if (m_widget) {
        m_widget->setPlaces(first, shown, m_list.count(), most);
        m_widget->grid().setCurrent(place - first);
    }
    for (std::size_t i = 0; i < shown; ++i) {
        showFile(i, files[i]);
    }
    emptyCellsFrom(shown);
    describeCells();
    const boost::shared_ptr<AuxFile>& current = files[place - first];
    if (m_current != WeakPtr<AuxFile>(current)) {
        describe(*current);
    }
    setCurrent(current);
    showHover();
}

void SelectedImageView::showNothing(bool hasSelection)
{
    emptyCellsFrom(0);
    m_slowLoading.stop();
    m_place = 0;
    if (m_widget) {
        const Project& project = Project::project();
        if (project.caseCount() == 0) {
            m_widget->setNothing(tr("Open a study with images to see them here."));
        } else if (project.auxFileCount() == 0) {
            m_widget->setNothing(tr("This study has no images."));
        } else if (!hasSelection) {
            m_widget->setNothing(
                tr("Nothing is selected.\nSelect cases in another view to see their images here."));
        } else if (m_pipeline.filtersInForce().empty()) {
            m_widget->setNothing(
                tr("None of the selected cases has an image.\nSelect others in another view."));
        } else {
            m_widget->setNothing(
                tr("None of the selected cases that pass the filters has an image.\n"
                   "Select others in another view, or change the filters."));
        }
    }
    setCurrent({});
    showHover();
}

SelectedImageView::Cell& SelectedImageView::cell(std::size_t number)
{
    while (m_cells.size() <= number) {
        m_cells.push_back(std::make_unique<Cell>(m_cache));
        m_lastingConnections.add(m_cells.back()->loader.signalArrived.connect(
            [this, added = m_cells.size() - 1](SelectedPicture& picture) {
                pictureArrived(added, picture);
            }));
    }
    return *m_cells[number];
}

void SelectedImageView::showFile(std::size_t number, const boost::shared_ptr<AuxFile>& file)
{
    Cell& target = cell(number);
    if (target.file == WeakPtr<AuxFile>(file)) {
        return;
    }
    target.file = file;
    target.loader.request(file->filePath());
    if (!m_slowLoading.isActive()) {
        m_slowLoading.start();
    }
}

void SelectedImageView::emptyCellsFrom(std::size_t number)
{
    for (; number < m_cells.size(); ++number) {
        Cell& emptied = *m_cells[number];
        emptied.loader.cancel();
        emptied.file = {};
        emptied.shared.reset();
    }
}

void SelectedImageView::setCurrent(const WeakPtr<AuxFile>& file)
{
    if (m_current != file) {
        m_current = file;
        emitTitleChanged();
    }
}

void SelectedImageView::describe(const AuxFile& file)
{
    if (!m_widget) {
        return;
    }
    m_widget->setFile(fileName(file), joinedTags(file), nativePath(file));
    m_widget->values().showCase(Record(Project::project(), file.row()), file);
}

void SelectedImageView::describeCells()
{
    for (std::size_t i = 0; m_widget && i < m_cells.size(); ++i) {
        const boost::shared_ptr<AuxFile> file = m_cells[i]->file.lock();
        if (!file) {
            continue;
        }
        const QString tags = joinedTags(*file);
        ImageCanvasCaption& caption = m_widget->grid().caption(i);
        caption.setText(
            tr("Case %1: %2")
                .arg(QString::number(Project::project().caseID(file->row())), fileName(*file))
            + (tags.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(tags)));
        caption.setToolTip(nativePath(*file).toHtmlEscaped());
        m_widget->grid().canvas(i).setAccessibleName(caption.text());
    }
}

void SelectedImageView::projectChanged(const ProjectChange& change)
{
    if (change.studyReplaced) {
        m_wanted = {};
        if (m_isSuspended) {
            // Otherwise the pipeline tells of the new study, before this or after.
            m_list.clear();
            showNothing(false);
        }
        return;
    }
    if (const boost::shared_ptr<AuxFile> file = m_current.lock()) {
        describe(*file); // its tags may be others
        describeCells();
    }
}

void SelectedImageView::pictureArrived(std::size_t number, SelectedPicture& picture)
{
    if (!isLoading()) {
        m_slowLoading.stop();
    }
    m_cells[number]->shared = std::move(picture.shared);
    if (!m_widget) {
        return;
    }
    ImageCanvas& canvas = m_widget->grid().canvas(number);
    if (!picture.levels.empty()) {
        canvas.setPicture(std::move(picture.levels));
        return;
    }
    canvas.setMessage(tr("%1\nNot shown: %2.")
                          .arg(
                              QDir::toNativeSeparators(QString::fromStdString(picture.path)),
                              QString::fromStdString(picture.problem)));
}

/// Also takes the outline off a cell that is empty.
void SelectedImageView::showHover()
{
    const std::optional<unsigned long long> hovered = m_hovered->caseID();
    for (std::size_t i = 0; m_widget && i < m_cells.size(); ++i) {
        const boost::shared_ptr<AuxFile> file = m_cells[i]->file.lock();
        m_widget->grid().canvas(i).setOutlined(
            file && hovered == Project::project().caseID(file->row()));
    }
}

} // namespace analyzer
