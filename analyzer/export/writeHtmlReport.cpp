#include <analyzer/export/ReplacementFile.h>
#include <analyzer/export/Report.h>
#include <analyzer/export/writeHtmlReport.h>
#include <analyzer/study/sentenceText.h>
#include <analyzer/views/countText.h>

#include <QChar>
#include <QString>

#include <algorithm>
#include <string>

namespace analyzer {

namespace {

// Colors follow the reader's choice of light or dark, but not on paper. Tables scroll by themselves on narrow screens.
constexpr char style[] = R"(
:root { color-scheme: light dark; --text: #1f2328; --soft: #5b6570; --line: #d5dae0; --page: #ffffff; --band: #f4f6f8; --mark: #0072b2; }
@media (prefers-color-scheme: dark) {
  :root { --text: #e4e7eb; --soft: #a3adb8; --line: #3c444d; --page: #16191d; --band: #20252b; --mark: #56b4e9; }
}
* { box-sizing: border-box; }
body { margin: 0 auto; max-width: 78rem; padding: 2rem 1.5rem 4rem; background: var(--page); color: var(--text);
  font: 1rem/1.5 system-ui, -apple-system, "Segoe UI", "Noto Sans", "DejaVu Sans", Arial, sans-serif; }
header { border-bottom: 3px solid var(--mark); padding-bottom: 1.25rem; }
h1 { margin: 0; font-size: 1.9rem; line-height: 1.25; overflow-wrap: anywhere; }
h2 { margin: 2.5rem 0 0.75rem; font-size: 1.25rem; }
p { margin: 0.4rem 0; overflow-wrap: anywhere; }
.soft { color: var(--soft); }
.counts { display: flex; flex-wrap: wrap; margin: 1.25rem 0 0; }
.counts div { display: flex; flex-direction: column-reverse; margin: 0 2.5rem 0.5rem 0; }
.counts dt { color: var(--soft); font-size: 0.875rem; }
.counts dd { margin: 0; font-size: 1.6rem; line-height: 1.2; font-variant-numeric: tabular-nums; }
.views { display: grid; grid-template-columns: repeat(auto-fit, minmax(min(100%, 32rem), 1fr)); gap: 1.5rem; align-items: start; }
figure { margin: 0; border: 1px solid var(--line); border-radius: 6px; overflow: hidden; }
figure img { display: block; width: 100%; height: auto; }
figcaption { padding: 0.6rem 0.9rem; border-bottom: 1px solid var(--line); background: var(--band); overflow-wrap: anywhere; }
figcaption strong { display: block; font-weight: 600; }
figcaption span { font-size: 0.875rem; }
ul { margin: 0; padding-left: 1.25rem; }
li { overflow-wrap: anywhere; }
.scroll { overflow-x: auto; border: 1px solid var(--line); border-radius: 6px; }
table { border-collapse: collapse; width: 100%; font-size: 0.875rem; }
th, td { padding: 0.35rem 0.8rem; text-align: left; vertical-align: top; border-bottom: 1px solid var(--line); }
th { background: var(--band); font-weight: 600; white-space: nowrap; }
td { white-space: pre-wrap; overflow-wrap: break-word; max-width: 28rem; }
.number { text-align: right; font-variant-numeric: tabular-nums; white-space: nowrap; }
tbody tr:last-child td { border-bottom: 0; }
tbody tr:nth-child(even) { background: var(--band); }
@media print {
  :root { color-scheme: light; --text: #000000; --soft: #444444; --line: #bbbbbb; --page: #ffffff; --band: #f2f2f2; --mark: #000000; }
  @page { margin: 15mm; }
  body { max-width: none; padding: 0; font-size: 10pt; }
  .views { display: block; }
  figure { margin-bottom: 1rem; break-inside: avoid; }
  figure img { width: auto; max-width: 100%; max-height: 22cm; margin: 0 auto; }
  h2 { break-after: avoid; }
  .scroll { overflow: visible; border: 0; }
  table { font-size: 7.5pt; }
  td, th { padding: 0.15rem 0.4rem; }
  thead { display: table-header-group; }
  tr { break-inside: avoid; }
}
)";

/// \p text as content of an element or a quoted attribute. What HTML has no character for shows as a replacement.
QByteArray escaped(const std::string& text)
{
    QString content = QString::fromStdString(text);
    for (QChar& character : content) {
        const ushort code = character.unicode();
        constexpr ushort firstPrintable = 0x20;
        constexpr ushort firstHighControl = 0x7F;
        constexpr ushort afterHighControls = 0xA0;
        const bool isControlCode =
            code < firstPrintable || (code >= firstHighControl && code < afterHighControls);
        if ((isControlCode && code != '\n' && code != '\t') || code >= 0xFFFE) {
            character = QChar::ReplacementCharacter;
        }
    }
    return content.toHtmlEscaped().toUtf8();
}

QByteArray count(std::size_t number)
{
    return countText(number).toUtf8();
}

void addHead(QByteArray& html, const Report& report)
{
    html += "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
            "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
            "<meta http-equiv=\"Content-Security-Policy\" "
            "content=\"default-src 'none'; img-src data:; style-src 'unsafe-inline'\">\n"
            "<meta name=\"generator\" content=\"DataViews\">\n<title>";
    html += escaped(report.title);
    html += "</title>\n<style>";
    html += style;
    html += "</style>\n</head>\n<body>\n";
}

void addHeader(QByteArray& html, const Report& report)
{
    html += "<header>\n<h1>" + escaped(report.title) + "</h1>\n<p class=\"soft\">"
        + escaped(report.fileName);
    if (!report.fileName.empty() && !report.date.empty()) {
        html += " · ";
    }
    html += escaped(report.date) + "</p>\n<dl class=\"counts\">\n";
    const auto addCount = [&html](const char* name, std::size_t number) {
        html += "<div><dt>";
        html += name;
        html += "</dt><dd>" + count(number) + "</dd></div>\n";
    };
    addCount("cases", report.caseCount);
    addCount("shown", report.shownCount);
    addCount("selected", report.selectedCount);
    html += "</dl>\n</header>\n";
}

void addViews(QByteArray& html, const Report& report)
{
    if (report.pictures.empty()) {
        return;
    }
    html += "<section>\n<h2>Views</h2>\n<div class=\"views\">\n";
    for (const Report::Picture& picture : report.pictures) {
        const QByteArray title = escaped(picture.title);
        html += "<figure>\n<figcaption><strong>" + title + "</strong>";
        if (!picture.note.empty()) {
            html += "<span class=\"soft\">" + escaped(picture.note) + "</span>";
        }
        html += "</figcaption>\n<img alt=\"" + title + "\" width=\""
            + QByteArray::number(picture.size.width()) + "\" height=\""
            + QByteArray::number(picture.size.height()) + "\" src=\"data:image/png;base64,"
            + picture.png.toBase64() + "\">\n</figure>\n";
    }
    html += "</div>\n</section>\n";
}

void addFilters(QByteArray& html, const Report& report)
{
    html += "<section>\n<h2>Filters</h2>\n";
    if (report.filters.empty()) {
        html += "<p class=\"soft\">No filters: every case is shown.</p>\n";
    } else {
        html += "<ul>\n";
        for (const std::string& filter : report.filters) {
            html += "<li>" + escaped(filter) + "</li>\n";
        }
        html += "</ul>\n";
    }
    html += "</section>\n";
}

void addTags(QByteArray& html, const Report& report)
{
    if (report.tags.empty()) {
        return;
    }
    const bool hasImages =
        std::any_of(report.tags.begin(), report.tags.end(), [](const Report::Tag& tag) {
            return tag.imageCount > 0;
        });
    html += "<section>\n<h2>Tags</h2>\n<div class=\"scroll\">\n<table>\n<thead><tr><th>Group</th>"
            "<th>Tag</th><th class=\"number\">Cases</th>";
    html += hasImages ? "<th class=\"number\">Images</th></tr></thead>\n<tbody>\n"
                      : "</tr></thead>\n<tbody>\n";
    for (const Report::Tag& tag : report.tags) {
        html += "<tr><td>" + escaped(tag.group) + "</td><td>" + escaped(tag.name)
            + "</td><td class=\"number\">" + count(tag.caseCount) + "</td>";
        if (hasImages) {
            html += "<td class=\"number\">" + count(tag.imageCount) + "</td>";
        }
        html += "</tr>\n";
    }
    html += "</tbody>\n</table>\n</div>\n</section>\n";
}

void addCases(QByteArray& html, const Report& report)
{
    html += "<section>\n<h2 id=\"cases\">Selected cases</h2>\n";
    if (report.rows.empty()) {
        html += "<p class=\"soft\">No case is selected.</p>\n</section>\n";
        return;
    }
    html += "<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-labelledby=\"cases\">\n"
            "<table>\n<thead><tr>";
    const auto cell = [](const char* element, bool isNumeric) {
        return QByteArray("<") + element + (isNumeric ? " class=\"number\">" : ">");
    };
    for (const Report::Column& column : report.columns) {
        html += cell("th", column.isNumeric) + escaped(column.name) + "</th>";
    }
    html += "</tr></thead>\n<tbody>\n";
    for (const Report::Row& row : report.rows) {
        html += "<tr>";
        for (std::size_t i = 0; i < row.size(); ++i) {
            html += cell("td", report.columns[i].isNumeric);
            html += row[i] ? escaped(*row[i]) : QByteArray("<span class=\"soft\">(missing)</span>");
            html += "</td>";
        }
        html += "</tr>\n";
    }
    html += "</tbody>\n</table>\n</div>\n";
    if (report.leftOutRowCount > 0) {
        html += "<p class=\"soft\">The first " + count(report.rows.size())
            + " selected cases are listed; " + count(report.leftOutRowCount)
            + (report.leftOutRowCount == 1 ? " more is" : " more are") + " left out.</p>\n";
    }
    html += "</section>\n";
}

} // namespace

QByteArray htmlReport(const Report& report)
{
    QByteArray html;
    addHead(html, report);
    addHeader(html, report);
    addViews(html, report);
    addFilters(html, report);
    addTags(html, report);
    addCases(html, report);
    html += "</body>\n</html>\n";
    return html;
}

void writeHtmlReport(const std::string& path, const Report& report)
{
    const QByteArray html = htmlReport(report);
    ReplacementFile file(path);
    file.write(html.constData(), static_cast<std::size_t>(html.size()));
    file.commit();
}

} // namespace analyzer
