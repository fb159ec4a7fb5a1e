#include <dataviews/platform/data/TagStore.h>

#include <utility>

TagStore::TagStore(std::size_t caseCount)
    : m_caseCount(caseCount)
{}

TagStore::TagNumber TagStore::add(const std::string& name)
{
    const auto [place, isNew] = m_numbers.try_emplace(name, size());
    if (isNew) {
        m_names.push_back(name);
        m_cases.emplace_back(m_caseCount);
        m_fileCounts.push_back(0);
    }
    return place->second;
}

RowBitmap TagStore::take(const std::string& name)
{
    const auto place = m_numbers.find(name);
    m_names[place->second].clear();
    RowBitmap cases = std::exchange(m_cases[place->second], RowBitmap());
    m_numbers.erase(place);
    return cases;
}

void TagStore::restore(const std::string& name, TagNumber tag, RowBitmap cases)
{
    m_numbers.emplace(name, tag);
    m_names[tag] = name;
    m_cases[tag] = std::move(cases);
}

void TagStore::countFile(TagNumber tag, bool carry)
{
    m_fileCounts[tag] += carry ? 1 : std::size_t(-1);
}

std::optional<TagStore::TagNumber> TagStore::find(const std::string& name) const
{
    const auto place = m_numbers.find(name);
    return place == m_numbers.end() ? std::nullopt : std::optional<TagNumber>(place->second);
}
