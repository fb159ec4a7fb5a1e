#include <dataviews/common/images/ImageViewItemDelegate.h>
#include <dataviews/common/images/QImageTableView.h>

#include <QHeaderView>
#include <QScrollBar>
#include <QStandardItemModel>

#include <gtest/gtest.h>

#include <set>
#include <utility>

namespace {

/// Remembers which cells it was asked for.
class AskedDelegate : public ImageViewItemDelegate
{
public:
    using ImageViewItemDelegate::ImageViewItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        asked.emplace(index.row(), index.column());
        // The middle cell asks for most.
        const int extra = index.column() == 4 || index.row() == 4 ? 10 : 0;
        return ImageViewItemDelegate::sizeHint(option, index) + QSize(extra, extra);
    }

    mutable std::set<std::pair<int, int>> asked;
};

TEST(QImageTableViewTest, FindsSizesFromThreeCells)
{
    QImageTableView view;
    EXPECT_EQ(view.sizeHintForRow(0), -1);
    EXPECT_EQ(view.sizeHintForColumn(0), -1);

    QStandardItemModel model(7, 10);
    AskedDelegate delegate(&view);
    view.setModel(&model);
    view.setImageDelegate(&delegate);

    EXPECT_EQ(view.sizeHintForRow(2), 245 + 10 + 1);
    EXPECT_EQ(delegate.asked, (std::set<std::pair<int, int>>{{2, 0}, {2, 4}, {2, 9}}));
    delegate.asked.clear();
    EXPECT_EQ(view.sizeHintForColumn(1), 245 + 1);
    EXPECT_EQ(delegate.asked, (std::set<std::pair<int, int>>{{0, 1}, {3, 1}, {6, 1}}));
    view.setShowGrid(false);
    EXPECT_EQ(view.sizeHintForColumn(1), 245);

    model.setColumnCount(1);
    delegate.asked.clear();
    EXPECT_EQ(view.sizeHintForRow(2), 245);
    EXPECT_EQ(delegate.asked, (std::set<std::pair<int, int>>{{2, 0}}));

    model.setColumnCount(0);
    EXPECT_EQ(view.sizeHintForRow(0), 245);
}

TEST(QImageTableViewTest, NewSizesKeepWhatLiesAtTheAnchor)
{
    QImageTableView view;
    QStandardItemModel model(50, 50);
    ImageViewItemDelegate delegate(&view);
    view.setModel(&model);
    view.setImageDelegate(&delegate);
    view.setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    view.setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    view.resize(600, 500);
    view.show();
    view.fitSections();
    view.verticalScrollBar()->setValue(20 * 246 + 100);
    view.horizontalScrollBar()->setValue(7 * 246 + 123);
    const QPoint anchor(200, 150);
    const QModelIndex before = view.indexAt(anchor);

    for (const int side : {60, 400, 237}) {
        delegate.setImageSize({side, side});
        view.fitSections(anchor);

        EXPECT_EQ(view.rowHeight(49), side + 9);
        EXPECT_EQ(view.columnWidth(0), side + 9);
        EXPECT_EQ(view.indexAt(anchor), before) << side;
    }
    EXPECT_NEAR(view.verticalScrollBar()->value(), 20 * 246 + 100, 5);
    EXPECT_NEAR(view.horizontalScrollBar()->value(), 7 * 246 + 123, 5);
}

} // namespace
