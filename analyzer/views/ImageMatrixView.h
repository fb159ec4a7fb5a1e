#pragma once

#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/HoveredCase.h>
#include <analyzer/views/ImageMatrixViewInterface.h>

#include <dataviews/common/images/ImageTableModel.h>
#include <dataviews/common/images/ImageTableView.h>
#include <dataviews/common/views/DataViewAbstract.h>

#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QModelIndex>
#include <QObject>
#include <QPoint>
#include <QPointer>

#include <boost/enable_shared_from_this.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

class AuxFile;
class DataPipelineManagerInterface;

namespace analyzer {

class CellHover;

/// The images of the cases that pass the filters, laid out by variables or tags.
///
/// Starts with the study's images as tags to show. Owned through a shared pointer; its widget belongs to the parent
/// that it was given, or to the view without one.
class ImageMatrixView
    : public QObject
    , public DataViewAbstract
    , public ImageMatrixViewInterface
    , public AnalyzerViewInterface
    , public boost::enable_shared_from_this<ImageMatrixView>
{
    Q_OBJECT

public:
    /// \p pipeline outlives the view. \p loader is the view's own. \p hovered is shared with other views.
    ImageMatrixView(
        const DataPipelineManagerInterface& pipeline,
        const boost::shared_ptr<SelectionModelInterface>& selectionModel,
        const boost::shared_ptr<ImageFileLoaderInterface>& loader,
        boost::shared_ptr<HoveredCase> hovered = boost::make_shared<HoveredCase>());
    ImageMatrixView(const ImageMatrixView&) = delete;
    ImageMatrixView& operator=(const ImageMatrixView&) = delete;
    ~ImageMatrixView() override;

    void suspend() override;

    /// Also shows settings, cases and selection as they are now.
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

    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> zoom() const override;

    [[nodiscard]] bool isLoading() const override { return m_images->isLoading(); }

    /// Those that do not pass the filters: missing values have a row, column or page of their own, and cases on other
    /// pages are a step away.
    [[nodiscard]] std::vector<LeftOutCases> leftOut() const override;
    [[nodiscard]] std::set<unsigned long long> leftOutCaseIDs() const override;

    /// Copy, open the folder, select the case: for the first image of the cell that the menu was asked for.
    void addContextActions(QMenu& menu) override;

    [[nodiscard]] std::vector<WeakPtr<AuxFile>> selectedImages() const override;
    void showTag(const std::string& tag) override;
    void layOutByTags(const std::string& group) override;

    [[nodiscard]] ImageMatrixViewProperties& properties() const { return *m_properties; }

    [[nodiscard]] ImageTableView& imageTable() const { return *m_images; }

protected:
    bool caseIDAtPoint(unsigned long long& caseID) override;

private:
    template <class Function>
    void attempt(Function function) const;
    void buildSettings();
    void keepState();
    void keepTagsToShow();
    void watchTitle();
    void buildHover();
    void hoveredCaseChanged();
    [[nodiscard]] std::optional<unsigned long long> singleCaseAt(const QPoint& place) const;
    void openContextMenu(const QPoint& place);
    void activate(const QModelIndex& index);
    [[nodiscard]] std::optional<AuxFileImageData> firstImage(const QModelIndex& index) const;

    const DataPipelineManagerInterface& m_pipeline;
    boost::shared_ptr<HoveredCase> m_hovered;
    QPointer<QWidget> m_widget;
    boost::shared_ptr<ImageMatrixViewProperties> m_properties;
    boost::shared_ptr<ImageFileLoaderInterface> m_loader;
    std::unique_ptr<ImageTableView> m_images;
    std::vector<boost::shared_ptr<SettingInterface>> m_settings;
    std::optional<AuxFileImageData> m_imageUnderMouse; ///< of the last request for a menu
    std::vector<ImageTableModel::Cell> m_outlinedCells;
    std::unique_ptr<CellHover> m_hover;
    SignalConnectionCollection m_connections;
    SignalConnectionCollection m_hoverConnections;
};

} // namespace analyzer
