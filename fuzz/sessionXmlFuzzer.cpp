#include <analyzer/session/SessionError.h>
#include <analyzer/session/sessionXml.h>

#include <cstddef>
#include <cstdint>

#include <fuzz/require.h>

namespace {

int depthOf(const QDomNode& node)
{
    int depth = 0;
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling()) {
        depth = std::max(depth, depthOf(child));
    }
    return depth + (node.isElement() ? 1 : 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    try {
        const QDomDocument document = analyzer::readSessionXml(bytes);

        constexpr int deepest = 64;
        require(!document.documentElement().isNull(), "what is read has an element");
        require(depthOf(document) <= deepest, "elements are not nested too deep");
        analyzer::checkSessionXml(bytes);
    } catch (const analyzer::SessionError& error) {
        require(*error.what() != '\0', "a refusal has a reason");
    }
    return 0;
}
