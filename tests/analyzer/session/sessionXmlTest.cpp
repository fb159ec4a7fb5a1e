#include <analyzer/session/SessionError.h>
#include <analyzer/session/sessionXml.h>

#include <gtest/gtest.h>

#include <string>

namespace {

/// The refusal of \p xml; empty if it is read.
std::string refusal(const QByteArray& xml)
{
    try {
        static_cast<void>(analyzer::readSessionXml(xml));
    } catch (const analyzer::SessionError& error) {
        return error.what();
    }
    return {};
}

QByteArray nested(int depth)
{
    return QByteArray("<a>").repeated(depth) + QByteArray("</a>").repeated(depth);
}

} // namespace

TEST(SessionXmlTest, ReadsXml)
{
    const QDomDocument document =
        analyzer::readSessionXml("<Session version=\"1\"><Text> &lt;é </Text></Session>");
    EXPECT_EQ(document.documentElement().attribute("version"), QStringLiteral("1"));
    EXPECT_EQ(
        document.documentElement().firstChildElement("Text").text(), QString::fromUtf8(" <é "));
    EXPECT_EQ(refusal(nested(64)), "");
}

TEST(SessionXmlTest, RefusesWhatNoSessionHoldsBeforeItCosts)
{
    const QByteArray longText(100000, 'x');

    const struct
    {
        const char* what;
        QByteArray xml;
        const char* word;
    } cases[] = {
        {"nothing", "", "damaged"},
        {"no XML", "hello", "damaged"},
        {"cut off", "<Session><View>", "damaged"},
        {"two roots", "<a/><b/>", "damaged"},
        {"document type", "<!DOCTYPE a [<!ENTITY x \"y\">]><a>&x;</a>", "document type"},
        {"document type in small letters", "<!doctype a><a/>", "document type"},
        {"unknown entity", "<a>&x;</a>", "damaged"},
        {"NUL", QByteArray("<a>\0</a>", 8), "NUL"},
        {"deep", nested(65), "nested"},
        {"very deep", nested(200000), "nested"},
        {"long tag", "<a b=\"" + longText + "\"/>", "too long"},
        {"open tag", "<a>" + longText + "<b " + longText, "too long"},
        {"long tag with a bracket", "<a c=\">\" b='" + longText + "'/>", "too long"},
        {"long tag behind comments",
         "<a><!-- <b \" --><!-- it's --><b c=\">\" b='" + longText + "'/></a>",
         "too long"},
        {"many attributes", "<a b=\">\" " + QByteArray("x='' ").repeated(300) + "/>", "attributes"},
        {"other encoding", "<?xml version=\"1.0\" encoding=\"IBM037\"?><a/>", "UTF-8"},
        {"UTF-16", QByteArray("\xff\xfe<\0a\0/\0>\0", 10), "NUL"},
        {"document type behind a comment", "<!-- > --><!DOCTYPE a><a/>", "document type"},
        {"CDATA", "<a><![CDATA[x]]></a>", "CDATA"},
        {"instruction", "<a/><?b c?>", "instruction"},
        {"text between elements", "<a><b/> x</a>", "none belongs"},
        {"large", QByteArray(analyzer::largestSession + 1, ' '), "larger"},
    };

    for (const auto& wrong : cases) {
        EXPECT_NE(refusal(wrong.xml).find(wrong.word), std::string::npos)
            << wrong.what << ": " << refusal(wrong.xml);
    }
}
