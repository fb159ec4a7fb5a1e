#pragma once

#include <dataviews/common/images/AsyncImageCache.h>
#include <dataviews/common/images/ImageCache.h>
#include <dataviews/common/images/ScaledImageCache.h>

#include <QImage>
#include <QSize>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

/// What an AsyncImageCache and its loaders share: the worker threads, their queue and the finished pictures.
///
/// Every function may be called from any thread. One mutex guards everything; it is not held while a file is read or
/// a picture scaled, and larger memory is freed outside of it, so that nobody on the GUI thread waits for a worker.
class AsyncImageCore
{
public:
    struct Client;

    AsyncImageCore(std::size_t budgetBytes, int threadCount, AsyncImageCache::Decode decode);
    AsyncImageCore(const AsyncImageCore&) = delete;
    AsyncImageCore& operator=(const AsyncImageCore&) = delete;

    /// Waits for what is being decoded and drops the rest.
    ~AsyncImageCore();

    /// \p wake is called when something has arrived for a client that had been told of everything before: from a
    /// worker and with the mutex locked, so it may post an event and do no more.
    [[nodiscard]] std::unique_ptr<Client> addClient(boost::function<void()> wake);

    /// Its `wake` is not called any more.
    void removeClient(std::unique_ptr<Client> client);

    [[nodiscard]] boost::shared_ptr<QImage> fullSizeImage(const std::string& path) const;

    // The next four as in AsyncImageLoaderInterface.
    [[nodiscard]] boost::shared_ptr<QImage> request(
        Client& client, const std::string& path, const QSize& size);
    void setVisible(Client& client, const std::vector<std::string>& paths);
    void prefetch(Client& client, const std::vector<std::string>& paths, const QSize& size);
    [[nodiscard]] std::string problem(const std::string& path) const;

    /// How many arrivals there are to be told of; later ones wake again.
    [[nodiscard]] std::size_t beginDelivery(Client& client);

    /// The next path to tell the client of. What it has given up meanwhile is left out.
    /// \returns false if there is none
    [[nodiscard]] bool takeArrival(Client& client, std::string& path);

    /// Wakes again if something was left.
    void endDelivery(Client& client);

    [[nodiscard]] std::size_t bytesUsed() const;
    [[nodiscard]] std::size_t decodeCount() const;
    [[nodiscard]] std::size_t pendingCount() const;

private:
    using Pictures = ScaledImageCache::Pictures;

    static constexpr std::size_t notVisible = std::numeric_limits<std::size_t>::max() / 2;

    /// The order in which pictures are decoded: as they were named visible, then the newest request first, then what is
    /// only prefetched.
    struct Priority
    {
        std::size_t rank;
        std::uint64_t sequence; ///< of the request; there are no two with the same

        friend bool operator<(const Priority& a, const Priority& b)
        {
            return a.rank != b.rank ? a.rank < b.rank : a.sequence > b.sequence;
        }
    };

    struct Job;

    /// What a client wants of one file.
    struct Request
    {
        Client* client = nullptr;
        QSize size;
        Priority priority = {};
        Job* job = nullptr; ///< as long as it is not finished
        boost::shared_ptr<QImage> picture; ///< from then on; null for one that cannot be shown
        bool isToBeTold = false; ///< it has arrived, and the client does not know
        bool isAhead = false; ///< nobody waits for it; goes when it is finished
    };

    /// A picture that is to be decoded, or is just being decoded. Dropped when nobody requests it any more, unless it
    /// is in work.
    struct Job
    {
        const ScaledImageKey* key = nullptr; ///< in m_jobs
        std::vector<Request*> requests;
        Priority priority = {}; ///< under which it is queued
        bool isQueued = false;
        bool isHuge = false;
    };

    void stop();

    /// Does jobs until the end; what the threads run.
    void work();

    [[nodiscard]] bool hasWork() const;

    /// Takes the first job out of its queue.
    Job& takeJob();

    void finish(
        Job& job, boost::shared_ptr<QImage> picture, const std::string& problem, Pictures& gone);
    void drop(Job& job);

    /// Makes \p job one of those that wait, or moves it to its place.
    void queue(Job& job);
    void unqueue(Job& job);

    void join(Request& request, ScaledImageKey&& key);

    /// \p request, of the file \p path, does not count any more.
    void withdraw(const std::string& path, Request& request, Pictures& gone);

    /// The picture if there is nothing left to do for it.
    [[nodiscard]] boost::shared_ptr<QImage> finished(const ScaledImageKey& key);

    const AsyncImageCache::Decode m_decode;
    const boost::shared_ptr<QImage> m_nullPicture;
    ImageCache m_fullSizeImages;

    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_isStopping = false;
    std::size_t m_clientCount = 0;
    std::uint64_t m_lastSequence = 0;
    std::size_t m_decodeCount = 0;
    ScaledImageCache m_pictures;
    std::unordered_map<std::string, std::string> m_problems; ///< by path
    std::unordered_map<ScaledImageKey, Job, ScaledImageKeyHash> m_jobs;
    std::map<Priority, Job*> m_queue;
    std::map<Priority, Job*> m_hugeQueue; ///< those known to be huge
    bool m_hugeIsInWork = false;

    std::vector<std::thread> m_threads;
};

struct AsyncImageCore::Client
{
    boost::function<void()> wake;
    std::unordered_map<std::string, Request> requests; ///< by path
    std::unordered_map<std::string, Request> prefetches; ///< by path; those that are not finished
    std::unordered_map<std::string, std::size_t> ranks; ///< of the visible paths
    std::deque<std::string> arrivals;
    bool isAwake = false; ///< it was woken and has not begun delivery
};
