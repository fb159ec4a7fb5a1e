#pragma once

#include <cstddef>

namespace analyzer {

/// Checks text for being UTF-8, piece by piece; a character may lie across pieces.
class Utf8Checker
{
public:
    /// The number of bytes of \p text up to the first one that is wrong here, \p size if none is. Not to be called
    /// again after that.
    [[nodiscard]] std::size_t check(const char* text, std::size_t size);

    /// Whether no character is left open.
    [[nodiscard]] bool isComplete() const { return m_missing == 0; }

private:
    [[nodiscard]] bool begin(unsigned char byte);

    int m_missing = 0; ///< bytes that the character still needs
    unsigned char m_lowest = 0x80; ///< bounds of the next one of them
    unsigned char m_highest = 0xbf;
};

} // namespace analyzer
