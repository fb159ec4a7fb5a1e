#pragma once

#include <dataviews/platform/property/ExceptionBase.h>

#include <cstddef>
#include <string>
#include <utility>

namespace analyzer {

/// Thrown inside the readers where a table breaks off; the message is the reason alone. The one who knows the file makes
/// a StudyError of it.
class CsvError : public ExceptionBase
{
public:
    /// \p line counts from 1; it is 0 where the reason is not a matter of one line.
    CsvError(std::size_t line, std::string reason)
        : ExceptionBase(std::move(reason))
        , m_line(line)
    {}

    [[nodiscard]] std::size_t line() const { return m_line; }

    void setLine(std::size_t line) { m_line = line; }

private:
    std::size_t m_line;
};

} // namespace analyzer
