#include <dataviews/platform/property/PropertyItemInterface.h>

#include <gtest/gtest.h>

namespace {

class Property : public corvane::PropertyItemInterface
{
public:
    using PropertyItemInterface::emitPropertyChanged;
    using PropertyItemInterface::hasPropertyChangedListeners;

    mutable int connects = 0;

private:
    void signalPropertyChangedConnected() const override { ++connects; }
};

TEST(PropertyItemInterfaceTest, ListenersAreToldAndTheHookOfTheSubclassHearsOfThem)
{
    const Property property;
    int changes = 0;
    EXPECT_FALSE(property.hasPropertyChangedListeners());

    const boost::signals2::connection connection =
        property.signalPropertyChanged.connect([&changes] { ++changes; });
    EXPECT_TRUE(property.hasPropertyChangedListeners());
    EXPECT_EQ(property.connects, 1);
    EXPECT_EQ(changes, 0);
    property.emitPropertyChanged();

    EXPECT_EQ(changes, 1);
    connection.disconnect();
    EXPECT_FALSE(property.hasPropertyChangedListeners());
}

} // namespace
