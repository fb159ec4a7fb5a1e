#pragma once

#include <analyzer/views/ImageDiffMode.h>

#include <dataviews/platform/signals/Signal.h>

#include <QFutureWatcher>
#include <QImage>

#include <boost/shared_ptr.hpp>

#include <optional>
#include <vector>

namespace analyzer {

/// Makes one picture of two in the background: a blend or the difference.
///
/// Of many requests in a row, the one being computed and the last are computed; both are told, so that a slider shows
/// something while it moves.
/// Used on the GUI thread; may be destroyed at any time, and does not wait for what is being computed then.
class ImageDiffComputer
{
public:
    struct Request
    {
        ImageDiffMode mode = ImageDiffMode::Blend; ///< not side by side
        QImage first; ///< not null
        QImage second; ///< not null; scaled to the size of the first one
        int percent = 0; ///< of the second one, for a blend
        int gain = 1; ///< for the difference
    };

    struct Result
    {
        ImageDiffMode mode = ImageDiffMode::Blend; ///< as requested
        int gain = 1; ///< as requested
        std::vector<QImage> levels; ///< as ImageCanvas takes them; none without memory
        double mean = 0.0; ///< see ImageDiffPicture
        int largest = 0;
    };

    ImageDiffComputer();
    ImageDiffComputer(const ImageDiffComputer&) = delete;
    ImageDiffComputer& operator=(const ImageDiffComputer&) = delete;
    ~ImageDiffComputer();

    void request(const Request& request);

    /// Nothing of what was requested is wanted any more.
    void cancel();

    /// Whether the picture of the last request is still to come.
    [[nodiscard]] bool isComputing() const { return m_wanted.has_value() || m_isWanted; }

    /// The picture of a request that was not cancelled; from the event loop. A slot may move its parts away.
    Signal<void(Result&), ImageDiffComputer> signalComputed;

private:
    void start();
    void finish();

    std::optional<Request> m_wanted; ///< to be started
    bool m_isWanted = false; ///< what is being computed
    boost::shared_ptr<Result> m_computing; ///< belongs to the background until it is finished
    QFutureWatcher<void> m_watcher;
};

} // namespace analyzer
