#include <dataviews/common/models/StandardListModel.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

using Found = std::pair<bool, unsigned long long>;

/// Opens the protected part and counts the hooks.
class OpenModel : public StandardListModel<std::string>
{
public:
    using StandardListModel::emitDataChanged;
    using StandardListModel::setData;
    using StandardListModel::setDisplayName;

    mutable std::string hooks;

private:
    void signalModelChangedConnected() const override { hooks += "model "; }

    void signalDataChangedConnected() const override { hooks += "data "; }
};

class StandardListModelTest : public testing::Test
{
protected:
    StandardListModelTest()
    {
        m_model.signalModelChanged.connect(
            [this] { m_told += "size " + std::to_string(m_model.size()) + ";"; });
        m_model.signalDataChanged.connect(
            [this](unsigned long long index) { m_told += "entry " + std::to_string(index) + ";"; });
    }

    OpenModel m_model;
    std::string m_told;
};

TEST_F(StandardListModelTest, TellsOfEachChangeOnceWhenItIsDone)
{
    StandardListModel<std::string> other;
    for (const char* value : {"a", "b", "c"}) {
        other.push_back(value, std::string("text of ") + value);
    }
    m_model.push_back("old", "old");
    m_model.copy(other);
    EXPECT_EQ(m_model.data(2), "c");
    EXPECT_EQ(m_model.displayString(2), "text of c");

    m_model.setData(1, "new");
    m_model.setDisplayName(2, "new text");
    EXPECT_EQ(m_model.data(1) + "," + m_model.displayString(1), "new,text of b");
    EXPECT_EQ(m_model.data(2) + "," + m_model.displayString(2), "c,new text");

    m_model.emitDataChanged(1);
    m_model.clear();
    m_model.clear();
    EXPECT_EQ(m_told, "size 1;size 3;entry 1;size 0;size 0;");
    EXPECT_EQ(m_model.hooks, "model data ");
}

TEST_F(StandardListModelTest, FindsTheFirstOfEqualValues)
{
    EXPECT_EQ(m_model.find(""), Found(false, 0));

    for (const char* value : {"a", "b", "a", "b"}) {
        m_model.push_back(value, "text");
    }
    EXPECT_EQ(m_model.find("a"), Found(true, 0));
    EXPECT_EQ(m_model.find("b"), Found(true, 1));
    EXPECT_EQ(m_model.find("text"), Found(false, 0)) << "Texts are not searched.";
}

TEST_F(StandardListModelTest, RefusesIndexesBeyondTheEnd)
{
    m_model.push_back("x1", "first");
    for (const unsigned long long index : {1ULL, std::numeric_limits<unsigned long long>::max()}) {
        for (const bool asksForText : {false, true}) {
            try {
                (void)(asksForText ? m_model.displayString(index) : m_model.data(index));
                FAIL() << index;
            } catch (const std::out_of_range& error) {
                EXPECT_EQ(std::string(error.what()), "invalid vector<T> subscript");
            }
        }
    }
}

} // namespace
