#include <dataviews/platform/data/AuxFile.h>

#include <algorithm>
#include <utility>

AuxFile::AuxFile(std::string filePath, std::size_t row, boost::shared_ptr<const TagStore> tags)
    : m_filePath(std::move(filePath))
    , m_tags(std::move(tags))
    , m_row(row)
{}

AuxFile::~AuxFile() = default;

bool AuxFile::hasTag(const std::string& name) const
{
    const auto tag = m_tags->find(name);
    return tag && (hasOwnTag(*tag) || m_tags->cases(*tag).contains(m_row));
}

bool AuxFile::hasOwnTag(const std::string& name) const
{
    const auto tag = m_tags->find(name);
    return tag && hasOwnTag(*tag);
}

std::vector<std::string> AuxFile::tags() const
{
    std::vector<std::string> names;
    for (TagStore::TagNumber tag = 0; tag < m_tags->size(); ++tag) {
        const std::string& name = m_tags->name(tag);
        if (!name.empty() && (hasOwnTag(tag) || m_tags->cases(tag).contains(m_row))) {
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> AuxFile::ownTags() const
{
    std::vector<std::string> names;
    for (const TagStore::TagNumber tag : m_ownTags) {
        if (!m_tags->name(tag).empty()) {
            names.push_back(m_tags->name(tag));
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool AuxFile::hasOwnTag(TagStore::TagNumber tag) const
{
    return std::find(m_ownTags.begin(), m_ownTags.end(), tag) != m_ownTags.end();
}
