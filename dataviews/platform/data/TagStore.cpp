#include <dataviews/platform/data/TagStore.h>

TagStore::TagStore(std::size_t caseCount)
    : m_caseCount(caseCount)
{}

TagStore::TagNumber TagStore::add(const std::string& name)
{
    const auto [place, isNew] = m_numbers.try_emplace(name, size());
    if (isNew) {
        m_names.push_back(name);
        m_cases.emplace_back(m_caseCount);
    }
    return place->second;
}

void TagStore::remove(const std::string& name)
{
    const auto place = m_numbers.find(name);
    if (place == m_numbers.end()) {
        return;
    }
    m_names[place->second].clear();
    m_cases[place->second] = RowBitmap();
    m_numbers.erase(place);
}

std::optional<TagStore::TagNumber> TagStore::find(const std::string& name) const
{
    const auto place = m_numbers.find(name);
    return place == m_numbers.end() ? std::nullopt : std::optional<TagNumber>(place->second);
}
