#include <dataviews/common/serializers/VariableListSerializer.h>
#include <dataviews/common/views/Property.h>

#include <QDomDocument>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <tests/support/SmallStudy.h>

namespace {

using Handles = std::vector<WeakPtr<Variable>>;

class VariableListSerializerTest : public testing::Test
{
protected:
    VariableListSerializerTest()
    {
        for (const char* name : {"Drag", "a \"b\"\n<c>", "Lift"}) {
            m_study.add(name, std::vector<double>{1.0});
        }
        m_study.open();
    }

    static WeakPtr<Variable> variable(const char* name)
    {
        return Project::project().variable(name);
    }

    VariableListSerializer serializer()
    {
        return {"Labels", m_labels, Project::project().variables()};
    }

    SmallStudy m_study{1};
    boost::shared_ptr<corvane::PropertyAbstract<Handles>> m_labels =
        boost::make_shared<corvane::Property<Handles>>(Handles());
};

TEST_F(VariableListSerializerTest, ListsComeBackFromAFileInOrder)
{
    const Handles several = {variable("Lift"), variable("a \"b\"\n<c>"), variable("Drag")};
    for (Handles list : {several, Handles()}) {
        list.emplace_back(); // stands for a variable that is gone
        m_labels->setValue(list);
        list.pop_back();
        QDomDocument document;
        document.appendChild(document.createElement(QStringLiteral("parent")));
        QDomElement parent = document.documentElement();
        serializer().serialize(parent);
        m_labels->setValue({variable("Drag")});

        QDomDocument file;
        ASSERT_TRUE(file.setContent(document.toByteArray()));
        serializer().deserialize(file.documentElement());
        EXPECT_EQ(file.elementsByTagName(QStringLiteral("Variable")).count(), list.size());
        EXPECT_EQ(m_labels->value(), list);
    }
}

TEST_F(VariableListSerializerTest, PassesOverWhatIsNoKnownVariable)
{
    QDomDocument file;
    ASSERT_TRUE(file.setContent(QStringLiteral(
        "<view><Labels>Lift<Variable name='Lift'/><variable name='Drag'/><Other name='Drag'/>"
        "<Variable/><Variable Name='Drag'>Drag</Variable><Variable name='Gone'/>"
        "<Other><Variable name='Drag'/></Other><Variable name='Drag'/></Labels></view>")));

    serializer().deserialize(file.documentElement());
    EXPECT_EQ(m_labels->value(), (Handles{variable("Lift"), variable("Drag")}));
}

} // namespace
