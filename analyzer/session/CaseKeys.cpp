#include <analyzer/session/CaseKeys.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/data/Variable.h>

#include <vtkDataArray.h>
#include <vtkDoubleArray.h>
#include <vtkStringArray.h>

#include <boost/shared_ptr.hpp>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <unordered_map>
#include <utility>

namespace analyzer {

namespace {

constexpr std::size_t bitsInWord = 64;

// Fowler, Noll and Vo's hash, variant 1a, 64 bits.
constexpr std::uint64_t hashBegin = 14695981039346656037ULL;
constexpr std::uint64_t hashPrime = 1099511628211ULL;

std::uint64_t hashed(std::uint64_t hash, const void* data, std::size_t size)
{
    const auto* bytes = static_cast<const unsigned char*>(data);
    for (std::size_t i = 0; i < size; ++i) {
        hash = (hash ^ bytes[i]) * hashPrime;
    }
    return hash;
}

std::uint64_t hashed(std::uint64_t hash, double value)
{
    // Equal numbers have equal keys, and so have missing ones.
    if (value == 0.0) {
        value = 0.0;
    } else if (std::isnan(value)) {
        value = std::nan("");
    }
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    // Byte by byte would take eight times as long: the last step of MurmurHash3.
    constexpr std::uint64_t factors[] = {0xff51afd7ed558ccdULL, 0xc4ceb9fe1a85ec53ULL};
    constexpr int shift = 33;
    hash = (hash * hashPrime) ^ bits;
    for (const std::uint64_t factor : factors) {
        hash = (hash ^ (hash >> shift)) * factor;
    }
    return hash ^ (hash >> shift);
}

std::uint64_t hashed(std::uint64_t hash, const std::string& text)
{
    hash = hashed(hash, text.data(), text.size());
    const unsigned char end = 0xff; // in no UTF-8 text
    return hashed(hash, &end, sizeof(end));
}

/// Goes on with the hash of each row in \p rows by the row's value of \p variable.
void hashValues(const Variable& variable, const RowBitmap& rows, std::vector<std::uint64_t>& hashes)
{
    vtkAbstractArray& column = variable.column();
    std::uint64_t* hash = hashes.data();
    if (auto* const texts = vtkStringArray::SafeDownCast(&column)) {
        rows.forEach([&](std::size_t row) {
            *hash = hashed(*hash, texts->GetValue(static_cast<vtkIdType>(row)));
            ++hash;
        });
    } else if (auto* const reals = vtkDoubleArray::SafeDownCast(&column)) {
        const double* const values = reals->GetPointer(0);
        rows.forEach([&](std::size_t row) {
            *hash = hashed(*hash, values[row]);
            ++hash;
        });
    } else if (auto* const numbers = vtkDataArray::SafeDownCast(&column)) {
        rows.forEach([&](std::size_t row) {
            *hash = hashed(*hash, numbers->GetTuple1(static_cast<vtkIdType>(row)));
            ++hash;
        });
    }
}

bool areDifferent(std::vector<std::uint64_t> hashes)
{
    std::sort(hashes.begin(), hashes.end());
    return std::adjacent_find(hashes.begin(), hashes.end()) == hashes.end();
}

/// Whether no two cases have the same value of \p variable, and none has none.
bool tellsCasesApart(const Variable& variable, std::size_t caseCount)
{
    constexpr std::size_t sample = 1000;
    const auto isDifferentIn = [&variable](const RowBitmap& rows, std::size_t count) {
        std::vector<std::uint64_t> hashes(count, hashBegin);
        hashValues(variable, rows, hashes);
        return areDifferent(std::move(hashes));
    };
    if (variable.missingCount() > 0) {
        return false;
    }
    // Most variables fail soon.
    RowBitmap first(caseCount);
    first.setRange(0, std::min(sample, caseCount));
    return isDifferentIn(first, std::min(sample, caseCount))
        && (caseCount <= sample || isDifferentIn(RowBitmap(caseCount, true), caseCount));
}

/// The variables whose values tell cases apart; none if there are none.
std::vector<boost::shared_ptr<Variable>> keyVariables(const Project& project)
{
    std::vector<boost::shared_ptr<Variable>> inputs;
    for (const Variable::Nature nature :
         {Variable::Identifier, Variable::Input, Variable::Output}) {
        for (const WeakPtr<Variable>& handle : project.variables()) {
            const boost::shared_ptr<Variable> variable = handle.lock();
            if (variable->nature() != nature) {
                continue;
            }
            if (tellsCasesApart(*variable, project.caseCount())) {
                return {variable};
            }
            if (nature == Variable::Input) {
                inputs.push_back(variable);
            }
        }
        if (nature == Variable::Input && !inputs.empty()) {
            return inputs;
        }
    }
    return {};
}

} // namespace

CaseKeys caseKeys(const Project& project, const RowBitmap& rows)
{
    CaseKeys keys;
    keys.rows = RowBitmap(rows.rowCount());
    const std::size_t count = rows.count();
    if (count == 0 || count > CaseKeys::mostCases) {
        return keys;
    }
    const std::vector<boost::shared_ptr<Variable>> variables = keyVariables(project);
    if (variables.empty()) {
        return keys;
    }
    std::vector<std::uint64_t> hashes(project.caseCount(), hashBegin);
    for (const boost::shared_ptr<Variable>& variable : variables) {
        hashValues(*variable, RowBitmap(project.caseCount(), true), hashes);
    }
    std::unordered_map<std::uint64_t, std::size_t> uses;
    uses.reserve(count);
    rows.forEach([&](std::size_t row) { uses.try_emplace(hashes[row], 0); });
    for (const std::uint64_t hash : hashes) {
        const auto found = uses.find(hash);
        if (found != uses.end()) {
            ++found->second;
        }
    }
    rows.forEach([&](std::size_t row) {
        if (uses[hashes[row]] == 1) {
            keys.rows.set(row);
            keys.hashes.push_back(hashes[row]);
        }
    });
    if (!keys.hashes.empty()) {
        for (const boost::shared_ptr<Variable>& variable : variables) {
            keys.variables.push_back(variable->name());
        }
    }
    return keys;
}

CaseMatch::CaseMatch(std::size_t caseCount)
    : m_caseCount(caseCount)
    , m_isSame(true)
{}

CaseMatch::CaseMatch(const CaseKeys& keys, const Project& project)
    : m_caseCount(project.caseCount())
    , m_isSame(false)
    , m_known(keys.rows)
    , m_rows(keys.hashes.size())
{
    m_ranks.reserve(m_known.words().size());
    std::size_t rank = 0;
    for (const std::uint64_t word : m_known.words()) {
        m_ranks.push_back(rank);
        rank += static_cast<std::size_t>(__builtin_popcountll(word));
    }

    std::vector<boost::shared_ptr<Variable>> variables;
    for (const std::string& name : keys.variables) {
        const boost::shared_ptr<Variable> variable = project.variable(name).lock();
        if (!variable) {
            return; // nobody has a key any more
        }
        variables.push_back(variable);
    }
    if (variables.empty()) {
        return;
    }
    const RowBitmap all(m_caseCount, true);
    std::vector<std::uint64_t> present(m_caseCount, hashBegin);
    for (const boost::shared_ptr<Variable>& variable : variables) {
        hashValues(*variable, all, present);
    }

    // A key that two cases have, in either study, finds none.
    std::unordered_map<std::uint64_t, std::optional<std::size_t>> placeOf;
    for (std::size_t i = 0; i < keys.hashes.size(); ++i) {
        const auto [place, isNew] = placeOf.try_emplace(keys.hashes[i], i);
        if (!isNew) {
            place->second.reset();
        }
    }
    std::vector<bool> isTaken(keys.hashes.size());
    for (std::size_t row = 0; row < m_caseCount; ++row) {
        const auto found = placeOf.find(present[row]);
        if (found == placeOf.end() || !found->second) {
            continue;
        }
        const std::size_t place = *found->second;
        if (isTaken[place]) {
            m_rows[place].reset();
        } else {
            m_rows[place] = row;
            isTaken[place] = true;
        }
    }
}

std::optional<std::size_t> CaseMatch::row(std::size_t row) const
{
    if (m_isSame) {
        return row;
    }
    if (!m_known.contains(row)) {
        return {};
    }
    const std::size_t word = row / bitsInWord;
    const std::uint64_t before =
        m_known.words()[word] & ((std::uint64_t(1) << (row % bitsInWord)) - 1);
    return m_rows[m_ranks[word] + static_cast<std::size_t>(__builtin_popcountll(before))];
}

RowBitmap CaseMatch::rows(const RowBitmap& rows, RowBitmap& lost) const
{
    if (m_isSame) {
        return rows;
    }
    RowBitmap result(m_caseCount);
    rows.forEach([&](std::size_t saved) {
        if (const std::optional<std::size_t> present = row(saved)) {
            result.set(*present);
        } else {
            lost.set(saved);
        }
    });
    return result;
}

} // namespace analyzer
