#include <dataviews/common/serializers/EnumSerializer.h>
#include <dataviews/common/views/BoundedValueValidator.h>
#include <dataviews/common/views/Property.h>

#include <dataviews/platform/property/InvalidPropertyValueException.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

enum Side
{
    Left = 4,
    Right = 2,
    Neither = 9,
    Nameless = 1
};

class EnumSerializerTest : public testing::Test
{
protected:
    EnumSerializerTest()
    {
        m_names.add("left", Left);
        m_names.add("right", Right);
        m_names.add("neither", Neither);
    }

    QDomElement written()
    {
        QDomElement parent = m_document.createElement(QStringLiteral("parent"));
        EnumSerializer<Side>("Side", m_side, m_names).serialize(parent);
        return parent;
    }

    void read(const QString& text)
    {
        QDomElement parent = m_document.createElement(QStringLiteral("parent"));
        QDomElement element = m_document.createElement(QStringLiteral("Side"));
        element.appendChild(m_document.createTextNode(text));
        parent.appendChild(element);
        EnumSerializer<Side>("Side", m_side, m_names).deserialize(parent);
    }

    QDomDocument m_document;
    NamedValueTranslator<Side> m_names;
    boost::shared_ptr<corvane::PropertyAbstract<Side>> m_side =
        boost::make_shared<corvane::Property<Side>>(
            Left, boost::make_shared<corvane::BoundedValueValidator<Side>>(Nameless, Left));
};

TEST_F(EnumSerializerTest, WritesAndReadsTheName)
{
    const QDomElement parent = written();
    EXPECT_EQ(parent.firstChildElement().tagName(), QStringLiteral("Side"));
    EXPECT_EQ(parent.firstChildElement().text(), QStringLiteral("left"));

    read(QStringLiteral("right"));
    EXPECT_EQ(m_side->value(), Right);
}

TEST_F(EnumSerializerTest, RefusesWhatHasNoNameOrMayNotBe)
{
    for (const char* text : {"", "Right", " right", "2"}) {
        EXPECT_THROW(read(QString::fromLatin1(text)), std::out_of_range) << text;
    }
    EXPECT_THROW(read(QStringLiteral("neither")), corvane::InvalidPropertyValueException);
    EXPECT_EQ(m_side->value(), Left);

    m_side->setValue(Nameless);
    EXPECT_THROW(written(), std::out_of_range);
}

} // namespace
