#include "columns.h"

#include <dataviews/platform/data/AxisVariableProvider.h>
#include <dataviews/platform/data/Project.h>

#include <gtest/gtest.h>

namespace {

class AxisVariableProviderTest : public testing::Test
{
protected:
    AxisVariableProviderTest() { m_project.setCaseCount(60); }

    /// A variable with \p distinct different values.
    void add(const std::string& name, Variable::Nature nature, int distinct)
    {
        std::vector<double> values;
        for (int row = 0; row < 60; ++row) {
            values.push_back(row % distinct);
        }
        m_project.addVariable(realColumn(name, values), nature);
    }

    static std::string next(AxisVariableProvider& provider, Variable::Nature nature)
    {
        const WeakPtr<Variable> variable = provider.nextVariable(nature);
        return variable.isNull() ? "nothing" : variable.lock()->name();
    }

    Project m_project;
};

TEST_F(AxisVariableProviderTest, GivesEachVariableOnceInTheOrderOfPreference)
{
    add("id", Variable::Identifier, 60);
    add("group", Variable::Identifier, 3);
    add("many output", Variable::Output, 60);
    add("constant input", Variable::Input, 1);
    add("many input", Variable::Input, 51);
    add("few input", Variable::Input, 50);
    add("few output", Variable::Output, 2);
    add("other few input", Variable::Input, 2);
    AxisVariableProvider provider(m_project.variables());

    EXPECT_EQ(next(provider, Variable::Input), "few input");
    EXPECT_EQ(next(provider, Variable::Input), "other few input");
    EXPECT_EQ(next(provider, Variable::Input), "constant input");
    EXPECT_EQ(next(provider, Variable::Input), "many input");
    EXPECT_EQ(next(provider, Variable::Input), "few output");
    EXPECT_EQ(next(provider, Variable::Input), "nothing");
    EXPECT_EQ(next(provider, Variable::Output), "many output");
    EXPECT_EQ(next(provider, Variable::Output), "nothing");
    EXPECT_EQ(next(provider, Variable::Identifier), "group");
    EXPECT_EQ(next(provider, Variable::Identifier), "id");
    EXPECT_EQ(next(provider, Variable::Identifier), "nothing");
}

TEST_F(AxisVariableProviderTest, PassesOverExpiredHandles)
{
    add("gone", Variable::Input, 2);
    std::vector<WeakPtr<Variable>> variables = m_project.variables();
    m_project.setCaseCount(60);
    add("here", Variable::Input, 2);
    variables.push_back(m_project.variables().front());
    AxisVariableProvider provider(variables);

    EXPECT_EQ(next(provider, Variable::Input), "here");
    EXPECT_EQ(next(provider, Variable::Input), "nothing");
}

} // namespace
