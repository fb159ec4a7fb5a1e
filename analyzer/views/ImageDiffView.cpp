#include <analyzer/views/ChoiceSetting.h>
#include <analyzer/views/ImageCanvas.h>
#include <analyzer/views/ImageDiffChoiceSetting.h>
#include <analyzer/views/ImageDiffOptionSerializer.h>
#include <analyzer/views/ImageDiffView.h>
#include <analyzer/views/ImageDiffWidget.h>
#include <analyzer/views/NumberSetting.h>
#include <analyzer/views/SelectedImageGrid.h>
#include <analyzer/views/viewState.h>

#include <dataviews/common/images/ImageCache.h>
#include <dataviews/common/views/BoundedValueValidator.h>
#include <dataviews/common/views/DataViewVisitorInterface.h>
#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/UndoablePropertyProxy.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManagerInterface.h>
#include <dataviews/platform/property/ExceptionBase.h>
#include <dataviews/platform/selection/SelectionModelInterface.h>
#include <dataviews/platform/serialize/Serializer.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMenu>

#include <vtkIntArray.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <boost/lexical_cast.hpp>
#include <boost/make_shared.hpp>

#include <algorithm>
#include <utility>

namespace analyzer {

namespace {

using CaseID = ImageDiffView::CaseID;

constexpr int slowLoadingMs =
    150; ///< a picture that comes sooner takes the place of the one before without a blink
constexpr std::uint64_t onlySecond = 100; ///< percent
constexpr std::uint64_t halfAndHalf = 50; ///< percent
constexpr std::uint64_t largestGain = 16;
constexpr std::size_t mostReferences = 100; ///< to be listed; others can be typed
constexpr char automaticTag[] = "(first in common)";
constexpr char noReference[] = "none";

const std::vector<std::pair<std::string, ImageDiffMode>>& modeNames()
{
    static const std::vector<std::pair<std::string, ImageDiffMode>> names{
        {"side-by-side", ImageDiffMode::SideBySide},
        {"blend", ImageDiffMode::Blend},
        {"difference", ImageDiffMode::Difference}};
    return names;
}

QString tr(const char* text)
{
    return QCoreApplication::translate("ImageDiffView", text);
}

QString sizeText(const QSize& size)
{
    return tr("%1 × %2").arg(size.width()).arg(size.height());
}

/// Three significant digits, but no exponent: "0.0123", "12.3".
QString meanText(double mean)
{
    constexpr double small = 0.001;
    return mean > 0.0 && mean < small ? tr("below 0.001") : QString::number(mean, 'g', 3);
}

QString notShownText(const SelectedPicture& picture)
{
    return tr("%1\nNot shown: %2.")
        .arg(
            QDir::toNativeSeparators(QString::fromStdString(picture.path)),
            QString::fromStdString(picture.problem));
}

/// The tags that images carry, in the order of the study.
std::vector<std::string> imageTags()
{
    std::vector<std::string> tags;
    const boost::shared_ptr<TagGroup> group = Project::project().tagGroup("Images").lock();
    return group ? group->tags() : tags;
}

template <class T>
boost::shared_ptr<corvane::PropertyAbstract<T>> undoable(const char* name, const T& value)
{
    return boost::make_shared<corvane::UndoablePropertyProxy<T>>(
        name, boost::make_shared<corvane::Property<T>>(value));
}

/// Moves of a slider become one step.
boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> undoableNumber(
    const char* name, std::uint64_t value, std::uint64_t minimum, std::uint64_t maximum)
{
    return boost::make_shared<corvane::UndoablePropertyProxy<std::uint64_t>>(
        name,
        boost::make_shared<corvane::Property<std::uint64_t>>(
            value,
            boost::make_shared<corvane::BoundedValueValidator<std::uint64_t>>(minimum, maximum)),
        UndoStack::nextUndoID());
}

} // namespace

ImageDiffView::ImageDiffView(
    const DataPipelineManagerInterface& pipeline,
    boost::shared_ptr<SelectionModelInterface> selectionModel,
    const boost::shared_ptr<ImageCache>& cache,
    boost::shared_ptr<HoveredCase> hovered)
    : DataViewAbstract(std::make_unique<Serializer>("ImageDiff"), selectionModel)
    , m_pipeline(pipeline)
    , m_hovered(std::move(hovered))
    , m_widget(new ImageDiffWidget)
    , m_list(Project::project())
    , m_loaders{SelectedImageLoader(cache), SelectedImageLoader(cache)}
{
    buildProperties();
    buildSettings();
    buildSerializer();
    buildWidget();
    connectButtons();
    m_connections.add(selectionModel->signalSelectionChanged.connect(
        [this](const CaseSelection& selection) { takeSelection(*selection); }));
    m_connections.add(m_pipeline.signalPipelineChanged.connect([this] { takeCases(); }));
    m_lastingConnections.add(Project::project().signalProjectChanged.connect(
        [this](const ProjectChange& change) { projectChanged(change); }));
    for (std::size_t i = 0; i < m_loaders.size(); ++i) {
        m_lastingConnections.add(m_loaders[i].signalArrived.connect(
            [this, i](SelectedPicture& picture) { pictureArrived(i, picture); }));
    }
    m_lastingConnections.add(m_computer.signalComputed.connect(
        [this](ImageDiffComputer::Result& result) { computed(result); }));
    m_lastingConnections.add(m_hovered->signalHoveredCaseChanged.connect([this] { showHover(); }));
    takeCases();
}

ImageDiffView::~ImageDiffView()
{
    m_connections.clear();
    m_lastingConnections.clear();
    // The widget may have gone with its parent.
    delete m_widget.data();
}

// ---- construction

void ImageDiffView::buildProperties()
{
    m_mode = undoable("Way Of Comparing", ImageDiffMode::SideBySide);
    m_blend = undoableNumber("Blend", halfAndHalf, 0, onlySecond);
    m_gain = undoableNumber("Gain", 1, 1, largestGain);
    m_swapped = undoable("Order Of Images", false);
    m_tag = undoable("Tag Of Images", std::optional<std::string>());
    m_pinned = undoable("Reference", std::optional<CaseID>());

    m_lastingConnections.add(m_mode->valueChanged.connect([this](ImageDiffMode mode) {
        if (m_widget) {
            m_widget->setMode(mode);
        }
        choosePair();
    }));
    m_lastingConnections.add(m_blend->valueChanged.connect([this](std::uint64_t percent) {
        if (m_widget) {
            m_widget->setBlend(static_cast<int>(percent));
        }
        choosePair();
    }));
    m_lastingConnections.add(m_gain->valueChanged.connect([this](std::uint64_t gain) {
        if (m_widget) {
            m_widget->setGain(static_cast<int>(gain));
        }
        choosePair();
    }));
    m_lastingConnections.add(m_swapped->valueChanged.connect([this](bool isSwapped) {
        if (m_widget) {
            m_widget->setSwapped(isSwapped);
        }
        choosePair();
    }));
    m_lastingConnections.add(m_tag->valueChanged.connect([this](const std::optional<std::string>&) {
        m_tagSetting->tellChanged();
        choosePair();
    }));
    m_lastingConnections.add(m_pinned->valueChanged.connect([this](const std::optional<CaseID>&) {
        m_referenceSetting->tellChanged();
        choosePair();
    }));
}

void ImageDiffView::buildSettings()
{
    const auto inMode = [](ImageDiffMode wanted) {
        return [wanted](ImageDiffMode mode) { return mode == wanted; };
    };
    const auto mode = boost::make_shared<ChoiceSetting<ImageDiffMode>>(
        SettingInterface::Kind::Choice, "mode", tr("Compare").toStdString(), m_mode, modeNames());
    const auto blend = boost::make_shared<NumberSetting>(
        "blend",
        tr("Blend").toStdString(),
        m_blend,
        NumberSetting::Range{0, onlySecond, 5},
        tr(" % of the second").toStdString());
    blend->enableWhile(m_mode, inMode(ImageDiffMode::Blend));
    const auto gain = boost::make_shared<NumberSetting>(
        "gain",
        tr("Gain of differences").toStdString(),
        m_gain,
        NumberSetting::Range{1, largestGain, 1},
        " ×");
    gain->enableWhile(m_mode, inMode(ImageDiffMode::Difference));

    m_tagSetting = boost::make_shared<ImageDiffChoiceSetting>(
        "tag",
        tr("Images tagged").toStdString(),
        [] {
            std::vector<std::string> choices = imageTags();
            choices.insert(choices.begin(), automaticTag);
            return choices;
        },
        [this] { return m_tag->value().value_or(automaticTag); },
        [this](const std::string& text) {
            if (text == automaticTag) {
                m_tag->setValue(std::nullopt);
                return;
            }
            const std::vector<std::string> tags = imageTags();
            if (std::find(tags.begin(), tags.end(), text) == tags.end()) {
                throw ExceptionBase("The study has no images tagged \"" + text + "\".");
            }
            m_tag->setValue(text);
        });
    m_referenceSetting = boost::make_shared<ImageDiffChoiceSetting>(
        "reference",
        tr("Pinned reference").toStdString(),
        [this] {
            std::vector<std::string> choices{noReference};
            const std::optional<CaseID> pinned = m_pinned->value();
            if (pinned && !m_list.caseNumber(*pinned)) {
                choices.push_back(std::to_string(*pinned));
            }
            for (std::size_t i = 0; i < std::min(m_list.caseCount(), mostReferences); ++i) {
                choices.push_back(std::to_string(m_list.caseID(i)));
            }
            return choices;
        },
        [this] {
            const std::optional<CaseID> pinned = m_pinned->value();
            return pinned ? std::to_string(*pinned) : std::string(noReference);
        },
        [this](const std::string& text) {
            if (text == noReference) {
                m_pinned->setValue(std::nullopt);
                return;
            }
            CaseID caseID = 0;
            if (!boost::conversion::try_lexical_convert(text, caseID)) {
                throw ExceptionBase(
                    "\"" + text + "\" is not a value of reference, which takes a case ID or "
                    + noReference + ".");
            }
            requireCaseWithImages(caseID);
            m_pinned->setValue(caseID);
        });
    m_settings = {
        mode,
        blend,
        gain,
        m_tagSetting,
        m_referenceSetting,
        makeSwitchSetting("swap", tr("Swap the images").toStdString(), m_swapped),
        makeSwitchSetting("fit", tr("Fit to window").toStdString(), m_canvases.fitToWindow())};
}

void ImageDiffView::buildSerializer()
{
    SerializerInterface& parent = serializer();
    viewState::keep(parent, "Mode", m_mode, modeNames());
    viewState::keep(parent, "Blend", m_blend);
    viewState::keep(parent, "Gain", m_gain);
    viewState::keep(parent, "Swapped", m_swapped);
    parent.addSubElement(boost::make_shared<ImageDiffOptionSerializer>(
        "Tag",
        [this] { return m_tag->value(); },
        [this](const std::optional<std::string>& tag) {
            const std::vector<std::string> tags = imageTags();
            if (!tag || std::find(tags.begin(), tags.end(), *tag) != tags.end()) {
                m_tag->setValue(tag);
            }
        }));
    const auto text = [](const std::optional<CaseID>& caseID) {
        return caseID ? std::optional<std::string>(std::to_string(*caseID)) : std::nullopt;
    };
    // A case that is gone leaves the view as it is.
    const auto read = [](const std::optional<std::string>& value, const auto& set) {
        if (!value) {
            set(std::nullopt);
            return;
        }
        const auto caseID = boost::lexical_cast<CaseID>(*value);
        if (Project::project().row(caseID)) {
            set(std::optional<CaseID>(caseID));
        }
    };
    parent.addSubElement(boost::make_shared<ImageDiffOptionSerializer>(
        "Reference",
        [this, text] { return text(m_pinned->value()); },
        [this, read](const std::optional<std::string>& value) {
            read(
                value, [this](const std::optional<CaseID>& caseID) { m_pinned->setValue(caseID); });
        }));
    parent.addSubElement(boost::make_shared<ImageDiffOptionSerializer>(
        "Other",
        [this, text] { return text(m_other); },
        [this, read](const std::optional<std::string>& value) {
            read(value, [this](const std::optional<CaseID>& caseID) {
                m_other = caseID;
                choosePair();
            });
        }));
    m_canvases.keepIn(parent);
}

void ImageDiffView::buildWidget()
{
    m_widget->setObjectName(QStringLiteral("ImageDiff"));
    m_widget->setAccessibleName(tr("Images of two cases compared"));
    m_widget->setMode(m_mode->value());
    m_widget->setBlend(static_cast<int>(m_blend->value()));
    m_widget->setGain(static_cast<int>(m_gain->value()));
    m_widget->setFitting(m_canvases.fitToWindow()->value());
    for (std::size_t i = 0; i < m_loaders.size(); ++i) {
        ImageCanvas& canvas = m_widget->grid().canvas(i);
        m_canvases.add(canvas);
        QObject::connect(&canvas, &ImageCanvas::pressed, &canvas, [this, i] { m_pressed = i; });
        QObject::connect(
            &canvas, &ImageCanvas::menuRequested, &canvas, [this](const QPoint& place) {
                emitContextMenuRequested(place);
            });
    }
    m_lastingConnections.add(m_canvases.fitToWindow()->valueChanged.connect([this](bool fits) {
        if (m_widget) {
            m_widget->setFitting(fits);
        }
    }));

    m_slowLoading.setSingleShot(true);
    m_slowLoading.setInterval(slowLoadingMs);
    QObject::connect(&m_slowLoading, &QTimer::timeout, &m_slowLoading, [this] {
        if (m_computedMode == m_mode->value()) {
            return; // a slider moves; what is shown is nearly right
        }
        for (std::size_t i = 0; m_widget && isLoading() && i < m_widget->grid().usedCount(); ++i) {
            m_widget->grid().canvas(i).setMessage(
                m_computer.isComputing() ? tr("Comparing the images...")
                                         : tr("Reading the images..."));
        }
    });
}

void ImageDiffView::connectButtons()
{
    ImageDiffWidget& widget = *m_widget;
    const auto place = [this] { return m_other ? pairs().placeOf(*m_other) : std::nullopt; };
    QObject::connect(&widget, &ImageDiffWidget::previousRequested, &widget, [this, place] {
        const std::optional<std::size_t> present = place();
        if (present && *present > 0) {
            walkTo(*present - 1);
        }
    });
    QObject::connect(&widget, &ImageDiffWidget::nextRequested, &widget, [this, place] {
        if (const std::optional<std::size_t> present = place()) {
            walkTo(*present + 1);
        }
    });
    QObject::connect(&widget, &ImageDiffWidget::firstRequested, &widget, [this] { walkTo(0); });
    QObject::connect(&widget, &ImageDiffWidget::lastRequested, &widget, [this] {
        const std::size_t count = pairs().otherCount();
        if (count > 0) {
            walkTo(count - 1);
        }
    });
    QObject::connect(
        &widget, &ImageDiffWidget::modeRequested, &widget, [this](ImageDiffMode wanted) {
            m_mode->setValue(wanted);
        });
    QObject::connect(&widget, &ImageDiffWidget::blendRequested, &widget, [this](int percent) {
        m_blend->setValue(static_cast<std::uint64_t>(percent));
    });
    QObject::connect(&widget, &ImageDiffWidget::gainRequested, &widget, [this](int wanted) {
        m_gain->setValue(static_cast<std::uint64_t>(wanted));
    });
    QObject::connect(&widget, &ImageDiffWidget::pinRequested, &widget, [this](bool isWanted) {
        m_pinned->setValue(isWanted ? pairs().reference() : std::nullopt);
    });
    QObject::connect(&widget, &ImageDiffWidget::swapRequested, &widget, [this](bool isWanted) {
        m_swapped->setValue(isWanted);
    });
    QObject::connect(&widget, &ImageDiffWidget::fitRequested, &widget, [this] {
        m_canvases.fitToWindow()->setValue(true);
    });
    QObject::connect(&widget, &ImageDiffWidget::actualSizeRequested, &widget, [this] {
        m_canvases.showActualSize();
    });
}

// ---- the view

void ImageDiffView::suspend()
{
    m_isSuspended = true;
    m_connections.block();
}

void ImageDiffView::resume()
{
    m_isSuspended = false;
    m_connections.unblock();
    takeCases();
}

QWidget& ImageDiffView::widget()
{
    return *m_widget;
}

void ImageDiffView::accept(DataViewVisitorInterface& visitor)
{
    visitor.visit(boost::shared_ptr<ImageDiffViewInterface>(shared_from_this()));
}

void ImageDiffView::render()
{
    m_widget->repaint();
}

std::string ImageDiffView::kind() const
{
    return "image-diff";
}

std::string ImageDiffView::title() const
{
    const std::optional<CaseID> first = caseOf(0);
    const std::optional<CaseID> second = caseOf(1);
    const QString text = first && second ? tr("cases %1 and %2").arg(*first).arg(*second)
                                         : tr("no images to compare");
    return text.toStdString();
}

const std::vector<boost::shared_ptr<SettingInterface>>& ImageDiffView::settings() const
{
    return m_settings;
}

boost::shared_ptr<corvane::PropertyAbstract<DataViewInterface::MouseMode>> ImageDiffView::
    mouseModeProperty() const
{
    return {};
}

bool ImageDiffView::isLoading() const
{
    return m_loaders[0].isLoading() || m_loaders[1].isLoading() || m_computer.isComputing();
}

void ImageDiffView::addContextActions(QMenu& menu)
{
    CaseID caseID = 0;
    const std::optional<CaseID> pinned = m_pinned->value();
    if (caseIDAtPoint(caseID) && pinned != caseID) {
        // The menu goes before the view.
        menu.addAction(tr("&Pin Case %1 as the Reference").arg(caseID), &menu, [this, caseID] {
            m_pinned->setValue(caseID);
        });
    }
    if (pinned) {
        menu.addAction(tr("&Unpin the Reference, Case %1").arg(*pinned), &menu, [this] {
            m_pinned->setValue(std::nullopt);
        });
    }
}

ImageDiffWidget& ImageDiffView::diffWidget() const
{
    return *m_widget;
}

bool ImageDiffView::caseIDAtPoint(unsigned long long& caseID)
{
    const std::size_t other = m_swapped->value() ? 0 : 1;
    const std::optional<CaseID> found =
        caseOf(m_mode->value() == ImageDiffMode::SideBySide ? m_pressed : other);
    if (found) {
        caseID = *found;
    }
    return found.has_value();
}

// ---- which images

void ImageDiffView::takeCases()
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

void ImageDiffView::takeSelection(const CaseSet& selection)
{
    m_list.setSelection(selection);
    m_referenceSetting->tellChanged();
    choosePair();
}

void ImageDiffView::projectChanged(const ProjectChange& change)
{
    if (change.studyReplaced) {
        reset();
        return;
    }
    m_tagSetting->tellChanged();
    choosePair(); // images may have other tags
}

/// Forgets what was of another study. The pipeline tells of the new one, before this or after.
void ImageDiffView::reset()
{
    const UndoStack::SuspendUndoRecording noRecording;
    m_other.reset();
    if (m_isSuspended) {
        m_list.clear();
    }
    m_tag->setValue(std::nullopt);
    m_pinned->setValue(std::nullopt);
    m_tagSetting->tellChanged();
    if (m_isSuspended) {
        showNothing({});
    } else {
        takeCases();
    }
}

ImageDiffPairs ImageDiffView::pairs() const
{
    return {Project::project(), m_list, m_tag->value(), m_pinned->value()};
}

/// The pair that is there stays as long as it can.
void ImageDiffView::choosePair()
{
    if (m_isSuspended || !m_widget) {
        return;
    }
    const ImageDiffPairs all = pairs();
    showPinning(all);
    if (!all.reference() || all.otherCount() == 0) {
        showNothing(messageWithoutPair(all));
        return;
    }
    const std::optional<std::size_t> place = m_other ? all.placeOf(*m_other) : std::nullopt;
    showPair(all, place ? *place : all.firstSuitablePlace());
}

void ImageDiffView::walkTo(std::size_t place)
{
    const ImageDiffPairs all = pairs();
    if (!m_isSuspended && place < all.otherCount()) {
        showPair(all, place);
    }
}

void ImageDiffView::showPair(const ImageDiffPairs& all, std::size_t place)
{
    const CaseID reference = *all.reference();
    const CaseID other = all.other(place);
    m_other = other;
    ImageDiffPairs::Files files = all.files(reference, other);
    if (!files.first) {
        const std::optional<std::string> tag = m_tag->value();
        showNothing(
            tag ? tr("Case %1 and case %2 do not both have an image tagged \"%3\".")
                      .arg(
                          QString::number(reference),
                          QString::number(other),
                          QString::fromStdString(*tag))
                : tr("The images of case %1 and case %2 have no tag in common.")
                      .arg(reference)
                      .arg(other));
        m_widget->setPlace(place, all.otherCount());
        return;
    }
    if (m_swapped->value()) {
        std::swap(files.first, files.second);
    }
    const std::array<boost::shared_ptr<AuxFile>, 2> shown{files.first, files.second};
    const std::array<WeakPtr<AuxFile>, 2> handles{shown[0], shown[1]};
    const bool areOthers = m_files != handles;
    m_files = handles;
    m_widget->setMode(m_mode->value());
    describePair(all, place);
    showHover();
    if (!areOthers) {
        showPictures();
        return;
    }
    m_computer.cancel();
    m_computedMode.reset();
    for (std::size_t i = 0; i < shown.size(); ++i) {
        m_loaders[i].request(shown[i]->filePath());
    }
    if (!m_slowLoading.isActive()) {
        m_slowLoading.start();
    }
    emitTitleChanged();
}

void ImageDiffView::describePair(const ImageDiffPairs& all, std::size_t place)
{
    const std::optional<CaseID> pinned = m_pinned->value();
    std::array<QString, 2> captions;
    std::array<QString, 2> paths;
    for (std::size_t i = 0; i < m_files.size(); ++i) {
        const boost::shared_ptr<AuxFile> file = m_files[i].lock();
        const QString path = QString::fromStdString(file->filePath());
        const CaseID caseID = Project::project().caseID(file->row());
        captions[i] = (pinned == caseID ? tr("Reference, case %1: %2") : tr("Case %1: %2"))
                          .arg(QString::number(caseID), QFileInfo(path).fileName());
        paths[i] = QDir::toNativeSeparators(path);
    }
    m_widget->setCaptions(captions, paths);
    m_widget->setPlace(place, all.otherCount());
}

void ImageDiffView::showPinning(const ImageDiffPairs& all)
{
    const std::optional<CaseID> pinned = m_pinned->value();
    const std::optional<CaseID> reference = all.reference();
    QString toolTip = tr("Keep one case as the reference while the selection changes");
    if (pinned) {
        toolTip = tr("Case %1 is the reference whatever is selected").arg(*pinned);
    } else if (reference) {
        toolTip = tr("Keep case %1 as the reference while the selection changes").arg(*reference);
    }
    m_widget->setPinned(pinned.has_value(), reference.has_value(), toolTip);
}

void ImageDiffView::showNothing(const QString& message)
{
    m_loaders[0].cancel();
    m_loaders[1].cancel();
    m_computer.cancel();
    m_slowLoading.stop();
    m_pictures = {};
    m_computedMode.reset();
    if (m_widget) {
        m_widget->setNothing(message);
    }
    const bool hadFiles = !m_files[0].expired() || !m_files[1].expired();
    m_files = {};
    showHover();
    if (hadFiles) {
        emitTitleChanged();
    }
}

QString ImageDiffView::messageWithoutPair(const ImageDiffPairs& all) const
{
    const Project& project = Project::project();
    if (project.caseCount() == 0) {
        return tr("Open a study with images to compare them here.");
    }
    if (project.auxFileCount() == 0) {
        return tr("This study has no images.");
    }
    const bool isFiltered = !m_pipeline.filtersInForce().empty();
    if (m_pinned->value()) {
        const QString text = isFiltered
            ? tr("Select another case with images that passes the filters, to compare it with case "
                 "%1, the reference.")
            : tr("Select another case with images, to compare it with case %1, the reference.");
        return text.arg(*all.reference());
    }
    return isFiltered ? tr("Select two cases with images that pass the filters to compare.")
                      : tr("Select two cases with images to compare.");
}

void ImageDiffView::requireCaseWithImages(CaseID caseID) const
{
    const Project& project = Project::project();
    const std::optional<std::size_t> row = project.row(caseID);
    if (!row) {
        throw ExceptionBase("The study has no case " + std::to_string(caseID) + ".");
    }
    if (project.auxFiles(*row).empty()) {
        throw ExceptionBase(
            "Case " + std::to_string(caseID) + " has no image, so it cannot be the reference.");
    }
}

std::optional<CaseID> ImageDiffView::caseOf(std::size_t number) const
{
    const boost::shared_ptr<AuxFile> file = m_files[number].lock();
    return file ? std::optional<CaseID>(Project::project().caseID(file->row())) : std::nullopt;
}

// ---- the pictures

void ImageDiffView::pictureArrived(std::size_t number, SelectedPicture& picture)
{
    m_pictures[number] = std::move(picture);
    if (!m_loaders[0].isLoading() && !m_loaders[1].isLoading()) {
        showPictures();
    }
}

/// Shows the pictures that are there, or begins to make one of them. Nothing while one of them is being read.
void ImageDiffView::showPictures()
{
    if (!m_widget || m_loaders[0].isLoading() || m_loaders[1].isLoading()) {
        return;
    }
    if (m_mode->value() == ImageDiffMode::SideBySide) {
        showSideBySide();
        return;
    }
    const QString problems = problemText();
    if (!problems.isEmpty()) {
        m_slowLoading.stop();
        m_widget->setRemark({});
        m_widget->grid().canvas(0).setMessage(problems);
        return;
    }
    ImageDiffComputer::Request request;
    request.mode = m_mode->value();
    request.first = m_pictures[0].levels.front();
    request.second = m_pictures[1].levels.front();
    request.percent = static_cast<int>(m_blend->value());
    request.gain = static_cast<int>(m_gain->value());
    m_computer.request(request);
    if (!m_slowLoading.isActive()) {
        m_slowLoading.start();
    }
}

void ImageDiffView::showSideBySide()
{
    m_computer.cancel();
    m_computedMode.reset();
    m_slowLoading.stop();
    for (std::size_t i = 0; i < m_pictures.size(); ++i) {
        ImageCanvas& canvas = m_widget->grid().canvas(i);
        if (m_pictures[i].levels.empty()) {
            canvas.setMessage(notShownText(m_pictures[i]));
        } else {
            canvas.setPicture(m_pictures[i].levels);
        }
    }
    m_widget->setRemark(sizesText());
}

/// Why there are not two pictures; empty if there are.
QString ImageDiffView::problemText() const
{
    QStringList problems;
    for (const SelectedPicture& picture : m_pictures) {
        if (picture.levels.empty()) {
            problems.append(notShownText(picture));
        }
    }
    return problems.join(QStringLiteral("\n\n"));
}

void ImageDiffView::computed(ImageDiffComputer::Result& result)
{
    m_slowLoading.stop();
    if (m_computer.isComputing()) {
        m_slowLoading.start();
    }
    if (!m_widget || result.mode != m_mode->value()) {
        return;
    }
    m_computedMode = result.mode;
    ImageCanvas& canvas = m_widget->grid().canvas(0);
    if (result.levels.empty()) {
        canvas.setMessage(tr("There is not enough memory to compare the images."));
        m_widget->setRemark({});
        return;
    }
    canvas.setPicture(std::move(result.levels));
    QStringList remarks;
    if (result.mode == ImageDiffMode::Difference) {
        if (result.largest == 0) {
            remarks.append(tr("The images do not differ in any pixel."));
        } else {
            remarks.append(
                tr("Difference per pixel, 0 to 255: mean %1, largest %2")
                    .arg(meanText(result.mean), QString::number(result.largest))
                + (result.gain == 1 ? QStringLiteral(".")
                                    : tr("; drawn %1 times brighter.").arg(result.gain)));
        }
    }
    const QString sizes = sizesText();
    if (!sizes.isEmpty()) {
        remarks.append(sizes);
    }
    m_widget->setRemark(remarks.join(QLatin1Char(' ')));
}

/// Says what is done about pictures of different sizes; empty for pictures of one size.
QString ImageDiffView::sizesText() const
{
    if (m_pictures[0].levels.empty() || m_pictures[1].levels.empty()) {
        return {};
    }
    const QSize first = m_pictures[0].levels.front().size();
    const QSize second = m_pictures[1].levels.front().size();
    if (first == second) {
        return {};
    }
    const QString text = m_mode->value() == ImageDiffMode::SideBySide
        ? tr("The images have %1 and %2 pixels.")
        : tr(
            "The images have %1 and %2 pixels; the second one is scaled to the size of the first.");
    return text.arg(sizeText(first), sizeText(second));
}

/// A picture made of two stands for both cases.
void ImageDiffView::showHover()
{
    const std::optional<CaseID> hovered = m_hovered->caseID();
    if (!m_widget) {
        return;
    }
    const bool isFirst = hovered && hovered == caseOf(0);
    const bool isSecond = hovered && hovered == caseOf(1);
    const bool isSideBySide = m_widget->grid().usedCount() == m_files.size();
    m_widget->grid().canvas(0).setOutlined(isFirst || (isSecond && !isSideBySide));
    m_widget->grid().canvas(1).setOutlined(isSecond && isSideBySide);
}

} // namespace analyzer
