#include <analyzer/views/SelectedCasesDelegate.h>
#include <analyzer/views/SelectedCasesNameHeader.h>
#include <analyzer/views/SelectedCasesTable.h>
#include <analyzer/views/SelectedCasesView.h>
#include <analyzer/views/SelectedCasesWidget.h>

#include <dataviews/common/views/DataViewVisitorAbstract.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/serialize/SerializerInterface.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QApplication>
#include <QClipboard>
#include <QDomDocument>
#include <QHeaderView>
#include <QMenu>
#include <QScrollBar>
#include <QTest>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <tests/support/SmallStudy.h>
#include <tests/support/mouseMoves.h>

namespace analyzer {

namespace {

using Texts = std::vector<std::string>;
using Cases = std::set<unsigned long long>;
using Kind = SelectedCasesReference::Kind;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// Six cases: numbers, texts, gaps; "Same" is the same in all of them.
std::unique_ptr<SmallStudy> openStudy()
{
    auto study = std::make_unique<SmallStudy>(6);
    study->add("Speed", {10.0, 20.0, 30.0, 0.0, 20.0, 25.0}, Variable::Input)
        .add("Same", {1.5, 1.5, 1.5, 1.5, 1.5, 1.5})
        .add("Gaps", {nan, nan, 3.0, 3.0, nan, 4.0})
        .add("Note", Texts{"a", "a", "b", "", "", "two\nlines\tand more"})
        .add("Fine", {0.1234561, 0.1234562, 0.1234561, 1.0, 1.0, 2.0});
    study->open();
    return study;
}

class SelectedCasesViewTest : public testing::Test
{
protected:
    void SetUp() override
    {
        m_study = openStudy();
        m_view = makeView();
    }

    void TearDown() override
    {
        m_view.reset();
        m_study.reset();
        UndoStack::history().clear();
    }

    boost::shared_ptr<SelectedCasesView> makeView()
    {
        auto view = boost::make_shared<SelectedCasesView>(m_pipeline, m_master, m_hovered);
        view->widget().resize(700, 400);
        view->widget().show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&view->widget()));
        return view;
    }

    [[nodiscard]] SelectedCasesModel& model() const { return m_view->model(); }

    [[nodiscard]] SelectedCasesTable& table() const { return m_view->casesWidget().table(); }

    void set(const std::string& name, const std::string& text) const
    {
        for (const auto& setting : m_view->settings()) {
            if (setting->name() == name) {
                setting->setText(text);
                return;
            }
        }
        FAIL() << name;
    }

    [[nodiscard]] Texts headings() const
    {
        Texts result;
        for (int column = 0; column < model().columnCount(); ++column) {
            result.push_back(model().headerData(column, Qt::Horizontal).toString().toStdString());
        }
        return result;
    }

    [[nodiscard]] Texts names() const
    {
        Texts result;
        for (int row = 0; row < model().rowCount(); ++row) {
            result.push_back(model().headerData(row, Qt::Vertical).toString().toStdString());
        }
        return result;
    }

    /// The names that are bold.
    [[nodiscard]] Texts differing() const
    {
        Texts result;
        for (int row = 0; row < model().rowCount(); ++row) {
            const QVariant font = model().headerData(row, Qt::Vertical, Qt::FontRole);
            if (font.value<QFont>().bold() && font.isValid()) {
                result.push_back(model().headerData(row, Qt::Vertical).toString().toStdString());
            }
        }
        return result;
    }

    [[nodiscard]] int rowOf(const std::string& name) const
    {
        const Texts all = names();
        return static_cast<int>(std::find(all.begin(), all.end(), name) - all.begin());
    }

    [[nodiscard]] QVariantList row(const std::string& name, int role = Qt::DisplayRole) const
    {
        QVariantList result;
        for (int column = 0; column < model().columnCount(); ++column) {
            result.append(model().index(rowOf(name), column).data(role));
        }
        return result;
    }

    [[nodiscard]] Texts texts(const std::string& name, int role = Qt::DisplayRole) const
    {
        Texts result;
        for (const QVariant& value : row(name, role)) {
            result.push_back(value.toString().toStdString());
        }
        return result;
    }

    /// A letter for each case: x for a mark.
    [[nodiscard]] std::string marks(const std::string& name) const
    {
        std::string result;
        for (const QVariant& value : row(name, SelectedCasesModel::StrengthRole)) {
            result += value.isValid() ? 'x' : '-';
        }
        return result;
    }

    [[nodiscard]] std::string line() const { return m_view->casesWidget().line().toStdString(); }

    void filterSpeed(double from, double to)
    {
        auto filter = boost::make_shared<RangeFilter>(
            Project::project().variable("Speed"), ValueRange_s<double>{from, to});
        m_pipeline.addFilter(filter);
    }

    /// Asks for the menu as the mouse does, and chooses the entry that begins with \p text.
    void chooseInMenu(int column, const QString& text)
    {
        const QPoint place(
            table().columnViewportPosition(column) + 5, table().rowViewportPosition(0) + 5);
        QContextMenuEvent request(
            QContextMenuEvent::Mouse, place, table().viewport()->mapToGlobal(place));
        QApplication::sendEvent(table().viewport(), &request);
        QMenu menu;
        m_view->addContextActions(menu);
        for (QAction* action : menu.actions()) {
            if (action->text().remove(QLatin1Char('&')) == text) {
                ASSERT_TRUE(action->isEnabled());
                action->trigger();
                return;
            }
        }
        FAIL() << text.toStdString();
    }

    std::unique_ptr<SmallStudy> m_study;
    DataPipelineManager m_pipeline{Project::project()};
    boost::shared_ptr<SelectionModel> m_master = boost::make_shared<SelectionModel>();
    boost::shared_ptr<HoveredCase> m_hovered = boost::make_shared<HoveredCase>();
    boost::shared_ptr<SelectedCasesView> m_view;
};

/// The state of \p view, attribute by attribute: their order is arbitrary.
std::map<std::string, std::string> stateOf(SelectedCasesView& view)
{
    QDomDocument document;
    QDomElement parent = document.createElement(QStringLiteral("Parent"));
    document.appendChild(parent);
    view.serializer().serialize(parent);
    std::map<std::string, std::string> result;
    const QDomElement own = parent.firstChildElement();
    EXPECT_EQ(own.tagName().toStdString(), view.domName());
    for (QDomElement child = own.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const std::string name = child.tagName().toStdString();
        result[name] = child.text().toStdString();
        const QDomNamedNodeMap attributes = child.attributes();
        for (int i = 0; i < attributes.count(); ++i) {
            const QDomAttr attribute = attributes.item(i).toAttr();
            result[name + "." + attribute.name().toStdString()] = attribute.value().toStdString();
        }
    }
    return result;
}

void copyState(SelectedCasesView& from, SelectedCasesView& to)
{
    QDomDocument document;
    QDomElement parent = document.createElement(QStringLiteral("Parent"));
    document.appendChild(parent);
    from.serializer().serialize(parent);
    to.serializer().deserialize(parent);
}

} // namespace

TEST_F(SelectedCasesViewTest, MarksTheVariablesWhoseValuesAreNotTheSame)
{
    const struct
    {
        Cases selected;
        Texts differing;
    } examples[] = {
        {{1, 2}, {"Speed", "Fine"}}, // both without a number: no difference
        {{1, 3}, {"Speed", "Gaps", "Note"}}, // one without a number
        {{2, 5}, {"Note", "Fine"}}, // one without a text
        {{4, 5}, {"Speed", "Gaps"}}, // both without a text
        {{1, 2, 3}, {"Speed", "Gaps", "Note", "Fine"}},
        {{3}, {}},
    };

    for (const auto& example : examples) {
        m_master->setSelection(example.selected);
        SCOPED_TRACE(line());

        EXPECT_EQ(differing(), example.differing);
        EXPECT_EQ(model().columnCount(), static_cast<int>(example.selected.size()));
        for (const std::string& name : names()) {
            const bool isMarked =
                std::count(example.differing.begin(), example.differing.end(), name);
            EXPECT_EQ(marks(name), std::string(example.selected.size(), isMarked ? 'x' : '-'))
                << name;
        }
    }
}

TEST_F(SelectedCasesViewTest, ShowsValuesAsPeopleReadThem)
{
    m_master->setSelection({6, 1, 2});

    EXPECT_EQ(headings(), (Texts{"Case 1", "Case 2", "Case 6"}));
    EXPECT_EQ(names(), (Texts{"Speed", "Same", "Gaps", "Note", "Fine"}));
    EXPECT_EQ(texts("Speed"), (Texts{"10", "20", "25"}));
    EXPECT_EQ(texts("Gaps"), (Texts{"(missing)", "(missing)", "4"}));
    EXPECT_EQ(texts("Note"), (Texts{"a", "a", "two lines and more"}));
    EXPECT_EQ(texts("Fine"), (Texts{"0.123456", "0.123456", "2"}));
    EXPECT_TRUE(texts("Fine", Qt::ToolTipRole)[0].find("0.1234561") != std::string::npos);
    EXPECT_EQ(line(), "3 selected cases; 4 of 5 variables differ");
    EXPECT_EQ(m_view->title(), "3 cases");
    // Here six digits would hide what the mark is for.
    m_master->setSelection({1, 2});
    EXPECT_EQ(texts("Fine"), (Texts{"0.1234561", "0.1234562"}));
}

TEST_F(SelectedCasesViewTest, ComparesWithTheReference)
{
    m_master->setSelection({1, 2, 3, 4});
    EXPECT_EQ(texts("Speed", SelectedCasesModel::DifferenceRole), (Texts{"", "", "", ""}));

    set("reference", "first");
    EXPECT_EQ(headings(), (Texts{"Case 1\nreference", "Case 2", "Case 3", "Case 4"}));
    EXPECT_EQ(
        texts("Speed", SelectedCasesModel::DifferenceRole),
        (Texts{"", "+100 %", "+200 %", "-100 %"}));
    EXPECT_EQ(texts("Gaps", SelectedCasesModel::DifferenceRole), (Texts{"", "", "", ""}));
    EXPECT_EQ(marks("Gaps"), "--xx");
    EXPECT_EQ(marks("Note"), "--xx");

    set("difference", "absolute");
    EXPECT_EQ(texts("Speed", SelectedCasesModel::DifferenceRole), (Texts{"", "+10", "+20", "-10"}));
    set("difference", "off");
    EXPECT_EQ(texts("Speed", SelectedCasesModel::DifferenceRole), (Texts{"", "", "", ""}));

    // A pinned case comes first, is there once, and stays when it is not selected. There is no percentage of zero.
    set("difference", "percent");
    set("reference", "4");
    EXPECT_EQ(headings(), (Texts{"Case 4\nreference", "Case 1", "Case 2", "Case 3"}));
    m_master->setSelection({2, 5});
    EXPECT_EQ(headings(), (Texts{"Case 4\nreference", "Case 2", "Case 5"}));
    EXPECT_EQ(texts("Speed", SelectedCasesModel::DifferenceRole), (Texts{"", "+20", "+20"}));
    EXPECT_EQ(differing(), (Texts{"Speed", "Gaps", "Note", "Fine"})) << "from the reference too";
    EXPECT_EQ(marks("Note"), "-x-");
    EXPECT_EQ(line(), "2 selected cases; 4 of 5 variables differ");

    for (const char* const wrong : {"7", "0", "case", "second", "", "-1", "1.5", "case 99"}) {
        EXPECT_THROW(set("reference", wrong), ExceptionBase) << wrong;
    }
    EXPECT_EQ(headings().front(), "Case 4\nreference");
}

TEST_F(SelectedCasesViewTest, ShowsOnlyDifferingVariablesAndGroupsThem)
{
    m_master->setSelection({1, 2});
    set("show", "differing");
    EXPECT_EQ(names(), (Texts{"Speed", "Fine"}));
    m_master->setSelection({4, 5});
    EXPECT_EQ(names(), (Texts{"Speed", "Gaps"}));
    m_master->setSelection({4});
    EXPECT_EQ(names().size(), 5U) << "nothing to compare";

    m_master->setSelection({1, 2});
    set("order", "nature");
    EXPECT_EQ(names(), (Texts{"Inputs", "Speed", "Outputs", "Fine"}));
    EXPECT_EQ(model().variable(0), nullptr);
    EXPECT_FALSE(model().index(0, 1).data().isValid());
    set("show", "all");
    EXPECT_EQ(names(), (Texts{"Inputs", "Speed", "Outputs", "Same", "Gaps", "Note", "Fine"}));
}

TEST_F(SelectedCasesViewTest, MarksByMagnitudeInTheRangeOfTheStudy)
{
    m_master->setSelection({1, 3, 5});
    set("mark", "magnitude");

    const QVariantList speed = row("Speed", SelectedCasesModel::StrengthRole);
    EXPECT_DOUBLE_EQ(speed[0].toDouble(), 1.0 / 3.0);
    EXPECT_DOUBLE_EQ(speed[1].toDouble(), 1.0);
    EXPECT_EQ(marks("Speed"), "xxx");
    EXPECT_EQ(marks("Gaps"), "-x-") << "not where the value is missing";
    EXPECT_EQ(marks("Same"), "---") << "a range of one value";
    EXPECT_EQ(marks("Note"), "---") << "texts";

    // Stronger is nearer to the highlight, on light and on dark.
    for (const QColor& base : {QColor(Qt::white), QColor(30, 30, 30)}) {
        QPalette palette;
        palette.setColor(QPalette::Base, base);
        palette.setColor(QPalette::Highlight, QColor(40, 120, 200));
        const auto far = [&base](const QColor& color) {
            return std::abs(color.red() - base.red()) + std::abs(color.green() - base.green())
                + std::abs(color.blue() - base.blue());
        };
        EXPECT_GT(far(SelectedCasesDelegate::tint(palette, 0.0)), 0);
        EXPECT_LT(
            far(SelectedCasesDelegate::tint(palette, 0.2)),
            far(SelectedCasesDelegate::tint(palette, 0.9)));
    }
}

TEST_F(SelectedCasesViewTest, LeavesOutWhatTheFiltersDo)
{
    m_master->setSelection({1, 2, 3, 4});
    int leftOutChanges = 0;
    m_view->signalLeftOutChanged.connect([&leftOutChanges] { ++leftOutChanges; });
    EXPECT_TRUE(m_view->leftOut().empty());

    filterSpeed(5.0, 20.0);
    EXPECT_EQ(headings(), (Texts{"Case 1", "Case 2"}));
    EXPECT_EQ(leftOutChanges, 1);
    ASSERT_EQ(m_view->leftOut().size(), 1U);
    EXPECT_EQ(m_view->leftOut()[0].count, 2U);
    EXPECT_EQ(m_view->leftOutCaseIDs(), (Cases{3, 4}));

    m_master->setSelection({3, 4});
    EXPECT_EQ(model().columnCount(), 0);
    EXPECT_NE(m_view->casesWidget().message().indexOf(QStringLiteral("filters")), -1);
    m_master->setSelection({});
    EXPECT_TRUE(m_view->leftOut().empty());
    EXPECT_NE(m_view->casesWidget().message().indexOf(QStringLiteral("Nothing is selected")), -1);
}

TEST(SelectedCasesViewManyTest, ShowsTheFirstOfVeryManyCases)
{
    constexpr std::size_t count = 100000;
    std::vector<double> values(count);
    for (std::size_t i = 0; i < count; ++i) {
        values[i] = static_cast<double>(i);
    }
    SmallStudy study(count);
    study.add("x", values).open();
    DataPipelineManager pipeline(Project::project());
    const auto master = boost::make_shared<SelectionModel>();
    const auto view = boost::make_shared<SelectedCasesView>(pipeline, master);
    Cases all;
    for (std::size_t i = 1; i <= count; ++i) {
        all.insert(all.end(), i);
    }

    master->setSelection(all);

    EXPECT_EQ(view->model().columnCount(), 200);
    EXPECT_EQ(
        view->casesWidget().line().toStdString(),
        "First 200 of 100,000 selected cases; 1 of 1 variables differ");
    ASSERT_EQ(view->leftOut().size(), 1U);
    EXPECT_EQ(view->leftOut()[0].count, count - 200);
    const Cases others = view->leftOutCaseIDs();
    EXPECT_EQ(others.size(), count - 200);
    // So that the left out ones are one click away.
    master->setSelection(others);
    EXPECT_EQ(view->model().caseID(0), 201U);
}

TEST_F(SelectedCasesViewTest, SettingsCanBeUndone)
{
    m_master->setSelection({1, 2});
    const Texts before = names();
    for (const auto& [name, text] : std::map<std::string, std::string>{
             {"show", "differing"},
             {"reference", "case 2"},
             {"difference", "absolute"},
             {"mark", "magnitude"},
             {"order", "nature"}}) {
        SCOPED_TRACE(name);
        const auto present = stateOf(*m_view);
        set(name, text);
        const auto changed = stateOf(*m_view);
        EXPECT_NE(changed, present);

        UndoStack::history().undo();
        EXPECT_EQ(stateOf(*m_view), present);
        UndoStack::history().redo();
        EXPECT_EQ(stateOf(*m_view), changed);
    }
    while (UndoStack::history().canUndo()) {
        UndoStack::history().undo();
    }
    EXPECT_EQ(names(), before);
    EXPECT_EQ(headings(), (Texts{"Case 1", "Case 2"}));
}

TEST_F(SelectedCasesViewTest, AnotherViewTakesTheState)
{
    m_master->setSelection({1, 2, 3});
    set("show", "differing");
    set("reference", "case 3");
    set("difference", "absolute");
    set("mark", "magnitude");
    set("order", "nature");
    table().setNameWidth(123);
    table().setCaseWidth(400); // two columns do not fit
    QApplication::processEvents(); // lays it out
    table().horizontalScrollBar()->setValue(77);
    ASSERT_EQ(table().horizontalScrollBar()->value(), 77);

    const boost::shared_ptr<SelectedCasesView> other = makeView();
    ASSERT_NE(stateOf(*other), stateOf(*m_view));
    copyState(*m_view, *other);
    EXPECT_EQ(stateOf(*other), stateOf(*m_view)) << "before it is laid out";
    ASSERT_TRUE(QTest::qWaitFor(
        [&other] { return other->casesWidget().table().horizontalScrollBar()->value() == 77; }));

    EXPECT_EQ(stateOf(*other), stateOf(*m_view));
    EXPECT_EQ(other->model().rowCount(), model().rowCount());
    EXPECT_EQ(other->model().caseID(0), 3U);
    EXPECT_EQ(other->casesWidget().table().verticalHeader()->width(), 123);
    EXPECT_EQ(other->casesWidget().table().columnWidth(1), 400);
}

TEST_F(SelectedCasesViewTest, RefusesAStateItCannotTake)
{
    const auto read = [this](const char* element, const char* text) {
        QDomDocument document;
        QDomElement parent = document.createElement(QStringLiteral("Parent"));
        QDomElement own = document.createElement(QStringLiteral("SelectedCases"));
        QDomElement child = document.createElement(QString::fromLatin1(element));
        child.appendChild(document.createTextNode(QString::fromLatin1(text)));
        own.appendChild(child);
        parent.appendChild(own);
        m_view->serializer().deserialize(parent);
    };
    set("reference", "first");

    EXPECT_ANY_THROW(read("Reference", "case two"));
    EXPECT_ANY_THROW(read("Show", "some"));
    EXPECT_ANY_THROW(read("CaseWidth", "wide"));
    read("Reference", "case 99"); // that was in the study
    EXPECT_EQ(m_view->reference()->value().kind, Kind::First);
    read("Reference", "case 3");
    EXPECT_EQ(m_view->reference()->value(), SelectedCasesReference::pinned(3));
}

TEST_F(SelectedCasesViewTest, ASuspendedViewCatchesUpWhenItIsResumed)
{
    m_master->setSelection({1, 2});
    int resets = 0;
    QObject::connect(&model(), &QAbstractItemModel::modelReset, [&resets] { ++resets; });
    m_view->suspend();
    m_master->setSelection({2, 3, 6});
    filterSpeed(25.0, 40.0);
    UndoStack::history().undo();
    EXPECT_EQ(resets, 0);
    EXPECT_EQ(headings(), (Texts{"Case 1", "Case 2"}));

    m_view->resume();
    EXPECT_EQ(headings(), (Texts{"Case 3", "Case 6"}));
    EXPECT_EQ(m_view->leftOutCaseIDs(), (Cases{2}));

    // Another study while it is away, with fewer cases and other variables.
    m_view->suspend();
    m_study.reset();
    SmallStudy next(2);
    next.add("Other", {1.0, 2.0}).open();
    m_view->widget().repaint();
    m_master->setSelection({1, 2});
    m_view->resume();
    EXPECT_EQ(names(), (Texts{"Other"}));
    EXPECT_EQ(headings(), (Texts{"Case 1", "Case 2"}));
}

TEST_F(SelectedCasesViewTest, AnotherStudyTakesThePlace)
{
    m_master->setSelection({2, 6});
    set("reference", "case 5");
    QApplication::processEvents();

    SmallStudy next(3);
    next.add("Other", {1.0, 2.0, 3.0}).open();
    QApplication::processEvents();

    EXPECT_EQ(names(), (Texts{"Other"}));
    EXPECT_EQ(headings(), (Texts{"Case 2"})) << "the others are not in this study";
    EXPECT_EQ(m_view->reference()->value().kind, Kind::None) << "another case has that ID";
    Project nothing;
    Project::project().replaceStudy(nothing);
    QApplication::processEvents();
    EXPECT_EQ(model().columnCount(), 0);
}

TEST_F(SelectedCasesViewTest, HoversTheCaseUnderTheMouse)
{
    m_master->setSelection({2, 4, 6});
    QApplication::processEvents();
    const auto moveTo = [](QWidget* widget, const QPoint& place) {
        sendMouseMove(*widget, place);
        settle();
    };
    const int second = table().columnViewportPosition(1) + 10;

    moveTo(table().viewport(), {second, table().rowViewportPosition(1) + 5});
    EXPECT_EQ(m_hovered->caseID(), 4U);
    moveTo(table().viewport(), {second, table().viewport()->height() - 3});
    EXPECT_FALSE(m_hovered->caseID()) << "below the rows";
    moveTo(table().horizontalHeader()->viewport(), {10, 5});
    EXPECT_EQ(m_hovered->caseID(), 2U);
}

TEST_F(SelectedCasesViewTest, CopiesTheMarkedCells)
{
    m_master->setSelection({1, 2, 6});
    QClipboard& clipboard = *QApplication::clipboard();
    const auto copyCells = [&](const std::string& top,
                               int left,
                               const std::string& bottom,
                               int right) {
        table().selectionModel()->select(
            QItemSelection(model().index(rowOf(top), left), model().index(rowOf(bottom), right)),
            QItemSelectionModel::ClearAndSelect);
        QTest::keySequence(&table(), QKeySequence::Copy);
        return clipboard.text().toStdString();
    };

    EXPECT_EQ(copyCells("Gaps", 1, "Fine", 2), "\t4\na\t\"two\nlines\tand more\"\n0.1234562\t2");
    EXPECT_EQ(copyCells("Note", 2, "Note", 2), "two\nlines\tand more");
    table().clearSelection();
    clipboard.setText(QStringLiteral("kept"));
    QTest::keySequence(&table(), QKeySequence::Copy);
    EXPECT_EQ(clipboard.text().toStdString(), "kept");
}

TEST_F(SelectedCasesViewTest, TheMenuIsForTheCaseUnderTheMouse)
{
    int menus = 0;
    m_view->signalContextMenuRequested.connect([&menus](const QPoint&) { ++menus; });
    m_master->setSelection({1, 2, 6});
    QApplication::processEvents();

    chooseInMenu(1, QStringLiteral("Pin as Reference"));
    EXPECT_EQ(m_view->reference()->value(), SelectedCasesReference::pinned(2));
    chooseInMenu(2, QStringLiteral("Remove from Selection"));
    EXPECT_EQ(m_master->getSelections(), (Cases{1, 2})) << "the one under the mouse is case 6";
    chooseInMenu(0, QStringLiteral("Compare without Reference"));
    EXPECT_EQ(m_view->reference()->value(), SelectedCasesReference());
    EXPECT_EQ(menus, 3);

    // Beside the cases, a click leaves the selection as it is.
    const QPoint below(5, table().viewport()->height() - 3);
    QContextMenuEvent request(
        QContextMenuEvent::Mouse, below, table().viewport()->mapToGlobal(below));
    QApplication::sendEvent(table().viewport(), &request);
    EXPECT_EQ(menus, 4);
    EXPECT_EQ(m_master->getSelections(), (Cases{1, 2}));
}

TEST_F(SelectedCasesViewTest, WidthsFitUntilTheyAreDragged)
{
    m_master->setSelection({1, 2, 6});
    QApplication::processEvents();
    const int fitting = table().columnWidth(0);
    QHeaderView& cases = *table().horizontalHeader();
    const int edge = cases.sectionViewportPosition(0) + cases.sectionSize(0) - 1;

    QTest::mousePress(cases.viewport(), Qt::LeftButton, {}, {edge, 5});
    QMouseEvent move(
        QEvent::MouseMove,
        QPoint(edge + 60, 5),
        cases.viewport()->mapToGlobal(QPoint(edge + 60, 5)),
        Qt::NoButton,
        Qt::LeftButton,
        Qt::NoModifier);
    QApplication::sendEvent(cases.viewport(), &move);
    QTest::mouseRelease(cases.viewport(), Qt::LeftButton, {}, {edge + 60, 5});

    for (int column = 0; column < 3; ++column) {
        EXPECT_EQ(table().columnWidth(column), fitting + 60) << column;
    }
    EXPECT_EQ(table().caseWidth(), fitting + 60);
    m_master->setSelection({1, 2, 3, 6});
    EXPECT_EQ(table().columnWidth(3), fitting + 60) << "kept for other cases";
    table().setCaseWidth(0);
    EXPECT_EQ(table().columnWidth(0), fitting);
}

TEST_F(SelectedCasesViewTest, TheNamesAreAsWideAsTheirEdgeIsDragged)
{
    m_master->setSelection({1, 2});
    QApplication::processEvents();
    QHeaderView& header = *table().verticalHeader();
    const int fitting = header.width();
    const QPoint edge(fitting - 2, 10);

    QTest::mousePress(header.viewport(), Qt::LeftButton, {}, edge);
    sendMouseMove(*header.viewport(), edge + QPoint(70, 0), Qt::LeftButton);
    QTest::mouseRelease(header.viewport(), Qt::LeftButton, {}, edge + QPoint(70, 0));
    EXPECT_EQ(header.width(), fitting + 70);
    EXPECT_EQ(table().nameWidth(), fitting + 70);
    EXPECT_FALSE(table().selectionModel()->hasSelection()) << "dragging marks no row";

    QTest::mouseDClick(header.viewport(), Qt::LeftButton, {}, QPoint(header.width() - 2, 10));
    EXPECT_EQ(header.width(), fitting);
    EXPECT_EQ(table().nameWidth(), 0);
}

TEST_F(SelectedCasesViewTest, VisitsAsItsKind)
{
    class Visitor : public DataViewVisitorAbstract
    {
    public:
        using DataViewVisitorAbstract::visit;

        void visit(boost::shared_ptr<SelectedCasesViewInterface> view) override { visited = view; }

        boost::shared_ptr<SelectedCasesViewInterface> visited;
    } visitor;

    m_view->accept(visitor);

    EXPECT_EQ(visitor.visited, boost::shared_ptr<SelectedCasesViewInterface>(m_view));
    EXPECT_EQ(m_view->domName(), "SelectedCases");
    EXPECT_EQ(m_view->kind(), "selected-cases");
}

} // namespace analyzer
