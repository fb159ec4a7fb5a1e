#pragma once

#include <dataviews/platform/vtk/PlatformVtkExport.h>

#include <vtkCommand.h>
#include <vtkSmartPointer.h>

#include <boost/function.hpp>

/// A VTK observer that calls a stored function on every event it observes.
///
/// The function takes no arguments: which event it is follows from what the proxy was added for. It may remove
/// the observer, destroy the listener, or replace the function while it runs. It should not throw: the exception
/// passes through VTK's event invocation, which then never releases the proxy and what the function holds.
class DATAVIEWS_PLATFORM_VTK_EXPORT vtkCvCommandProxy : public vtkCommand
{
public:
    vtkTypeMacro(vtkCvCommandProxy, vtkCommand)

        /// A proxy without a function: events do nothing until setCallback().
        static vtkCvCommandProxy* New();

    /// A proxy around \p callback.
    static vtkSmartPointer<vtkCvCommandProxy> New(const boost::function<void()>& callback);

    vtkCvCommandProxy(const vtkCvCommandProxy&) = delete;
    vtkCvCommandProxy& operator=(const vtkCvCommandProxy&) = delete;

    /// An empty \p callback makes events do nothing: the way to silence a proxy that VTK still holds.
    void setCallback(const boost::function<void()>& callback);

    void Execute(vtkObject* caller, unsigned long eventId, void* callData) override;

protected:
    vtkCvCommandProxy();
    ~vtkCvCommandProxy() override;

private:
    boost::function<void()> m_callback;
};
