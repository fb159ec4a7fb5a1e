#include <analyzer/MainWindow.h>
#include <analyzer/ViewArea.h>
#include <analyzer/filters/FilterList.h>
#include <analyzer/panels/RangeSlider.h>
#include <analyzer/panels/TagsPanel.h>
#include <analyzer/tags/TagEditor.h>
#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/CaseTableView.h>
#include <analyzer/views/CaseTableWidget.h>
#include <analyzer/views/ListSettingInterface.h>
#include <analyzer/views/NumberSettingInterface.h>
#include <analyzer/views/StepsSettingInterface.h>
#include <analyzer/views/viewKinds.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/selection/SelectionModelInterface.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QAbstractItemView>
#include <QAction>
#include <QCoreApplication>
#include <QDockWidget>
#include <QEvent>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QScrollBar>
#include <QTableWidget>
#include <QVTKOpenGLNativeWidget.h>

#include <boost/pointer_cast.hpp>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <limits>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <benchmarks/walk/everyAction.h>
#include <malloc.h>
#include <unistd.h>

namespace {

using analyzer::AnalyzerViewInterface;
using analyzer::ListedFilter;
using analyzer::MainWindow;
using analyzer::SettingInterface;
using Cases = std::set<unsigned long long>;
using View = boost::shared_ptr<AnalyzerViewInterface>;

/// One in how many cases is selected.
constexpr std::size_t all = 1;
constexpr std::size_t half = 2;
constexpr std::size_t hundredth = 100;

Cases everyNth(std::size_t step)
{
    Cases cases;
    for (std::size_t row = 0; row < Project::project().caseCount(); row += step) {
        cases.insert(cases.end(), Project::project().caseID(row));
    }
    return cases;
}

/// What the program has in memory, without what it has freed.
double residentBytes()
{
    malloc_trim(0);
    std::ifstream file("/proc/self/statm");
    std::size_t pages = 0;
    std::size_t residentPages = 0;
    file >> pages >> residentPages;
    return static_cast<double>(residentPages) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

/// Notes how long after it was made the preview of a study that is being read is painted with rows.
class FirstRows : public QObject
{
public:
    explicit FirstRows(MainWindow& window)
        : m_table(
            window.findChild<QWidget*>(QStringLiteral("StudyPreview"))->findChild<QTableWidget*>())
        , m_begin(Clock::now())
    {
        m_table->viewport()->installEventFilter(this);
    }

    /// Less than 0 if they have not been painted.
    [[nodiscard]] double milliseconds() const { return m_milliseconds; }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && m_table->rowCount() > 0 && m_milliseconds < 0.0) {
            m_milliseconds =
                std::chrono::duration<double, std::milli>(Clock::now() - m_begin).count();
        }
        return QObject::eventFilter(watched, event);
    }

private:
    using Clock = std::chrono::steady_clock;

    QTableWidget* m_table;
    Clock::time_point m_begin;
    double m_milliseconds = -1.0;
};

/// A text as part of a name: "Open Study…" as "open_study".
std::string asName(QString text)
{
    text = text.toLower();
    QString name;
    for (const QChar character : text) {
        if (character.isLetterOrNumber()) {
            name += character;
        } else if (character == QLatin1Char(' ') && !name.isEmpty()) {
            name += QLatin1Char('_');
        }
    }
    return name.toStdString();
}

QAction& actionOf(MainWindow& window, const QString& text)
{
    for (QAction* action : window.findChildren<QAction*>()) {
        if (action->text().remove(QLatin1Char('&')) == text) {
            return *action;
        }
    }
    throw std::logic_error("There is no action " + text.toStdString() + ".");
}

/// What \p setting can be set to besides what it is; empty for none.
std::optional<std::string> anotherText(const SettingInterface& setting)
{
    switch (setting.kind()) {
    case SettingInterface::Kind::Number: {
        const auto& number = dynamic_cast<const analyzer::NumberSettingInterface&>(setting);
        return std::to_string(
            number.value() == number.minimum() ? number.maximum() : number.minimum());
    }
    case SettingInterface::Kind::Real:
        return std::string(setting.name() == "labels" ? "7" : "0.25");
    case SettingInterface::Kind::Steps: {
        const auto& steps = dynamic_cast<const analyzer::StepsSettingInterface&>(setting);
        if (steps.count() == 0) {
            return {};
        }
        return steps.textAt(steps.place() == 0U ? steps.count() - 1 : 0);
    }
    default:
        for (const std::string& choice : setting.choices()) {
            if (choice != setting.text()) {
                return choice;
            }
        }
        return {};
    }
}

class Walker
{
public:
    Walker(Walk& walk, const WalkStudy& study, std::vector<std::string> kinds)
        : m_walk(walk)
        , m_window(walk.window())
        , m_study(study)
        , m_kinds(std::move(kinds))
    {
        if (m_kinds.empty()) {
            m_kinds = analyzer::viewKinds();
        } else {
            m_window.setFirstViews(m_kinds);
        }
    }

    void open()
    {
        const double before = residentBytes();
        const FirstRows firstRows(m_window);
        m_walk.measure("open_study", [this] { m_window.openStudy(m_study.path()); });
        if (firstRows.milliseconds() >= 0.0) {
            m_walk.count("first_rows_ms", firstRows.milliseconds());
        }
        if (Project::project().caseCount() == 0) {
            throw std::runtime_error("The study has not been opened.");
        }
        m_walk.count(
            "bytes_per_case",
            (residentBytes() - before) / static_cast<double>(Project::project().caseCount()));
    }

    /// With the views that a study opens with: images, a chart, the table.
    void useViews()
    {
        if (isOpen("scatter")) {
            useChart(viewOf("scatter"));
        }
        select();
        if (isOpen("table")) {
            useTable();
        }
        useFilters();
        useTags();
    }

    void useEachKind()
    {
        for (const std::string& kind : m_kinds) {
            useKind(kind);
        }
    }

    void useFiles()
    {
        export_(QStringLiteral("Cases Shown…"), QStringLiteral("shown.csv"));
        m_window.selection().setSelection(everyNth(half));
        export_(QStringLiteral("Selected Cases…"), QStringLiteral("selected.csv"));
        export_(QStringLiteral("Pipeline Table…"), QStringLiteral("table.csv"));
        export_(QStringLiteral("Report…"), QStringLiteral("report.html"));
        m_window.setActiveView(m_window.views().front());
        if (isOpen("scatter")) {
            m_window.setActiveView(viewOf("scatter"));
        }
        for (const char* ending : {"png", "svg", "pdf"}) {
            export_(
                QStringLiteral("View as Picture…"),
                QStringLiteral("chart.") + QLatin1String(ending));
        }
        const QString session = m_walk.folder().filePath(QStringLiteral("walk.dvsession"));
        m_walk.measure(
            "keep_session", [&] { m_window.sessionText(m_walk.folder().path()).size(); });
        export_(QStringLiteral("Save Session As…"), QStringLiteral("walk.dvsession"));
        m_walk.measure("open_session", [&] { m_window.openSession(session); });
    }

    /// The actions of menus and tool bars that nothing above has triggered.
    void useMenus()
    {
        m_window.selection().setSelection(everyNth(hundredth));
        std::vector<QAction*> actions;
        for (QAction* menu : m_window.menuBar()->actions()) {
            collect(*menu->menu(), actions);
        }
        const std::set<QString> elsewhere{
            QStringLiteral("Quit"), QStringLiteral("Undo"), QStringLiteral("Redo")};
        for (QAction* action : actions) {
            const QString text = action->text().remove(QLatin1Char('&'));
            const bool isHistory =
                text.startsWith(QLatin1String("Undo")) || text.startsWith(QLatin1String("Redo"));
            if (elsewhere.count(text) != 0 || isHistory || m_exported.count(text) != 0
                || text.startsWith(QLatin1String("Open ")) || !action->isEnabled()) {
                continue;
            }
            m_walk.measureWithUndo("menu_" + asName(text), [action] { action->trigger(); });
        }
    }

private:
    static void collect(const QMenu& menu, std::vector<QAction*>& actions)
    {
        for (QAction* action : menu.actions()) {
            if (action->menu() != nullptr) {
                if (!action->text().contains(QLatin1String("Recent"))) {
                    collect(*action->menu(), actions);
                }
            } else if (!action->isSeparator()) {
                actions.push_back(action);
            }
        }
    }

    [[nodiscard]] bool isOpen(const std::string& kind) const
    {
        const auto views = m_window.views();
        return std::any_of(
            views.begin(), views.end(), [&](const View& view) { return view->kind() == kind; });
    }

    [[nodiscard]] View viewOf(const std::string& kind) const
    {
        for (const View& view : m_window.views()) {
            if (view->kind() == kind) {
                return view;
            }
        }
        throw std::logic_error("There is no view " + kind + ".");
    }

    void trigger(const QString& text)
    {
        m_walk.measureWithUndo(
            asName(text), [&] { actionOf(m_window, text).trigger(); }, true);
    }

    void export_(const QString& action, const QString& file)
    {
        m_exported.insert(action);
        m_walk.answerWith(m_walk.folder().filePath(file));
        m_walk.measure(asName(action) + "_" + asName(file.section(QLatin1Char('.'), -1)), [&] {
            actionOf(m_window, action).trigger();
        });
    }

    void select()
    {
        const struct
        {
            const char* name;
            std::size_t step;
        } shares[] = {
            {"one", std::numeric_limits<std::size_t>::max() / 2},
            {"hundredth", hundredth},
            {"half", half},
            {"all", all}};

        for (const auto& share : shares) {
            const Cases cases = everyNth(share.step);
            m_walk.measureWithUndo(
                std::string("select_") + share.name,
                [&] { m_window.selection().setSelection(cases); },
                true);
        }
        trigger(QStringLiteral("Clear Selection"));
        trigger(QStringLiteral("Select All"));
        trigger(QStringLiteral("Clear Selection"));
        m_window.selection().setSelection(everyNth(half));
        trigger(QStringLiteral("Invert Selection"));
    }

    void useChart(const View& view)
    {
        m_window.setActiveView(view);
        auto* canvas = view->widget().findChild<QVTKOpenGLNativeWidget*>();
        if (canvas == nullptr) {
            canvas = qobject_cast<QVTKOpenGLNativeWidget*>(&view->widget());
        }
        if (canvas == nullptr) {
            throw std::logic_error("The view has no chart.");
        }
        QWidget& chart = *canvas;
        const std::string kind = view->kind();
        const auto at = [&](double x, double y) {
            return QPoint(qRound(chart.width() * x), qRound(chart.height() * y));
        };
        const auto mode = [&](DataViewInterface::MouseMode value) {
            view->mouseModeProperty()->setValue(value);
        };
        m_walk.measure(kind + "_hover", [&] {
            for (double x = 0.3; x < 0.7; x += 0.02) {
                Walk::mouse(chart, QEvent::MouseMove, at(x, 0.5), Qt::NoButton);
            }
        });
        mode(DataViewInterface::Select);
        m_walk.measureWithUndo(
            kind + "_click", [&] { Walk::click(chart, at(0.5, 0.5)); }, true);
        m_walk.measureWithUndo(
            kind + "_rubber_band", [&] { Walk::drag(chart, at(0.4, 0.4), at(0.6, 0.6)); }, true);
        m_walk.measureWithUndo(
            kind + "_rubber_band_all",
            [&] { Walk::drag(chart, at(0.12, 0.08), at(0.95, 0.85)); },
            true);
        m_walk.measureWithUndo(
            kind + "_control_click",
            [&] { Walk::click(chart, at(0.5, 0.5), Qt::ControlModifier); },
            true);
        m_walk.measureWithUndo(kind + "_control_band", [&] {
            Walk::drag(chart, at(0.3, 0.3), at(0.5, 0.5), Qt::ControlModifier);
        });
        mode(DataViewInterface::Pan);
        m_walk.measureWithUndo(
            kind + "_pan", [&] { Walk::drag(chart, at(0.5, 0.5), at(0.6, 0.4)); }, true);
        mode(DataViewInterface::Zoom);
        m_walk.measureWithUndo(
            kind + "_zoom", [&] { Walk::drag(chart, at(0.3, 0.3), at(0.7, 0.7)); }, true);
        m_walk.measureWithUndo(
            kind + "_wheel",
            [&] {
                Walk::wheel(chart, at(0.5, 0.5), 3);
                Walk::wheel(chart, at(0.5, 0.5), -3);
            },
            true);
        mode(DataViewInterface::Select);
        m_walk.measureWithUndo(
            kind + "_fit", [&] { view->fitData(); }, true);
    }

    void useTable()
    {
        const auto view = boost::dynamic_pointer_cast<analyzer::CaseTableView>(viewOf("table"));
        analyzer::CaseTableWidget& table = view->table();
        QWidget& rows = *table.viewport();
        m_window.setActiveView(view);
        for (const int column : {2, 1, 11}) {
            const std::string name = "table_sort_column" + std::to_string(column);
            m_walk.measureWithUndo(
                name, [&] { table.sortByNextOrder(column); }, true);
            m_walk.measureWithUndo(
                name + "_down", [&] { table.sortByNextOrder(column); }, true);
        }
        m_walk.measure("table_scroll", [&] {
            QScrollBar& bar = *table.verticalScrollBar();
            for (int part = 0; part <= 10; ++part) {
                bar.setValue(static_cast<int>(static_cast<qint64>(bar.maximum()) * part / 10));
                Walk::turn();
            }
        });
        m_walk.measure("table_wheel", [&] { Walk::wheel(rows, QPoint(60, 40), 5); });
        m_walk.measure("table_hover", [&] {
            for (int y = 5; y < rows.height(); y += 7) {
                Walk::mouse(rows, QEvent::MouseMove, QPoint(60, y), Qt::NoButton);
            }
        });
        m_walk.measureWithUndo(
            "table_click", [&] { Walk::click(rows, QPoint(60, 40)); }, true);
        m_walk.measureWithUndo(
            "table_control_click",
            [&] { Walk::click(rows, QPoint(60, 80), Qt::ControlModifier); },
            true);
        m_walk.measureWithUndo(
            "table_select_to_end",
            [&] { Walk::key(table, Qt::Key_End, Qt::ShiftModifier | Qt::ControlModifier); },
            true);
        m_walk.measureWithUndo(
            "table_home", [&] { Walk::key(table, Qt::Key_Home); }, true);
        m_walk.measureWithUndo(
            "table_select_all", [&] { table.selectAll(); }, true);
        m_walk.measureWithUndo(
            "table_drag", [&] { Walk::drag(rows, QPoint(60, 20), QPoint(60, 100)); }, true);
    }

    void useFilters()
    {
        auto* dock = m_window.findChild<QDockWidget*>(QStringLiteral("Filters"));
        m_walk.measure("filters_panel", [&] { dock->raise(); });
        analyzer::FilterList& filters = m_window.filters();
        m_walk.measureWithUndo(
            "filter_add_range",
            [&] {
                filters.addRangeFilter("v1", {-1.0, 1.0});
            },
            true);
        if (auto* slider = m_window.findChild<analyzer::RangeSlider*>()) {
            m_walk.measureWithUndo(
                "filter_drag",
                [&] {
                    const int y = slider->height() / 3;
                    Walk::drag(
                        *slider,
                        QPoint(slider->width() / 5, y),
                        QPoint(slider->width() * 2 / 5, y));
                },
                true);
        }
        const auto range = filters.filters().front();
        m_walk.measureWithUndo("filter_invert", [&] { range->inverted()->setValue(true); });
        m_walk.measureWithUndo("filter_disable", [&] { range->enabled()->setValue(false); });
        m_walk.measureWithUndo(
            "filter_add_values", [&] { filters.addValuesFilter("Material"); }, true);
        m_walk.measureWithUndo("filter_values", [&] {
            filters.filters().back()->values()->setValue({Variant("steel"), Variant("oak")});
        });
        m_walk.measureWithUndo(
            "filter_add_values_of_numbers", [&] { filters.addValuesFilter("Level"); });
        m_walk.measureWithUndo(
            "filter_remove", [&] { filters.remove(range); }, true);
        m_walk.measureWithUndo(
            "filter_remove_last", [&] { filters.remove(filters.filters().back()); }, true);
    }

    void useTags()
    {
        auto* dock = m_window.findChild<QDockWidget*>(QStringLiteral("Tags"));
        auto* panel = m_window.findChild<analyzer::TagsPanel*>();
        m_walk.measure("tags_panel", [&] { dock->raise(); });
        analyzer::TagEditor& tags = m_window.tags();
        m_walk.measureWithUndo(
            "tag_make", [&] { tags.addTag("Marks", "good"); }, true);
        m_walk.measureWithUndo(
            "tag_make_second", [&] { tags.addTag("Marks", "odd"); }, true);
        const Cases cases = everyNth(half);
        m_walk.measureWithUndo(
            "tag_select_half", [&] { m_window.selection().setSelection(cases); }, true);
        m_walk.measureWithUndo(
            "tag_put_on", [&] { panel->toggleTag(1); }, true);
        m_walk.measureWithUndo("tag_take_off", [&] { panel->toggleTag(1); });
        m_walk.measureWithUndo(
            "tag_filter", [&] { m_window.filters().addTagFilter("good"); }, true);
        m_walk.measureWithUndo("tag_remove", [&] { tags.removeTag("good"); });
        const Cases everything = everyNth(all);
        m_walk.measureWithUndo(
            "tag_select_all", [&] { m_window.selection().setSelection(everything); }, true);
        m_walk.measureWithUndo(
            "tag_put_on_all", [&] { panel->toggleTag(2); }, true);
        m_window.filters().remove(m_window.filters().filters().back());
        m_window.findChild<QDockWidget*>(QStringLiteral("Filters"))->raise();
    }

    void useKind(const std::string& kind)
    {
        View view;
        m_walk.measureWithUndo(
            "open_" + kind, [&] { view = m_window.addView(kind); }, true);
        // Views of selected cases show some, and none of them all.
        m_window.selection().setSelection(everyNth(hundredth));
        if (kind == "scatter3d" || kind == "line") {
            useChart(view);
        }
        for (const boost::shared_ptr<SettingInterface>& setting : view->settings()) {
            const std::optional<std::string> text = anotherText(*setting);
            if (!text) {
                continue;
            }
            const bool isOfOtherCases = setting->name() == "color" || setting->name() == "legend";
            m_walk.measureWithUndo(
                "set_" + kind + "_" + asName(QString::fromStdString(setting->name())),
                [&] { setting->setText(*text); },
                isOfOtherCases);
        }
        m_walk.measureWithUndo(
            "close_" + kind, [&] { m_window.viewArea().close(view); }, true);
    }

    Walk& m_walk;
    MainWindow& m_window;
    const WalkStudy& m_study;
    std::vector<std::string> m_kinds; ///< of the views that are used
    std::set<QString> m_exported;
};

} // namespace

void doEveryAction(Walk& walk, const WalkStudy& study, const std::vector<std::string>& kinds)
{
    Walker walker(walk, study, kinds);
    walker.open();
    walker.useViews();
    walker.useEachKind();
    walker.useMenus();
    walker.useFiles();
}
