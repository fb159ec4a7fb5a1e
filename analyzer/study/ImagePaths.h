#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_map>

namespace analyzer {

/// Makes absolute paths of those in an image column, and keeps them inside the study's folder.
class ImagePaths
{
public:
    /// \p folder is absolute, with links followed.
    explicit ImagePaths(const std::string& folder);

    /// What becomes of the text of a cell.
    struct Resolved
    {
        std::string absolutePath; ///< empty if refused
        const char* refusal = ""; ///< "leaves the study's folder" and the like
    };

    /// \p text is relative to the folder, or absolute; "/" or "\" between its parts, blanks around it are nothing. It
    /// may name a file that does not exist. Refused is what does not end like an image, what lies outside the folder
    /// once "..", and the links that exist, are followed, and any web address.
    [[nodiscard]] Resolved resolve(std::string_view text);

    /// Whether \p text ends like the name of an image file, in any case; a question mark ends a web address.
    [[nodiscard]] static bool endsLikeImage(std::string_view text);

    /// Whether \p text begins with a scheme, such as "https://".
    [[nodiscard]] static bool isWebAddress(std::string_view text);

private:
    [[nodiscard]] std::string plainPath(std::string_view text);
    [[nodiscard]] std::string plainFolder(std::string_view folder);
    [[nodiscard]] bool isInside(const std::filesystem::path& path) const;
    [[nodiscard]] bool leadsInside(const std::filesystem::path& path) const;
    [[nodiscard]] bool folderLeadsInside(const std::filesystem::path& folder);

    std::filesystem::path m_folder;
    std::unordered_map<std::string, bool> m_folders; ///< whether each leads inside, links followed
    std::unordered_map<std::string, std::string> m_plainFolders; ///< what plainFolder() has given
};

} // namespace analyzer
