#pragma once

#include <dataviews/platform/property/ExceptionBase.h>

#include <cstddef>
#include <optional>
#include <string>

namespace analyzer {

/// A study that cannot be read; the message is one sentence with the file, the line where there is one, and the reason.
class StudyError : public ExceptionBase
{
public:
    /// \p reason is a sentence without its full stop, such as "the file is empty".
    StudyError(const std::string& path, const std::string& reason);

    /// \p line counts from 1, as editors do.
    StudyError(const std::string& path, std::size_t line, const std::string& reason);

    /// Where the reason lies in the file; nothing where it is not a matter of one line.
    [[nodiscard]] std::optional<std::size_t> line() const { return m_line; }

private:
    std::optional<std::size_t> m_line;
};

} // namespace analyzer
