#include <dataviews/platform/serialize/stringValue.h>

#include <QDomDocument>
#include <QDomElement>
#include <QString>

#include <boost/tokenizer.hpp>

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

using List = std::vector<std::string>;

List split(const std::string& text)
{
    using Separator = boost::escaped_list_separator<char>;
    const boost::tokenizer<Separator> fields(text, Separator());
    return {fields.begin(), fields.end()};
}

/// What a document with \p text in an element gives back after it was written and read.
std::string throughXml(const std::string& text)
{
    QDomDocument document;
    QDomElement element = document.createElement(QStringLiteral("list"));
    document.appendChild(element);
    element.appendChild(document.createTextNode(QString::fromStdString(text)));
    QDomDocument readBack;
    EXPECT_TRUE(readBack.setContent(document.toByteArray()));
    return readBack.documentElement().text().toStdString();
}

void expectRoundTrip(const List& list)
{
    const std::string text = stringValue(list);
    SCOPED_TRACE(text);
    EXPECT_EQ(split(text), list);
    EXPECT_EQ(split(throughXml(text)), list);
}

TEST(StringValueTest, PlainNamesStayReadable)
{
    EXPECT_EQ(stringValue({}), "");
    EXPECT_EQ(stringValue({""}), "\"\"");
    EXPECT_EQ(stringValue({"Drag", "Lift force", ""}), "Drag,Lift force,");
    EXPECT_EQ(stringValue({"a,b"}), "\"a,b\"");
    EXPECT_EQ(stringValue({" a", "b\t", "c d"}), "\" a\",\"b\t\",c d");
    EXPECT_EQ(stringValue({"line\nbreak", "back\\slash"}), "line\\nbreak,back\\\\slash");
}

TEST(StringValueTest, HardListsSurvive)
{
    for (const List& list : std::vector<List>{
             {},
             {""},
             {"", ""},
             {" "},
             {"\t", "\r"},
             {"\n"},
             {" a", "b "},
             {"\\", "\"", ","},
             {"\\n"},
             {"\"quoted\"", "a\"b"},
             {"<&>", "& ;", "]]>"},
             {"Größe", "\xC2\xA0"},
             {"\xC2\xA0"}, // a no-break space
             {"\xE2\x80\x83"}, // an em space
             {"\xEF\xBB\xBFname"}, // a byte order mark
             {"a\rb", "a\r\nb", "\r\n"},
         }) {
        expectRoundTrip(list);
    }
}

TEST(StringValueTest, RandomListsSurvive)
{
    const std::vector<std::string> characters = {
        "\\",
        "\"",
        ",",
        "\n",
        "\r",
        " ",
        "\t",
        "a",
        "n",
        "&",
        "<",
        ">",
        "'",
        ";",
        "é",
        "\xC2\xA0",
        "\xC2\x85", // a next line
        "\xE2\x80\xA8", // a line separator
        "\xEF\xBB\xBF", // a byte order mark
        "😀",
    };
    std::mt19937 random(1);
    const auto below = [&random](std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
    };
    constexpr int rounds = 10000;
    for (int round = 0; round < rounds && !HasFailure(); ++round) {
        List list(below(4));
        for (std::string& field : list) {
            for (std::size_t length = below(6); length > 0; --length) {
                field += characters[below(characters.size())];
            }
        }
        expectRoundTrip(list);
    }
}

} // namespace
