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

/// A window with a canvas that a red renderer paints.
struct CanvasInWindow
{
    CanvasInWindow()
    {
        window.resize(400, 300);
        renderer->SetBackground(1.0, 0.0, 0.0);
        renderWindow->AddRenderer(renderer);
        canvas->setRenderWindow(renderWindow);
        canvas->resize(100, 100);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        QCoreApplication::processEvents();
        count(frames, *renderer);
    }

    QWidget window;
    analyzer::ChartCanvas* canvas = new analyzer::ChartCanvas(&window);
    vtkNew<vtkGenericOpenGLRenderWindow> renderWindow;
    vtkNew<vtkRenderer> renderer;
    int frames = 0; ///< since it was shown
};

} // namespace

TEST(ChartCanvasTest, PaintsOnceItsSizeHasSettled)
{
    CanvasInWindow shown;

    for (const int side : {120, 90, 200}) {
        shown.canvas->resize(side, side);
    }
    EXPECT_EQ(shown.frames, 0);
    shown.window.grab();

    EXPECT_GE(shown.frames, 1);
    EXPECT_EQ(shown.renderWindow->GetSize()[0], 200 * qRound(shown.canvas->devicePixelRatioF()));
}

TEST(ChartCanvasTest, PaintsANewSizeAfterTheWindowAndAtOnceForWhoWantsAPicture)
{
    CanvasInWindow shown;

    shown.canvas->resize(200, 120);
    QCoreApplication::sendPostedEvents(&shown.window, QEvent::UpdateRequest);
    EXPECT_EQ(shown.frames, 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(shown.frames, 1);

    shown.canvas->resize(150, 200);
    const QImage picture = shown.window.grab().toImage();
    EXPECT_EQ(shown.frames, 2);
    EXPECT_EQ(picture.pixelColor(140, 190), QColor(Qt::red));
    QCoreApplication::processEvents();
    EXPECT_EQ(shown.frames, 2);
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
