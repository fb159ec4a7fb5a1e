#pragma once

#include <dataviews/platform/signals/Signal.h>

#include <QFutureWatcher>
#include <QImage>

#include <boost/shared_ptr.hpp>

#include <optional>
#include <string>
#include <vector>

class ImageCache;

namespace analyzer {

/// A picture from a file, ready to be drawn at any size.
struct SelectedPicture
{
    std::string path;
    boost::shared_ptr<QImage>
        shared; ///< the cache's, kept so that others who show it need not read it again
    std::vector<QImage>
        levels; ///< upright; at full size, then each half as wide and high as the one before
    std::string problem; ///< why there are no levels: a sentence without a full stop, UTF-8
};

/// Reads one picture at a time in the background.
///
/// A newer request takes the place of an older one: of many in a row, the one being read and the last are read. Used
/// on the GUI thread; may be destroyed at any time, and does not wait for what is being read then.
class SelectedImageLoader
{
public:
    explicit SelectedImageLoader(boost::shared_ptr<ImageCache> cache);
    SelectedImageLoader(const SelectedImageLoader&) = delete;
    SelectedImageLoader& operator=(const SelectedImageLoader&) = delete;
    ~SelectedImageLoader();

    /// Asks for the picture in the file \p path (absolute, UTF-8).
    void request(const std::string& path);

    /// What was requested is not wanted any more.
    void cancel();

    /// Whether the picture of a request is still to come.
    [[nodiscard]] bool isLoading() const { return m_wanted.has_value(); }

    /// The picture of the last request, for better or worse; from the event loop. A slot may move its parts away.
    Signal<void(SelectedPicture&), SelectedImageLoader> signalArrived;

private:
    void start();
    void finish();

    boost::shared_ptr<ImageCache> m_cache;
    std::optional<std::string> m_wanted;
    boost::shared_ptr<SelectedPicture>
        m_reading; ///< belongs to the background until it is finished
    QFutureWatcher<void> m_watcher;
};

} // namespace analyzer
