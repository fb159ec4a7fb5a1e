#include <analyzer/filters/filterValues.h>

#include <dataviews/platform/property/ExceptionBase.h>

#include <gtest/gtest.h>

#include <limits>

#include <tests/support/SmallStudy.h>

namespace {

using Values = std::vector<Variant>;

TEST(FilterValuesTest, GivesEachValueOnceAsRecordsDo)
{
    constexpr double missing = std::numeric_limits<double>::quiet_NaN();
    SmallStudy study(4);
    study.add("text", std::vector<std::string>{"b", "", "a", "b"})
        .add("whole", {3.0, 1.0, 3.0, -0.0})
        .add("real", {missing, 0.5, 2.0, missing})
        .open();
    const auto values = [](const char* name) {
        return analyzer::filterValues(*Project::project().variable(name).lock());
    };

    EXPECT_EQ(values("text"), (Values{Variant(), Variant("a"), Variant("b")}));
    EXPECT_EQ(values("whole"), (Values{Variant(0), Variant(1), Variant(3)}));
    EXPECT_EQ(values("whole")[0].type(), Variant::Type::Integer);
    EXPECT_EQ(values("real"), (Values{Variant(), Variant(0.5), Variant(2.0)}));
    EXPECT_EQ(values("Case ID").size(), 4U);
}

TEST(FilterValuesTest, RefusesMoreThanCanBeListed)
{
    constexpr std::size_t most = analyzer::maxFilterValues;
    for (const std::size_t count : {most, most + 1}) {
        std::vector<std::string> texts(1, std::string());
        std::vector<double> numbers(1, std::numeric_limits<double>::quiet_NaN());
        for (std::size_t i = 0; i < count; ++i) {
            texts.push_back("note " + std::to_string(i));
            numbers.push_back(0.5 + static_cast<double>(i));
        }
        SmallStudy study(count + 1);
        study.add("text", texts).add("number", numbers).open();
        for (const char* name : {"text", "number"}) {
            SCOPED_TRACE(name);
            const auto variable = Project::project().variable(name).lock();
            if (count == most) {
                EXPECT_EQ(analyzer::filterValues(*variable).size(), most + 1);
                continue;
            }
            EXPECT_THROW((void)analyzer::filterValues(*variable), ExceptionBase);
        }
    }
}

} // namespace
