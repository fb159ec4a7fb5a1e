#pragma once

#include <dataviews/common/images/AsyncImageCache.h>
#include <dataviews/common/images/AsyncImageLoader.h>
#include <dataviews/common/images/readImageFile.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QImage>
#include <QSemaphore>
#include <QSize>
#include <QTimer>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

/// Helpers of the tests of asynchronous loading.
namespace asyncImages {

constexpr int deadlineMs = 60'000; ///< for what must happen; it is reached by failing tests only

using Paths = std::vector<std::string>;

/// The paths that a loader has told of.
class Arrivals
{
public:
    explicit Arrivals(const AsyncImageLoader& loader)
    {
        loader.signalImageArrived.connect(
            [paths = m_paths](const std::string& path) { paths->push_back(path); });
    }

    [[nodiscard]] const Paths& paths() const { return *m_paths; }

    /// Runs the event loop until there are \p count arrivals in all; false if they do not come.
    [[nodiscard]] bool waitFor(std::size_t count) const
    {
        QTimer deadline;
        deadline.setSingleShot(true);
        deadline.start(deadlineMs);
        while (m_paths->size() < count && deadline.isActive()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        return m_paths->size() == count;
    }

private:
    boost::shared_ptr<Paths> m_paths = boost::make_shared<Paths>();
};

/// Takes the place of the reader of files: gives pictures of just the size asked for, at 4 bytes a pixel, and holds up the workers
/// until they are let through.
class GatedDecode
{
public:
    [[nodiscard]] AsyncImageCache::Decode function() const
    {
        return [state = m_state](const std::string& path, const QSize& size) {
            {
                const std::lock_guard<std::mutex> lock(state->mutex);
                state->started.emplace_back(path, size);
            }
            state->starts.release();
            state->gate.acquire();
            {
                const std::lock_guard<std::mutex> lock(state->mutex);
                ++state->finished;
            }
            QImage image(size, QImage::Format_RGB32);
            image.fill(Qt::red);
            return ImageFileReading{image, {}};
        };
    }

    /// Lets \p count more pass.
    void open(int count = 1000) const { m_state->gate.release(count); }

    /// Waits for one more to begin; false if none does.
    [[nodiscard]] bool waitForStart() const { return m_state->starts.tryAcquire(1, deadlineMs); }

    [[nodiscard]] std::vector<std::pair<std::string, QSize>> started() const
    {
        const std::lock_guard<std::mutex> lock(m_state->mutex);
        return m_state->started;
    }

    [[nodiscard]] Paths startedPaths() const
    {
        Paths paths;
        for (const auto& [path, size] : started()) {
            paths.push_back(path);
        }
        return paths;
    }

    [[nodiscard]] std::size_t finishedCount() const
    {
        const std::lock_guard<std::mutex> lock(m_state->mutex);
        return m_state->finished;
    }

private:
    struct State
    {
        QSemaphore gate;
        QSemaphore starts;
        std::mutex mutex;
        std::vector<std::pair<std::string, QSize>> started;
        std::size_t finished = 0;
    };

    boost::shared_ptr<State> m_state = boost::make_shared<State>();
};

} // namespace asyncImages
