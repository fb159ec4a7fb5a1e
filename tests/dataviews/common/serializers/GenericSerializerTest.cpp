#include <dataviews/common/serializers/GenericSerializer.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace {

/// What a serializer of \p T makes of \p value.
template <class T>
QDomElement written(
    QDomDocument& document, T value, const std::vector<std::string>& attributes = {})
{
    QDomElement parent = document.createElement(QStringLiteral("parent"));
    GenericSerializer<T>(
        "Value", [value] { return value; }, [](const T&) {}, attributes)
        .serialize(parent);
    return parent.firstChildElement(QStringLiteral("Value"));
}

/// What the setter gets when \p element is read while the value is \p value; nothing if that throws.
template <class T>
std::optional<T> read(
    const QDomElement& element, T value, const std::vector<std::string>& attributes = {})
{
    QDomElement parent = element.ownerDocument().createElement(QStringLiteral("parent"));
    parent.appendChild(element);
    std::optional<T> set;
    GenericSerializer<T> serializer(
        "Value", [value] { return value; }, [&set](const T& v) { set = v; }, attributes);
    try {
        serializer.deserialize(parent);
        EXPECT_TRUE(set) << "The setter was not called.";
    } catch (const boost::bad_lexical_cast& error) {
        EXPECT_EQ(
            std::string(error.what()),
            "bad lexical cast: source type value could not be interpreted as target");
        EXPECT_FALSE(set);
    }
    return set;
}

template <class T>
std::optional<T> read(const char* text, T value)
{
    QDomDocument document;
    QDomElement element = document.createElement(QStringLiteral("Value"));
    element.appendChild(document.createTextNode(QString::fromLatin1(text)));
    return read<T>(element, value);
}

TEST(GenericSerializerTest, WritesTexts)
{
    QDomDocument document;
    EXPECT_EQ(written<bool>(document, true).text(), QStringLiteral("1"));
    EXPECT_EQ(written<bool>(document, false).text(), QStringLiteral("0"));
    EXPECT_EQ(written<short>(document, -32768).text(), QStringLiteral("-32768"));
    EXPECT_EQ(written<double>(document, 0.1).text(), QStringLiteral("0.10000000000000001"));
    EXPECT_EQ(written<short>(document, 15).childNodes().count(), 1);
    EXPECT_EQ(written<short>(document, 15).attributes().count(), 0);
}

TEST(GenericSerializerTest, ReadsTexts)
{
    EXPECT_EQ(read<bool>("1", false), true);
    EXPECT_EQ(read<bool>("0", true), false);
    EXPECT_EQ(read<short>("15", 3), short{15});
    EXPECT_EQ(read<short>("", 3), short{3}) << "Nothing keeps the present value.";
    EXPECT_EQ(read<bool>("", true), true);
}

TEST(GenericSerializerTest, RefusesTextsThatAreNoValues)
{
    for (const char* text : {"true", " 1", "2", "01", "+1", "-0", "yes"}) {
        EXPECT_EQ(read<bool>(text, false), std::nullopt) << text;
    }
    for (const char* text : {"fifteen", " 15", "15 ", "15.0", "40000", "1e1"}) {
        EXPECT_EQ(read<short>(text, 3), std::nullopt) << text;
    }
}

TEST(GenericSerializerTest, UsesAttributesWhereTheyAreNamed)
{
    QDomDocument document;
    const QDomElement element = written<short>(document, 7, {"size"});
    EXPECT_EQ(element.attribute(QStringLiteral("size")), QStringLiteral("7"));
    EXPECT_TRUE(element.childNodes().isEmpty());

    EXPECT_EQ(read<short>(element, 3, {"size"}), short{7});
    EXPECT_EQ(read<short>(element, 3, {"other"}), short{3}) << "Nothing keeps the present value.";
}

} // namespace
