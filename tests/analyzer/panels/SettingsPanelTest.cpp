#include <analyzer/panels/SettingsPanel.h>
#include <analyzer/panels/StepsField.h>
#include <analyzer/views/ChoiceSetting.h>
#include <analyzer/views/NumberSetting.h>
#include <analyzer/views/RealSetting.h>
#include <analyzer/views/SettingAbstract.h>
#include <analyzer/views/StepsSettingInterface.h>
#include <analyzer/views/TagListSetting.h>

#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/UndoablePropertyProxy.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
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

#include <tests/support/FakeView.h>
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

    /// What is said below the field \p name, without the sign before it; empty if there is nothing.
    QString problemOf(const char* name)
    {
        const auto* label =
            m_panel.findChild<QLabel*>(QLatin1String(name) + QLatin1String("-problem"));
        if (label == nullptr) {
            return {};
        }
        const QString sign = QStringLiteral("\u26A0 ");
        EXPECT_TRUE(label->text().startsWith(sign));
        return label->text().mid(sign.size());
    }

    /// A real number of its own in \p section that can be undone; negative ones are refused.
    boost::shared_ptr<analyzer::RealSetting> addReal(
        const std::string& name, double value, const std::string& section = {})
    {
        const auto property = undoable(value);
        const auto setting = boost::make_shared<analyzer::RealSetting>(
            name,
            "A " + name,
            [property] { return property->value(); },
            [property](double number) {
                if (number < 0) {
                    throw corvane::InvalidPropertyValueException("It cannot be negative.");
                }
                property->setValue(number);
            });
        setting->follow(property);
        setting->setSection(section);
        add(setting);
        return setting;
    }

    /// Types \p text in place of what is in \p field.
    static void type(QLineEdit& field, const QString& text)
    {
        field.setFocus();
        field.selectAll();
        QTest::keyClicks(&field, text);
    }

    SmallStudy m_study{1};
    QWidget m_picture;
    boost::shared_ptr<FakeView> m_view = boost::make_shared<FakeView>(&m_picture);
    boost::shared_ptr<corvane::PropertyAbstract<std::vector<std::string>>> m_tags;
    analyzer::SettingsPanel m_panel;
};

TEST_F(SettingsPanelTest, EachDragOfASliderIsOneStep)
{
    const auto size = undoable<std::uint64_t>(10);
    const auto setting = boost::make_shared<analyzer::NumberSetting>(
        "size", "Size", size, analyzer::NumberSetting::Range{0, 100, 1}, " px");
    setting->setSection("Points");
    add(setting);
    showPanel();
    auto& slider = field<QSlider>("size-slider");

    for (const int target : {60, 90}) {
        slider.setSliderDown(true); // where the handle is depends on the style
        for (int value = slider.value() + 1; value <= target; ++value) {
            slider.setSliderPosition(value);
        }
        slider.setSliderDown(false);
    }

    EXPECT_EQ(size->value(), 90U);
    EXPECT_EQ(UndoStack::history().count(), 2);
    EXPECT_EQ(UndoStack::history().undoText(), QStringLiteral("Change Size of Points"));
    UndoStack::history().undo();
    EXPECT_EQ(size->value(), 60U);
    UndoStack::history().undo();
    EXPECT_EQ(size->value(), 10U);
}

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
    EXPECT_EQ(problemOf("page-value"), QStringLiteral("There is no page <b>no</b>."));
    EXPECT_EQ(field<QLabel>("page-value-problem").textFormat(), Qt::PlainText);
    EXPECT_EQ(box.currentText(), QStringLiteral("999x"));
    QTest::mouseClick(&field<QToolButton>("page-value-previous"), Qt::LeftButton);
    EXPECT_EQ(problemOf("page-value"), QString());
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

TEST_F(SettingsPanelTest, RealNumberIsSetWithReturnAndOnLeaving)
{
    const auto setting = addReal("size", 0.1 + 0.2);
    addReal("other", 1);
    showPanel();
    auto& size = field<QLineEdit>("size");
    EXPECT_EQ(size.text(), QStringLiteral("0.3"));
    EXPECT_EQ(size.accessibleName(), QStringLiteral("A size"));

    size.setFocus();
    QTest::keyClick(&size, Qt::Key_Return);
    type(size, QStringLiteral("0.3"));
    QTest::keyClick(&size, Qt::Key_Return);
    EXPECT_EQ(UndoStack::history().count(), 0) << "the text that is shown rounds the value";
    type(size, QStringLiteral(" +1e3"));
    EXPECT_EQ(setting->text(), "0.3") << "half a number is not set";
    QTest::keyClick(&size, Qt::Key_Return);
    EXPECT_EQ(setting->text(), "1000");
    EXPECT_EQ(size.text(), QStringLiteral("1000"));
    type(size, QStringLiteral("2.5"));
    QTest::keyClick(&size, Qt::Key_Tab);
    EXPECT_EQ(setting->text(), "2.5");
    EXPECT_TRUE(field<QLineEdit>("other").hasFocus());
    EXPECT_EQ(UndoStack::history().count(), 2);

    UndoStack::history().undo();
    EXPECT_EQ(size.text(), QStringLiteral("1000"));
}

TEST_F(SettingsPanelTest, RefusedNumberStaysAfterReturnAndGivesWayOnLeaving)
{
    const auto setting = addReal("size", 5);
    addReal("other", 1);
    showPanel();
    auto& size = field<QLineEdit>("size");
    type(size, QStringLiteral("-1"));
    EXPECT_EQ(problemOf("size"), QString());

    QTest::keyClick(&size, Qt::Key_Return);
    EXPECT_EQ(problemOf("size"), QStringLiteral("It cannot be negative."));
    EXPECT_EQ(size.accessibleDescription(), QStringLiteral("It cannot be negative."));
    EXPECT_EQ(size.selectedText(), QStringLiteral("-1"));
    QTest::keyClicks(&size, QStringLiteral("1,5"));
    EXPECT_EQ(problemOf("size"), QString()) << "the next edit ends the message";
    EXPECT_EQ(size.accessibleDescription(), QString());
    QTest::keyClick(&size, Qt::Key_Tab);
    const QString comma =
        QStringLiteral("\"1,5\" is not a number; write a point for the decimals.");
    EXPECT_EQ(problemOf("size"), comma);
    EXPECT_EQ(size.text(), QStringLiteral("5"));

    QTest::keyClick(&field<QLineEdit>("other"), Qt::Key_Return);
    type(field<QLineEdit>("other"), QStringLiteral("x"));
    QTest::keyClick(&field<QLineEdit>("other"), Qt::Key_Return);
    EXPECT_EQ(problemOf("size"), comma) << "each field has a message of its own";
    EXPECT_EQ(problemOf("other"), QStringLiteral("\"x\" is not a number."));
    size.setFocus();
    QTest::keyClick(&size, Qt::Key_Tab);
    EXPECT_EQ(problemOf("size"), comma) << "passing through is no edit";
    setting->setText("6");
    EXPECT_EQ(problemOf("size"), QString());
    EXPECT_EQ(UndoStack::history().count(), 1);
}

TEST_F(SettingsPanelTest, MessageIsRightBelowItsFieldAndNeverWidensThePanel)
{
    addReal("size", 5);
    addReal("other", 1);
    showPanel();
    auto& size = field<QLineEdit>("size");
    const int width = m_panel.minimumSizeHint().width();
    type(size, QString(300, QLatin1Char('W')));
    QTest::keyClick(&size, Qt::Key_Return);
    QCoreApplication::processEvents();

    const auto& label = field<QLabel>("size-problem");
    EXPECT_GE(label.y(), size.geometry().bottom());
    EXPECT_LT(label.geometry().bottom(), field<QLineEdit>("other").y());
    EXPECT_EQ(m_panel.minimumSizeHint().width(), width);
    m_panel.setView(m_view);
    EXPECT_EQ(problemOf("size"), QString());
}

TEST_F(SettingsPanelTest, MessageAtTheLowerEdgeIsScrolledIntoView)
{
    for (int i = 0; i < 40; ++i) {
        addReal("real" + std::to_string(i), i);
    }
    showPanel();
    auto* area = m_panel.findChild<QScrollArea*>();
    auto& last = field<QLineEdit>("real39");
    area->ensureWidgetVisible(&last, 0, 0);
    type(last, QStringLiteral("x"));
    QTest::keyClick(&last, Qt::Key_Return);
    QCoreApplication::processEvents();

    const auto& label = field<QLabel>("real39-problem");
    const QRect seen = area->viewport()->rect();
    EXPECT_TRUE(seen.contains(label.mapTo(area->viewport(), label.rect().bottomRight())));
}

TEST_F(SettingsPanelTest, MessageOnLeavingByMouseDoesNotMoveWhatIsClicked)
{
    const auto setting = addReal("size", 5);
    const auto labels = undoable(false);
    add(analyzer::makeSwitchSetting("labels", "Labels", labels));
    showPanel();
    auto& size = field<QLineEdit>("size");
    auto& box = field<QCheckBox>("labels");
    type(size, QStringLiteral("x"));
    const int before = box.y();

    const QPoint onBox(8, box.height() / 2);
    QTest::mousePress(&box, Qt::LeftButton, Qt::NoModifier, onBox);
    QCoreApplication::processEvents();
    EXPECT_EQ(size.text(), QStringLiteral("5"));
    EXPECT_EQ(box.y(), before);
    QTest::mouseRelease(&box, Qt::LeftButton, Qt::NoModifier, onBox);
    EXPECT_TRUE(labels->value());
    QCoreApplication::processEvents();
    EXPECT_TRUE(field<QLabel>("size-problem").isVisible());
    EXPECT_GT(box.y(), before);
}

TEST_F(SettingsPanelTest, EscapeBringsTheNumberBack)
{
    addReal("size", 5);
    showPanel();
    auto& size = field<QLineEdit>("size");
    type(size, QStringLiteral("abc"));
    QTest::keyClick(&size, Qt::Key_Return);
    ASSERT_NE(problemOf("size"), QString());

    QTest::keyClick(&size, Qt::Key_Escape);
    EXPECT_EQ(size.text(), QStringLiteral("5"));
    EXPECT_EQ(problemOf("size"), QString());
    size.clearFocus();
    EXPECT_EQ(problemOf("size"), QString()) << "nothing is left to set";
    EXPECT_EQ(UndoStack::history().count(), 0);
}

TEST_F(SettingsPanelTest, WhatOthersSetDoesNotTouchWhatIsBeingTyped)
{
    const auto setting = addReal("size", 5);
    showPanel();
    auto& size = field<QLineEdit>("size");
    size.setFocus();
    setting->setText("6");
    EXPECT_EQ(size.text(), QStringLiteral("6")) << "the keyboard alone is no typing";

    type(size, QStringLiteral("7."));
    setting->setText("8");
    EXPECT_EQ(size.text(), QStringLiteral("7."));
    QFocusEvent toOtherWindow(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(&size, &toOtherWindow);
    EXPECT_EQ(setting->text(), "8");
    QTest::keyClicks(&size, QStringLiteral("25"));
    QTest::keyClick(&size, Qt::Key_Return);
    EXPECT_EQ(setting->text(), "7.25");
    setting->setText("9");
    EXPECT_EQ(size.text(), QStringLiteral("9"));
}

TEST_F(SettingsPanelTest, UndoKeyIsTheWindowsUnlessSomethingIsTyped)
{
    addReal("size", 5);
    QAction undo;
    undo.setShortcut(QKeySequence::Undo);
    QObject::connect(&undo, &QAction::triggered, [] { UndoStack::history().undo(); });
    m_panel.addAction(&undo);
    showPanel();
    auto& size = field<QLineEdit>("size");
    type(size, QStringLiteral("6"));
    QTest::keyClick(&size, Qt::Key_Return);

    QTest::keyClicks(&size, QStringLiteral("7"));
    QTest::keyClick(&size, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(size.text(), QStringLiteral("6"));
    EXPECT_TRUE(UndoStack::history().canUndo());
    QTest::keyClick(&size, Qt::Key_Escape);
    QTest::keyClick(&size, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(size.text(), QStringLiteral("5"));
    EXPECT_FALSE(UndoStack::history().canUndo());
}

TEST_F(SettingsPanelTest, WhatIsTypedIsDroppedWithItsEffectAndWithItsView)
{
    const auto isOn = undoable(true);
    const auto setting = addReal("size", 5);
    setting->enableWhile<bool>(isOn, [](bool value) { return value; });
    showPanel();
    auto& size = field<QLineEdit>("size");
    type(size, QStringLiteral("6"));

    isOn->setValue(false);
    EXPECT_FALSE(size.isEnabled());
    EXPECT_EQ(size.text(), QStringLiteral("5"));
    EXPECT_EQ(setting->text(), "5");
    EXPECT_EQ(UndoStack::history().count(), 1) << "nothing is set in the middle of another change";
    isOn->setValue(true);
    EXPECT_TRUE(size.isEnabled());

    type(size, QStringLiteral("6"));
    m_panel.setView({});
    EXPECT_EQ(setting->text(), "5") << "its view may be gone";
}

TEST_F(SettingsPanelTest, SwitchThatIsRefusedSaysSo)
{
    add(boost::make_shared<analyzer::ChoiceSetting<bool>>(
        analyzer::SettingInterface::Kind::Switch,
        "labels",
        "Labels",
        undoable(false),
        analyzer::ChoiceSetting<bool>::NamedValues{{"on", true}, {"off", false}},
        [](bool value) {
            if (value) {
                throw ExceptionBase("There are no labels.");
            }
        }));
    showPanel();
    auto& box = field<QCheckBox>("labels");

    QTest::keyClick(&box, Qt::Key_Space);

    EXPECT_FALSE(box.isChecked());
    EXPECT_EQ(problemOf("labels"), QStringLiteral("There are no labels."));
    EXPECT_EQ(box.accessibleDescription(), QStringLiteral("There are no labels."));
}

TEST_F(SettingsPanelTest, SectionsCollapseByKeyAndMouseAndStaySo)
{
    addReal("plain", 1);
    addReal("size", 2, "Points");
    addReal("opacity", 3, "Points");
    addReal("least", 4, "X axis");
    showPanel();
    const auto seen = [this] {
        std::vector<std::string> names;
        for (const auto& setting : m_view->m_settings) {
            if (field<QLineEdit>(setting->name().c_str()).isVisible()) {
                names.push_back(setting->name());
            }
        }
        return names;
    };
    using Names = std::vector<std::string>;
    EXPECT_EQ(m_panel.findChildren<QToolButton*>().size(), 2);
    auto& points = field<QToolButton>("section-Points");
    EXPECT_EQ(points.accessibleName(), QStringLiteral("Points"));
    EXPECT_EQ(seen(), (Names{"plain", "size", "opacity", "least"}));

    points.setFocus();
    QTest::keyClick(&points, Qt::Key_Space);
    EXPECT_FALSE(points.isChecked());
    EXPECT_EQ(points.arrowType(), Qt::RightArrow);
    EXPECT_EQ(seen(), (Names{"plain", "least"}));
    QTest::mouseClick(&field<QToolButton>("section-X axis"), Qt::LeftButton);
    EXPECT_EQ(seen(), (Names{"plain"}));
    QTest::mouseClick(&points, Qt::LeftButton);
    EXPECT_EQ(points.arrowType(), Qt::DownArrow);
    EXPECT_EQ(seen(), (Names{"plain", "size", "opacity"}));

    m_panel.setView({});
    m_panel.setView(m_view);
    EXPECT_EQ(seen(), (Names{"plain", "size", "opacity"})) << "the panel remembers";
}

TEST_F(SettingsPanelTest, CollapsingSetsWhatIsTypedAndHidesMessages)
{
    const auto size = addReal("size", 2, "Points");
    addReal("opacity", 3, "Points");
    addReal("least", 4);
    showPanel();
    auto& heading = field<QToolButton>("section-Points");
    type(field<QLineEdit>("opacity"), QStringLiteral("x"));
    QTest::keyClick(&field<QLineEdit>("opacity"), Qt::Key_Return);
    type(field<QLineEdit>("size"), QStringLiteral("7"));

    QTest::mouseClick(&heading, Qt::LeftButton);
    EXPECT_EQ(size->text(), "7");
    EXPECT_TRUE(heading.hasFocus()) << "the keyboard stays where the user is";
    EXPECT_FALSE(field<QLabel>("opacity-problem").isVisible());
    QTest::mouseClick(&heading, Qt::LeftButton);
    EXPECT_TRUE(field<QLabel>("opacity-problem").isVisible());
}

TEST_F(SettingsPanelTest, TabGoesDownThePanel)
{
    addReal("size", 2, "Points");
    add(analyzer::makeSwitchSetting("labels", "Labels", undoable(true)));
    addReal("least", 4, "X axis");
    addReal("most", 4, "X axis");
    showPanel();
    field<QWidget>("section-Points").setFocus();

    QStringList visited;
    for (int i = 0; i < 5; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        visited.append(QApplication::focusWidget()->objectName());
    }

    EXPECT_EQ(
        visited.join(QLatin1Char(' ')), QStringLiteral("size labels section-X axis least most"));
}

} // namespace
