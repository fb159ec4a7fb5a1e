#include <dataviews/common/models/StringListModel.h>

#include <gtest/gtest.h>

namespace {

TEST(StringListModelTest, ListsTheTextsInOrderAsTheirOwnDisplayTexts)
{
    const StringListModel model({"b", "a", "B"});

    std::vector<std::string> entries;
    for (unsigned long long index = 0; index < model.size(); ++index) {
        entries.push_back(model.data(index) + "=" + model.displayString(index));
    }
    EXPECT_EQ(entries, (std::vector<std::string>{"B=B", "a=a", "b=b"}));
    EXPECT_EQ(model.find("b"), (std::pair<bool, unsigned long long>(true, 2)));
    EXPECT_EQ(StringListModel({}).size(), 0U);
}

} // namespace
