#include <dataviews/common/serializers/VariableInfoSerializer.h>
#include <dataviews/common/views/Property.h>

#include <QDomDocument>

#include <vtkDoubleArray.h>
#include <vtkNew.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

namespace {

using Handle = WeakPtr<Variable>;

boost::shared_ptr<Variable> variable(const char* name)
{
    vtkNew<vtkDoubleArray> column;
    column->SetName(name);
    return boost::make_shared<Variable>(column.Get(), Variable::Output);
}

class VariableInfoSerializerTest : public testing::Test
{
protected:
    QDomElement written()
    {
        QDomElement parent = m_document.createElement(QStringLiteral("parent"));
        serializer().serialize(parent);
        return parent;
    }

    VariableInfoSerializer serializer()
    {
        return {"Row", m_row, {Handle(), m_drag, m_size, m_namesake}};
    }

    boost::shared_ptr<Variable> m_drag = variable("Drag");
    boost::shared_ptr<Variable> m_size = variable("Größe <m>");
    boost::shared_ptr<Variable> m_namesake = variable("Drag");
    QDomDocument m_document;
    boost::shared_ptr<corvane::PropertyAbstract<Handle>> m_row =
        boost::make_shared<corvane::Property<Handle>>(m_size);
};

TEST_F(VariableInfoSerializerTest, FindsTheFirstVariableOfExactlyThatName)
{
    const QDomElement parent = written();
    QDomNode text = parent.firstChildElement(QStringLiteral("Row")).firstChild();
    EXPECT_EQ(text.nodeValue(), QStringLiteral("Größe <m>"));

    const std::pair<const char*, Handle> cases[] = {
        {"Drag", m_drag},
        {"Lift", m_drag},
        {"Größe <m>", m_size},
        {"drag", m_size},
        {" Drag", m_size}};
    for (const auto& [name, expected] : cases) {
        text.setNodeValue(QString::fromUtf8(name));
        serializer().deserialize(parent);
        EXPECT_EQ(m_row->value(), expected) << name;
    }
}

TEST_F(VariableInfoSerializerTest, VariableThatIsGoneIsAnEmptyElementThatChangesNothing)
{
    const Handle gone = m_size;
    m_size.reset();

    const QDomElement parent = written();
    EXPECT_FALSE(parent.firstChildElement(QStringLiteral("Row")).isNull());
    EXPECT_FALSE(parent.firstChildElement(QStringLiteral("Row")).hasChildNodes());

    serializer().deserialize(parent);
    EXPECT_EQ(m_row->value(), gone);
}

} // namespace
