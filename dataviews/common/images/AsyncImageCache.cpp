#include <dataviews/common/images/AsyncImageCache.h>
#include <dataviews/common/images/AsyncImageCore.h>
#include <dataviews/common/images/AsyncImageLoader.h>

#include <QThread>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <utility>

int AsyncImageCache::defaultThreadCount()
{
    return std::max(1, std::min(4, QThread::idealThreadCount()));
}

AsyncImageCache::AsyncImageCache(std::size_t budgetBytes, int threadCount, Decode decode)
    : m_core(boost::make_shared<AsyncImageCore>(budgetBytes, threadCount, std::move(decode)))
{}

AsyncImageCache::~AsyncImageCache() = default;

boost::shared_ptr<AsyncImageLoader> AsyncImageCache::imageLoader() const
{
    return boost::make_shared<AsyncImageLoader>(m_core);
}

std::size_t AsyncImageCache::bytesUsed() const
{
    return m_core->bytesUsed();
}

std::size_t AsyncImageCache::decodeCount() const
{
    return m_core->decodeCount();
}

std::size_t AsyncImageCache::pendingCount() const
{
    return m_core->pendingCount();
}
