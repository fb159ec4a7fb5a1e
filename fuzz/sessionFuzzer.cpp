#include <analyzer/session/SessionError.h>
#include <analyzer/session/sessionText.h>
#include <analyzer/views/viewKinds.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include <fuzz/require.h>

namespace analyzer {

/// The kinds without the views themselves.
std::vector<std::string> viewKinds()
{
    return {
        "scatter",
        "line",
        "scatter3d",
        "table",
        "images",
        "selected-cases",
        "selected-image",
        "image-diff"};
}

} // namespace analyzer

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    try {
        const analyzer::Session session = analyzer::readSession(bytes);

        const QByteArray written = analyzer::writeSession(session);
        const QByteArray again = analyzer::writeSession(analyzer::readSession(written));
        require(again == written, "what is written reads back the same");
    } catch (const analyzer::SessionError& error) {
        const std::string message = error.what();
        require(!message.empty(), "a refusal has a reason");
        require(message.find('\n') == std::string::npos, "a refusal is one line");
    }
    return 0;
}
