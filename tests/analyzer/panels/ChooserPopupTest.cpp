#include <analyzer/filters/FilterList.h>
#include <analyzer/panels/ChooserModel.h>
#include <analyzer/panels/ChooserPopup.h>
#include <analyzer/panels/ElidedComboBox.h>
#include <analyzer/panels/FiltersPanel.h>
#include <analyzer/panels/SettingsPanel.h>
#include <analyzer/views/VariableSetting.h>

#include <dataviews/common/models/StandardListModel.h>
#include <dataviews/common/models/StringListModel.h>
#include <dataviews/common/views/Property.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QAction>
#include <QApplication>
#include <QFont>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QTest>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include <tests/support/FakeView.h>
#include <tests/support/SmallStudy.h>

namespace analyzer {

namespace {

QStringList shownIn(const QAbstractItemModel& model)
{
    QStringList result;
    for (int row = 0; row < model.rowCount(); ++row) {
        result.append(model.index(row, 0).data().toString());
    }
    return result;
}

/// The window that is open, and what can be done with it.
class OpenChooser
{
public:
    OpenChooser()
        : m_window(qobject_cast<ChooserPopup*>(QApplication::activePopupWidget()))
    {}

    [[nodiscard]] bool isOpen() const { return m_window != nullptr && m_window->isVisible(); }

    [[nodiscard]] QLineEdit& search() const { return *m_window->findChild<QLineEdit*>(); }

    [[nodiscard]] QListView& list() const { return *m_window->findChild<QListView*>(); }

    [[nodiscard]] QStringList shown() const { return shownIn(*list().model()); }

    [[nodiscard]] std::string marked() const
    {
        return list().currentIndex().data().toString().toStdString();
    }

    /// As the window system does: to whatever has the keyboard.
    void press(Qt::Key key) const { QTest::keyClick(&search(), key); }

    void type(const char* text) const { QTest::keyClicks(&search(), QString::fromUtf8(text)); }

private:
    ChooserPopup* m_window;
};

std::string numbered(int number)
{
    return "pressure at sensor " + std::to_string(number);
}

/// A box with 500 names, of which the one with number 40 is chosen.
class SearchedBoxTest : public testing::Test
{
protected:
    SearchedBoxTest()
    {
        m_box.setObjectName(QStringLiteral("x"));
        m_box.setAccessibleName(QStringLiteral("X axis"));
        for (int number = 0; number < 500; ++number) {
            m_box.addItem(QString::fromStdString(numbered(number)));
        }
        m_box.addItem(QStringLiteral("Drag & lift"));
        m_box.setCurrentIndex(40);
        m_box.resize(150, 30);
        m_box.show();
        QObject::connect(&m_box, QOverload<int>::of(&QComboBox::activated), [this](int index) {
            m_activated.push_back(index);
        });
    }

    void SetUp() override { ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_box)); }

    void TearDown() override { m_box.hidePopup(); }

    ElidedComboBox m_box;
    std::vector<int> m_activated;
};

} // namespace

TEST(ChooserModelTest, ListsTheBestMatchesFirst)
{
    const auto choices = boost::make_shared<StandardListModel<std::string>>();
    for (const char* const text :
         {"Airdrag", "Drag rear", "Lift", "DRAG", "Drag front", "a drag"}) {
        choices->push_back(text, text);
    }
    ChooserModel model;
    model.setChoices(choices, 2);

    const struct
    {
        const char* search;
        QStringList found;
    } searches[] = {
        {"", {"Airdrag", "Drag rear", "Lift", "DRAG", "Drag front", "a drag"}},
        {" drag ", {"DRAG", "Drag rear", "Drag front", "Airdrag", "a drag"}},
        {"IFT", {"Lift"}},
        {"drag f", {"Drag front"}},
        {".*", {}},
    };

    for (const auto& [search, found] : searches) {
        model.search(QString::fromLatin1(search));

        EXPECT_EQ(shownIn(model), found) << search;
    }

    model.search(QStringLiteral("f"));
    EXPECT_EQ(shownIn(model), (QStringList{"Lift", "Drag front"}));
    EXPECT_EQ(model.choice(1), 4U);
    EXPECT_EQ(model.presentRow(), 0);
    EXPECT_TRUE(model.index(0, 0).data(Qt::FontRole).value<QFont>().bold());
    EXPECT_FALSE(model.index(1, 0).data(Qt::FontRole).isValid());
    choices->push_back("Surface", "Surface");
    EXPECT_EQ(shownIn(model), (QStringList{"Lift", "Drag front", "Surface"}));
}

TEST_F(SearchedBoxTest, TypingNarrowsTheListAndEnterTakesTheFirstMatch)
{
    QTest::mouseClick(&m_box, Qt::LeftButton);
    const OpenChooser chooser;
    ASSERT_TRUE(chooser.isOpen());
    EXPECT_EQ(chooser.shown().size(), 501);
    EXPECT_EQ(chooser.marked(), numbered(40));

    chooser.type("SENSOR 12");
    EXPECT_EQ(chooser.shown().size(), 11); // 12 and 120 to 129
    EXPECT_EQ(chooser.marked(), numbered(12));
    chooser.press(Qt::Key_Return);

    EXPECT_FALSE(chooser.isOpen());
    EXPECT_EQ(m_activated, std::vector<int>{12});
    EXPECT_EQ(m_box.currentIndex(), 12);
}

TEST_F(SearchedBoxTest, ArrowsMoveFromThePresentOne)
{
    QTest::keyClick(&m_box, Qt::Key_F4);
    const OpenChooser chooser;
    ASSERT_TRUE(chooser.isOpen());

    chooser.press(Qt::Key_Down);
    chooser.press(Qt::Key_Down);
    chooser.press(Qt::Key_Up);
    EXPECT_EQ(chooser.marked(), numbered(41));
    chooser.type("lif");
    chooser.press(Qt::Key_Down); // there is no further one
    chooser.press(Qt::Key_Enter);

    EXPECT_EQ(m_activated, std::vector<int>{500});
}

TEST_F(SearchedBoxTest, EscapeAndASearchWithoutMatchChangeNothing)
{
    m_box.showPopup();
    const OpenChooser chooser;
    chooser.type("no such sensor");
    EXPECT_TRUE(chooser.shown().isEmpty());
    chooser.press(Qt::Key_Return);
    EXPECT_TRUE(chooser.isOpen()) << "nothing to take";
    chooser.press(Qt::Key_Escape);

    EXPECT_FALSE(chooser.isOpen());
    EXPECT_TRUE(m_activated.empty());
    EXPECT_EQ(m_box.currentIndex(), 40);

    m_box.showPopup();
    EXPECT_EQ(chooser.search().text(), QString()) << "a new search";
    EXPECT_EQ(chooser.shown().size(), 501);
}

TEST_F(SearchedBoxTest, AClickTakesAnEntry)
{
    m_box.showPopup();
    const OpenChooser chooser;
    chooser.type("sensor 49");
    const QModelIndex third = chooser.list().model()->index(2, 0);

    QTest::mouseClick(
        chooser.list().viewport(), Qt::LeftButton, {}, chooser.list().visualRect(third).center());

    EXPECT_EQ(m_activated, std::vector<int>{491}); // behind 49 and 490
    EXPECT_FALSE(chooser.isOpen());
}

TEST_F(SearchedBoxTest, TakesWhatWasReadIfTheItemsHaveChanged)
{
    m_box.showPopup();
    const OpenChooser chooser;
    chooser.type("lift");
    m_box.removeItem(3);
    chooser.press(Qt::Key_Return);
    EXPECT_EQ(m_activated, std::vector<int>{499});

    m_box.showPopup();
    chooser.type("lift");
    m_box.clear();
    chooser.press(Qt::Key_Return);
    EXPECT_EQ(m_activated.size(), 1U) << "it is gone";
}

TEST_F(SearchedBoxTest, AShortListIsNotSearched)
{
    while (m_box.count() >= ChooserPopup::minSearched) {
        m_box.removeItem(0);
    }
    m_box.showPopup();

    EXPECT_NE(QApplication::activePopupWidget(), nullptr);
    EXPECT_FALSE(OpenChooser().isOpen());
}

TEST(SearchedSettingTest, AVariableIsChosenByAPartOfItsName)
{
    SmallStudy study(1);
    for (int number = 0; number < 30; ++number) {
        study.add(numbered(number), std::vector<double>{1.0});
    }
    study.open();
    const auto property = boost::make_shared<corvane::Property<WeakPtr<Variable>>>(
        Project::project().variable(numbered(2)));
    const auto view = boost::make_shared<FakeView>(nullptr);
    view->m_settings.push_back(boost::make_shared<VariableSetting>(
        "x", "X axis", property, [](const Variable&) { return true; }, "variables"));
    SettingsPanel panel;
    panel.setView(view);
    panel.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&panel));

    panel.findChild<QComboBox*>(QStringLiteral("x"))->showPopup();
    const OpenChooser chooser;
    ASSERT_TRUE(chooser.isOpen());
    chooser.type("17");
    chooser.press(Qt::Key_Return);

    EXPECT_EQ(property->value(), Project::project().variable(numbered(17)));
}

TEST(SearchedFilterTest, TheVariableOfANewFilterIsSearchedWhereThereAreMany)
{
    UndoStack::history().clear();
    SmallStudy study(2);
    for (int number = 0; number < 500; ++number) {
        study.add(numbered(number), std::vector<double>{1.0, 2.0});
    }
    study.add("Material", std::vector<std::string>{"a", "b"}).open();
    DataPipelineManager pipeline(Project::project());
    FilterList filters(pipeline);
    FiltersPanel panel(filters, Project::project());
    panel.show();
    panel.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&panel));
    const auto trigger = [&panel](const QString& text) {
        auto* menu = panel.findChild<QMenu*>(QStringLiteral("AddFilterMenu"));
        Q_EMIT menu->aboutToShow();
        for (QAction* action : menu->actions()) {
            if (action->isVisible() && action->menu() == nullptr
                && action->text().remove(QLatin1Char('&')).startsWith(text)) {
                action->trigger();
                return;
            }
        }
        FAIL() << text.toStdString();
    };

    trigger(QStringLiteral("Range of"));
    const OpenChooser chooser;
    ASSERT_TRUE(chooser.isOpen());
    EXPECT_EQ(chooser.shown().size(), 500) << "numbers only";
    chooser.type("sensor 321");
    chooser.press(Qt::Key_Return);
    ASSERT_EQ(filters.filters().size(), 1U);
    EXPECT_EQ(filters.filters()[0]->name(), numbered(321));
    EXPECT_EQ(filters.filters()[0]->kind(), ListedFilter::Kind::Range);

    trigger(QStringLiteral("Range of"));
    EXPECT_EQ(chooser.shown().size(), 499) << "one range filter a variable";
    chooser.press(Qt::Key_Escape);
    trigger(QStringLiteral("Values of"));
    EXPECT_EQ(chooser.shown().size(), 501);
    chooser.type("mater");
    chooser.press(Qt::Key_Return);
    ASSERT_EQ(filters.filters().size(), 2U);
    EXPECT_EQ(filters.filters()[1]->name(), "Material");
    EXPECT_EQ(filters.filters()[1]->kind(), ListedFilter::Kind::Values);
    UndoStack::history().clear();
}

} // namespace analyzer
