#include <analyzer/views/CaseValuesTable.h>
#include <analyzer/views/ChoiceSetting.h>
#include <analyzer/views/ImageCanvas.h>
#include <analyzer/views/SelectedImageView.h>
#include <analyzer/views/SelectedImageWidget.h>

#include <dataviews/common/images/ImageCache.h>
#include <dataviews/common/views/DataViewVisitorInterface.h>
#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/UndoablePropertyProxy.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManagerInterface.h>
#include <dataviews/platform/selection/SelectionModelInterface.h>
#include <dataviews/platform/serialize/Serializer.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <vtkIntArray.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <boost/make_shared.hpp>

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
    , m_loader(std::move(cache))
{
    buildWidget();
    buildFitting();
    m_connections.add(selectionModel->signalSelectionChanged.connect(
        [this](const std::set<unsigned long long>& selection) { takeSelection(selection); }));
    m_connections.add(m_pipeline.signalPipelineChanged.connect([this] { takeCases(); }));
    m_lastingConnections.add(Project::project().signalProjectChanged.connect(
        [this](const ProjectChange& change) { projectChanged(change); }));
    m_lastingConnections.add(m_loader.signalArrived.connect(
        [this](SelectedPicture& picture) { pictureArrived(picture); }));
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
        if (m_place > 0) {
            walkTo(m_place - 1);
        }
    });
    QObject::connect(
        &widget, &SelectedImageWidget::nextRequested, &widget, [this] { walkTo(m_place + 1); });
    QObject::connect(&widget, &SelectedImageWidget::firstRequested, &widget, [this] { walkTo(0); });
    QObject::connect(&widget, &SelectedImageWidget::lastRequested, &widget, [this] {
        walkTo(m_list.count() - 1);
    });
    QObject::connect(
        &widget.canvas(), &ImageCanvas::menuRequested, &widget, [this](const QPoint& place) {
            emitContextMenuRequested(place);
        });

    m_slowLoading.setSingleShot(true);
    m_slowLoading.setInterval(slowLoadingMs);
    QObject::connect(&m_slowLoading, &QTimer::timeout, &m_slowLoading, [this] {
        if (m_widget && m_loader.isLoading()) {
            m_widget->canvas().setMessage(tr("Reading the image..."));
        }
    });
}

void SelectedImageView::buildFitting()
{
    m_fitToWindow = boost::make_shared<corvane::UndoablePropertyProxy<bool>>(
        "Fit To Window", boost::make_shared<corvane::Property<bool>>(true));
    m_settings = {makeSwitchSetting("fit", "Fit to window", m_fitToWindow)};
    m_widget->setFitting(true);

    SelectedImageWidget& widget = *m_widget;
    m_lastingConnections.add(m_fitToWindow->valueChanged.connect([this](bool fits) {
        if (!m_widget) {
            return;
        }
        m_widget->setFitting(fits);
        ImageCanvas& canvas = m_widget->canvas();
        if (fits) {
            canvas.fit();
        } else if (canvas.isFitting()) {
            canvas.showActualSize();
        }
    }));
    QObject::connect(&widget, &SelectedImageWidget::fitRequested, &widget, [this] {
        m_fitToWindow->setValue(true);
    });
    QObject::connect(&widget, &SelectedImageWidget::actualSizeRequested, &widget, [this] {
        m_fitToWindow->setValue(false);
        m_widget->canvas().showActualSize();
    });
    QObject::connect(
        &widget.canvas(), &ImageCanvas::zoomChanged, &widget, [this] { zoomChanged(); });
}

void SelectedImageView::showImage(const WeakPtr<AuxFile>& file)
{
    const boost::shared_ptr<AuxFile> locked = file.lock();
    if (!locked) {
        return;
    }
    m_wanted = {};
    if (const std::optional<std::size_t> place = m_list.placeOf(*locked)) {
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
    return m_fitToWindow;
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
    takeSelection(selectionModel().getSelections());
}

void SelectedImageView::takeSelection(const std::set<unsigned long long>& selection)
{
    m_list.setSelection(selection);
    chooseImage(!selection.empty());
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

void SelectedImageView::walkTo(std::size_t place)
{
    if (place < m_list.count()) {
        m_wanted = {};
        showPlace(place);
    }
}

void SelectedImageView::showPlace(std::size_t place)
{
    const boost::shared_ptr<AuxFile> file = m_list.file(place);
    if (!file) {
        showNothing(true); // another study has come, and the pipeline is about to tell
        return;
    }
    m_place = place;
    if (m_widget) {
        m_widget->setPlace(place, m_list.count());
    }
    if (m_current == WeakPtr<AuxFile>(file)) {
        return;
    }
    describe(*file);
    m_loader.request(file->filePath());
    if (!m_slowLoading.isActive()) {
        m_slowLoading.start();
    }
    setCurrent(file);
}

void SelectedImageView::showNothing(bool hasSelection)
{
    m_loader.cancel();
    m_slowLoading.stop();
    m_shared.reset();
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
}

void SelectedImageView::setCurrent(const WeakPtr<AuxFile>& file)
{
    if (m_current == file) {
        return;
    }
    m_current = file;
    showHover();
    emitTitleChanged();
}

void SelectedImageView::describe(const AuxFile& file)
{
    if (!m_widget) {
        return;
    }
    QStringList tags;
    for (const std::string& tag : file.tags()) {
        tags.append(QString::fromStdString(tag));
    }
    m_widget->setFile(
        fileName(file),
        tags.join(QStringLiteral(", ")),
        QDir::toNativeSeparators(QString::fromStdString(file.filePath())));
    m_widget->values().showCase(Record(Project::project(), file.row()), file);
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
    }
}

void SelectedImageView::pictureArrived(SelectedPicture& picture)
{
    m_slowLoading.stop();
    m_shared = std::move(picture.shared);
    if (!m_widget) {
        return;
    }
    if (!picture.levels.empty()) {
        m_widget->canvas().setPicture(std::move(picture.levels));
        return;
    }
    m_widget->canvas().setMessage(
        tr("%1\nNot shown: %2.")
            .arg(
                QDir::toNativeSeparators(QString::fromStdString(picture.path)),
                QString::fromStdString(picture.problem)));
}

void SelectedImageView::showHover()
{
    const boost::shared_ptr<AuxFile> file = m_current.lock();
    if (m_widget) {
        m_widget->canvas().setOutlined(
            file && m_hovered->caseID() == Project::project().caseID(file->row()));
    }
}

void SelectedImageView::zoomChanged()
{
    if (m_widget->canvas().isFitting() == m_fitToWindow->value()) {
        return;
    }
    // The wheel is no step of work to be undone.
    const UndoStack::SuspendUndoRecording noRecording;
    m_fitToWindow->setValue(m_widget->canvas().isFitting());
}

} // namespace analyzer
