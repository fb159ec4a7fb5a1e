#include <analyzer/export/Report.h>
#include <analyzer/export/writeHtmlReport.h>

#include <dataviews/platform/property/ExceptionBase.h>

#include <QDomDocument>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>

namespace analyzer {

namespace {

constexpr char hostile[] = "<script>alert(1)</script> \"q\" 'a' & &amp; \x01\xFF ü";
constexpr char harmless[] = "&lt;script&gt;alert(1)&lt;/script&gt; &quot;q&quot; 'a' &amp; "
                            "&amp;amp; \xEF\xBF\xBD\xEF\xBF\xBD ü";

Report hostileReport()
{
    Report report;
    report.title = hostile;
    report.fileName = hostile;
    report.date = hostile;
    report.caseCount = 1234567;
    report.shownCount = 12;
    report.selectedCount = 3;
    report.pictures.push_back({hostile, hostile, QByteArray("\x89PNG\0\"<", 7), {640, 480}});
    report.pictures.push_back({"second", "", QByteArray("abc"), {10, 20}});
    report.filters = {hostile};
    report.tags = {{hostile, hostile, 1, 2}};
    report.columns = {{"Case ID", true}, {hostile, false}};
    report.rows = {{"1", hostile}, {"2", std::nullopt}};
    report.leftOutRowCount = 1;
    return report;
}

/// As a tree: what HTML leaves open is closed first.
QDomDocument parsed(const QByteArray& html)
{
    QByteArray xml = html;
    xml.replace("<!DOCTYPE html>", "");
    for (const char* element : {"<meta ", "<img "}) {
        for (int begin = xml.indexOf(element); begin >= 0;
             begin = xml.indexOf(element, begin + 1)) {
            xml.insert(xml.indexOf('>', begin), '/');
        }
    }
    QDomDocument document;
    QString problem;
    int line = 0;
    EXPECT_TRUE(document.setContent(xml, &problem, &line))
        << problem.toStdString() << " in line " << line;
    return document;
}

} // namespace

TEST(WriteHtmlReportTest, EscapesWhateverComesFromTheStudy)
{
    const QByteArray html = htmlReport(hostileReport());

    EXPECT_FALSE(html.contains("<script"));
    EXPECT_FALSE(html.contains('\x01'));
    EXPECT_EQ(html.count(harmless), 12) << html.toStdString();
    const QDomDocument document = parsed(html);
    EXPECT_EQ(
        document.elementsByTagName(QStringLiteral("h1")).at(0).toElement().text(),
        QString::fromUtf8("<script>alert(1)</script> \"q\" 'a' & &amp; \uFFFD\uFFFD ü"));
}

TEST(WriteHtmlReportTest, HoldsEverythingAndRefersToNothingOutside)
{
    const QByteArray html = htmlReport(hostileReport());
    const QDomDocument document = parsed(html);

    const QDomNodeList images = document.elementsByTagName(QStringLiteral("img"));
    ASSERT_EQ(images.count(), 2);
    const QString data = images.at(0).toElement().attribute(QStringLiteral("src"));
    const QString prefix = QStringLiteral("data:image/png;base64,");
    ASSERT_TRUE(data.startsWith(prefix));
    EXPECT_EQ(
        QByteArray::fromBase64(data.mid(prefix.size()).toLatin1()),
        hostileReport().pictures[0].png);
    EXPECT_EQ(images.at(0).toElement().attribute(QStringLiteral("width")), QStringLiteral("640"));
    EXPECT_EQ(document.elementsByTagName(QStringLiteral("tr")).count(), 2 + 3);
    for (const char* outside : {"http:", "https:", "//", "@import", "url(", "<link", "<iframe"}) {
        EXPECT_FALSE(html.contains(outside)) << outside;
    }
    for (const char* text :
         {">1,234,567<",
          ">12<",
          ">3<",
          "(missing)",
          "The first 2 selected cases are listed; 1 more is left out."}) {
        EXPECT_TRUE(html.contains(text)) << text;
    }
}

TEST(WriteHtmlReportTest, SaysWhatThereIsNot)
{
    Report report;
    report.title = "Empty";

    const QByteArray html = htmlReport(report);

    (void)parsed(html);
    EXPECT_TRUE(html.contains("No filters: every case is shown."));
    EXPECT_TRUE(html.contains("No case is selected."));
    EXPECT_FALSE(html.contains("<figure>"));
    EXPECT_FALSE(html.contains("Tags"));
}

TEST(WriteHtmlReportTest, LeavesTheOldFileWhenItCannotWrite)
{
    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("ä.html")).toStdString();
    writeHtmlReport(path, hostileReport());
    QFile file(QString::fromStdString(path));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), htmlReport(hostileReport()));

    EXPECT_THROW(writeHtmlReport(path + "/x.html", {}), ExceptionBase);
    EXPECT_THROW(writeHtmlReport("/dev/full", {}), ExceptionBase);
    EXPECT_EQ(QFile(QString::fromStdString(path)).size(), htmlReport(hostileReport()).size());
}

} // namespace analyzer
