#include <analyzer/study/ImagePaths.h>

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

#include <sys/stat.h>

namespace analyzer {

namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 18> imageEndings = {
    "png",
    "jpg",
    "jpeg",
    "jpe",
    "jp2",
    "gif",
    "bmp",
    "tif",
    "tiff",
    "webp",
    "ppm",
    "pgm",
    "pbm",
    "pnm",
    "xbm",
    "xpm",
    "tga",
    "ico"};

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isLetter(char c)
{
    return lower(c) >= 'a' && lower(c) <= 'z';
}

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos
        ? std::string_view()
        : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool hasDriveLetter(std::string_view text)
{
    return text.size() > 2 && isLetter(text[0]) && text[1] == ':'
        && (text[2] == '/' || text[2] == '\\');
}

} // namespace

ImagePaths::ImagePaths(const std::string& folder)
    : m_folder(fs::u8path(folder))
{
    m_folders.emplace(m_folder.native(), true);
}

ImagePaths::Resolved ImagePaths::resolve(std::string_view text)
{
    const std::string_view trimmedText = trimmed(text);
    if (isWebAddress(trimmedText)) {
        return {{}, "is a web address and is not fetched"};
    }
    if (!endsLikeImage(trimmedText)) {
        return {{}, "does not end like the name of an image"};
    }
    if (std::string path = plainPath(trimmedText); !path.empty()) {
        return {std::move(path), ""};
    }
    constexpr const char* leaves = "leaves the study's folder";
    constexpr std::size_t maxPathBytes = 4096;
    if (trimmedText.size() > maxPathBytes) {
        return {{}, "is longer than a path can be"};
    }
    if (hasDriveLetter(trimmedText) || trimmedText.find('\0') != std::string_view::npos) {
        return {{}, leaves};
    }
    std::string slashes(trimmedText);
    std::replace(slashes.begin(), slashes.end(), '\\', '/');
    const fs::path given = fs::u8path(slashes);
    fs::path path = (m_folder / given).lexically_normal();
    if (given.is_absolute() && !isInside(path)) {
        // The same folder may be written another way, through a link.
        std::error_code error;
        path = fs::weakly_canonical(given, error);
    }
    if (!isInside(path) || !folderLeadsInside(path.parent_path()) || !leadsInside(path)) {
        return {{}, leaves};
    }
    return {path.u8string(), ""};
}

/// The path of \p text if that is as simple as most are: names below the study's folder, the last of which is no link;
/// else empty. Taking paths apart would cost more than looking at their files.
std::string ImagePaths::plainPath(std::string_view text)
{
    constexpr std::size_t maxBytes = 1024;
    if (text.empty() || text.size() > maxBytes
        || text.find_first_of(std::string_view("\\:\0", 3)) != std::string_view::npos) {
        return {};
    }
    const std::size_t lastSlash = text.rfind('/');
    const std::string_view folder =
        lastSlash == std::string_view::npos ? "" : text.substr(0, lastSlash);
    const std::string_view name = text.substr(folder.empty() ? 0 : lastSlash + 1);
    if (lastSlash == 0 || name.empty() || name.front() == '.') {
        return {};
    }
    const auto known = m_plainFolders.find(std::string(folder));
    const auto place = known != m_plainFolders.end()
        ? known
        : m_plainFolders.emplace(std::string(folder), plainFolder(folder)).first;
    if (place->second.empty()) {
        return {};
    }
    std::string path = place->second;
    path += name;
    struct stat status = {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode) ? std::string() : path;
}

/// The absolute path of \p folder, one of plainPath(), up to its last slash; empty if it is not simple.
std::string ImagePaths::plainFolder(std::string_view folder)
{
    const fs::path given = fs::u8path(folder);
    const fs::path path = (m_folder / given).lexically_normal();
    const bool isPlain = given.is_relative() && given == given.lexically_normal()
        && (folder.empty() || (isInside(path) && folderLeadsInside(path)));
    return isPlain ? (path / "").u8string() : std::string();
}

bool ImagePaths::endsLikeImage(std::string_view text)
{
    text = trimmed(text);
    if (isWebAddress(text)) {
        text = text.substr(0, text.find_first_of("?#"));
    }
    const std::size_t point = text.rfind('.');
    if (point == std::string_view::npos) {
        return false;
    }
    const std::string_view ending = text.substr(point + 1);
    return std::any_of(imageEndings.begin(), imageEndings.end(), [ending](std::string_view known) {
        return std::equal(
            known.begin(), known.end(), ending.begin(), ending.end(), [](char k, char c) {
                return k == lower(c);
            });
    });
}

bool ImagePaths::isWebAddress(std::string_view text)
{
    text = trimmed(text);
    const std::size_t colon = text.find(':');
    // One letter before the colon is a drive.
    if (colon == std::string_view::npos || colon < 2 || !isLetter(text.front())) {
        return false;
    }
    const std::string_view scheme = text.substr(0, colon);
    const bool isScheme = std::all_of(scheme.begin(), scheme.end(), [](char c) {
        return isLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
    });
    return isScheme && (text.substr(colon + 1, 2) == "//" || scheme == "data" || scheme == "file");
}

bool ImagePaths::isInside(const fs::path& path) const
{
    const auto [folderEnd, pathEnd] =
        std::mismatch(m_folder.begin(), m_folder.end(), path.begin(), path.end());
    return folderEnd == m_folder.end() && pathEnd != path.end();
}

/// Looks at the last part of \p path only; a link must lead to something, or nobody knows what it will lead to.
bool ImagePaths::leadsInside(const fs::path& path) const
{
    std::error_code error;
    if (fs::symlink_status(path, error).type() != fs::file_type::symlink) {
        return true;
    }
    const fs::path target = fs::canonical(path, error);
    return !error && (isInside(target) || target == m_folder);
}

bool ImagePaths::folderLeadsInside(const fs::path& folder)
{
    const auto known = m_folders.find(folder.native());
    if (known != m_folders.end()) {
        return known->second;
    }
    // Ends at the study's folder, which is known.
    const bool inside = folderLeadsInside(folder.parent_path()) && leadsInside(folder);
    m_folders.emplace(folder.native(), inside);
    return inside;
}

} // namespace analyzer
