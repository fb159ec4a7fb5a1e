#pragma once

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include <stdlib.h>

/// A folder that vanishes with its content.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "dataviews-study-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        m_path = std::filesystem::canonical(pattern);
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

    /// Writes \p content to the file \p name, making its folders, and gives its path.
    std::string write(const std::string& name, const std::string& content) const
    {
        const std::filesystem::path file = m_path / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << content;
        return file.string();
    }

private:
    std::filesystem::path m_path;
};
