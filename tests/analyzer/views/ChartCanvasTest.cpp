#include <analyzer/views/ChartCanvas.h>

#include <QImage>
#include <QTest>

#include <vtkCallbackCommand.h>
#include <vtkCommand.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkNew.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>

#include <gtest/gtest.h>

namespace {

void countFrame(vtkObject* /*caller*/, unsigned long /*event*/, void* count, void* /*data*/)
{
    ++*static_cast<int*>(count);
}

void count(int& frames, vtkRenderer& renderer)
{
    const vtkNew<vtkCallbackCommand> counter;
    counter->SetClientData(&frames);
    counter->SetCallback(countFrame);
    renderer.AddObserver(vtkCommand::EndEvent, counter);
}

} // namespace

TEST(ChartCanvasTest, PaintsOnceItsSizeHasSettled)
{
    QWidget parent;
    parent.resize(400, 300);
    auto* canvas = new analyzer::ChartCanvas(&parent);
    vtkNew<vtkGenericOpenGLRenderWindow> window;
    vtkNew<vtkRenderer> renderer;
    window->AddRenderer(renderer);
    canvas->setRenderWindow(window);
    canvas->resize(100, 100);
    parent.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&parent));
    QCoreApplication::processEvents();
    int frames = 0;
    count(frames, *renderer);

    for (const int side : {120, 90, 200}) {
        canvas->resize(side, side);
    }
    EXPECT_EQ(frames, 0);
    parent.grab();

    EXPECT_GE(frames, 1);
    EXPECT_EQ(window->GetSize()[0], 200 * qRound(canvas->devicePixelRatioF()));
}

TEST(ChartCanvasTest, PaintsANewSizeAfterTheWindowAndAtOnceForWhoWantsAPicture)
{
    QWidget parent;
    parent.resize(400, 300);
    auto* canvas = new analyzer::ChartCanvas(&parent);
    const vtkNew<vtkGenericOpenGLRenderWindow> window;
    const vtkNew<vtkRenderer> renderer;
    renderer->SetBackground(1.0, 0.0, 0.0);
    window->AddRenderer(renderer);
    canvas->setRenderWindow(window);
    canvas->resize(100, 100);
    parent.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&parent));
    QCoreApplication::processEvents();
    int frames = 0;
    count(frames, *renderer);

    canvas->resize(200, 120);
    QCoreApplication::sendPostedEvents(&parent, QEvent::UpdateRequest);
    EXPECT_EQ(frames, 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(frames, 1);

    canvas->resize(150, 200);
    const QImage picture = parent.grab().toImage();
    EXPECT_EQ(frames, 2);
    EXPECT_EQ(picture.pixelColor(140, 190), QColor(Qt::red));
    QCoreApplication::processEvents();
    EXPECT_EQ(frames, 2);
}

TEST(ChartCanvasTest, PaintsAMarkedSceneOnceBeforeTheWindowAndNotWhileItIsHidden)
{
    analyzer::ChartCanvas canvas;
    const vtkNew<vtkGenericOpenGLRenderWindow> window;
    const vtkNew<vtkContextView> view;
    canvas.setRenderWindow(window);
    view->SetRenderWindow(window);
    canvas.paintMarkedSceneOf(*view);
    canvas.resize(200, 150);
    canvas.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&canvas));
    QCoreApplication::processEvents();
    vtkContextScene& scene = *view->GetScene();
    ASSERT_FALSE(scene.GetDirty());
    int frames = 0;
    count(frames, *view->GetRenderer());

    scene.SetDirty(true);
    scene.SetDirty(true);
    EXPECT_EQ(frames, 0);
    QCoreApplication::sendPostedEvents(); // but no timers
    EXPECT_EQ(frames, 1);
    EXPECT_FALSE(scene.GetDirty());
    QCoreApplication::processEvents();
    EXPECT_EQ(frames, 1);

    view->GetInteractor()->Render();
    EXPECT_EQ(frames, 1);
    QCoreApplication::processEvents();
    EXPECT_EQ(frames, 2);

    canvas.hide();
    scene.SetDirty(true);
    QCoreApplication::processEvents();
    EXPECT_EQ(frames, 2);
    canvas.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&canvas));
    QCoreApplication::processEvents();
    EXPECT_EQ(frames, 3);
}
