#include <dataviews/common/images/AsyncImageCore.h>
#include <dataviews/common/images/ImageFileLoaderInterface.h>
#include <dataviews/common/images/readImageFile.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

namespace {

using Lock = std::unique_lock<std::mutex>;

const char* const outOfMemory = "There is not enough memory for the picture";

struct Outcome
{
    boost::shared_ptr<QImage> picture; ///< empty if there is none
    std::string problem;
};

/// \p image in the format of its kind that is painted without conversion.
QImage paintable(QImage image)
{
    return std::move(image).convertToFormat(
        image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
}

Outcome decodePicture(const AsyncImageCache::Decode& decode, const ScaledImageKey& key)
{
    try {
        ImageFileReading reading = decode(key.path, key.size);
        if (reading.image.isNull()) {
            return {nullptr, std::move(reading.problem)};
        }
        auto picture = boost::make_shared<QImage>(paintable(std::move(reading.image)));
        if (picture->isNull()) {
            return {nullptr, outOfMemory};
        }
        return {std::move(picture), {}};
    } catch (const std::bad_alloc&) {
        return {nullptr, outOfMemory};
    } catch (const std::exception& exception) {
        return {nullptr, std::string("The picture cannot be read: ") + exception.what()};
    }
}

void append(ScaledImageCache::Pictures& all, ScaledImageCache::Pictures&& more)
{
    all.insert(
        all.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

} // namespace

AsyncImageCore::AsyncImageCore(
    std::size_t budgetBytes, int threadCount, AsyncImageCache::Decode decode)
    : m_decode(std::move(decode))
    , m_nullPicture(boost::make_shared<QImage>())
    , m_pictures(budgetBytes)
{
    Q_ASSERT_X(threadCount > 0, "AsyncImageCache", "there must be a thread");
    m_threads.reserve(static_cast<std::size_t>(threadCount));
    try {
        for (int i = 0; i < threadCount; ++i) {
            m_threads.emplace_back([this] { work(); });
        }
    } catch (...) {
        stop();
        throw;
    }
}

AsyncImageCore::~AsyncImageCore()
{
    stop();
}

void AsyncImageCore::stop()
{
    {
        const Lock lock(m_mutex);
        m_isStopping = true;
    }
    m_wake.notify_all();
    for (std::thread& thread : m_threads) {
        thread.join();
    }
}

std::unique_ptr<AsyncImageCore::Client> AsyncImageCore::addClient(boost::function<void()> wake)
{
    auto client = std::make_unique<Client>();
    client->wake = std::move(wake);
    const Lock lock(m_mutex);
    ++m_clientCount;
    return client;
}

void AsyncImageCore::removeClient(std::unique_ptr<Client> client)
{
    Pictures gone; // freed after the lock
    const Lock lock(m_mutex);
    for (auto* requests : {&client->requests, &client->prefetches}) {
        for (auto& [path, request] : *requests) {
            withdraw(path, request, gone);
        }
    }
    --m_clientCount;
    if (m_clientCount == 0) {
        append(gone, m_pictures.clear());
        m_problems.clear();
    }
}

boost::shared_ptr<QImage> AsyncImageCore::fullSizeImage(const std::string& path) const
{
    // Loaders of an ImageCache hold all they have ever given; this one is gone at once.
    return m_fullSizeImages.imageLoader()->image(path);
}

boost::shared_ptr<QImage> AsyncImageCore::request(
    Client& client, const std::string& path, const QSize& size)
{
    Pictures gone;
    const Lock lock(m_mutex);
    const auto [place, isNew] = client.requests.try_emplace(path);
    Request& request = place->second;
    if (!isNew) {
        if (request.size == size) {
            if (request.job != nullptr) {
                request.priority.sequence = ++m_lastSequence;
                if (request.job->isQueued) {
                    queue(*request.job);
                }
            }
            return request.picture;
        }
        withdraw(path, request, gone);
    }

    const auto rank = client.ranks.find(path);
    request.client = &client;
    request.size = size;
    request.priority = {rank == client.ranks.end() ? notVisible : rank->second, ++m_lastSequence};
    ScaledImageKey key{path, size};
    request.picture = finished(key);
    if (request.picture == nullptr) {
        join(request, std::move(key));
    }
    return request.picture;
}

void AsyncImageCore::setVisible(Client& client, const std::vector<std::string>& paths)
{
    std::unordered_map<std::string, std::size_t> ranks;
    ranks.reserve(paths.size());
    for (const std::string& path : paths) {
        ranks.try_emplace(path, ranks.size());
    }

    Pictures gone;
    const Lock lock(m_mutex);
    client.ranks.swap(ranks);
    for (auto place = client.requests.begin(); place != client.requests.end();) {
        auto& [path, request] = *place;
        const auto rank = client.ranks.find(path);
        if (rank == client.ranks.end()) {
            withdraw(path, request, gone);
            place = client.requests.erase(place);
            continue;
        }
        request.priority.rank = rank->second;
        if (request.job != nullptr && request.job->isQueued) {
            queue(*request.job);
        }
        ++place;
    }
}

void AsyncImageCore::prefetch(
    Client& client, const std::vector<std::string>& paths, const QSize& size)
{
    constexpr std::size_t share = 4; // the rest of the budget is for what was seen
    constexpr std::size_t bytesPerPixel = 4;
    const std::size_t bytes = bytesPerPixel * static_cast<std::size_t>(size.width())
        * static_cast<std::size_t>(size.height());
    Pictures gone;
    const Lock lock(m_mutex);
    const std::size_t count = std::min(paths.size(), m_pictures.budgetBytes() / share / bytes);
    std::unordered_map<std::string, Request> former;
    former.swap(client.prefetches);
    for (std::size_t i = 0; i < count; ++i) {
        const std::string& path = paths[i];
        const Priority priority{notVisible + 1 + i, ++m_lastSequence};
        const auto known = former.find(path);
        if (known != former.end() && known->second.size == size) {
            auto node = former.extract(known);
            node.mapped().priority = priority;
            Job& job = *node.mapped().job;
            client.prefetches.insert(std::move(node));
            if (job.isQueued) {
                queue(job);
            }
            continue;
        }
        const auto requested = client.requests.find(path);
        const bool isRequested =
            requested != client.requests.end() && requested->second.size == size;
        ScaledImageKey key{path, size};
        if (!isRequested && client.prefetches.count(path) == 0 && finished(key) == nullptr) {
            Request& request = client.prefetches[path];
            request.client = &client;
            request.size = size;
            request.priority = priority;
            request.isAhead = true;
            join(request, std::move(key));
        }
    }
    for (auto& [path, request] : former) {
        withdraw(path, request, gone);
    }
}

std::string AsyncImageCore::problem(const std::string& path) const
{
    const Lock lock(m_mutex);
    const auto place = m_problems.find(path);
    return place == m_problems.end() ? std::string() : place->second;
}

std::size_t AsyncImageCore::beginDelivery(Client& client)
{
    const Lock lock(m_mutex);
    client.isAwake = false;
    return client.arrivals.size();
}

bool AsyncImageCore::takeArrival(Client& client, std::string& path)
{
    const Lock lock(m_mutex);
    while (!client.arrivals.empty()) {
        path = std::move(client.arrivals.front());
        client.arrivals.pop_front();
        const auto place = client.requests.find(path);
        if (place != client.requests.end() && std::exchange(place->second.isToBeTold, false)) {
            return true;
        }
    }
    return false;
}

void AsyncImageCore::endDelivery(Client& client)
{
    const Lock lock(m_mutex);
    if (!client.arrivals.empty() && !client.isAwake) {
        client.isAwake = true;
        client.wake();
    }
}

std::size_t AsyncImageCore::bytesUsed() const
{
    const Lock lock(m_mutex);
    return m_pictures.bytesUsed();
}

std::size_t AsyncImageCore::decodeCount() const
{
    const Lock lock(m_mutex);
    return m_decodeCount;
}

std::size_t AsyncImageCore::pendingCount() const
{
    const Lock lock(m_mutex);
    return m_queue.size() + m_hugeQueue.size();
}

void AsyncImageCore::work()
{
    for (;;) {
        Pictures gone;
        Lock lock(m_mutex);
        m_wake.wait(lock, [this] { return m_isStopping || hasWork(); });
        if (m_isStopping) {
            return;
        }
        Job& job = takeJob();
        // While it is in work nobody else drops it, but its other members are for those who hold the lock.
        const ScaledImageKey& key = *job.key;
        // Another size of it may have failed while this one was waiting.
        if (m_problems.count(key.path) > 0) {
            finish(job, nullptr, {}, gone);
            continue;
        }

        if (job.isHuge) {
            m_hugeIsInWork = true;
        } else {
            lock.unlock();
            const qint64 pixels = imageFilePixels(key.path);
            lock.lock();
            if (m_isStopping) {
                return;
            }
            if (job.requests.empty()) {
                drop(job);
                continue;
            }
            job.isHuge = pixels > AsyncImageCache::hugeImagePixels;
            if (job.isHuge) {
                if (m_hugeIsInWork) {
                    queue(job);
                    continue;
                }
                m_hugeIsInWork = true;
            }
        }

        lock.unlock();
        Outcome outcome = decodePicture(m_decode, key);
        lock.lock();
        ++m_decodeCount;
        if (job.isHuge) {
            m_hugeIsInWork = false;
            m_wake.notify_one();
        }
        finish(job, std::move(outcome.picture), outcome.problem, gone);
    }
}

bool AsyncImageCore::hasWork() const
{
    return !m_queue.empty() || (!m_hugeQueue.empty() && !m_hugeIsInWork);
}

AsyncImageCore::Job& AsyncImageCore::takeJob()
{
    const bool canBeHuge = !m_hugeQueue.empty() && !m_hugeIsInWork;
    const bool isHuge =
        canBeHuge && (m_queue.empty() || m_hugeQueue.begin()->first < m_queue.begin()->first);
    Job& job = *(isHuge ? m_hugeQueue : m_queue).begin()->second;
    unqueue(job);
    return job;
}

void AsyncImageCore::finish(
    Job& job, boost::shared_ptr<QImage> picture, const std::string& problem, Pictures& gone)
{
    if (picture == nullptr) {
        picture = m_nullPicture;
        if (m_clientCount > 0) {
            m_problems.try_emplace(job.key->path, problem);
        }
    } else if (m_clientCount > 0) {
        append(gone, m_pictures.insert(*job.key, picture));
    }
    for (Request* request : job.requests) {
        request->job = nullptr;
        if (request->isAhead) {
            request->client->prefetches.erase(job.key->path);
            continue;
        }
        request->picture = picture;
        request->isToBeTold = true;
        Client& client = *request->client;
        client.arrivals.push_back(job.key->path);
        if (!client.isAwake) {
            client.isAwake = true;
            client.wake();
        }
    }
    drop(job);
    gone.push_back(std::move(picture));
}

void AsyncImageCore::drop(Job& job)
{
    m_jobs.erase(m_jobs.find(*job.key));
}

void AsyncImageCore::queue(Job& job)
{
    if (job.isQueued) {
        unqueue(job);
    }
    const auto first = std::min_element(
        job.requests.begin(), job.requests.end(), [](const Request* a, const Request* b) {
            return a->priority < b->priority;
        });
    job.priority = (*first)->priority;
    job.isQueued = true;
    (job.isHuge ? m_hugeQueue : m_queue).emplace(job.priority, &job);
}

void AsyncImageCore::unqueue(Job& job)
{
    (job.isHuge ? m_hugeQueue : m_queue).erase(job.priority);
    job.isQueued = false;
}

void AsyncImageCore::join(Request& request, ScaledImageKey&& key)
{
    const auto [place, isNew] = m_jobs.try_emplace(std::move(key));
    Job& job = place->second;
    job.requests.push_back(&request);
    request.job = &job;
    if (isNew) {
        job.key = &place->first;
        queue(job);
        m_wake.notify_one();
    } else if (job.isQueued) {
        queue(job);
    }
}

void AsyncImageCore::withdraw(const std::string& path, Request& request, Pictures& gone)
{
    request.isToBeTold = false;
    if (request.job == nullptr) {
        // It was in use until now, whatever has come and gone in the cache meanwhile.
        if (!request.picture->isNull()) {
            append(gone, m_pictures.insert({path, request.size}, request.picture));
        }
        gone.push_back(std::move(request.picture));
        return;
    }
    Job& job = *std::exchange(request.job, nullptr);
    job.requests.erase(std::find(job.requests.begin(), job.requests.end(), &request));
    if (!job.isQueued) {
        return;
    }
    if (job.requests.empty()) {
        unqueue(job);
        drop(job);
    } else {
        queue(job);
    }
}

boost::shared_ptr<QImage> AsyncImageCore::finished(const ScaledImageKey& key)
{
    if (m_problems.count(key.path) > 0) {
        return m_nullPicture;
    }
    return m_pictures.find(key);
}
