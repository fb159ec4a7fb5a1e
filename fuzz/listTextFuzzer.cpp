#include <dataviews/common/serializers/VectorSerializer.h>
#include <dataviews/common/views/Property.h>

#include <boost/make_shared.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <fuzz/require.h>

namespace {

using List = std::vector<std::string>;

/// What VectorSerializer reads from \p text in an element.
List readList(const std::string& text)
{
    const auto property = boost::make_shared<corvane::Property<List>>(List());
    VectorSerializer<std::string, boost::function<bool(const std::string&)>> serializer(
        "List", property, [](const std::string&) { return true; });
    QDomDocument document;
    QDomElement parent = document.createElement(QStringLiteral("Parent"));
    QDomElement element = document.createElement(QStringLiteral("List"));
    element.appendChild(document.createTextNode(QString::fromStdString(text)));
    parent.appendChild(element);
    serializer.deserialize(parent);
    return property->value();
}

} // namespace

/// The bytes as a text that should be a list, then as a list of texts with zeros between.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    // What is no UTF-8 would come back as something else.
    const std::string text = QString::fromStdString(bytes).toStdString();
    try {
        const List list = readList(text);
        require(readList(stringValue(list)) == list, "what was read is written and reads back");
    } catch (const boost::escaped_list_error& error) {
        require(*error.what() != '\0', "a refusal has a reason");
    }

    List list(1);
    for (const char byte : text) {
        if (byte == '\0') {
            list.emplace_back();
        } else {
            list.back() += byte;
        }
    }
    require(readList(stringValue(list)) == list, "any list is written and reads back");
    return 0;
}
