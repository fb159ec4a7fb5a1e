#include <dataviews/common/serializers/TagsToShowSerializer.h>
#include <dataviews/common/views/Property.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

namespace {

using Tags = std::vector<std::string>;

TEST(TagsToShowSerializerTest, ReadsTheTagsThatWereKnownWhenItWasMade)
{
    const auto shown = boost::make_shared<corvane::Property<Tags>>(
        Tags{"late", "good", "Good", "gone", "a, b", "goo"});
    std::set<std::string> known{"a, b", "good"};
    TagsToShowSerializer serializer(shown, known);
    known.insert("late");

    QDomDocument document;
    QDomElement parent = document.createElement(QStringLiteral("parent"));
    serializer.serialize(parent);
    serializer.deserialize(parent);

    EXPECT_EQ(parent.firstChildElement().tagName(), QStringLiteral("TagsToShow"));
    EXPECT_EQ(
        parent.firstChildElement().text(), QStringLiteral("late,good,Good,gone,\"a, b\",goo"));
    EXPECT_EQ(shown->value(), (Tags{"good", "a, b"}));
}

} // namespace
