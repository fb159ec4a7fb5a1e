#pragma once

#include <dataviews/platform/data/PlatformDataExport.h>

#include <string>
#include <vector>

/// A named list of tags. Owned and changed by its project, handed out as weak handles.
class DATAVIEWS_PLATFORM_DATA_EXPORT TagGroup
{
public:
    explicit TagGroup(std::string name);
    TagGroup(const TagGroup&) = delete;
    TagGroup& operator=(const TagGroup&) = delete;
    ~TagGroup();

    /// Unique in its project.
    [[nodiscard]] const std::string& name() const { return m_name; }

    /// The names of its tags, in the order of adding.
    [[nodiscard]] const std::vector<std::string>& tags() const { return m_tags; }

private:
    friend class Project;

    std::string m_name;
    std::vector<std::string> m_tags;
};
