#include <dataviews/platform/serialize/Serializer.h>

#include <QDomDocument>
#include <QDomElement>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using testing::ElementsAre;

/// Keeps one number and notes, in a list it shares with others, that it was read.
class NumberSerializer : public Serializer
{
public:
    NumberSerializer(
        const std::string& name, int initialNumber, std::vector<std::string>* read = nullptr)
        : Serializer(name)
        , number(initialNumber)
        , m_read(read)
    {}

    int number;
    bool refuses = false;
    bool inMiddleWhenRead = false;

protected:
    void serializeSelf(QDomElement& element) const override
    {
        element.setAttribute(QStringLiteral("number"), number);
    }

    void deserializeSelf(const QDomElement& element) override
    {
        inMiddleWhenRead = isInMiddleOfDeserialization();
        if (refuses) {
            throw std::runtime_error("refused");
        }
        number = element.attribute(QStringLiteral("number")).toInt();
        if (m_read != nullptr) {
            m_read->push_back(name());
        }
    }

private:
    std::vector<std::string>* m_read;
};

/// Notes whether it is read in the middle of a deserialization, and is none itself.
class Witness : public Serializer
{
public:
    using Serializer::Serializer;

    bool sawFlag = false;

    void deserialize(const QDomElement& /*parent*/) override
    {
        sawFlag = isInMiddleOfDeserialization();
    }
};

class SerializerTest : public testing::Test
{
protected:
    SerializerTest()
    {
        m_root = m_document.createElement(QStringLiteral("root"));
        m_document.appendChild(m_root);
    }

    boost::shared_ptr<NumberSerializer> number(const std::string& name, int value)
    {
        return boost::make_shared<NumberSerializer>(name, value, &m_read);
    }

    /// The names of the elements in \p parent, in order.
    static std::vector<std::string> children(const QDomElement& parent)
    {
        std::vector<std::string> names;
        for (QDomElement e = parent.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
            names.push_back(e.tagName().toStdString());
        }
        return names;
    }

    QDomDocument m_document;
    QDomElement m_root;
    std::vector<std::string> m_read;
};

TEST_F(SerializerTest, WritesAndReadsSubElementsInTheOrderOfAdding)
{
    NumberSerializer view("view", 1, &m_read);
    const auto axis = number("axis", 2);
    const auto legend = number("legend", 3);
    const auto range = number("range", 4);
    view.addSubElement(legend);
    view.addSubElement(axis);
    axis->addSubElement(range);

    view.serialize(m_root);
    EXPECT_THAT(children(m_root), ElementsAre("view"));
    const QDomElement element = m_root.firstChildElement();
    EXPECT_EQ(element.attribute(QStringLiteral("number")), QStringLiteral("1"));
    EXPECT_THAT(children(element), ElementsAre("legend", "axis"));
    EXPECT_THAT(children(element.lastChildElement()), ElementsAre("range"));

    view.number = axis->number = legend->number = range->number = 0;
    view.deserialize(m_root);
    EXPECT_EQ(view.number, 1);
    EXPECT_EQ(axis->number, 2);
    EXPECT_EQ(legend->number, 3);
    EXPECT_EQ(range->number, 4);
    EXPECT_THAT(m_read, ElementsAre("view", "legend", "axis", "range"));
}

TEST_F(SerializerTest, SubElementIsReplacedByNameInItsPlace)
{
    Serializer view("view");
    const auto former = number("axis", 1);
    view.addSubElement(former);
    view.addSubElement(number("legend", 2));

    const auto latter = number("axis", 5);
    view.replaceSubElement(latter);
    view.replaceSubElement(number("title", 6));
    view.serialize(m_root);

    const QDomElement element = m_root.firstChildElement();
    EXPECT_THAT(children(element), ElementsAre("axis", "legend", "title"));
    EXPECT_EQ(element.firstChildElement().attribute(QStringLiteral("number")), QStringLiteral("5"));
    latter->number = 0;
    view.deserialize(m_root);
    EXPECT_EQ(latter->number, 5);
    EXPECT_THAT(m_read, ElementsAre("axis", "legend", "title"));
}

TEST_F(SerializerTest, DeserializeOnlySubElementReadsOldNamesAndWritesNothing)
{
    number("colour", 7)->serialize(m_root);
    Serializer root("root");
    const auto color = number("color", 0);
    const auto colour = number("colour", 0);
    root.addDeserializeOnlySubElement(colour);
    root.addSubElement(color);

    root.deserialize(
        m_document.appendChild(m_document.createElement(QStringLiteral("none"))).toElement());
    EXPECT_EQ(colour->number, 0);
    QDomElement whole = m_document.createElement(QStringLiteral("whole"));
    whole.appendChild(m_root);
    root.deserialize(whole);
    EXPECT_EQ(colour->number, 7);

    QDomElement written = m_document.createElement(QStringLiteral("written"));
    root.serialize(written);
    EXPECT_THAT(children(written.firstChildElement()), ElementsAre("color"));
    root.replaceSubElement(number("colour", 8));
    root.serialize(written);
    EXPECT_THAT(children(written.lastChildElement()), ElementsAre("color", "colour"))
        << "A serializer for reading alone is not the one to be replaced.";
}

TEST_F(SerializerTest, MissingElementsLeaveValuesAsTheyAre)
{
    NumberSerializer view("view", 1);
    view.serialize(m_root);
    const auto axis = number("axis", 2);
    const auto legend = number("legend", 3);
    view.addSubElement(axis);
    axis->addSubElement(legend);
    view.number = 10;

    view.deserialize(m_root.firstChildElement()); // no "view" in there
    EXPECT_EQ(view.number, 10);
    view.deserialize(QDomElement());
    EXPECT_EQ(view.number, 10);
    view.deserialize(m_root);

    EXPECT_EQ(view.number, 1);
    EXPECT_EQ(axis->number, 2);
    EXPECT_EQ(legend->number, 3);
}

TEST_F(SerializerTest, FlagIsSetForTheOutermostReadAndClearedOnEveryWayOut)
{
    NumberSerializer view("view", 1);
    const auto axis = number("axis", 2);
    const auto witness = boost::make_shared<Witness>("witness");
    view.addSubElement(axis);
    view.addSubElement(witness);
    view.serialize(m_root);
    EXPECT_FALSE(Serializer::isInMiddleOfDeserialization());

    view.deserialize(m_root);
    EXPECT_TRUE(view.inMiddleWhenRead);
    EXPECT_TRUE(axis->inMiddleWhenRead);
    EXPECT_TRUE(witness->sawFlag) << "The end of an inner read ended the outer one.";
    EXPECT_FALSE(Serializer::isInMiddleOfDeserialization());

    axis->refuses = true;
    EXPECT_THROW(view.deserialize(m_root), std::runtime_error);
    EXPECT_FALSE(Serializer::isInMiddleOfDeserialization());

    view.deserialize(m_document.createElement(QStringLiteral("empty")));
    EXPECT_FALSE(Serializer::isInMiddleOfDeserialization());
}

} // namespace
