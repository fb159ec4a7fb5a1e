#pragma once

#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/vtk/vtkCvCommandProxy.h>

#include <vtkCommand.h>
#include <vtkObject.h>
#include <vtkSmartPointer.h>

#include <boost/shared_ptr.hpp>

#include <utility>

/// A property whose value lives in a VTK object.
///
/// Follows changes that others make to the object, such as a chart that moves the range of an axis, and tells its
/// listeners of them. Keeps the object alive.
template <class T>
class VTKPropertyAbstract : public corvane::PropertyAbstract<T>
{
public:
    explicit VTKPropertyAbstract(vtkSmartPointer<vtkObject> object)
        : m_object(std::move(object))
        , m_command(vtkCvCommandProxy::New([this] { vtkObjectModified(); }))
    {
        observeObject();
    }

    VTKPropertyAbstract(
        vtkSmartPointer<vtkObject> object,
        boost::shared_ptr<corvane::ValidatorInterface<T>> validator)
        : corvane::PropertyAbstract<T>(std::move(validator))
        , m_object(std::move(object))
        , m_command(vtkCvCommandProxy::New([this] { vtkObjectModified(); }))
    {
        observeObject();
    }

    VTKPropertyAbstract(const VTKPropertyAbstract&) = delete;
    VTKPropertyAbstract& operator=(const VTKPropertyAbstract&) = delete;

    ~VTKPropertyAbstract() override { m_object->RemoveObserver(m_command); }

protected:
    /// Compares with the value that the property last knew of, exactly.
    [[nodiscard]] bool isEqual(const T& value) const override { return m_cachedValue == value; }

    /// Writes \p value into the VTK object.
    virtual void storeValueInVTK(const T& value) = 0;

    /// Makes the value that the VTK object holds now the one that the property knows of, and tells nobody. For the
    /// end of the constructors of subclasses: until then the property knows of T(), whatever the object holds.
    void rememberValue() { m_cachedValue = this->value(); }

private:
    /// Not observed while the property writes, so that its own write does not come back as a change by others.
    class ObserverPause
    {
    public:
        explicit ObserverPause(VTKPropertyAbstract& property)
            : m_property(property)
        {
            m_property.m_object->RemoveObserver(m_property.m_command);
        }

        ObserverPause(const ObserverPause&) = delete;
        ObserverPause& operator=(const ObserverPause&) = delete;

        ~ObserverPause() { m_property.observeObject(); }

    private:
        VTKPropertyAbstract& m_property;
    };

    void storeValue(const T& value) override
    {
        {
            const ObserverPause pause(*this);
            storeValueInVTK(value);
        }
        m_cachedValue = value;
    }

    void vtkObjectModified()
    {
        const T current = this->value();
        if (current == m_cachedValue) {
            return;
        }
        m_cachedValue = current;
        this->emitValueChangedSignal(current);
    }

    void observeObject() { m_object->AddObserver(vtkCommand::ModifiedEvent, m_command, 0.0F); }

    vtkSmartPointer<vtkObject> m_object;
    vtkSmartPointer<vtkCvCommandProxy> m_command;
    T m_cachedValue = T();
};
