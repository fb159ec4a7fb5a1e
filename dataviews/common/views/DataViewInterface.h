#pragma once

#include <dataviews/common/views/PropertyAbstract.h>
#include <dataviews/common/views/ViewsExport.h>

#include <dataviews/platform/selection/SuspendableInterface.h>

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <string>

class DataViewVisitorInterface;
class QWidget;
class SerializerInterface;

/// A view of the cases of a study, as the rest of the application sees it, whatever its kind.
class DATAVIEWS_VIEWS_EXPORT DataViewInterface : public SuspendableInterface
{
public:
    /// What the mouse buttons do in a view. Other values may be stored and change nothing.
    enum MouseMode : std::int32_t
    {
        Select = 0, ///< left selects, middle pans
        Pan = 1, ///< left pans, middle zooms
        Zoom = 2 ///< left zooms, middle pans
    };

    DataViewInterface();

    /// Copies nothing.
    DataViewInterface(const DataViewInterface& other);

    /// Copies nothing.
    DataViewInterface& operator=(const DataViewInterface& other);

    ~DataViewInterface() override;

    void suspend() override = 0;
    void resume() override = 0;

    /// The widget that shows the view; owned by the view or by the widget's parent.
    [[nodiscard]] virtual QWidget& widget() = 0;

    /// Writes and reads the view's settings.
    [[nodiscard]] virtual SerializerInterface& serializer() = 0;

    /// Changes the selection as a plain click at the mouse's place asks for; see DataViewAbstract.
    virtual void adjustSelectionForMouseClickAtPoint() = 0;

    /// Calls the visit of \p visitor for the view's kind.
    virtual void accept(DataViewVisitorInterface& visitor) = 0;

    /// The name of the XML element with the view's settings; the same for all views of a kind.
    [[nodiscard]] virtual std::string domName() const = 0;

protected:
    [[nodiscard]] virtual boost::shared_ptr<corvane::PropertyAbstract<MouseMode>> mouseMode()
        const = 0;

public:
    /// Makes the view draw itself anew, at once.
    virtual void render() = 0;
};
