#include <analyzer/ViewArea.h>
#include <analyzer/ViewFrame.h>
#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/viewKinds.h>

#include <dataviews/platform/data/AuxFile.h>
#include <dataviews/platform/undo/GenericUndoCommand.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QApplication>
#include <QDockWidget>
#include <QEvent>
#include <QLabel>
#include <QPointer>
#include <QTimer>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <utility>

namespace analyzer {

namespace {

QString kindTitle(const std::string& kind, int number)
{
    const std::map<std::string, QString> titles{
        {"scatter", ViewArea::tr("Chart %1")},
        {"line", ViewArea::tr("Lines %1")},
        {"scatter3d", ViewArea::tr("3-D Chart %1")},
        {"table", ViewArea::tr("Table %1")},
        {"images", ViewArea::tr("Images %1")},
        {"selected-cases", ViewArea::tr("Cases %1")},
        {"selected-image", ViewArea::tr("Image %1")},
        {"image-diff", ViewArea::tr("Difference %1")}};
    const auto title = titles.find(kind);
    return (title == titles.end() ? QString::fromStdString(kind) + QStringLiteral(" %1")
                                  : title->second)
        .arg(number);
}

} // namespace

struct ViewArea::Panel
{
    Panel() = default;
    Panel(const Panel&) = delete;
    Panel& operator=(const Panel&) = delete;

    ~Panel()
    {
        connections.clear();
        if (dock) {
            view->widget().setParent(nullptr); // the view's own
            delete dock.data();
        }
    }

    boost::shared_ptr<AnalyzerViewInterface> view;
    QPointer<QDockWidget> dock; ///< the area's, and gone with it
    int number = 1;
    QByteArray layout; ///< of the area, when the panel was taken out
    SignalConnectionCollection connections;
};

ViewArea::ViewArea(ViewServices services, QWidget* parent)
    : QMainWindow(parent)
    , m_services(std::move(services))
{
    setWindowFlags(Qt::Widget); // a main window asks to be a window of its own
    setDockNestingEnabled(true);
    setTabPosition(Qt::AllDockWidgetAreas, QTabWidget::North);
    // Charts place their legends in the first picture: no pictures of sizes on the way.
    setAnimated(false);
    m_welcome =
        new QLabel(tr("Open a study: File ▸ Open Study, or drop a file or folder here."), this);
    m_welcome->setAlignment(Qt::AlignCenter);
    m_welcome->setWordWrap(true);
    setCentralWidget(m_welcome);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
        focusMoved(now);
    });
}

ViewArea::~ViewArea()
{
    // Focus moves also while the panels go.
    disconnect(qApp, nullptr, this, nullptr);
    m_active.reset();
    m_panels.clear();
}

boost::shared_ptr<AnalyzerViewInterface> ViewArea::open(const std::string& kind, Beside beside)
{
    int number = 1;
    for (const PanelPtr& other : m_panels) {
        number = other->view->kind() == kind ? std::max(number, other->number + 1) : number;
    }
    const PanelPtr panel = makePanel(kind, number, "View" + std::to_string(m_panelsMade + 1));
    arrange(*panel, beside, largestOtherDock());
    UndoStack::push(std::make_unique<GenericUndoCommand>(
        [this, panel, index = m_panels.size()] { putBack(panel, index); },
        [this, panel] { takeOut(panel); },
        m_deleteSignaler,
        tr("Open %1").arg(kindTitle(kind, number))));
    return panel->view;
}

void ViewArea::close(const boost::shared_ptr<AnalyzerViewInterface>& view)
{
    const PanelPtr panel = find(view.get());
    if (!panel) {
        return;
    }
    const auto index = static_cast<std::size_t>(
        std::find(m_panels.begin(), m_panels.end(), panel) - m_panels.begin());
    UndoStack::push(std::make_unique<GenericUndoCommand>(
        [this, panel] { takeOut(panel); },
        [this, panel, index] { putBack(panel, index); },
        m_deleteSignaler,
        tr("Close %1").arg(nameOf(*view))));
}

void ViewArea::closeAll()
{
    const UndoStack::SuspendUndoRecording noRecording;
    while (!m_panels.empty()) {
        takeOut(PanelPtr(m_panels.back()));
    }
}

boost::shared_ptr<AnalyzerViewInterface> ViewArea::reopen(
    const std::string& kind, int number, const std::string& place)
{
    const PanelPtr panel = makePanel(kind, number, place);
    // Names are not given twice.
    constexpr int prefixLength = 4;
    m_panelsMade =
        std::max(m_panelsMade, QString::fromStdString(place).midRef(prefixLength).toInt());
    arrange(*panel, Beside::Right, nullptr);
    putBack(panel, m_panels.size());
    return panel->view;
}

std::vector<ViewArea::OpenView> ViewArea::openViews() const
{
    std::vector<OpenView> result;
    for (const PanelPtr& panel : m_panels) {
        result.push_back({panel->view, panel->number, panel->dock->objectName().toStdString()});
    }
    return result;
}

std::vector<boost::shared_ptr<AnalyzerViewInterface>> ViewArea::views() const
{
    std::vector<boost::shared_ptr<AnalyzerViewInterface>> result;
    for (const PanelPtr& panel : m_panels) {
        result.push_back(panel->view);
    }
    return result;
}

void ViewArea::setActiveView(const boost::shared_ptr<AnalyzerViewInterface>& view)
{
    if (view == m_active) {
        return;
    }
    m_active = view;
    for (const PanelPtr& panel : m_panels) {
        nameDock(*panel->view);
    }
    Q_EMIT activeViewChanged();
}

void ViewArea::raise(const boost::shared_ptr<AnalyzerViewInterface>& view)
{
    if (const PanelPtr panel = find(view.get())) {
        panel->dock->raise();
        setActiveView(view);
    }
}

QString ViewArea::nameOf(const AnalyzerViewInterface& view) const
{
    const PanelPtr panel = find(&view);
    return panel ? kindTitle(view.kind(), panel->number) : QString();
}

bool ViewArea::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Close) {
        for (const PanelPtr& panel : m_panels) {
            if (panel->dock == watched) {
                // Not by the panel itself, which would be hidden already when its place is noted; and later, for it is in
                // the middle of its own event.
                event->ignore();
                QTimer::singleShot(0, this, [this, view = panel->view] { close(view); });
                return true;
            }
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

ViewArea::PanelPtr ViewArea::makePanel(
    const std::string& kind, int number, const std::string& place)
{
    const PanelPtr panel = boost::make_shared<Panel>();
    panel->view = makeView(kind, m_services);
    panel->number = number;
    ++m_panelsMade;
    auto* dock = new QDockWidget(this);
    panel->dock = dock;
    dock->setObjectName(QString::fromStdString(place));
    dock->setAttribute(Qt::WA_DeleteOnClose, false);
    dock->setWidget(new ViewFrame(panel->view, m_services.selection, dock));
    dock->installEventFilter(this);
    connectView(*panel);
    return panel;
}

void ViewArea::arrange(Panel& panel, Beside beside, QDockWidget* under)
{
    // More views than that beside each other would all be too narrow.
    constexpr std::size_t columns = 3;
    QList<QDockWidget*> docks;
    Qt::Orientation direction = Qt::Horizontal;
    if (m_panels.empty()) {
        addDockWidget(Qt::LeftDockWidgetArea, panel.dock);
        return;
    }
    if (beside == Beside::OnTop && under != nullptr) {
        tabifyDockWidget(under, panel.dock);
        return;
    }
    if (beside == Beside::Below || m_panels.size() >= columns) {
        direction = Qt::Vertical;
        if (beside == Beside::Below) {
            docks.append(m_panels.back()->dock);
        } else {
            for (std::size_t i = m_panels.size() % columns; i < m_panels.size(); i += columns) {
                docks.append(m_panels[i]->dock);
            }
        }
        docks.append(panel.dock);
        splitDockWidget(docks[docks.size() - 2], panel.dock, direction);
    } else {
        splitDockWidget(m_panels.back()->dock, panel.dock, direction);
        for (const PanelPtr& other : m_panels) {
            docks.append(other->dock);
        }
        docks.append(panel.dock);
    }
    // Equal shares.
    QList<int> shares;
    std::fill_n(std::back_inserter(shares), docks.size(), 1);
    resizeDocks(docks, shares, direction);
}

void ViewArea::connectView(Panel& panel)
{
    AnalyzerViewInterface* raw = panel.view.get();
    SignalConnectionCollection& connections = panel.connections;
    connections.add(raw->signalTitleChanged.connect([this, raw] { nameDock(*raw); }));
    connections.add(raw->signalContextMenuRequested.connect([this, raw](const QPoint& place) {
        if (const PanelPtr found = find(raw)) {
            setActiveView(found->view);
        }
        Q_EMIT menuRequested(place);
    }));
    connections.add(raw->signalImageActivated.connect(
        [this](const WeakPtr<AuxFile>& file) { Q_EMIT imageActivated(file); }));
    connections.add(raw->signalProblem.connect([this](const std::string& sentence) {
        Q_EMIT problemTold(QString::fromStdString(sentence));
    }));
}

void ViewArea::takeOut(const PanelPtr& panel)
{
    const auto place = std::find(m_panels.begin(), m_panels.end(), panel);
    if (place == m_panels.end()) {
        return;
    }
    panel->layout = saveState();
    m_panels.erase(place);
    if (m_active == panel->view) {
        setActiveView(
            m_panels.empty() ? boost::shared_ptr<AnalyzerViewInterface>() : m_panels.back()->view);
    }
    removeDockWidget(panel->dock);
    panel->view->suspend();
    m_welcome->setVisible(m_panels.empty());
    Q_EMIT viewsChanged();
}

void ViewArea::putBack(const PanelPtr& panel, std::size_t index)
{
    const bool isNew = panel->layout.isEmpty();
    if (!isNew) {
        addDockWidget(Qt::LeftDockWidgetArea, panel->dock);
        panel->view->resume();
    }
    m_welcome->hide();
    m_panels.insert(
        m_panels.begin() + static_cast<std::ptrdiff_t>(std::min(index, m_panels.size())), panel);
    panel->dock->show();
    if (!isNew) {
        restoreState(std::exchange(panel->layout, QByteArray()));
    }
    nameDock(*panel->view);
    setActiveView(panel->view);
    Q_EMIT viewsChanged();
}

void ViewArea::nameDock(const AnalyzerViewInterface& view)
{
    const PanelPtr panel = find(&view);
    if (!panel) {
        return;
    }
    const QString mark = panel->view == m_active ? QStringLiteral("● ") : QString();
    panel->dock->setWindowTitle(tr("%1%2: %3")
                                    .arg(mark)
                                    .arg(kindTitle(view.kind(), panel->number))
                                    .arg(QString::fromStdString(view.title())));
}

void ViewArea::focusMoved(const QWidget* widget)
{
    for (const PanelPtr& panel : m_panels) {
        if (widget != nullptr && (widget == panel->dock || panel->dock->isAncestorOf(widget))) {
            setActiveView(panel->view);
            return;
        }
    }
}

QDockWidget* ViewArea::largestOtherDock() const
{
    const auto area = [](const QDockWidget& dock) {
        return dock.isVisible() && !dock.isFloating() ? dock.width() * dock.height() : 0;
    };
    QDockWidget* largest = nullptr;
    for (const PanelPtr& panel : m_panels) {
        if (panel->view != m_active
            && area(*panel->dock) > (largest == nullptr ? 0 : area(*largest))) {
            largest = panel->dock;
        }
    }
    return largest;
}

ViewArea::PanelPtr ViewArea::find(const AnalyzerViewInterface* view) const
{
    const auto found =
        std::find_if(m_panels.begin(), m_panels.end(), [view](const PanelPtr& panel) {
            return panel->view.get() == view;
        });
    return found == m_panels.end() ? PanelPtr() : *found;
}

} // namespace analyzer
