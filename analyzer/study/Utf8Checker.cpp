#include <analyzer/study/Utf8Checker.h>

#include <cstdint>
#include <cstring>

namespace analyzer {

namespace {

constexpr unsigned char lowestContinuation = 0x80;
constexpr unsigned char highestContinuation = 0xbf;

} // namespace

std::size_t Utf8Checker::check(const char* text, std::size_t size)
{
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::size_t place = 0;
    while (place < size) {
        if (m_missing == 0) {
            std::uint64_t word = 0;
            while (size - place >= sizeof(word)) {
                std::memcpy(&word, text + place, sizeof(word));
                if ((word & highBits) != 0) {
                    break;
                }
                place += sizeof(word);
            }
            if (place == size) {
                break;
            }
        }
        const auto byte = static_cast<unsigned char>(text[place]);
        if (m_missing == 0) {
            if (byte >= lowestContinuation && !begin(byte)) {
                return place;
            }
        } else {
            if (byte < m_lowest || byte > m_highest) {
                return place;
            }
            m_lowest = lowestContinuation;
            m_highest = highestContinuation;
            --m_missing;
        }
        ++place;
    }
    return size;
}

// The second byte is bounded so that no character has two spellings, is a surrogate, or lies above U+10FFFF.
bool Utf8Checker::begin(unsigned char byte)
{
    m_lowest = lowestContinuation;
    m_highest = highestContinuation;
    if (byte >= 0xc2 && byte <= 0xdf) {
        m_missing = 1;
        return true;
    }
    if (byte >= 0xe0 && byte <= 0xef) {
        m_missing = 2;
        m_lowest = byte == 0xe0 ? 0xa0 : lowestContinuation;
        m_highest = byte == 0xed ? 0x9f : highestContinuation;
        return true;
    }
    if (byte >= 0xf0 && byte <= 0xf4) {
        m_missing = 3;
        m_lowest = byte == 0xf0 ? 0x90 : lowestContinuation;
        m_highest = byte == 0xf4 ? 0x8f : highestContinuation;
        return true;
    }
    return false;
}

} // namespace analyzer
