#include <analyzer/study/ReadProgress.h>
#include <analyzer/study/variableNature.h>

#include <vtkAbstractArray.h>
#include <vtkDoubleArray.h>
#include <vtkStringArray.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace analyzer {

namespace {

/// Whether the \p count values from \p values on differ from each other. A hash table of rows with open addressing,
/// left at the first repetition, which comes early in most columns that have any.
template <class Value>
bool allDiffer(const Value* values, std::size_t count, const ReadProgress& progress)
{
    if (std::adjacent_find(values, values + count, std::greater_equal<Value>()) == values + count) {
        return true; // in ascending order, as most identifiers are
    }
    constexpr std::uint32_t free = 0xffffffffU;
    std::size_t slots = 16;
    while (slots < 2 * count) {
        slots *= 2;
    }
    std::vector<std::uint32_t> rows(slots, free);
    const std::hash<Value> hash;
    for (std::size_t row = 0; row < count; ++row) {
        progress.throwIfCancelledAt(row);
        // The hash of numbers leaves the low bits alike.
        constexpr std::uint64_t spread = 0x9e3779b97f4a7c15U;
        constexpr unsigned highHalf = 32;
        std::size_t slot =
            ((static_cast<std::uint64_t>(hash(values[row])) * spread) >> highHalf) & (slots - 1);
        while (rows[slot] != free) {
            if (values[rows[slot]] == values[row]) {
                return false;
            }
            slot = (slot + 1) & (slots - 1);
        }
        rows[slot] = static_cast<std::uint32_t>(row);
    }
    return true;
}

bool allDiffer(const Variable& variable, const ReadProgress& progress)
{
    const auto count = static_cast<std::size_t>(variable.column().GetNumberOfTuples());
    if (vtkStringArray* texts = variable.textColumn()) {
        return allDiffer<std::string>(texts->GetPointer(0), count, progress);
    }
    return allDiffer(variable.realColumn()->GetPointer(0), count, progress);
}

} // namespace

Variable::Nature variableNature(const Variable& variable, const ReadProgress& progress)
{
    const auto cases = static_cast<std::size_t>(variable.column().GetNumberOfTuples());
    const std::size_t distinct = variable.distinctValueCount();
    if (distinct >= 2 && distinct <= Variable::maxDistinctValues && distinct <= cases / 2) {
        return Variable::Input;
    }
    const bool mayDiffer = distinct == cases || distinct > Variable::maxDistinctValues;
    const bool mayIdentify = mayDiffer && (variable.textColumn() != nullptr || variable.isWhole());
    if (mayIdentify && variable.missingCount() == 0 && allDiffer(variable, progress)) {
        return Variable::Identifier;
    }
    return Variable::Output;
}

} // namespace analyzer
