#pragma once

#include <QImage>
#include <QSize>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <list>
#include <string>
#include <unordered_map>
#include <vector>

/// What a scaled picture is known by: its file (absolute, UTF-8) and the size into which it was fitted.
struct ScaledImageKey
{
    std::string path;
    QSize size;

    friend bool operator==(const ScaledImageKey& a, const ScaledImageKey& b)
    {
        return a.size == b.size && a.path == b.path;
    }
};

struct ScaledImageKeyHash
{
    [[nodiscard]] std::size_t operator()(const ScaledImageKey& key) const;
};

/// Keeps scaled pictures as long as they fit into a budget; those that were not used for longest go first.
///
/// Belongs to AsyncImageCore, which locks for it. What goes is handed back, so that its memory is freed outside of the
/// lock.
class ScaledImageCache
{
public:
    using Pictures = std::vector<boost::shared_ptr<QImage>>;

    /// Counts QImage::sizeInBytes() of the pictures; a budget of 0 keeps nothing.
    explicit ScaledImageCache(std::size_t budgetBytes);

    /// The picture, which counts as used now; empty if it is not here.
    [[nodiscard]] boost::shared_ptr<QImage> find(const ScaledImageKey& key);

    /// Keeps \p picture, or counts it as used now if it is here already. One that is larger than the budget is not
    /// kept and drives out nothing.
    /// \returns what had to go
    [[nodiscard]] Pictures insert(
        const ScaledImageKey& key, const boost::shared_ptr<QImage>& picture);

    /// \returns what was here
    [[nodiscard]] Pictures clear();

    [[nodiscard]] std::size_t budgetBytes() const { return m_budgetBytes; }

    /// Never above the budget.
    [[nodiscard]] std::size_t bytesUsed() const { return m_bytesUsed; }

private:
    struct Item
    {
        const ScaledImageKey* key; ///< in m_places
        boost::shared_ptr<QImage> picture;
        std::size_t bytes;
    };

    using Items = std::list<Item>; ///< the one used last in front

    void makeFirst(Items::iterator place);

    std::size_t m_budgetBytes;
    std::size_t m_bytesUsed = 0;
    Items m_items;
    std::unordered_map<ScaledImageKey, Items::iterator, ScaledImageKeyHash> m_places;
};
