#pragma once

#include <analyzer/views/LeftOutCases.h>
#include <analyzer/views/SettingInterface.h>

#include <dataviews/common/views/DataViewInterface.h>

#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/signals/Signal.h>

#include <QPoint>

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

class AuxFile;
class QMenu;

namespace analyzer {

/// What the main window needs of a view, whatever its kind.
class AnalyzerViewInterface : public virtual DataViewInterface
{
public:
    AnalyzerViewInterface()
        : signalTitleChanged([this] { signalTitleChangedConnected(); })
        , signalContextMenuRequested([this] { signalContextMenuRequestedConnected(); })
        , signalImageActivated([this] { signalImageActivatedConnected(); })
        , signalProblem([this] { signalProblemConnected(); })
        , signalLeftOutChanged([this] { signalLeftOutChangedConnected(); })
    {}

    AnalyzerViewInterface(const AnalyzerViewInterface&) = delete;
    AnalyzerViewInterface& operator=(const AnalyzerViewInterface&) = delete;
    ~AnalyzerViewInterface() override = default;

    /// The short name of the kind, as on the command line: "scatter", "table".
    [[nodiscard]] virtual std::string kind() const = 0;

    /// What the view shows, in a few words, UTF-8: "Drag over Speed".
    [[nodiscard]] virtual std::string title() const = 0;

    /// What can be set, in the order for a panel. The same objects at every call.
    [[nodiscard]] virtual const std::vector<boost::shared_ptr<SettingInterface>>& settings()
        const = 0;

    /// What the mouse does in the view; empty for views without mouse modes.
    [[nodiscard]] virtual boost::shared_ptr<corvane::PropertyAbstract<MouseMode>>
    mouseModeProperty() const = 0;

    /// Whether fitData() and the two resets do something.
    [[nodiscard]] virtual bool hasAxes() const = 0;
    virtual void fitData() = 0;
    virtual void resetXAxis() = 0;
    virtual void resetYAxis() = 0;

    /// The zoom of the images in percent; empty for views that do not zoom.
    [[nodiscard]] virtual boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> zoom() const
    {
        return {};
    }

    /// Whether something that the view shows is still being read.
    [[nodiscard]] virtual bool isLoading() const { return false; }

    /// The cases that the view leaves out, by reason; none with a count of 0.
    [[nodiscard]] virtual std::vector<LeftOutCases> leftOut() const { return {}; }

    /// The IDs of the cases that leftOut() counts.
    [[nodiscard]] virtual std::set<unsigned long long> leftOutCaseIDs() const { return {}; }

    /// Adds what only this view offers where signalContextMenuRequested was raised.
    virtual void addContextActions(QMenu& /*menu*/) {}

    Signal<void(), AnalyzerViewInterface> signalTitleChanged;

    /// The user asked for a context menu, at this place of the screen; the selection has been adjusted.
    Signal<void(const QPoint&), AnalyzerViewInterface> signalContextMenuRequested;

    /// The user wants to see this file at full size.
    Signal<void(const WeakPtr<AuxFile>&), AnalyzerViewInterface> signalImageActivated;

    /// What the user asked for by a menu of the view could not be done; a sentence that says why, UTF-8.
    Signal<void(const std::string&), AnalyzerViewInterface> signalProblem;

    /// leftOut() and leftOutCaseIDs() may have changed.
    Signal<void(), AnalyzerViewInterface> signalLeftOutChanged;

protected:
    void emitTitleChanged() const { signalTitleChanged(); }

    void emitContextMenuRequested(const QPoint& place) const { signalContextMenuRequested(place); }

    void emitProblem(const std::string& sentence) const { signalProblem(sentence); }

    void emitLeftOutChanged() const { signalLeftOutChanged(); }

    void emitImageActivated(const WeakPtr<AuxFile>& file) const { signalImageActivated(file); }

private:
    virtual void signalTitleChangedConnected() const {}

    virtual void signalContextMenuRequestedConnected() const {}

    virtual void signalImageActivatedConnected() const {}

    virtual void signalProblemConnected() const {}

    virtual void signalLeftOutChangedConnected() const {}
};

} // namespace analyzer
