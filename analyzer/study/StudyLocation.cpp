#include <analyzer/study/StudyError.h>
#include <analyzer/study/StudyLocation.h>
#include <analyzer/study/sentenceText.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

namespace analyzer {

namespace {

namespace fs = std::filesystem;

constexpr const char* tableName = "data.csv";

bool hasExtension(const fs::path& path, const std::string& expected)
{
    std::string extension = path.extension().u8string();
    std::transform(extension.begin(), extension.end(), extension.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return extension == expected;
}

std::vector<std::string> csvFilesIn(const fs::path& folder)
{
    std::error_code error;
    std::vector<std::string> names;
    fs::directory_iterator place(folder, error);
    while (!error && place != fs::directory_iterator()) {
        std::error_code ignored;
        if (hasExtension(place->path(), ".csv") && place->is_regular_file(ignored)) {
            names.push_back(place->path().filename().u8string());
        }
        place.increment(error);
    }
    if (error) {
        throw StudyError(
            folder.u8string(),
            "the folder cannot be read; the system says " + inQuotes(error.message()));
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string listed(const std::vector<std::string>& names)
{
    constexpr std::size_t maxNamed = 5;
    std::string list;
    for (std::size_t index = 0; index < std::min(names.size(), maxNamed); ++index) {
        list += (index == 0 ? "" : ", ") + inQuotes(names[index]);
    }
    return names.size() > maxNamed
        ? list + " and " + std::to_string(names.size() - maxNamed) + " more"
        : list;
}

fs::path tableIn(const fs::path& folder)
{
    std::error_code ignored;
    if (fs::exists(folder / tableName, ignored)) {
        return folder / tableName;
    }
    if (hasExtension(folder, ".cdb")) {
        throw StudyError(folder.u8string(), "this Cinema database has no data.csv");
    }
    const std::vector<std::string> names = csvFilesIn(folder);
    if (names.empty()) {
        throw StudyError(folder.u8string(), "the folder holds no CSV file");
    }
    if (names.size() > 1) {
        throw StudyError(
            folder.u8string(),
            "the folder holds several CSV files and no data.csv; choose one of " + listed(names));
    }
    return folder / fs::u8path(names.front());
}

std::string studyName(const fs::path& folder, const fs::path& table, bool isFolder)
{
    if ((!isFolder && table.filename() != tableName) || !folder.has_filename()) {
        return table.stem().u8string();
    }
    return (hasExtension(folder, ".cdb") ? folder.stem() : folder.filename()).u8string();
}

} // namespace

StudyLocation locateStudy(const std::string& path)
{
    if (path.empty() || path.find('\0') != std::string::npos) {
        throw StudyError(path, "this is no path of a file or folder");
    }
    std::error_code error;
    const fs::path given = fs::absolute(fs::u8path(path), error);
    const bool isFolder = !error && fs::is_directory(given, error);
    if (error && error != std::errc::no_such_file_or_directory) {
        throw StudyError(path, "the system says " + inQuotes(error.message()));
    }
    if (!isFolder && !fs::exists(given, error)) {
        throw StudyError(path, "there is no such file or folder");
    }
    const fs::path folder = fs::canonical(isFolder ? given : given.parent_path(), error);
    if (error) {
        throw StudyError(path, "the system says " + inQuotes(error.message()));
    }
    const fs::path table = isFolder ? tableIn(folder) : folder / given.filename();
    StudyLocation location;
    location.name = studyName(folder, table, isFolder);
    location.tablePath = table.u8string();
    location.folder = folder.u8string();
    return location;
}

} // namespace analyzer
