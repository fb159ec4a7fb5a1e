#include <analyzer/views/ChoiceSetting.h>
#include <analyzer/views/ScrollState.h>
#include <analyzer/views/SelectedCasesReferenceSetting.h>
#include <analyzer/views/SelectedCasesTable.h>
#include <analyzer/views/SelectedCasesView.h>
#include <analyzer/views/SelectedCasesWidget.h>
#include <analyzer/views/countText.h>
#include <analyzer/views/filteredOutCases.h>
#include <analyzer/views/selectedRows.h>
#include <analyzer/views/viewState.h>

#include <dataviews/common/selection/CaseIDIndex.h>
#include <dataviews/common/serializers/GenericSerializer.h>
#include <dataviews/common/views/DataViewVisitorInterface.h>
#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/UndoablePropertyProxy.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/data/RowBitmap.h>
#include <dataviews/platform/pipeline/DataPipelineManagerInterface.h>
#include <dataviews/platform/selection/CaseSet.h>
#include <dataviews/platform/selection/SelectionModelInterface.h>
#include <dataviews/platform/serialize/Serializer.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QCoreApplication>
#include <QMenu>

#include <vtkAbstractArray.h>
#include <vtkTable.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <utility>

namespace analyzer {

namespace {

using Rows = SelectedCasesModel::Rows;
using Mark = SelectedCasesModel::Mark;
using Difference = SelectedCasesModel::Difference;
using Order = SelectedCasesModel::Order;

const ChoiceSetting<Rows>::NamedValues rowNames = {
    {"all", Rows::All}, {"differing", Rows::Differing}};
const ChoiceSetting<Mark>::NamedValues markNames = {
    {"differences", Mark::Differences}, {"magnitude", Mark::Magnitude}};
const ChoiceSetting<Difference>::NamedValues differenceNames = {
    {"percent", Difference::Percent},
    {"absolute", Difference::Absolute},
    {"off", Difference::Nothing}};
const ChoiceSetting<Order>::NamedValues orderNames = {
    {"study", Order::Study}, {"nature", Order::Nature}};

QString tr(const char* text)
{
    return QCoreApplication::translate("SelectedCasesView", text);
}

template <class T>
boost::shared_ptr<corvane::PropertyAbstract<T>> makeUndoable(
    const std::string& name, const T& value)
{
    return boost::make_shared<corvane::UndoablePropertyProxy<T>>(
        name, boost::make_shared<corvane::Property<T>>(value));
}

template <class T>
boost::shared_ptr<ChoiceSetting<T>> makeChoice(
    const std::string& name,
    const std::string& label,
    const boost::shared_ptr<corvane::PropertyAbstract<T>>& property,
    const typename ChoiceSetting<T>::NamedValues& values)
{
    return boost::make_shared<ChoiceSetting<T>>(
        SettingInterface::Kind::Choice, name, label, property, values);
}

/// Those in \p rows with the smallest IDs, as many as are shown, in ascending order.
std::vector<unsigned long long> firstCases(const Project& project, const RowBitmap& rows)
{
    constexpr std::size_t most = SelectedCasesView::maxCases;
    std::vector<unsigned long long> cases;
    vtkAbstractArray* caseIDs = project.table().GetColumn(0);
    if (caseIDs != nullptr && CaseIDIndex::of(*caseIDs)->isInOrder()) {
        for (std::size_t row = rows.next(0); row < rows.rowCount() && cases.size() < most;
             row = rows.next(row + 1)) {
            cases.push_back(project.caseID(row));
        }
        return cases;
    }
    rows.forEach([&](std::size_t row) { cases.push_back(project.caseID(row)); });
    const auto end = cases.begin() + static_cast<std::ptrdiff_t>(std::min(most, cases.size()));
    std::partial_sort(cases.begin(), end, cases.end());
    cases.erase(end, cases.end());
    return cases;
}

} // namespace

SelectedCasesView::SelectedCasesView(
    const DataPipelineManagerInterface& pipeline,
    boost::shared_ptr<SelectionModelInterface> selectionModel,
    boost::shared_ptr<HoveredCase> hovered)
    : DataViewAbstract(std::make_unique<Serializer>("SelectedCases"), selectionModel)
    , m_pipeline(pipeline)
    , m_model(std::make_unique<SelectedCasesModel>())
    , m_widget(new SelectedCasesWidget(*m_model, std::move(hovered)))
    , m_filteredOut(std::make_unique<RowBitmap>())
{
    buildSettings();
    buildState();
    buildWidget();
    m_connections.add(selectionModel->signalSelectionChanged.connect(
        [this](const CaseSelection& selection) { takeSelection(*selection); }));
    m_connections.add(m_pipeline.signalPipelineChanged.connect([this] { takePipeline(); }));
    m_lastingConnections.add(Project::project().signalProjectChanged.connect(
        [this](const ProjectChange& change) { projectChanged(change); }));
    takePipeline();
}

SelectedCasesView::~SelectedCasesView()
{
    m_connections.clear();
    m_lastingConnections.clear();
    // The widget may have gone with its parent; otherwise it goes before its model.
    delete m_widget.data();
}

// ---- building

void SelectedCasesView::buildSettings()
{
    m_rows = makeUndoable("Shown Variables", Rows::All);
    m_reference = makeUndoable("Reference Case", Reference());
    m_difference = makeUndoable("Shown Differences", Difference::Percent);
    m_mark = makeUndoable("Marked Values", Mark::Differences);
    m_order = makeUndoable("Order Of Variables", Order::Study);

    m_referenceSetting =
        boost::make_shared<SelectedCasesReferenceSetting>("reference", "Reference", m_reference);
    const auto difference = makeChoice("difference", "Difference", m_difference, differenceNames);
    difference->enableWhile(m_reference, [](const Reference& reference) {
        return reference.kind != Reference::Kind::None;
    });
    m_settings = {
        makeChoice("show", "Variables", m_rows, rowNames),
        m_referenceSetting,
        difference,
        makeChoice("mark", "Mark", m_mark, markNames),
        makeChoice("order", "Order", m_order, orderNames)};

    m_lastingConnections.add(
        m_rows->valueChanged.connect([this](Rows rows) { m_model->setRows(rows); }));
    m_lastingConnections.add(
        m_mark->valueChanged.connect([this](Mark mark) { m_model->setMark(mark); }));
    m_lastingConnections.add(
        m_order->valueChanged.connect([this](Order order) { m_model->setOrder(order); }));
    m_lastingConnections.add(m_difference->valueChanged.connect(
        [this](Difference shown) { m_model->setDifference(shown); }));
    m_lastingConnections.add(m_reference->valueChanged.connect([this](const Reference&) {
        if (!m_isSuspended) {
            showCases();
        }
    }));
}

void SelectedCasesView::buildState()
{
    SerializerInterface& state = serializer();
    viewState::keep(state, "Show", m_rows, rowNames);
    state.addSubElement(boost::make_shared<GenericSerializer<std::string>>(
        "Reference",
        [property = m_reference] { return property->value().text(); },
        [property = m_reference](const std::string& text) {
            const Reference reference = Reference::fromText(text);
            if (reference.isInStudy()) {
                property->setValue(reference);
            }
        }));
    viewState::keep(state, "Difference", m_difference, differenceNames);
    viewState::keep(state, "Mark", m_mark, markNames);
    viewState::keep(state, "Order", m_order, orderNames);

    const auto keepNumber = [&state](const char* name, auto get, auto set) {
        state.addSubElement(boost::make_shared<GenericSerializer<int>>(name, get, set));
    };
    SelectedCasesTable& table = m_widget->table();
    keepNumber(
        "NameWidth",
        [&table] { return table.nameWidth(); },
        [&table](int width) { table.setNameWidth(width); });
    keepNumber(
        "CaseWidth",
        [&table] { return table.caseWidth(); },
        [&table](int width) { table.setCaseWidth(width); });
    state.addSubElement(boost::make_shared<ScrollState>("Scroll", table));
}

void SelectedCasesView::buildWidget()
{
    m_widget->setObjectName(QStringLiteral("SelectedCases"));
    QObject::connect(
        &m_widget->table(),
        &SelectedCasesTable::menuRequested,
        m_widget.data(),
        [this](int column, const QPoint& place) { requestMenu(column, place); });
}

// ---- what DataViewInterface and AnalyzerViewInterface ask for

SelectedCasesWidget& SelectedCasesView::casesWidget() const
{
    return *m_widget;
}

void SelectedCasesView::suspend()
{
    m_isSuspended = true;
    m_connections.block();
}

void SelectedCasesView::resume()
{
    m_isSuspended = false;
    m_connections.unblock();
    takePipeline();
}

QWidget& SelectedCasesView::widget()
{
    return *m_widget;
}

void SelectedCasesView::accept(DataViewVisitorInterface& visitor)
{
    visitor.visit(boost::shared_ptr<SelectedCasesViewInterface>(shared_from_this()));
}

void SelectedCasesView::render()
{
    m_widget->repaint();
}

std::string SelectedCasesView::kind() const
{
    return "selected-cases";
}

std::string SelectedCasesView::title() const
{
    if (m_passingCount == 0) {
        return tr("no case").toStdString();
    }
    return (m_passingCount == 1 ? tr("case %1").arg(m_first.front())
                                : tr("%1 cases").arg(countText(m_passingCount)))
        .toStdString();
}

const std::vector<boost::shared_ptr<SettingInterface>>& SelectedCasesView::settings() const
{
    return m_settings;
}

boost::shared_ptr<corvane::PropertyAbstract<DataViewInterface::MouseMode>> SelectedCasesView::
    mouseModeProperty() const
{
    return {};
}

std::vector<LeftOutCases> SelectedCasesView::leftOut() const
{
    std::vector<LeftOutCases> result;
    if (m_filteredCount > 0) {
        result.push_back({m_filteredCount, "selected but filtered"});
    }
    if (m_passingCount > m_first.size()) {
        result.push_back(
            {m_passingCount - m_first.size(),
             "behind the first " + std::to_string(maxCases) + " selected"});
    }
    return result;
}

std::set<unsigned long long> SelectedCasesView::leftOutCaseIDs() const
{
    std::set<unsigned long long> result = selectionModel().getSelections();
    for (const unsigned long long caseID : m_first) {
        result.erase(caseID);
    }
    return result;
}

bool SelectedCasesView::caseIDAtPoint(unsigned long long& caseID)
{
    if (!m_caseUnderMouse) {
        return false;
    }
    caseID = *m_caseUnderMouse;
    return true;
}

// ---- cases

void SelectedCasesView::takePipeline()
{
    *m_filteredOut = filteredOutRows(m_pipeline);
    takeSelection(*selectionModel().cases());
}

void SelectedCasesView::takeSelection(const CaseSet& selection)
{
    const Project& project = Project::project();
    RowBitmap passing = selectedRows(project, selection);
    if (m_filteredOut->rowCount() == passing.rowCount()) {
        RowBitmap kept = *m_filteredOut;
        kept.invert();
        passing.intersect(kept);
    } else {
        passing.fill(false); // another study has come, of which the pipeline is about to tell
    }
    m_passingCount = passing.count();
    m_first = firstCases(project, passing);
    m_filteredCount = selection.size() - m_passingCount;
    showCases();
    m_referenceSetting->offerCases(m_first);
    emitTitleChanged();
    emitLeftOutChanged();
}

void SelectedCasesView::showCases()
{
    std::vector<unsigned long long> shown;
    for (const unsigned long long caseID : m_first) {
        if (Project::project().row(
                caseID)) { // another study may have come, of which the pipeline is about to tell
            shown.push_back(caseID);
        }
    }
    std::optional<std::size_t> referenceColumn;
    const Reference reference = m_reference->value();
    if (!shown.empty() && reference.kind != Reference::Kind::None && reference.isInStudy()) {
        referenceColumn = 0;
        if (reference.kind == Reference::Kind::Pinned) {
            shown.erase(std::remove(shown.begin(), shown.end(), reference.caseID), shown.end());
            shown.insert(shown.begin(), reference.caseID);
        }
    }
    m_model->showCases(Project::project(), shown, referenceColumn);
    describe();
}

void SelectedCasesView::describe()
{
    if (!m_widget) {
        return;
    }
    if (m_passingCount == 0) {
        if (Project::project().caseCount() == 0) {
            m_widget->showMessage(tr("Open a study to compare cases here."));
        } else if (m_filteredCount == 0) {
            m_widget->showMessage(
                tr("Nothing is selected.\nSelect cases in another view to compare them here."));
        } else {
            m_widget->showMessage(tr("None of the selected cases passes the filters.\n"
                                     "Select others in another view, or change the filters."));
        }
        return;
    }
    QString line = m_passingCount > m_first.size()
        ? tr("First %1 of %2 selected cases")
              .arg(countText(m_first.size()), countText(m_passingCount))
        : m_passingCount == 1 ? tr("1 selected case")
                              : tr("%1 selected cases").arg(countText(m_passingCount));
    if (m_model->columnCount() > 1) {
        line = tr("%1; %2 of %3 variables differ")
                   .arg(
                       line,
                       countText(m_model->differingCount()),
                       countText(m_model->variableCount()));
    }
    m_widget->showTable(line);
}

void SelectedCasesView::projectChanged(const ProjectChange& change)
{
    if (!change.studyReplaced) {
        return;
    }
    if (m_isSuspended) {
        // Otherwise the pipeline tells of the new study, before this or after.
        m_model->clear();
    }
    // The same ID is another case now.
    const UndoStack::SuspendUndoRecording noRecording;
    m_reference->setValue({});
}

// ---- the menu

void SelectedCasesView::requestMenu(int column, const QPoint& place)
{
    m_caseUnderMouse = m_model->caseID(column);
    const bool isSelected =
        m_caseUnderMouse && std::binary_search(m_first.begin(), m_first.end(), *m_caseUnderMouse);
    if (isSelected) {
        // Elsewhere, a click on no selected case would take away what is shown.
        adjustSelectionForMouseClickAtPoint();
    }
    emitContextMenuRequested(place);
}

void SelectedCasesView::addContextActions(QMenu& menu)
{
    if (m_caseUnderMouse) {
        const unsigned long long caseID = *m_caseUnderMouse;
        QAction* pin = menu.addAction(tr("Pin as &Reference"), m_widget.data(), [this, caseID] {
            m_reference->setValue(Reference::pinned(caseID));
        });
        pin->setEnabled(m_reference->value() != Reference::pinned(caseID));
        QAction* remove =
            menu.addAction(tr("Remove from &Selection"), m_widget.data(), [this, caseID] {
                removeFromSelection(caseID);
            });
        remove->setEnabled(std::binary_search(m_first.begin(), m_first.end(), caseID));
        menu.addAction(tr("Select &Only This Case"), m_widget.data(), [this, caseID] {
            selectionModel().setSelection({caseID});
        });
    }
    if (m_reference->value().kind != Reference::Kind::None) {
        menu.addAction(tr("Compare &without Reference"), m_widget.data(), [this] {
            m_reference->setValue({});
        });
    }
    SelectedCasesTable& table = m_widget->table();
    QAction* copy = menu.addAction(tr("&Copy Values"), &table, [&table] { table.copy(); });
    copy->setEnabled(table.selectionModel()->hasSelection());
}

void SelectedCasesView::removeFromSelection(unsigned long long caseID)
{
    const boost::shared_ptr<const CaseSet> selection = selectionModel().cases();
    if (selection->contains(caseID)) {
        selectionModel().takeCases(boost::make_shared<const CaseSet>(
            CaseSet::symmetricDifference(*selection, CaseSet::ofSorted({caseID}))));
    }
}

} // namespace analyzer
