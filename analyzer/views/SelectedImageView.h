#pragma once

#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/HoveredCase.h>
#include <analyzer/views/ImageCanvasGroup.h>
#include <analyzer/views/SelectedImageList.h>
#include <analyzer/views/SelectedImageLoader.h>
#include <analyzer/views/SelectedImageViewInterface.h>

#include <dataviews/common/views/DataViewAbstract.h>

#include <dataviews/platform/data/AuxFile.h>
#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QPointer>
#include <QTimer>

#include <boost/enable_shared_from_this.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

class CaseSet;
class DataPipelineManagerInterface;
class ImageCache;
struct ProjectChange;

namespace analyzer {

class SelectedImageWidget;

/// Images of the selected cases, one or several at a time, at any size, with the values of a case.
///
/// The images are those of the selected cases that pass the filters, in ascending order of the case IDs, each case's
/// in the order of the study. Several stand side by side, page by page, and are zoomed and moved in step; one of them is
/// the current one, by a click, and its values are shown. When the selection or the filters change, the current image
/// stays as long as it is among them; else the first one is shown. Pictures are read in the background; until one has
/// come, the one before stays for a moment. The images of the hovered case have an outline. Owned through a shared
/// pointer; its widget belongs to the parent that it was given, or to the view without one.
class SelectedImageView
    : public DataViewAbstract
    , public SelectedImageViewInterface
    , public AnalyzerViewInterface
    , public boost::enable_shared_from_this<SelectedImageView>
{
public:
    /// \p pipeline outlives the view. \p hovered is shared with other views.
    SelectedImageView(
        const DataPipelineManagerInterface& pipeline,
        boost::shared_ptr<SelectionModelInterface> selectionModel,
        boost::shared_ptr<ImageCache> cache,
        boost::shared_ptr<HoveredCase> hovered = boost::make_shared<HoveredCase>());
    SelectedImageView(const SelectedImageView&) = delete;
    SelectedImageView& operator=(const SelectedImageView&) = delete;
    ~SelectedImageView() override;

    /// Shows \p file, at once if its case is among the selected ones, else as soon as it is; a selection of other cases
    /// and a walk of the user's end the waiting. Nothing for a file that is gone.
    void showImage(const WeakPtr<AuxFile>& file);

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

    /// Whether the picture is as large as the view allows; undoable.
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<bool>> fitToWindow() const;

    /// How many images are shown at once, one of imageCounts(); undoable.
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> imagesAtOnce() const;

    [[nodiscard]] static const std::vector<std::uint64_t>& imageCounts();

    /// The image whose values are shown; a handle of nothing without one.
    [[nodiscard]] const WeakPtr<AuxFile>& currentImage() const override { return m_current; }

    /// Whether a picture that is to be shown is still to come.
    [[nodiscard]] bool isLoading() const override;

    /// For tests.
    [[nodiscard]] SelectedImageWidget& imageWidget() const;

protected:
    /// The case of the current image, wherever the mouse is.
    bool caseIDAtPoint(unsigned long long& caseID) override;

private:
    /// What is shown in one cell of the widget.
    struct Cell
    {
        explicit Cell(const boost::shared_ptr<ImageCache>& cache)
            : loader(cache)
        {}

        SelectedImageLoader loader;
        WeakPtr<AuxFile> file;
        boost::shared_ptr<QImage> shared; ///< keeps the picture in the cache
    };

    void buildWidget();
    void buildSettings();
    void buildSerializer();
    void takeCases();
    void takeSelection(const CaseSet& selection);
    void chooseImage(bool hasSelection);
    [[nodiscard]] std::size_t firstOfPage(std::size_t place) const;
    void walkTo(std::size_t place);
    void showPlace(std::size_t place);
    void showNothing(bool hasSelection);
    [[nodiscard]] Cell& cell(std::size_t number);
    void showFile(std::size_t number, const boost::shared_ptr<AuxFile>& file);
    void emptyCellsFrom(std::size_t number);
    void setCurrent(const WeakPtr<AuxFile>& file);
    void describe(const AuxFile& file);
    void describeCells();
    void projectChanged(const ProjectChange& change);
    void pictureArrived(std::size_t number, SelectedPicture& picture);
    void showHover();

    const DataPipelineManagerInterface& m_pipeline;
    boost::shared_ptr<HoveredCase> m_hovered;
    QPointer<SelectedImageWidget> m_widget;
    SelectedImageList m_list;
    boost::shared_ptr<ImageCache> m_cache;
    std::vector<std::unique_ptr<Cell>> m_cells; ///< as many as were ever needed
    QTimer m_slowLoading; ///< runs while pictures are being read and those before may still be seen
    std::size_t m_place = 0; ///< of the current image, if there is one
    WeakPtr<AuxFile> m_current;
    WeakPtr<AuxFile> m_wanted; ///< to be shown when it is selected
    ImageCanvasGroup m_canvases;
    boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> m_imagesAtOnce;
    std::vector<boost::shared_ptr<SettingInterface>> m_settings;
    bool m_isSuspended = false;
    SignalConnectionCollection
        m_connections; ///< those that are blocked while the view is suspended
    SignalConnectionCollection m_lastingConnections;
};

} // namespace analyzer
