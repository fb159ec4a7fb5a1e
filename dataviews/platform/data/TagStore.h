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

    /// Forgets the tag \p name, which must be there, and gives its cases; files keep its number.
    RowBitmap take(const std::string& name);

    /// Puts a tag back that was taken: \p name, which is free, gets its \p tag number and \p cases again.
    void restore(const std::string& name, TagNumber tag, RowBitmap cases);

    [[nodiscard]] std::optional<TagNumber> find(const std::string& name) const;

    /// The name of tag \p tag, which add() gave; empty once removed.
    [[nodiscard]] const std::string& name(TagNumber tag) const { return m_names[tag]; }

    /// The rows of the cases with tag \p tag.
    [[nodiscard]] const RowBitmap& cases(TagNumber tag) const { return m_cases[tag]; }

    [[nodiscard]] RowBitmap& cases(TagNumber tag) { return m_cases[tag]; }

    /// How many files carry tag \p tag themselves; stays as it is while the tag is removed.
    [[nodiscard]] std::size_t fileCount(TagNumber tag) const { return m_fileCounts[tag]; }

    /// A file got tag \p tag, or lost it.
    void countFile(TagNumber tag, bool carry);

    /// How many numbers were given, those of removed tags included.
    [[nodiscard]] TagNumber size() const { return static_cast<TagNumber>(m_names.size()); }

private:
    std::size_t m_caseCount;
    std::vector<std::string> m_names;
    std::vector<RowBitmap> m_cases;
    std::vector<std::size_t> m_fileCounts;
    std::unordered_map<std::string, TagNumber> m_numbers;
};
