#include <dataviews/common/serializers/VectorSerializer.h>
#include <dataviews/common/views/Property.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

namespace {

using Names = std::vector<std::string>;
using NameSerializer = VectorSerializer<std::string, boost::function<bool(const std::string&)>>;

class VectorSerializerTest : public testing::Test
{
protected:
    NameSerializer serializer(NameSerializer::Setter setter = {})
    {
        const auto isAccepted = [](const std::string& name) { return name != "secret"; };
        return {"Names", m_names, isAccepted, std::move(setter)};
    }

    /// A parent whose element "Names" holds \p text.
    static QDomElement holding(const char* text)
    {
        QDomDocument file;
        EXPECT_TRUE(
            file.setContent("<parent><Names>" + QString::fromLatin1(text) + "</Names></parent>"));
        return file.documentElement();
    }

    boost::shared_ptr<corvane::Property<Names>> m_names =
        boost::make_shared<corvane::Property<Names>>(Names{"old"});
};

TEST_F(VectorSerializerTest, LeavesOutWhatIsNotAccepted)
{
    serializer().deserialize(holding("b,secret,a, secret,b,\"secret\","));
    EXPECT_EQ(m_names->value(), (Names{"b", "a", " secret", "b", ""}));

    Names set;
    serializer([&set](const Names& names) { set = names; }).deserialize(holding("secret,new"));
    EXPECT_EQ(set, Names{"new"});
    EXPECT_EQ(m_names->value().size(), 5U) << "The property was set besides the setter.";

    serializer().deserialize(holding(""));
    EXPECT_EQ(m_names->value(), Names());
}

TEST_F(VectorSerializerTest, RefusesTextsThatAreNoLists)
{
    const std::pair<const char*, const char*> cases[] = {
        {"a,b\\", "cannot end with escape"},
        {"a\\tb", "unknown escape sequence"},
    };

    for (const auto& [text, reason] : cases) {
        try {
            serializer().deserialize(holding(text));
            FAIL() << text;
        } catch (const boost::escaped_list_error& error) {
            EXPECT_EQ(std::string(error.what()), reason);
        }
        EXPECT_EQ(m_names->value(), Names{"old"});
    }
}

} // namespace
