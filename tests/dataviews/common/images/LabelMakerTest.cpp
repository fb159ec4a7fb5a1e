#include <dataviews/common/images/LabelMaker.h>

#include <dataviews/platform/data/Project.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <cmath>

#include <tests/support/SmallStudy.h>

namespace {

TEST(LabelMakerTest, NamesTheValuesOfTheVariablesThatAreThere)
{
    SmallStudy study(2);
    study.add("x", {1.5, NAN})
        .add("Größe", {2.0, 1.0 / 3.0})
        .add("κ", std::vector<std::string>{"weiß", ""})
        .open();
    const Project& project = Project::project();
    const auto x = project.variable("x");
    const auto size = project.variable("Größe");
    const auto text = project.variable("κ");
    vtkNew<vtkDoubleArray> column;
    column->SetName("gone");
    auto dying = boost::make_shared<Variable>(column, Variable::Output);
    const WeakPtr<Variable> gone(dying);
    dying.reset();
    const WeakPtr<Variable> none;

    struct Case
    {
        std::vector<WeakPtr<Variable>> variables;
        std::size_t row;
        const char* separator;
        const char* expected;
    };

    const Case cases[] = {
        {{}, 0, "  ", ""},
        {{x}, 0, "  ", "x=1.5"},
        {{x, size, text}, 0, "  ", "x=1.5  Größe=2  κ=weiß"},
        {{text, x}, 0, "\n", "κ=weiß\nx=1.5"},
        {{x, size, text}, 1, " · ", "x=(missing) · Größe=0.333333 · κ=(missing)"},
        {{gone, x, none, gone, size, gone}, 0, "; ", "x=1.5; Größe=2"},
        {{gone}, 0, "; ", ""},
    };

    for (const Case& c : cases) {
        EXPECT_EQ(
            LabelMaker().label(c.variables, *project.record(project.caseID(c.row)), c.separator),
            c.expected);
    }
}

} // namespace
