#pragma once

#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/HoveredCase.h>
#include <analyzer/views/TableViewInterface.h>

#include <dataviews/common/views/DataViewAbstract.h>

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QPointer>

#include <boost/enable_shared_from_this.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

class DataPipelineManagerInterface;

namespace analyzer {

class CaseTableModel;
class CaseTableSelection;
class CaseTableWidget;

/// A table of the cases that pass the filters, with all their variables.
///
/// Owned through a shared pointer; its widget belongs to the parent that it was given, or to the view without one.
class CaseTableView
    : public DataViewAbstract
    , public TableViewInterface
    , public AnalyzerViewInterface
    , public boost::enable_shared_from_this<CaseTableView>
{
public:
    /// \p pipeline outlives the view. \p hovered is shared with other views.
    CaseTableView(
        const DataPipelineManagerInterface& pipeline,
        boost::shared_ptr<SelectionModelInterface> selectionModel,
        boost::shared_ptr<HoveredCase> hovered = boost::make_shared<HoveredCase>());
    CaseTableView(const CaseTableView&) = delete;
    CaseTableView& operator=(const CaseTableView&) = delete;
    ~CaseTableView() override;

    void suspend() override;

    /// Also shows the selection and the table as they are now.
    void resume() override;
    [[nodiscard]] QWidget& widget() override;
    void accept(DataViewVisitorInterface& visitor) override;
    void render() override;

    void scrollToCase(unsigned long long caseID) override;

    [[nodiscard]] std::string kind() const override;
    [[nodiscard]] std::string title() const override;
    [[nodiscard]] const std::vector<boost::shared_ptr<SettingInterface>>& settings() const override;
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<MouseMode>> mouseModeProperty()
        const override;

    [[nodiscard]] bool hasAxes() const override { return false; }

    void fitData() override {}

    void resetXAxis() override {}

    void resetYAxis() override {}

    [[nodiscard]] std::vector<LeftOutCases> leftOut() const override;
    [[nodiscard]] std::set<unsigned long long> leftOutCaseIDs() const override;

    /// Whether the rows are still being sorted.
    [[nodiscard]] bool isLoading() const override;

    /// For tests.
    [[nodiscard]] CaseTableWidget& table() const;

    [[nodiscard]] CaseTableModel& model() const { return *m_model; }

    [[nodiscard]] CaseTableSelection& selection() const { return *m_selection; }

protected:
    bool caseIDAtPoint(unsigned long long& caseID) override;

private:
    void takeTable();

    const DataPipelineManagerInterface& m_pipeline;
    std::unique_ptr<CaseTableModel> m_model;
    std::unique_ptr<CaseTableSelection> m_selection;
    QPointer<CaseTableWidget> m_widget;
    std::vector<boost::shared_ptr<SettingInterface>> m_settings;
    std::optional<unsigned long long> m_caseUnderMouse; ///< of the last request for a menu
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
