#include <analyzer/views/ChartCanvas.h>

#include <QTest>

#include <vtkCallbackCommand.h>
#include <vtkCommand.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkNew.h>
#include <vtkRenderer.h>

#include <gtest/gtest.h>

namespace {

void countFrame(vtkObject* /*caller*/, unsigned long /*event*/, void* count, void* /*data*/)
{
    ++*static_cast<int*>(count);
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
    vtkNew<vtkCallbackCommand> counter;
    counter->SetClientData(&frames);
    counter->SetCallback(countFrame);
    renderer->AddObserver(vtkCommand::EndEvent, counter);

    for (const int side : {120, 90, 200}) {
        canvas->resize(side, side);
    }
    EXPECT_EQ(frames, 0);
    parent.grab();

    EXPECT_GE(frames, 1);
    EXPECT_EQ(window->GetSize()[0], 200 * qRound(canvas->devicePixelRatioF()));
}
