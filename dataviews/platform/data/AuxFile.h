#pragma once

#include <dataviews/platform/data/PlatformDataExport.h>
#include <dataviews/platform/data/TagStore.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <string>
#include <vector>

/// A file that belongs to a case, such as a picture of its result.
///
/// Owned by its project and handed out as weak handles. Carries its own tags and those of its case.
class DATAVIEWS_PLATFORM_DATA_EXPORT AuxFile
{
public:
    /// \p row is that of its case; \p tags keeps the names of tags and the tags of cases.
    AuxFile(std::string filePath, std::size_t row, boost::shared_ptr<const TagStore> tags);
    AuxFile(const AuxFile&) = delete;
    AuxFile& operator=(const AuxFile&) = delete;
    ~AuxFile();

    /// Absolute, UTF-8. The file need not exist.
    [[nodiscard]] const std::string& filePath() const { return m_filePath; }

    /// The row of the case in the table of cases.
    [[nodiscard]] std::size_t row() const { return m_row; }

    /// Whether the file or its case carries the tag \p name.
    [[nodiscard]] bool hasTag(const std::string& name) const;

    /// Whether the file itself carries the tag \p name.
    [[nodiscard]] bool hasOwnTag(const std::string& name) const;

    /// The tags of the file and of its case, sorted, each once.
    [[nodiscard]] std::vector<std::string> tags() const;

    /// The tags of the file alone, sorted.
    [[nodiscard]] std::vector<std::string> ownTags() const;

private:
    friend class Project;

    [[nodiscard]] bool hasOwnTag(TagStore::TagNumber tag) const;

    std::string m_filePath;
    boost::shared_ptr<const TagStore> m_tags;
    std::vector<TagStore::TagNumber> m_ownTags; ///< those of removed tags included
    std::size_t m_row;
};
