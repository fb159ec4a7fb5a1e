#include <analyzer/panels/SettingsPanel.h>
#include <analyzer/panels/StepsField.h>
#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/ChoiceSetting.h>
#include <analyzer/views/NumberSetting.h>
#include <analyzer/views/SettingAbstract.h>
#include <analyzer/views/StepsSettingInterface.h>
#include <analyzer/views/TagListSetting.h>

#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/UndoablePropertyProxy.h>

#include <dataviews/platform/serialize/Serializer.h>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <QWheelEvent>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <tests/support/SmallStudy.h>

namespace {

template <class T>
boost::shared_ptr<corvane::PropertyAbstract<T>> undoable(const T& initial)
{
    return boost::make_shared<corvane::UndoablePropertyProxy<T>>(
        "Value", boost::make_shared<corvane::Property<T>>(initial));
}

/// Numbers from 0 up as steps, with a cross behind.
class CountSetting : public analyzer::SettingAbstract<analyzer::StepsSettingInterface>
{
public:
    explicit CountSetting(std::size_t count)
        : SettingAbstract("page-value", "Page")
        , m_count(count)
        , m_property(undoable<std::size_t>(0))
    {
        m_property->valueChanged.connect([this](const std::size_t&) { emitChanged(); });
    }

    [[nodiscard]] std::size_t count() const override { return m_count; }

    [[nodiscard]] std::optional<std::size_t> place() const override { return m_property->value(); }

    [[nodiscard]] std::string textAt(std::size_t place) const override
    {
        return std::to_string(place) + "x";
    }

    void setPlace(std::size_t place) override { m_property->setValue(place); }

    [[nodiscard]] std::vector<std::string> choices() const override
    {
        throw std::logic_error("there may be too many to list");
    }

    [[nodiscard]] std::string text() const override { return textAt(m_property->value()); }

    void setText(const std::string& text) override
    {
        for (std::size_t place = 0; place < m_count; ++place) {
            if (textAt(place) == text) {
                setPlace(place);
                return;
            }
        }
        throw ExceptionBase("There is no page <b>" + text + "</b>.");
    }

private:
    std::size_t m_count;
    boost::shared_ptr<corvane::PropertyAbstract<std::size_t>> m_property;
};

/// Settings without a picture.
class FakeView : public analyzer::AnalyzerViewInterface
{
public:
    std::vector<boost::shared_ptr<analyzer::SettingInterface>> m_settings;

    [[nodiscard]] const std::vector<boost::shared_ptr<analyzer::SettingInterface>>& settings()
        const override
    {
        return m_settings;
    }

    void suspend() override {}

    void resume() override {}

    [[nodiscard]] QWidget& widget() override { return m_widget; }

    [[nodiscard]] SerializerInterface& serializer() override { return m_serializer; }

    void adjustSelectionForMouseClickAtPoint() override {}

    void accept(DataViewVisitorInterface& /*visitor*/) override {}

    [[nodiscard]] std::string domName() const override { return "Fake"; }

    void render() override {}

    [[nodiscard]] std::string kind() const override { return "fake"; }

    [[nodiscard]] std::string title() const override { return "Fake"; }

    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<MouseMode>> mouseModeProperty()
        const override
    {
        return {};
    }

    [[nodiscard]] bool hasAxes() const override { return false; }

    void fitData() override {}

    void resetXAxis() override {}

    void resetYAxis() override {}

protected:
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<MouseMode>> mouseMode() const override
    {
        return {};
    }

private:
    QWidget m_widget;
    Serializer m_serializer{"Fake"};
};

class SettingsPanelTest : public testing::Test
{
protected:
    SettingsPanelTest() { UndoStack::history().clear(); }

    ~SettingsPanelTest() override { UndoStack::history().clear(); }

    template <class Setting>
    void add(boost::shared_ptr<Setting> setting)
    {
        m_view->m_settings.push_back(std::move(setting));
    }

    void showPanel(const QSize& size = QSize(260, 400))
    {
        m_panel.setView(m_view);
        m_panel.resize(size);
        m_panel.show();
        QApplication::setActiveWindow(&m_panel);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_panel));
    }

    template <class Widget>
    Widget& field(const char* name)
    {
        auto* widget = m_panel.findChild<Widget*>(QString::fromLatin1(name));
        if (widget == nullptr) {
            throw std::logic_error(std::string("there is no field ") + name);
        }
        return *widget;
    }

    /// Over the middle of \p widget, as a user turns it.
    static void turnWheelDown(QWidget& widget)
    {
        const QPointF middle = widget.rect().center();
        QWheelEvent event(
            middle,
            widget.mapToGlobal(middle.toPoint()),
            QPoint(),
            QPoint(0, -120),
            Qt::NoButton,
            Qt::NoModifier,
            Qt::NoScrollPhase,
            false);
        QSpontaneKeyEvent::setSpontaneous(&event); // others are not passed on to parents
        qApp->notify(&widget, &event);
    }

    void addTags(const std::vector<std::string>& tags)
    {
        m_study.open();
        Project::project().addTagGroup("Group");
        for (const std::string& tag : tags) {
            Project::project().addTag("Group", tag);
        }
        m_tags = undoable<std::vector<std::string>>({});
        add(boost::make_shared<analyzer::TagListSetting>("tags", "Tags", m_tags));
    }

    QString problem() { return field<QLabel>("SettingsProblem").text(); }

    SmallStudy m_study{1};
    boost::shared_ptr<FakeView> m_view = boost::make_shared<FakeView>();
    boost::shared_ptr<corvane::PropertyAbstract<std::vector<std::string>>> m_tags;
    analyzer::SettingsPanel m_panel;
};

TEST_F(SettingsPanelTest, NumberIsSetWithSliderAndBox)
{
    const auto zoom = undoable<std::uint64_t>(25);
    add(boost::make_shared<analyzer::NumberSetting>(
        "zoom", "Zoom", zoom, analyzer::NumberSetting::Range{0, 100, 5}, " %"));
    showPanel();
    auto& slider = field<QSlider>("zoom-slider");
    auto& box = field<QSpinBox>("zoom");
    EXPECT_EQ(box.text(), QStringLiteral("25 %"));

    QTest::keyClick(&slider, Qt::Key_Right);
    EXPECT_EQ(zoom->value(), 30U);
    EXPECT_EQ(box.value(), 30);
    box.selectAll();
    QTest::keyClicks(&box, QStringLiteral("100"));
    EXPECT_EQ(zoom->value(), 30U) << "half a number is not set";
    QTest::keyClick(&box, Qt::Key_Return);
    EXPECT_EQ(zoom->value(), 100U);
    EXPECT_EQ(slider.value(), 100);
    EXPECT_EQ(UndoStack::history().count(), 2);

    UndoStack::history().undo();
    EXPECT_EQ(slider.value(), 30);
    EXPECT_EQ(box.value(), 30);
    zoom->setValue(400);
    EXPECT_EQ(box.text(), QStringLiteral("400 %")) << "what others set is shown as it is";
}

TEST_F(SettingsPanelTest, ButtonsStepThroughTheChoicesAndStopAtTheEnds)
{
    add(boost::make_shared<CountSetting>(3));
    showPanel();
    auto& previous = field<QToolButton>("page-value-previous");
    auto& next = field<QToolButton>("page-value-next");
    auto& place = field<QLabel>("page-value-place");
    auto& box = field<QComboBox>("page-value");
    EXPECT_FALSE(previous.isEnabled());
    EXPECT_EQ(place.text(), QStringLiteral("1 of 3"));

    QTest::mouseClick(&next, Qt::LeftButton);
    EXPECT_EQ(box.currentText(), QStringLiteral("1x"));
    EXPECT_TRUE(previous.isEnabled());
    QTest::mouseClick(&next, Qt::LeftButton);
    EXPECT_EQ(place.text(), QStringLiteral("3 of 3"));
    EXPECT_FALSE(next.isEnabled());
    QTest::mouseClick(&previous, Qt::LeftButton);
    QTest::keyClick(&box, Qt::Key_Up);
    EXPECT_EQ(place.text(), QStringLiteral("1 of 3"));
    EXPECT_EQ(UndoStack::history().count(), 4);
}

TEST_F(SettingsPanelTest, StepsThatAreTooManyToListCanBeTypedAndSteppedThrough)
{
    constexpr std::size_t count = 1000;
    const auto setting = boost::make_shared<CountSetting>(count);
    add(setting);
    showPanel();
    auto& box = field<QComboBox>("page-value");
    ASSERT_TRUE(box.isEditable());
    EXPECT_EQ(box.count(), static_cast<int>(analyzer::StepsField::maxListed));

    box.lineEdit()->selectAll();
    QTest::keyClicks(box.lineEdit(), QStringLiteral("700x"));
    QTest::keyClick(box.lineEdit(), Qt::Key_Return);
    EXPECT_EQ(setting->text(), "700x");
    EXPECT_EQ(UndoStack::history().count(), 1);
    EXPECT_EQ(box.itemText(box.currentIndex()), QStringLiteral("700x")) << "listed with neighbours";
    EXPECT_GT(box.currentIndex(), 0);
    QTest::mouseClick(&field<QToolButton>("page-value-next"), Qt::LeftButton);
    QTest::keyClick(&box, Qt::Key_Down);
    EXPECT_EQ(setting->text(), "702x");
    setting->setPlace(count - 1);
    EXPECT_FALSE(field<QToolButton>("page-value-next").isEnabled());

    box.lineEdit()->selectAll();
    QTest::keyClicks(box.lineEdit(), QStringLiteral("no"));
    QTest::keyClick(box.lineEdit(), Qt::Key_Return);
    EXPECT_EQ(problem(), QStringLiteral("There is no page <b>no</b>."));
    EXPECT_EQ(field<QLabel>("SettingsProblem").textFormat(), Qt::PlainText);
    EXPECT_EQ(box.currentText(), QStringLiteral("999x"));
}

TEST_F(SettingsPanelTest, ListIsTickedInAWindow)
{
    addTags({"front", "side", "top", "inside"});
    showPanel();
    auto& box = field<QComboBox>("tags");
    EXPECT_EQ(box.currentText(), QStringLiteral("(none)"));

    QTest::mouseClick(&box, Qt::LeftButton);
    auto& popup = field<QWidget>("tags-popup");
    auto& list = field<QListWidget>("tags-list");
    ASSERT_TRUE(popup.isVisible());
    ASSERT_EQ(list.count(), 4);
    const QRect top = list.visualItemRect(list.item(2));
    QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, top.center());
    EXPECT_EQ(m_tags->value(), std::vector<std::string>{"top"}) << "a click beside the box counts";
    const QPoint onBox(top.left() + 8, list.visualItemRect(list.item(0)).center().y());
    QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, onBox);
    EXPECT_EQ(box.currentText(), QStringLiteral("top, front"));
    EXPECT_EQ(UndoStack::history().count(), 2);
    EXPECT_TRUE(popup.isVisible());

    UndoStack::history().undo();
    EXPECT_EQ(list.item(0)->checkState(), Qt::Unchecked);
    EXPECT_EQ(list.item(2)->checkState(), Qt::Checked);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, top.center());
    EXPECT_TRUE(m_tags->value().empty());
    QTest::keyClick(&field<QLineEdit>("tags-filter"), Qt::Key_Escape);
    EXPECT_FALSE(popup.isVisible());
}

TEST_F(SettingsPanelTest, ListIsFilteredAndTickedWithKeys)
{
    addTags({"front", "side", "top", "inside"});
    showPanel();
    auto& box = field<QComboBox>("tags");
    box.setFocus();
    QTest::keyClick(&box, Qt::Key_Space);
    auto& filter = field<QLineEdit>("tags-filter");
    auto& list = field<QListWidget>("tags-list");

    QTest::keyClicks(&filter, QStringLiteral("SIDE"));
    EXPECT_TRUE(list.isRowHidden(0));
    EXPECT_FALSE(list.isRowHidden(1));
    EXPECT_FALSE(list.isRowHidden(3));
    QTest::keyClick(&filter, Qt::Key_Return);
    EXPECT_EQ(m_tags->value(), std::vector<std::string>{"side"});
    QTest::keyClick(&filter, Qt::Key_Down);
    QTest::keyClick(&list, Qt::Key_Down);
    QTest::keyClick(&list, Qt::Key_Space);
    EXPECT_EQ(m_tags->value(), (std::vector<std::string>{"side", "inside"}));

    filter.clear();
    QTest::mouseClick(&field<QPushButton>("tags-all"), Qt::LeftButton);
    EXPECT_EQ(m_tags->value(), (std::vector<std::string>{"side", "inside", "front", "top"}));
    filter.setText(QStringLiteral("o"));
    QTest::mouseClick(&field<QPushButton>("tags-none"), Qt::LeftButton);
    EXPECT_EQ(m_tags->value(), (std::vector<std::string>{"side", "inside"}));
    EXPECT_EQ(UndoStack::history().count(), 4);
}

TEST_F(SettingsPanelTest, RowWithoutEffectIsGrey)
{
    const auto by = boost::make_shared<corvane::Property<int>>(0);
    const auto isOn = [](int value) { return value != 0; };
    const auto number = boost::make_shared<analyzer::NumberSetting>(
        "zoom", "Zoom", undoable<std::uint64_t>(25), analyzer::NumberSetting::Range{0, 100});
    number->enableWhile<int>(by, isOn);
    const auto check = analyzer::makeSwitchSetting("labels", "Labels", undoable(true));
    check->enableWhile<int>(by, isOn);
    add(number);
    add(check);
    showPanel();
    const auto isEnabled = [this] {
        const auto labels = m_panel.findChildren<QLabel*>();
        const auto label = std::find_if(labels.begin(), labels.end(), [](const QLabel* candidate) {
            return candidate->text() == QStringLiteral("Zoom");
        });
        return std::vector<bool>{
            field<QSpinBox>("zoom").isEnabled(),
            field<QSlider>("zoom-slider").isEnabled(),
            label != labels.end() && (*label)->isEnabled(),
            field<QWidget>("labels").isEnabled()};
    };

    EXPECT_EQ(isEnabled(), std::vector<bool>(4, false));
    by->setValue(1);
    EXPECT_EQ(isEnabled(), std::vector<bool>(4, true));
    by->setValue(0);
    EXPECT_EQ(isEnabled(), std::vector<bool>(4, false));
}

TEST_F(SettingsPanelTest, WheelScrollsPastFieldsAndSetsTheOneThatWasClicked)
{
    constexpr int settings = 30;
    for (int i = 0; i < settings; ++i) {
        add(boost::make_shared<analyzer::NumberSetting>(
            "number" + std::to_string(i),
            "Number",
            undoable<std::uint64_t>(50),
            analyzer::NumberSetting::Range{0, 100}));
    }
    add(boost::make_shared<CountSetting>(3));
    showPanel();
    const QScrollBar* scrollBar = m_panel.findChild<QScrollArea*>()->verticalScrollBar();
    auto& first = field<QSpinBox>("number0");
    auto& slider = field<QSlider>("number0-slider");
    field<QSpinBox>("number1").setFocus();
    ASSERT_GT(scrollBar->maximum(), 0);
    EXPECT_EQ(scrollBar->value(), 0);

    int before = scrollBar->value();
    for (QWidget* widget :
         std::initializer_list<QWidget*>{&first, &slider, &field<QComboBox>("page-value")}) {
        turnWheelDown(*widget);
        EXPECT_GT(scrollBar->value(), before);
        before = scrollBar->value();
    }
    EXPECT_EQ(UndoStack::history().count(), 0);

    turnWheelDown(field<QSpinBox>("number1"));
    EXPECT_EQ(field<QSpinBox>("number1").value(), 49);
    EXPECT_EQ(scrollBar->value(), before);
}

TEST_F(SettingsPanelTest, IsAsWideAsItsFieldsNeedAndAsLowAsOneLikes)
{
    for (int i = 0; i < 40; ++i) {
        add(boost::make_shared<analyzer::NumberSetting>(
            "number" + std::to_string(i),
            "A number",
            undoable<std::uint64_t>(50),
            analyzer::NumberSetting::Range{0, 100}));
    }
    showPanel(QSize(1, 200));

    const QWidget* fields = m_panel.findChild<QScrollArea*>()->widget();
    EXPECT_LE(m_panel.height(), 200);
    EXPECT_GE(fields->width(), fields->minimumSizeHint().width());
    m_panel.setView({});
    EXPECT_EQ(m_panel.findChild<QSpinBox*>(), nullptr);
}

} // namespace
