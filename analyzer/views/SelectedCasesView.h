#pragma once

#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/HoveredCase.h>
#include <analyzer/views/SelectedCasesModel.h>
#include <analyzer/views/SelectedCasesReference.h>
#include <analyzer/views/SelectedCasesViewInterface.h>

#include <dataviews/common/views/DataViewAbstract.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QPointer>

#include <boost/enable_shared_from_this.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

class CaseSet;
class DataPipelineManagerInterface;
class RowBitmap;
struct ProjectChange;

namespace analyzer {

class SelectedCasesReferenceSetting;
class SelectedCasesWidget;

/// The values of the selected cases side by side, with marks where they differ.
///
/// The cases are those of the selection that pass the filters, in ascending order of their IDs, and of very many the
/// first ones. A reference case stands in the first column, a pinned one also if it is neither selected nor passes.
/// Owned through a shared pointer; its widget belongs to the parent that it was given, or to the view without one.
class SelectedCasesView
    : public DataViewAbstract
    , public SelectedCasesViewInterface
    , public AnalyzerViewInterface
    , public boost::enable_shared_from_this<SelectedCasesView>
{
public:
    using Reference = SelectedCasesReference;

    /// Of more selected cases, only so many are shown: nobody compares more, and they would slow down every change.
    static constexpr std::size_t maxCases = 200;

    /// \p pipeline outlives the view. \p hovered is shared with other views.
    SelectedCasesView(
        const DataPipelineManagerInterface& pipeline,
        boost::shared_ptr<SelectionModelInterface> selectionModel,
        boost::shared_ptr<HoveredCase> hovered = boost::make_shared<HoveredCase>());
    SelectedCasesView(const SelectedCasesView&) = delete;
    SelectedCasesView& operator=(const SelectedCasesView&) = delete;
    ~SelectedCasesView() override;

    void suspend() override;

    /// Also shows the selection, the filters and the study as they are now.
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

    /// Of the selected cases: those that do not pass the filters, and those behind the first maxCases.
    [[nodiscard]] std::vector<LeftOutCases> leftOut() const override;
    [[nodiscard]] std::set<unsigned long long> leftOutCaseIDs() const override;

    /// For the case that the menu was asked for.
    void addContextActions(QMenu& menu) override;

    /// The case that the others are compared with; undoable.
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<Reference>> reference() const
    {
        return m_reference;
    }

    /// For tests.
    [[nodiscard]] SelectedCasesModel& model() const { return *m_model; }

    [[nodiscard]] SelectedCasesWidget& casesWidget() const;

protected:
    bool caseIDAtPoint(unsigned long long& caseID) override;

private:
    void buildSettings();
    void buildState();
    void buildWidget();
    void takePipeline();
    void takeSelection(const CaseSet& selection);
    void showCases();
    void describe();
    void projectChanged(const ProjectChange& change);
    void requestMenu(int column, const QPoint& place);
    void removeFromSelection(unsigned long long caseID);

    const DataPipelineManagerInterface& m_pipeline;
    std::unique_ptr<SelectedCasesModel> m_model;
    QPointer<SelectedCasesWidget> m_widget;
    std::unique_ptr<RowBitmap> m_filteredOut; ///< rows of the study
    std::vector<unsigned long long> m_first; ///< the first cases that are selected and pass
    std::size_t m_passingCount = 0; ///< of the selected cases
    std::size_t m_filteredCount = 0; ///< of the selected cases
    std::optional<unsigned long long> m_caseUnderMouse; ///< of the last request for a menu
    bool m_isSuspended = false;

    boost::shared_ptr<corvane::PropertyAbstract<Reference>> m_reference;
    boost::shared_ptr<corvane::PropertyAbstract<SelectedCasesModel::Rows>> m_rows;
    boost::shared_ptr<corvane::PropertyAbstract<SelectedCasesModel::Mark>> m_mark;
    boost::shared_ptr<corvane::PropertyAbstract<SelectedCasesModel::Difference>> m_difference;
    boost::shared_ptr<corvane::PropertyAbstract<SelectedCasesModel::Order>> m_order;
    boost::shared_ptr<SelectedCasesReferenceSetting> m_referenceSetting;
    std::vector<boost::shared_ptr<SettingInterface>> m_settings;
    SignalConnectionCollection
        m_connections; ///< those that are blocked while the view is suspended
    SignalConnectionCollection m_lastingConnections;
};

} // namespace analyzer
