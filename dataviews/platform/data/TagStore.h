#pragma once

#include <dataviews/platform/data/PlatformDataExport.h>
#include <dataviews/platform/data/RowBitmap.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

/// The tags of a study and the cases that carry them, a bitmap a tag.
///
/// Shared by a project and its auxiliary files, which keep numbers of tags instead of names. The number of a
/// removed tag is never given again.
class DATAVIEWS_PLATFORM_DATA_EXPORT TagStore
{
public:
    using TagNumber = std::uint32_t;

    explicit TagStore(std::size_t caseCount);

    /// The number of the tag \p name, which is new or there already.
    TagNumber add(const std::string& name);
    void remove(const std::string& name);

    [[nodiscard]] std::optional<TagNumber> find(const std::string& name) const;

    /// The name of tag \p tag, which add() gave; empty once removed.
    [[nodiscard]] const std::string& name(TagNumber tag) const { return m_names[tag]; }

    /// The rows of the cases with tag \p tag.
    [[nodiscard]] const RowBitmap& cases(TagNumber tag) const { return m_cases[tag]; }

    [[nodiscard]] RowBitmap& cases(TagNumber tag) { return m_cases[tag]; }

    /// How many numbers were given, those of removed tags included.
    [[nodiscard]] TagNumber size() const { return static_cast<TagNumber>(m_names.size()); }

private:
    std::size_t m_caseCount;
    std::vector<std::string> m_names;
    std::vector<RowBitmap> m_cases;
    std::unordered_map<std::string, TagNumber> m_numbers;
};
