#include <dataviews/common/images/ScaledImageCache.h>

#include <boost/functional/hash.hpp>

std::size_t ScaledImageKeyHash::operator()(const ScaledImageKey& key) const
{
    std::size_t hash = std::hash<std::string>()(key.path);
    boost::hash_combine(hash, key.size.width());
    boost::hash_combine(hash, key.size.height());
    return hash;
}

ScaledImageCache::ScaledImageCache(std::size_t budgetBytes)
    : m_budgetBytes(budgetBytes)
{}

boost::shared_ptr<QImage> ScaledImageCache::find(const ScaledImageKey& key)
{
    const auto place = m_places.find(key);
    if (place == m_places.end()) {
        return nullptr;
    }
    makeFirst(place->second);
    return m_items.front().picture;
}

ScaledImageCache::Pictures ScaledImageCache::insert(
    const ScaledImageKey& key, const boost::shared_ptr<QImage>& picture)
{
    const auto bytes = static_cast<std::size_t>(picture->sizeInBytes());
    if (bytes > m_budgetBytes) {
        return {};
    }
    const auto [place, isNew] = m_places.try_emplace(key, m_items.end());
    if (!isNew) {
        makeFirst(place->second);
        return {};
    }
    Pictures gone;
    while (m_bytesUsed + bytes > m_budgetBytes) {
        Item& last = m_items.back();
        m_bytesUsed -= last.bytes;
        gone.push_back(std::move(last.picture));
        m_places.erase(m_places.find(*last.key));
        m_items.pop_back();
    }
    m_items.push_front(Item{&place->first, picture, bytes});
    place->second = m_items.begin();
    m_bytesUsed += bytes;
    return gone;
}

ScaledImageCache::Pictures ScaledImageCache::clear()
{
    Pictures gone;
    gone.reserve(m_items.size());
    for (Item& item : m_items) {
        gone.push_back(std::move(item.picture));
    }
    m_places.clear();
    m_items.clear();
    m_bytesUsed = 0;
    return gone;
}

void ScaledImageCache::makeFirst(Items::iterator place)
{
    m_items.splice(m_items.begin(), m_items, place);
}
