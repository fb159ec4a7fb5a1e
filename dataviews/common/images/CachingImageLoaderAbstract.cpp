#include <dataviews/common/images/CachingImageLoaderAbstract.h>

#include <QImage>
#include <QMutexLocker>

#ifdef __SANITIZE_THREAD__
    #include <sanitizer/tsan_interface.h>
#endif

namespace {

/// Holds a mutex, and lets ThreadSanitizer know: Qt is not instrumented, so it would not see that threads wait.
class MutexLock
{
public:
    explicit MutexLock(QMutex& mutex)
        : m_locker(&mutex)
    {
#ifdef __SANITIZE_THREAD__
        __tsan_acquire(&mutex);
#endif
    }

    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

    ~MutexLock()
    {
#ifdef __SANITIZE_THREAD__
        __tsan_release(m_locker.mutex());
#endif
    }

private:
    QMutexLocker m_locker;
};

boost::shared_ptr<QImage> strongPointer(const boost::shared_ptr<QImage>& entry)
{
    return entry;
}

boost::shared_ptr<QImage> strongPointer(const boost::weak_ptr<QImage>& entry)
{
    return entry.lock();
}

} // namespace

template <typename T>
CachingImageLoaderAbstract<T>::CachingImageLoaderAbstract() = default;

template <typename T>
CachingImageLoaderAbstract<T>::~CachingImageLoaderAbstract() = default;

template <typename T>
boost::shared_ptr<QImage> CachingImageLoaderAbstract<T>::image(const std::string& path) const
{
    // Held during production too: whoever asks for a picture that is being produced waits for it.
    const MutexLock lock(m_mutex);
    const auto found = m_cache.find(path);
    if (found != m_cache.end()) {
        if (boost::shared_ptr<QImage> image = toSharedPointer(found->second)) {
            return image;
        }
        m_cache.erase(found);
    }
    return loadNewCacheEntry(path);
}

template <typename T>
void CachingImageLoaderAbstract<T>::clear() const
{
    const MutexLock lock(m_mutex);
    m_cache.clear();
}

template <typename T>
void CachingImageLoaderAbstract<T>::removeDeadEntries() const
{
    const MutexLock lock(m_mutex);
    for (auto entry = m_cache.begin(); entry != m_cache.end();) {
        entry = toSharedPointer(entry->second) ? std::next(entry) : m_cache.erase(entry);
    }
}

template <typename T>
boost::shared_ptr<QImage> CachingImageLoaderAbstract<T>::loadNewCacheEntry(
    const std::string& path) const
{
    boost::shared_ptr<QImage> image = produceImage(path);
    m_cache.emplace(path, image);
    return image;
}

template <typename T>
boost::shared_ptr<QImage> CachingImageLoaderAbstract<T>::toSharedPointer(const T& entry) const
{
    return strongPointer(entry);
}

template class CachingImageLoaderAbstract<boost::shared_ptr<QImage>>;
template class CachingImageLoaderAbstract<boost::weak_ptr<QImage>>;
