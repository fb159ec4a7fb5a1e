#include <analyzer/views/SelectedImageGrid.h>

#include <gtest/gtest.h>

namespace analyzer {

TEST(SelectedImageGridTest, RowsAndColumnsMakePicturesLarge)
{
    const struct
    {
        std::size_t count;
        QSize room;
        int captionHeight;
        std::size_t columns;
    } table[] = {
        {1, {400, 300}, 0, 1},
        {2, {800, 300}, 0, 2},
        {2, {300, 800}, 0, 1},
        {4, {800, 600}, 0, 2},
        {4, {1600, 300}, 0, 4},
        {6, {1200, 600}, 0, 3},
        {9, {800, 600}, 0, 3},
        {7, {380, 445}, 0, 2},
        {7, {380, 445}, 21, 3}, // captions take more of many rows
        {4, {10, 10}, 20, 4}};

    for (const auto& [count, room, captionHeight, columns] : table) {
        SCOPED_TRACE(testing::Message() << count << " in " << room.width());
        EXPECT_EQ(SelectedImageGrid::columns(count, room, captionHeight), columns);
    }
}

} // namespace analyzer
