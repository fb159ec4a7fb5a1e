#include <analyzer/views/ImageCanvas.h>
#include <analyzer/views/ImageCanvasGroup.h>

#include <dataviews/platform/undo/UndoStack.h>

#include <QMouseEvent>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

namespace analyzer {

namespace {

QImage picture(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::blue);
    return image;
}

/// Two canvases with a picture each, the second twice as large.
class ImageCanvasGroupTest : public testing::Test
{
protected:
    ImageCanvasGroupTest()
    {
        for (ImageCanvas* canvas : {&m_left, &m_right}) {
            canvas->resize(100, 100);
            canvas->show();
            EXPECT_TRUE(QTest::qWaitForWindowExposed(canvas));
            m_group.add(*canvas);
        }
        m_left.setPicture({picture(400, 300)});
        m_right.setPicture({picture(800, 600)});
        UndoStack::history().clear();
    }

    ~ImageCanvasGroupTest() override { UndoStack::history().clear(); }

    static void wheel(ImageCanvas& canvas, int angle, Qt::KeyboardModifiers keys)
    {
        QWheelEvent event(
            QPointF(70, 40),
            canvas.mapToGlobal(QPoint(70, 40)),
            QPoint(),
            QPoint(0, angle),
            Qt::NoButton,
            keys,
            Qt::NoScrollPhase,
            false);
        QCoreApplication::sendEvent(&canvas, &event);
    }

    static void dragTo(ImageCanvas& canvas, const QPoint& position)
    {
        QMouseEvent event(
            QEvent::MouseMove, position, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&canvas, &event);
    }

    static QPointF relativeMiddle(const ImageCanvas& canvas)
    {
        const QPointF middle = canvas.pictureAt({50, 50});
        return {
            middle.x() / canvas.pictureSize().width(), middle.y() / canvas.pictureSize().height()};
    }

    void expectInStep()
    {
        EXPECT_EQ(m_left.zoom(), m_right.zoom());
        EXPECT_DOUBLE_EQ(m_left.scale(), m_right.scale());
        EXPECT_NEAR(relativeMiddle(m_left).x(), relativeMiddle(m_right).x(), 0.005);
        EXPECT_NEAR(relativeMiddle(m_left).y(), relativeMiddle(m_right).y(), 0.005);
    }

    ImageCanvas m_left;
    ImageCanvas m_right;
    ImageCanvasGroup m_group; ///< goes first, as one that is not used any more
};

} // namespace

TEST_F(ImageCanvasGroupTest, ZoomAndPlaceOfOneCanvasAreThoseOfTheOthers)
{
    ASSERT_NE(m_left.scale(), m_right.scale()); // each is fitted

    wheel(m_left, 360, Qt::ControlModifier);
    EXPECT_FALSE(m_right.isFitting());
    expectInStep();
    const QPointF before = relativeMiddle(m_left);

    QTest::mousePress(&m_right, Qt::LeftButton, {}, {50, 50});
    dragTo(m_right, {30, 45});
    expectInStep();
    EXPECT_GT(relativeMiddle(m_left).x(), before.x());
    QTest::mouseRelease(&m_right, Qt::LeftButton, {}, {30, 45});
    wheel(m_right, -120, Qt::NoModifier);
    expectInStep();

    m_group.fitToWindow()->setValue(true);
    EXPECT_TRUE(m_left.isFitting());
    EXPECT_TRUE(m_right.isFitting());
}

TEST_F(ImageCanvasGroupTest, GestureIsOneStepOfUndo)
{
    const QUndoStack& history = UndoStack::history();
    const ImageCanvasZoom fitted = m_left.zoom();
    wheel(m_left, 240, Qt::ControlModifier);
    wheel(m_right, 120, Qt::ControlModifier);
    EXPECT_EQ(history.count(), 1);
    const ImageCanvasZoom zoomed = m_left.zoom();

    QTest::mousePress(&m_left, Qt::LeftButton, {}, {50, 50});
    dragTo(m_left, {40, 50});
    dragTo(m_left, {30, 40});
    EXPECT_EQ(history.count(), 1);
    QTest::mouseRelease(&m_left, Qt::LeftButton, {}, {30, 40});
    EXPECT_EQ(history.count(), 2);
    const ImageCanvasZoom dragged = m_right.zoom();
    QTest::mouseClick(&m_left, Qt::LeftButton); // moves nothing
    EXPECT_EQ(history.count(), 2);
    wheel(m_left, -120, Qt::NoModifier);
    wheel(m_left, -120, Qt::NoModifier);
    EXPECT_EQ(history.count(), 3);
    m_group.showActualSize();
    EXPECT_EQ(m_right.scale(), 1.0);

    const ImageCanvasZoom expected[] = {dragged, zoomed, fitted};
    UndoStack::history().undo();
    for (const ImageCanvasZoom& zoom : expected) {
        UndoStack::history().undo();
        EXPECT_EQ(m_left.zoom(), zoom);
        EXPECT_EQ(m_right.zoom(), zoom);
        EXPECT_EQ(m_group.fitToWindow()->value(), zoom.fits);
    }
}

TEST_F(ImageCanvasGroupTest, DragThatLosesItsPictureIsUndoneToo)
{
    m_group.showActualSize();
    const ImageCanvasZoom before = m_left.zoom();
    QTest::mousePress(&m_left, Qt::LeftButton, {}, {50, 50});
    dragTo(m_left, {40, 50});
    ASSERT_NE(m_left.zoom(), before);

    m_left.setMessage(QStringLiteral("Reading"));
    UndoStack::history().undo();

    EXPECT_EQ(m_right.zoom(), before);
}

} // namespace analyzer
