#include <analyzer/session/SessionError.h>
#include <analyzer/session/caseSetText.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include <fuzz/require.h>

/// The first two bytes are the number of cases, the others the text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t head = 2;
    if (size < head) {
        return 0;
    }
    const std::size_t caseCount = data[0] + std::size_t{256} * data[1];
    const std::string text(reinterpret_cast<const char*>(data) + head, size - head);
    try {
        const RowBitmap rows = analyzer::parseCaseSet(text, caseCount);

        require(rows.rowCount() == caseCount, "the set is of the study's cases");
        const RowBitmap again = analyzer::parseCaseSet(analyzer::caseSetText(rows), caseCount);
        require(again.words() == rows.words(), "what is written reads back");
    } catch (const analyzer::SessionError& error) {
        require(*error.what() != '\0', "a refusal has a reason");
    }
    return 0;
}
