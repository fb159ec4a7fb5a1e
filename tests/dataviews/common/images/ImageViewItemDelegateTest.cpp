#include <dataviews/common/images/ImageViewItemDelegate.h>
#include <dataviews/common/images/zoomLevelToImageSize.h>

#include <QFontMetrics>
#include <QStandardItemModel>
#include <QTableView>

#include <boost/function.hpp>

#include <gtest/gtest.h>

#include <limits>

namespace {

class OpenDelegate : public ImageViewItemDelegate
{
public:
    using ImageViewItemDelegate::ImageViewItemDelegate;
    using ImageViewItemDelegate::initStyleOption;
};

class ImageViewItemDelegateTest : public testing::Test
{
protected:
    ImageViewItemDelegateTest()
        : m_model(1, 1)
    {
        m_grid.setModel(&m_model);
    }

    QSize hint(const ImageViewItemDelegate& delegate, const QString& text)
    {
        m_model.setData(m_model.index(0, 0), text);
        return delegate.sizeHint(QStyleOptionViewItem(), m_model.index(0, 0));
    }

    QStandardItemModel m_model;
    QTableView m_grid;
};

TEST_F(ImageViewItemDelegateTest, CellWithoutTextIsTheImageAndAMargin)
{
    const ImageViewItemDelegate delegate(&m_grid);

    EXPECT_EQ(hint(delegate, QString()), QSize(245, 245));
    EXPECT_EQ(delegate.sizeHint(QStyleOptionViewItem(), QModelIndex()), QSize(245, 245));
}

TEST_F(ImageViewItemDelegateTest, TextTakesItsLinesAndOneMore)
{
    ImageViewItemDelegate delegate(&m_grid);
    delegate.setImageSize({100, 100});
    const QFontMetrics metrics = m_grid.fontMetrics();
    const auto bounds = [&metrics](const QString& text) {
        return metrics.boundingRect(
            QRect(0, 0, 100, std::numeric_limits<int>::max()),
            Qt::AlignHCenter | Qt::AlignTop | Qt::AlignVCenter | Qt::TextWordWrap,
            text);
    };
    const QString word = QStringLiteral("a=1");
    const QString sentence = QStringLiteral("a=1  b=2  c=3  d=4  e=5  f=6  g=7  h=8  i=9");
    const QString giant = QString(200, QLatin1Char('m'));

    EXPECT_EQ(hint(delegate, word), QSize(108, 108 + bounds(word).height() + metrics.height()));
    EXPECT_EQ(hint(delegate, sentence).width(), 108);
    EXPECT_GT(hint(delegate, sentence).height(), hint(delegate, word).height());
    EXPECT_EQ(hint(delegate, giant).width(), bounds(giant).width() + 2 + 8);
}

TEST_F(ImageViewItemDelegateTest, MakesRoomForWhatTheFunctionGives)
{
    const ImageViewItemDelegate ownTexts(&m_grid);
    const ImageViewItemDelegate sameForAll(
        [](const QModelIndex&) { return QStringLiteral("one text"); }, &m_grid);
    const ImageViewItemDelegate withoutFunction(ImageViewItemDelegate::LabelFunction(), &m_grid);

    EXPECT_EQ(hint(sameForAll, QString()), hint(ownTexts, QStringLiteral("one text")));
    EXPECT_EQ(withoutFunction.sizeHint(QStyleOptionViewItem(), QModelIndex()), QSize(245, 245));
    EXPECT_THROW(hint(withoutFunction, QString()), boost::bad_function_call);
}

TEST_F(ImageViewItemDelegateTest, LaysOutTheImageAboveItsTextAndShowsNoFocus)
{
    OpenDelegate delegate(&m_grid);
    delegate.setImageSize({64, 48});
    QStyleOptionViewItem option;
    option.state = QStyle::State_HasFocus | QStyle::State_Enabled;

    delegate.initStyleOption(&option, m_model.index(0, 0));

    EXPECT_EQ(option.decorationPosition, QStyleOptionViewItem::Top);
    EXPECT_EQ(option.displayAlignment, Qt::AlignCenter);
    EXPECT_EQ(option.decorationSize, QSize(64, 48));
    EXPECT_EQ(option.state, QStyle::State_Enabled);
}

TEST(zoomLevelToImageSizeTest, GrowsInProportionAndNeverOverflows)
{
    const struct
    {
        std::size_t zoom;
        int side;
    } cases[] = {{0, 50}, {1, 57}, {25, 237}, {50, 425}, {100, 800}, {101, 807}, {1000, 7550}};

    for (const auto& [zoom, side] : cases) {
        EXPECT_EQ(zoomLevelToImageSize(zoom), QSize(side, side)) << zoom;
    }
    EXPECT_GT(zoomLevelToImageSize(std::numeric_limits<std::size_t>::max()).width(), 800);
}

} // namespace
