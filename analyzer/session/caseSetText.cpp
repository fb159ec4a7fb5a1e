#include <analyzer/session/SessionError.h>
#include <analyzer/session/caseSetText.h>

#include <QByteArray>

#include <charconv>
#include <cstdint>
#include <string_view>
#include <system_error>

namespace analyzer {

namespace {

constexpr std::string_view bitmapMark = "base64:";
constexpr std::string_view blanks = " \t\r\n";
constexpr std::size_t bitsInByte = 8;
constexpr std::size_t bytesInWord = 8;

std::size_t base64Length(std::size_t bytes)
{
    return (bytes + 2) / 3 * 4;
}

/// The ranges as text; gives up, with an empty text, once that would be longer than \p limit.
std::string rangesText(const RowBitmap& rows, std::size_t limit)
{
    std::string text;
    std::size_t row = rows.next(0);
    while (row < rows.rowCount()) {
        std::size_t last = row;
        while (last + 1 < rows.rowCount() && rows.contains(last + 1)) {
            ++last;
        }
        text += text.empty() ? "" : ",";
        text += std::to_string(row + 1);
        if (last > row) {
            text += "-" + std::to_string(last + 1);
        }
        if (text.size() > limit) {
            return {};
        }
        row = rows.next(last + 1);
    }
    return text;
}

std::string bitmapText(const RowBitmap& rows, std::size_t byteCount)
{
    QByteArray bytes(static_cast<int>(byteCount), '\0');
    for (std::size_t i = 0; i < byteCount; ++i) {
        const std::uint64_t word = rows.words()[i / bytesInWord];
        bytes[static_cast<int>(i)] =
            static_cast<char>(static_cast<unsigned char>(word >> (i % bytesInWord * bitsInByte)));
    }
    return std::string(bitmapMark) + bytes.toBase64().toStdString();
}

std::string_view trimmed(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

[[noreturn]] void refuse(std::string_view text)
{
    constexpr std::size_t shown = 40;
    throw SessionError(
        "\"" + std::string(text.substr(0, shown)) + (text.size() > shown ? "…" : "")
        + "\" is no set of cases.");
}

std::size_t readNumber(std::string_view text)
{
    std::size_t number = 0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || rest != text.data() + text.size() || number == 0) {
        refuse(text);
    }
    return number;
}

[[noreturn]] void refuseCase(std::size_t number, std::size_t caseCount)
{
    throw SessionError(
        "A set of cases names case " + std::to_string(number) + ", but there are only "
        + std::to_string(caseCount) + ".");
}

RowBitmap parseBitmap(std::string_view text, std::size_t caseCount)
{
    const QByteArray encoded = QByteArray::fromRawData(text.data(), static_cast<int>(text.size()));
    const auto decoded =
        QByteArray::fromBase64Encoding(encoded, QByteArray::AbortOnBase64DecodingErrors);
    // What has been cut off may be Base64 to Qt.
    if (!decoded || decoded.decoded.toBase64() != encoded) {
        refuse(text);
    }
    RowBitmap rows(caseCount);
    const QByteArray& bytes = decoded.decoded;
    for (std::size_t i = 0; i < static_cast<std::size_t>(bytes.size()); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[static_cast<int>(i)]);
        for (std::size_t bit = 0; bit < bitsInByte; ++bit) {
            if ((byte >> bit & 1U) == 0) {
                continue;
            }
            const std::size_t row = i * bitsInByte + bit;
            if (row >= caseCount) {
                refuseCase(row + 1, caseCount);
            }
            rows.set(row);
        }
    }
    return rows;
}

} // namespace

std::string caseSetText(const RowBitmap& rows)
{
    std::size_t end = rows.rowCount();
    while (end > 0 && !rows.contains(end - 1)) {
        --end;
    }
    if (end == 0) {
        return {};
    }
    const std::size_t byteCount = (end + bitsInByte - 1) / bitsInByte;
    std::string ranges = rangesText(rows, bitmapMark.size() + base64Length(byteCount));
    return ranges.empty() ? bitmapText(rows, byteCount) : ranges;
}

RowBitmap parseCaseSet(const std::string& text, std::size_t caseCount)
{
    std::string_view rest = trimmed(text);
    if (rest.substr(0, bitmapMark.size()) == bitmapMark) {
        return parseBitmap(rest.substr(bitmapMark.size()), caseCount);
    }
    RowBitmap rows(caseCount);
    while (!rest.empty()) {
        const std::size_t comma = rest.find(',');
        const std::string_view range = trimmed(rest.substr(0, comma));
        const std::size_t dash = range.find('-');
        const std::size_t first = readNumber(range.substr(0, dash));
        const std::size_t last =
            dash == std::string_view::npos ? first : readNumber(range.substr(dash + 1));
        if (last < first) {
            refuse(range);
        }
        if (last > caseCount) {
            refuseCase(last, caseCount);
        }
        rows.setRange(first - 1, last);
        if (comma == std::string_view::npos) {
            break;
        }
        rest = rest.substr(comma + 1);
        if (trimmed(rest).empty()) {
            refuse(text);
        }
    }
    return rows;
}

} // namespace analyzer
