#include <dataviews/platform/vtk/vtkCvCommandProxy.h>

vtkCvCommandProxy::vtkCvCommandProxy() = default;

vtkCvCommandProxy::~vtkCvCommandProxy() = default;

vtkCvCommandProxy* vtkCvCommandProxy::New()
{
    return new vtkCvCommandProxy;
}

vtkSmartPointer<vtkCvCommandProxy> vtkCvCommandProxy::New(const boost::function<void()>& callback)
{
    vtkSmartPointer<vtkCvCommandProxy> proxy = vtkSmartPointer<vtkCvCommandProxy>::Take(New());
    proxy->setCallback(callback);
    return proxy;
}

void vtkCvCommandProxy::setCallback(const boost::function<void()>& callback)
{
    m_callback = callback;
}

void vtkCvCommandProxy::Execute(
    vtkObject* /*caller*/, unsigned long /*eventId*/, void* /*callData*/)
{
    // A copy, since the function may replace or release the stored one.
    const boost::function<void()> callback = m_callback;
    if (callback) {
        callback();
    }
}
