#include <analyzer/views/VariableSetting.h>

#include <dataviews/common/views/Property.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <tests/support/SmallStudy.h>

TEST(VariableSettingTest, OffersAndTakesTheAcceptedVariablesOfTheOpenStudy)
{
    SmallStudy study(2);
    study.add("a", {1.0, 2.0})
        .add("t", std::vector<std::string>{"x", "y"})
        .add("b", {3.0, 4.0})
        .open();
    const auto property =
        boost::make_shared<corvane::Property<WeakPtr<Variable>>>(WeakPtr<Variable>());
    analyzer::VariableSetting setting(
        "x",
        "X axis",
        property,
        [](const Variable& v) { return v.isNumeric(); },
        "numeric variables");
    int changes = 0;
    setting.signalChanged.connect([&changes] { ++changes; });

    EXPECT_EQ(setting.choices(), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(setting.text(), "");
    setting.setText("b");

    EXPECT_EQ(setting.text(), "b");
    EXPECT_EQ(property->value(), Project::project().variable("b"));
    EXPECT_EQ(changes, 1);
    EXPECT_THROW(setting.setText("t"), ExceptionBase);
    EXPECT_THROW(setting.setText("nowhere"), ExceptionBase);
    EXPECT_EQ(setting.text(), "b");
    EXPECT_EQ(changes, 1);
}

TEST(VariableSettingTest, OffersNothingUnderAFreeName)
{
    SmallStudy study(1);
    study.add("(all)", std::vector<double>{1.0}).add("b", std::vector<double>{3.0}).open();
    const auto property =
        boost::make_shared<corvane::Property<WeakPtr<Variable>>>(Project::project().variable("b"));
    const auto any = [](const Variable&) { return true; };
    std::vector<WeakPtr<Variable>> written;
    const auto write = [&](const WeakPtr<Variable>& variable) {
        written.push_back(variable);
        property->setValue(variable);
    };
    analyzer::VariableSetting setting("row", "Row", property, any, "variables", "(all)", write);

    EXPECT_EQ(setting.choices(), (std::vector<std::string>{"((all))", "(all)", "b"}));
    setting.setText("((all))");
    EXPECT_TRUE(property->value().isNull());
    EXPECT_EQ(setting.text(), "((all))");
    setting.setText("(all)");
    EXPECT_EQ(property->value(), Project::project().variable("(all)"));
    EXPECT_EQ(setting.text(), "(all)");
    EXPECT_EQ(written.size(), 2U) << "sets by the function it was given";
}
