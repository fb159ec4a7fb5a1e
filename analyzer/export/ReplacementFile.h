#pragma once

#include <cstddef>
#include <string>

namespace analyzer {

/// A file that takes the place of another as a whole or not at all.
///
/// What is written goes to a temporary file in the same folder, which commit() brings to the disk and renames; until
/// then, and after any error, the old file is what it was. A link is kept: the file it points to is replaced, with its
/// permissions. What is no regular file, such as a pipe or a device, is written to directly. All functions throw
/// ExceptionBase with a sentence that names the path and the reason.
class ReplacementFile
{
public:
    /// \p path is UTF-8; its folder must be there.
    explicit ReplacementFile(std::string path);
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    /// Without a commit() the temporary file vanishes.
    ~ReplacementFile();

    void write(const char* data, std::size_t size);

    /// Brings everything to the disk and puts it in place. To be called once, as the last.
    void commit();

private:
    void openTemporary(unsigned mode, bool keepMode);
    void closeFile();
    [[noreturn]] void fail(int error) const;

    std::string m_path; ///< as given, for messages
    std::string m_target; ///< what is replaced, behind all links
    std::string m_temporary; ///< empty when written to directly
    int m_descriptor = -1;
};

} // namespace analyzer
