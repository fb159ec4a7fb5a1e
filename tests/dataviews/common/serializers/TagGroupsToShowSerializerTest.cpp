#include <dataviews/common/serializers/GenericSerializer.h>
#include <dataviews/common/serializers/TagGroupsToShowSerializer.h>
#include <dataviews/common/views/Property.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <tests/support/SmallStudy.h>

namespace {

using Groups = std::vector<WeakPtr<TagGroup>>;

class TagGroupsToShowSerializerTest : public testing::Test
{
protected:
    TagGroupsToShowSerializerTest()
    {
        m_study.open();
        for (const char* name : {"Grade", "Images", "State, last"}) {
            Project::project().addTagGroup(name);
        }
        m_groups->setValue({group("State, last"), group("Images"), group("Grade")});
    }

    static WeakPtr<TagGroup> group(const char* name) { return Project::project().tagGroup(name); }

    QDomElement written()
    {
        QDomElement parent = m_document.createElement(QStringLiteral("parent"));
        m_serializer.serialize(parent);
        return parent;
    }

    SmallStudy m_study{1};
    QDomDocument m_document;
    boost::shared_ptr<corvane::PropertyAbstract<Groups>> m_groups =
        boost::make_shared<corvane::Property<Groups>>(Groups());
    TagGroupsToShowSerializer m_serializer{m_groups};
};

TEST_F(TagGroupsToShowSerializerTest, KeepsTheOrderAndLeavesOutGroupsThatAreGone)
{
    const QDomElement parent = written();
    EXPECT_EQ(parent.firstChildElement().tagName(), QStringLiteral("TagGroupsToShow"));
    EXPECT_EQ(parent.firstChildElement().text(), QStringLiteral("\"State, last\",Images,Grade"));

    Project::project().removeTagGroup("Images");
    EXPECT_EQ(written().firstChildElement().text(), QStringLiteral("\"State, last\",Grade"));

    m_serializer.deserialize(parent);
    EXPECT_EQ(m_groups->value(), (Groups{group("State, last"), group("Grade")}));
}

TEST_F(TagGroupsToShowSerializerTest, LooksInTheStudyThatIsOpenWhenReading)
{
    const QDomElement parent = written();
    Project next;
    next.setCaseCount(1);
    const WeakPtr<TagGroup> namesake = next.addTagGroup("Grade");
    Project::project().replaceStudy(next);
    int changes = 0;
    m_groups->valueChanged.connect([&changes](const Groups&) { ++changes; });

    m_serializer.deserialize(parent);
    EXPECT_EQ(m_groups->value(), Groups{namesake});
    EXPECT_EQ(changes, 1);
}

TEST_F(TagGroupsToShowSerializerTest, HandsSubElementsOn)
{
    short values[] = {1, 2, 3};
    const auto number = [](const char* name, short& value) {
        return boost::make_shared<GenericSerializer<short>>(
            name, [&value] { return value; }, [&value](short read) { value = read; });
    };
    m_serializer.addSubElement(number("added", values[0]));
    m_serializer.replaceSubElement(number("added", values[1]));
    m_serializer.addDeserializeOnlySubElement(number("old", values[2]));

    const QDomElement parent = written();
    QDomElement element = parent.firstChildElement(QString::fromStdString(m_serializer.name()));
    ASSERT_EQ(element.childNodes().count(), 2) << "Wanted: the names and one sub-element.";
    EXPECT_EQ(element.firstChildElement(QStringLiteral("added")).text(), QStringLiteral("2"));

    element.lastChildElement().setTagName(QStringLiteral("old"));
    m_serializer.deserialize(parent);
    EXPECT_EQ(values[2], 2);
}

} // namespace
