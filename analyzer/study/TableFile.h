#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace analyzer {

/// The table of a study on disk, read in chunks as often as need be, so that memory does not grow with the file.
///
/// Opening never waits: anything but a regular file, such as a pipe or a device, is refused before it is opened.
class TableFile
{
public:
    /// \p path is UTF-8. \p chunkBytes is how much next() gives at most, at least 1.
    /// \throws StudyError if there is no such file, or it is no regular file or not readable.
    TableFile(std::string path, std::size_t chunkBytes);
    TableFile(const TableFile&) = delete;
    TableFile& operator=(const TableFile&) = delete;
    ~TableFile();

    [[nodiscard]] const std::string& path() const { return m_path; }

    /// Bytes, as they were when the file was opened.
    [[nodiscard]] std::size_t size() const { return m_size; }

    /// Goes to byte \p begin; next() then stops before byte \p end.
    void start(std::size_t begin, std::size_t end);

    /// The next bytes, valid until the next call; none at the end.
    /// \throws StudyError if they cannot be read or the file became shorter.
    [[nodiscard]] std::string_view next();

    /// Reads \p size bytes from byte \p place on into \p bytes. Any number of threads may do so at a time.
    /// \throws StudyError likewise.
    void read(std::size_t place, char* bytes, std::size_t size) const;

    /// \throws StudyError if the file changed since it was opened.
    void requireUnchanged() const;

    static constexpr std::size_t defaultChunkBytes = std::size_t{256} << 10U;

private:
    [[nodiscard]] std::size_t readSome(std::size_t place, char* bytes, std::size_t size) const;

    std::string m_path;
    std::vector<char> m_chunk;
    int m_descriptor = -1;
    std::size_t m_size = 0;
    long long m_changedSeconds = 0;
    long m_changedNanoseconds = 0;
    std::size_t m_place = 0;
    std::size_t m_end = 0;
};

} // namespace analyzer
