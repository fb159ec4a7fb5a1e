#include <analyzer/views/CaseTableOrder.h>

#include <QtGlobal>

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkStringArray.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

namespace analyzer {

namespace {

/// A value that sorts as an unsigned number, and the row it came from.
struct NumberEntry
{
    std::uint64_t key;
    int row;
};

/// A text with its first bytes at hand: most comparisons need no look at the text itself.
struct TextEntry
{
    std::uint64_t prefix;
    const std::string* text;
    int row;
};

bool isCancelled(const std::atomic<bool>* cancelled)
{
    return cancelled != nullptr && cancelled->load(std::memory_order_relaxed);
}

constexpr std::uint64_t signBit = std::uint64_t(1) << 63U;

std::uint64_t ascendingKey(double value)
{
    const double withoutMinusZero = value + 0.0;
    std::uint64_t bits = 0;
    std::memcpy(&bits, &withoutMinusZero, sizeof bits);
    return (bits & signBit) != 0 ? ~bits : bits | signBit;
}

std::uint64_t ascendingKey(int value)
{
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(value)) ^ signBit;
}

constexpr bool isMissing(int)
{
    return false;
}

bool isMissing(double value)
{
    return std::isnan(value);
}

/// Stable, from the lowest digit up; digits that are the same in all keys cost nothing.
void radixSort(std::vector<NumberEntry>& entries, const std::atomic<bool>* cancelled)
{
    constexpr unsigned digitBits = 11;
    constexpr std::size_t digitCount = (64 + digitBits - 1) / digitBits;
    constexpr std::size_t bucketCount = std::size_t(1) << digitBits;
    const auto digit = [](std::uint64_t key, std::size_t place) {
        return static_cast<std::size_t>(key >> (place * digitBits)) & (bucketCount - 1);
    };

    std::vector<std::array<std::size_t, bucketCount>> counts(digitCount);
    for (const NumberEntry& entry : entries) {
        for (std::size_t place = 0; place < digitCount; ++place) {
            ++counts[place][digit(entry.key, place)];
        }
    }
    std::vector<NumberEntry> buffer(entries.size());
    for (std::size_t place = 0; place < digitCount; ++place) {
        if (isCancelled(cancelled)) {
            return;
        }
        std::array<std::size_t, bucketCount>& starts = counts[place];
        if (entries.empty() || starts[digit(entries.front().key, place)] == entries.size()) {
            continue;
        }
        std::size_t start = 0;
        for (std::size_t& bucket : starts) {
            start += std::exchange(bucket, start);
        }
        for (const NumberEntry& entry : entries) {
            buffer[starts[digit(entry.key, place)]++] = entry;
        }
        entries.swap(buffer);
    }
}

template <class Number>
std::vector<int> sortedRows(
    const Number* values, int count, Qt::SortOrder order, const std::atomic<bool>* cancelled)
{
    const std::uint64_t flip = order == Qt::AscendingOrder ? 0 : ~std::uint64_t(0);
    std::vector<NumberEntry> entries;
    entries.reserve(static_cast<std::size_t>(count));
    std::vector<int> missing;
    for (int row = 0; row < count; ++row) {
        if (isMissing(values[row])) {
            missing.push_back(row);
        } else {
            entries.push_back({ascendingKey(values[row]) ^ flip, row});
        }
    }
    radixSort(entries, cancelled);

    std::vector<int> rows;
    rows.reserve(static_cast<std::size_t>(count));
    for (const NumberEntry& entry : entries) {
        rows.push_back(entry.row);
    }
    rows.insert(rows.end(), missing.begin(), missing.end());
    return rows;
}

std::uint64_t prefix(const std::string& text)
{
    std::uint64_t result = 0;
    const std::size_t length = std::min(text.size(), sizeof result);
    for (std::size_t i = 0; i < sizeof result; ++i) {
        result = (result << 8U) | (i < length ? static_cast<unsigned char>(text[i]) : 0U);
    }
    return result;
}

/// Merges sorted blocks instead of sorting at one go, so that it can stop in between.
template <class Less>
void mergeSort(std::vector<TextEntry>& entries, Less less, const std::atomic<bool>* cancelled)
{
    constexpr std::size_t firstBlock = 8192;
    const auto at = [](std::vector<TextEntry>& list, std::size_t place) {
        return list.begin() + static_cast<std::ptrdiff_t>(std::min(place, list.size()));
    };
    for (std::size_t begin = 0; begin < entries.size(); begin += firstBlock) {
        if (isCancelled(cancelled)) {
            return;
        }
        std::stable_sort(at(entries, begin), at(entries, begin + firstBlock), less);
    }
    std::vector<TextEntry> buffer(entries.size());
    for (std::size_t block = firstBlock; block < entries.size(); block *= 2) {
        for (std::size_t begin = 0; begin < entries.size(); begin += 2 * block) {
            if (isCancelled(cancelled)) {
                return;
            }
            const auto middle = at(entries, begin + block);
            std::merge(
                at(entries, begin),
                middle,
                middle,
                at(entries, begin + 2 * block),
                at(buffer, begin),
                less);
        }
        entries.swap(buffer);
    }
}

std::vector<int> sortedRows(
    const vtkStdString* values, int count, Qt::SortOrder order, const std::atomic<bool>* cancelled)
{
    std::vector<TextEntry> entries;
    entries.reserve(static_cast<std::size_t>(count));
    std::vector<int> missing;
    for (int row = 0; row < count; ++row) {
        const std::string& text = values[row];
        if (text.empty()) {
            missing.push_back(row);
        } else {
            entries.push_back({prefix(text), &text, row});
        }
    }
    const auto less = [](const TextEntry& left, const TextEntry& right) {
        return left.prefix != right.prefix ? left.prefix < right.prefix : *left.text < *right.text;
    };
    if (order == Qt::AscendingOrder) {
        mergeSort(entries, less, cancelled);
    } else {
        mergeSort(
            entries,
            [less](const TextEntry& left, const TextEntry& right) { return less(right, left); },
            cancelled);
    }

    std::vector<int> rows;
    rows.reserve(static_cast<std::size_t>(count));
    for (const TextEntry& entry : entries) {
        rows.push_back(entry.row);
    }
    rows.insert(rows.end(), missing.begin(), missing.end());
    return rows;
}

} // namespace

CaseTableOrder CaseTableOrder::sorted(
    vtkAbstractArray& column, Qt::SortOrder order, const std::atomic<bool>* cancelled)
{
    const int count = static_cast<int>(column.GetNumberOfTuples());
    CaseTableOrder result;
    if (auto* reals = vtkDoubleArray::SafeDownCast(&column)) {
        result.m_tableRows = sortedRows(reals->GetPointer(0), count, order, cancelled);
    } else if (auto* integers = vtkIntArray::SafeDownCast(&column)) {
        result.m_tableRows = sortedRows(integers->GetPointer(0), count, order, cancelled);
    } else if (auto* texts = vtkStringArray::SafeDownCast(&column)) {
        result.m_tableRows = sortedRows(texts->GetPointer(0), count, order, cancelled);
    } else {
        Q_ASSERT_X(false, "CaseTableOrder::sorted", "the column is of an unknown class");
    }
    result.m_viewRows.resize(result.m_tableRows.size());
    for (std::size_t viewRow = 0; viewRow < result.m_tableRows.size(); ++viewRow) {
        result.m_viewRows[static_cast<std::size_t>(result.m_tableRows[viewRow])] =
            static_cast<int>(viewRow);
    }
    return result;
}

} // namespace analyzer
