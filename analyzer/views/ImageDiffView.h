#pragma once

#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/HoveredCase.h>
#include <analyzer/views/ImageCanvasGroup.h>
#include <analyzer/views/ImageDiffComputer.h>
#include <analyzer/views/ImageDiffMode.h>
#include <analyzer/views/ImageDiffPairs.h>
#include <analyzer/views/ImageDiffViewInterface.h>
#include <analyzer/views/SelectedImageList.h>
#include <analyzer/views/SelectedImageLoader.h>

#include <dataviews/common/views/DataViewAbstract.h>

#include <dataviews/platform/data/AuxFile.h>
#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QPointer>
#include <QTimer>

#include <boost/enable_shared_from_this.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

class CaseSet;
class DataPipelineManagerInterface;
class ImageCache;
struct ProjectChange;

namespace analyzer {

class ImageDiffChoiceSetting;
class ImageDiffWidget;

/// The images of two cases compared: beside each other, blended, or their difference.
///
/// The reference is the first of the selected cases that pass the filters, in ascending order of the case IDs, or the one
/// that is pinned, whatever is selected. It is compared with one of the others, through which the user walks. Both images
/// have the same tag. Where the second picture is not as large as the first, it is scaled to the size of that one, and
/// the view says so. Pictures are read and computed in the background; until they have come, those before stay for a
/// moment. Images of the hovered case have an outline. Owned through a shared pointer; its widget belongs to the parent
/// that it was given, or to the view without one.
class ImageDiffView
    : public DataViewAbstract
    , public ImageDiffViewInterface
    , public AnalyzerViewInterface
    , public boost::enable_shared_from_this<ImageDiffView>
{
public:
    using CaseID = unsigned long long;

    /// \p pipeline outlives the view. \p hovered is shared with other views.
    ImageDiffView(
        const DataPipelineManagerInterface& pipeline,
        boost::shared_ptr<SelectionModelInterface> selectionModel,
        const boost::shared_ptr<ImageCache>& cache,
        boost::shared_ptr<HoveredCase> hovered = boost::make_shared<HoveredCase>());
    ImageDiffView(const ImageDiffView&) = delete;
    ImageDiffView& operator=(const ImageDiffView&) = delete;
    ~ImageDiffView() override;

    void suspend() override;

    /// Also shows the selection and the study as they are now.
    void resume() override;
    [[nodiscard]] QWidget& widget() override;
    void accept(DataViewVisitorInterface& visitor) override;
    void render() override;

    [[nodiscard]] std::string kind() const override;
    [[nodiscard]] std::string title() const override;
    [[nodiscard]] const std::vector<boost::shared_ptr<SettingInterface>>& settings() const override;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<MouseMode>> mouseModeProperty()
        const override;

    [[nodiscard]] bool hasAxes() const override { return false; }

    void fitData() override {}

    void resetXAxis() override {}

    void resetYAxis() override {}

    /// Whether a picture that is to be shown is still to come.
    [[nodiscard]] bool isLoading() const override;

    /// Pin the case that the menu was asked for, or no case.
    void addContextActions(QMenu& menu) override;

    // ---- what can be set, all of it undoable

    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<ImageDiffMode>> mode() const
    {
        return m_mode;
    }

    /// In percent of the second image.
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> blend() const
    {
        return m_blend;
    }

    /// How many times brighter differences are drawn.
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> gain() const
    {
        return m_gain;
    }

    /// Whether the reference comes second.
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<bool>> swapped() const
    {
        return m_swapped;
    }

    /// The tag of the images; for none the first one that both cases have.
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<std::optional<std::string>>> tag()
        const
    {
        return m_tag;
    }

    /// The case that is compared with others whatever is selected; none for the first of the selected ones.
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<std::optional<CaseID>>> pinned() const
    {
        return m_pinned;
    }

    /// For tests.
    [[nodiscard]] ImageDiffWidget& diffWidget() const;

protected:
    /// The case of the picture where a mouse button went down last; where that is made of two, the one that is not the
    /// reference.
    bool caseIDAtPoint(unsigned long long& caseID) override;

private:
    void buildProperties();
    void buildSettings();
    void buildSerializer();
    void buildWidget();
    void connectButtons();
    void takeCases();
    void takeSelection(const CaseSet& selection);
    void projectChanged(const ProjectChange& change);
    void reset();

    void choosePair();
    void walkTo(std::size_t place);
    void showPair(const ImageDiffPairs& all, std::size_t place);
    void describePair(const ImageDiffPairs& all, std::size_t place);
    void showNothing(const QString& message);
    [[nodiscard]] QString messageWithoutPair(const ImageDiffPairs& all) const;
    void showPinning(const ImageDiffPairs& all);
    void pictureArrived(std::size_t number, SelectedPicture& picture);
    void showPictures();
    [[nodiscard]] QString problemText() const;
    void showSideBySide();
    void computed(ImageDiffComputer::Result& result);
    [[nodiscard]] QString sizesText() const;
    [[nodiscard]] ImageDiffPairs pairs() const;
    [[nodiscard]] std::optional<CaseID> caseOf(std::size_t number) const;
    void requireCaseWithImages(CaseID caseID) const;
    void showHover();

    const DataPipelineManagerInterface& m_pipeline;
    boost::shared_ptr<HoveredCase> m_hovered;
    QPointer<ImageDiffWidget> m_widget;
    SelectedImageList m_list;
    std::array<SelectedImageLoader, 2> m_loaders;
    ImageDiffComputer m_computer;
    QTimer m_slowLoading; ///< runs while pictures are being made and those before may still be seen
    std::optional<CaseID> m_other; ///< compared with the reference, as soon as it is selected
    std::array<WeakPtr<AuxFile>, 2> m_files; ///< in the order in which they are shown
    std::array<SelectedPicture, 2> m_pictures; ///< of these files, as far as they have come
    std::optional<ImageDiffMode>
        m_computedMode; ///< of what is shown, if it was computed of these pictures
    std::size_t m_pressed = 1; ///< the picture where a mouse button went down last
    ImageCanvasGroup m_canvases;
    boost::shared_ptr<corvane::PropertyAbstract<ImageDiffMode>> m_mode;
    boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> m_blend;
    boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> m_gain;
    boost::shared_ptr<corvane::PropertyAbstract<bool>> m_swapped;
    boost::shared_ptr<corvane::PropertyAbstract<std::optional<std::string>>> m_tag;
    boost::shared_ptr<corvane::PropertyAbstract<std::optional<CaseID>>> m_pinned;
    boost::shared_ptr<ImageDiffChoiceSetting> m_tagSetting;
    boost::shared_ptr<ImageDiffChoiceSetting> m_referenceSetting;
    std::vector<boost::shared_ptr<SettingInterface>> m_settings;
    bool m_isSuspended = false;
    SignalConnectionCollection
        m_connections; ///< those that are blocked while the view is suspended
    SignalConnectionCollection m_lastingConnections;
};

} // namespace analyzer
