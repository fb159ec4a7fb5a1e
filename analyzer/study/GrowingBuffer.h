#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

namespace analyzer {

/// Values one behind the other in memory from malloc, which grows in place where it can and can be given away.
///
/// A std::vector copies when it grows and so needs twice the memory for a while; large tables would feel it.
template <class Value>
class GrowingBuffer
{
    static_assert(std::is_trivially_copyable_v<Value>);

public:
    GrowingBuffer() = default;

    GrowingBuffer(GrowingBuffer&& other) noexcept
        : m_values(std::exchange(other.m_values, nullptr))
        , m_size(std::exchange(other.m_size, 0))
        , m_capacity(std::exchange(other.m_capacity, 0))
    {}

    GrowingBuffer& operator=(GrowingBuffer&& other) noexcept
    {
        std::swap(m_values, other.m_values);
        std::swap(m_size, other.m_size);
        std::swap(m_capacity, other.m_capacity);
        return *this;
    }

    GrowingBuffer(const GrowingBuffer&) = delete;
    GrowingBuffer& operator=(const GrowingBuffer&) = delete;

    ~GrowingBuffer() { std::free(m_values); }

    [[nodiscard]] std::size_t size() const { return m_size; }

    [[nodiscard]] const Value* data() const { return m_values; }

    [[nodiscard]] Value operator[](std::size_t index) const { return m_values[index]; }

    /// Makes \p value the last one, at \p index, which is at most the size; what was there or behind it goes.
    void setLast(std::size_t index, Value value)
    {
        if (index >= m_capacity) {
            reserve(index + 1);
        }
        m_values[index] = value;
        m_size = index + 1;
    }

    void append(const Value* values, std::size_t count)
    {
        if (count == 0) {
            return;
        }
        if (m_capacity - m_size < count) {
            reserve(m_size + count);
        }
        std::memcpy(m_values + m_size, values, count * sizeof(Value));
        m_size += count;
    }

    /// Asks for room for \p size values in all, which costs nothing before it is used. No harm is done where there is
    /// none.
    void expect(std::size_t size)
    {
        if (size <= m_capacity || size > std::numeric_limits<std::size_t>::max() / sizeof(Value)) {
            return;
        }
        if (void* values = std::realloc(m_values, size * sizeof(Value))) {
            m_values = static_cast<Value*>(values);
            m_capacity = size;
        }
    }

    /// Keeps the first \p size values, or adds \p filling behind them.
    void resize(std::size_t size, Value filling)
    {
        if (size > m_capacity) {
            reserve(size);
        }
        for (std::size_t index = m_size; index < size; ++index) {
            m_values[index] = filling;
        }
        m_size = size;
    }

    /// The values, no larger than need be, for the caller to free(); null if there are none. Leaves nothing here.
    [[nodiscard]] Value* release()
    {
        if (m_size > 0) {
            reallocate(m_size);
        }
        m_size = 0;
        m_capacity = 0;
        return std::exchange(m_values, nullptr);
    }

private:
    void reserve(std::size_t least)
    {
        constexpr std::size_t first = 16;
        reallocate(std::max({least, m_capacity + m_capacity / 2, first}));
    }

    void reallocate(std::size_t capacity)
    {
        void* values = std::realloc(m_values, capacity * sizeof(Value));
        if (values == nullptr) {
            throw std::bad_alloc();
        }
        m_values = static_cast<Value*>(values);
        m_capacity = capacity;
    }

    Value* m_values = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

} // namespace analyzer
