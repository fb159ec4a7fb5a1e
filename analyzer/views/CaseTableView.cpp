#include <analyzer/views/CaseTableModel.h>
#include <analyzer/views/CaseTableSelection.h>
#include <analyzer/views/CaseTableState.h>
#include <analyzer/views/CaseTableView.h>
#include <analyzer/views/CaseTableWidget.h>
#include <analyzer/views/ScrollState.h>
#include <analyzer/views/filteredOutCases.h>

#include <dataviews/common/views/DataViewVisitorInterface.h>

#include <dataviews/platform/pipeline/DataPipelineManagerInterface.h>
#include <dataviews/platform/selection/SelectionModelInterface.h>
#include <dataviews/platform/serialize/Serializer.h>

#include <QCoreApplication>

#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <boost/make_shared.hpp>

#include <utility>

namespace analyzer {

namespace {

/// A table of its own over the columns that are there now: the pipeline's object changes when it runs again.
vtkSmartPointer<vtkTable> snapshot(const DataPipelineManagerInterface& pipeline)
{
    pipeline.output().Update();
    vtkSmartPointer<vtkTable> table = vtkSmartPointer<vtkTable>::New();
    table->ShallowCopy(pipeline.output().GetOutput());
    return table;
}

} // namespace

CaseTableView::CaseTableView(
    const DataPipelineManagerInterface& pipeline,
    boost::shared_ptr<SelectionModelInterface> selectionModel,
    boost::shared_ptr<HoveredCase> hovered)
    : DataViewAbstract(std::make_unique<Serializer>("TableView"), selectionModel)
    , m_pipeline(pipeline)
    , m_model(std::make_unique<CaseTableModel>())
    , m_selection(std::make_unique<CaseTableSelection>(*m_model, std::move(selectionModel)))
    , m_widget(new CaseTableWidget(*m_model, *m_selection, std::move(hovered)))
{
    takeTable();
    m_widget->setObjectName(QStringLiteral("CaseTable"));
    serializer().addSubElement(boost::make_shared<CaseTableState>("Columns", *m_model, *m_widget));
    serializer().addSubElement(boost::make_shared<ScrollState>("Scroll", *m_widget));
    m_connections.add(m_pipeline.signalPipelineChanged.connect([this] { takeTable(); }));
    m_connections.add(m_widget->signalMenuRequested.connect(
        [this](std::optional<unsigned long long> caseID, const QPoint& place) {
            m_caseUnderMouse = caseID;
            adjustSelectionForMouseClickAtPoint();
            emitContextMenuRequested(place);
        }));
}

CaseTableView::~CaseTableView()
{
    m_connections.clear();
    // The widget may have gone with its parent; otherwise it goes before its model.
    delete m_widget.data();
}

void CaseTableView::suspend()
{
    m_connections.block();
    m_selection->suspend();
}

void CaseTableView::resume()
{
    m_connections.unblock();
    takeTable();
    m_selection->resume();
}

QWidget& CaseTableView::widget()
{
    return *m_widget;
}

void CaseTableView::accept(DataViewVisitorInterface& visitor)
{
    visitor.visit(boost::shared_ptr<TableViewInterface>(shared_from_this()));
}

void CaseTableView::render()
{
    m_widget->viewport()->repaint();
}

void CaseTableView::scrollToCase(unsigned long long caseID)
{
    m_widget->scrollToCase(caseID);
}

std::string CaseTableView::kind() const
{
    return "table";
}

std::string CaseTableView::title() const
{
    return QCoreApplication::translate("CaseTableView", "Cases").toStdString();
}

const std::vector<boost::shared_ptr<SettingInterface>>& CaseTableView::settings() const
{
    return m_settings;
}

boost::shared_ptr<corvane::PropertyAbstract<DataViewInterface::MouseMode>> CaseTableView::
    mouseModeProperty() const
{
    return {};
}

std::vector<LeftOutCases> CaseTableView::leftOut() const
{
    return filteredOut(m_pipeline);
}

std::set<unsigned long long> CaseTableView::leftOutCaseIDs() const
{
    return caseIDs(filteredOutRows(m_pipeline));
}

bool CaseTableView::isLoading() const
{
    return m_model->isSorting();
}

CaseTableWidget& CaseTableView::table() const
{
    return *m_widget;
}

bool CaseTableView::caseIDAtPoint(unsigned long long& caseID)
{
    if (!m_caseUnderMouse) {
        return false;
    }
    caseID = *m_caseUnderMouse;
    return true;
}

void CaseTableView::takeTable()
{
    m_model->setTable(snapshot(m_pipeline));
    emitLeftOutChanged();
}

} // namespace analyzer
