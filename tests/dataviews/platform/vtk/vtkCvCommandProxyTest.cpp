#include <dataviews/platform/vtk/vtkCvCommandProxy.h>

#include <vtkObject.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace {

class vtkCvCommandProxyTest : public testing::Test
{
protected:
    /// Raises an event and returns how often a function ran for it.
    int invoke()
    {
        m_calls = 0;
        m_subject->InvokeEvent(vtkCommand::SelectionChangedEvent);
        return m_calls;
    }

    vtkSmartPointer<vtkObject> m_subject = vtkSmartPointer<vtkObject>::New();
    int m_calls = 0;
};

TEST_F(vtkCvCommandProxyTest, CallsItsFunctionForEachEventItObserves)
{
    const auto proxy = vtkCvCommandProxy::New([this] { ++m_calls; });
    EXPECT_EQ(proxy->GetReferenceCount(), 1);
    m_subject->AddObserver(vtkCommand::SelectionChangedEvent, proxy);

    EXPECT_EQ(invoke(), 1);
    m_subject->InvokeEvent(vtkCommand::ModifiedEvent);
    EXPECT_EQ(m_calls, 1);

    proxy->setCallback([this] { m_calls += 10; });
    EXPECT_EQ(invoke(), 10);
    proxy->setCallback({});
    EXPECT_EQ(invoke(), 0);
    m_subject->AddObserver(
        vtkCommand::SelectionChangedEvent,
        vtkSmartPointer<vtkCvCommandProxy>::Take(vtkCvCommandProxy::New()));
    EXPECT_EQ(invoke(), 0) << "A proxy without a function does nothing.";
}

TEST_F(vtkCvCommandProxyTest, FunctionMayReplaceItself)
{
    const auto proxy = vtkCvCommandProxy::New({});
    proxy->setCallback([this, proxy = proxy.Get(), captured = boost::make_shared<int>(1)] {
        proxy->setCallback([this] { m_calls += 10; });
        m_calls += *captured; // what the function holds lives on until it returns
    });
    m_subject->AddObserver(vtkCommand::SelectionChangedEvent, proxy);

    EXPECT_EQ(invoke(), 1);
    EXPECT_EQ(invoke(), 10);
}

TEST_F(vtkCvCommandProxyTest, FunctionMayRemoveAndReleaseTheObserver)
{
    vtkSmartPointer<vtkCvCommandProxy> proxy = vtkCvCommandProxy::New({});
    proxy->setCallback([this, &proxy, captured = boost::make_shared<int>(1)] {
        m_subject->RemoveObserver(proxy);
        proxy = nullptr;
        m_calls += *captured;
    });
    m_subject->AddObserver(vtkCommand::SelectionChangedEvent, proxy);

    EXPECT_EQ(invoke(), 1);
    EXPECT_EQ(invoke(), 0);
}

TEST_F(vtkCvCommandProxyTest, FunctionMayDestroyTheProxyThatExecutes)
{
    vtkSmartPointer<vtkCvCommandProxy> proxy = vtkCvCommandProxy::New({});
    proxy->setCallback([this, &proxy, captured = boost::make_shared<int>(1)] {
        proxy = nullptr;
        m_calls += *captured;
    });

    vtkCvCommandProxy* executed = proxy;
    executed->Execute(nullptr, vtkCommand::ModifiedEvent, nullptr);

    EXPECT_EQ(m_calls, 1);
    EXPECT_EQ(proxy, nullptr);
}

TEST_F(vtkCvCommandProxyTest, ExceptionPassesThroughAndLaterEventsStillArrive)
{
    bool refuses = true;
    const auto proxy = vtkCvCommandProxy::New([&] {
        ++m_calls;
        if (refuses) {
            throw std::runtime_error("refused");
        }
    });
    m_subject->AddObserver(vtkCommand::SelectionChangedEvent, proxy);

    EXPECT_THROW(invoke(), std::runtime_error);
    while (proxy->GetReferenceCount() > 2) {
        proxy->UnRegister(); // VTK forgets the reference that it holds while the function runs
    }
    refuses = false;

    EXPECT_EQ(invoke(), 1);
}

} // namespace
