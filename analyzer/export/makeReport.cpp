#include <analyzer/export/exportPicture.h>
#include <analyzer/export/filtersInWords.h>
#include <analyzer/export/makeReport.h>
#include <analyzer/filters/FilterList.h>
#include <analyzer/study/sentenceText.h>
#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/countText.h>
#include <analyzer/views/selectedRows.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/data/variantDisplayText.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/selection/CaseSet.h>

#include <QFileInfo>
#include <QWidget>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <map>
#include <optional>

namespace analyzer {

namespace {

constexpr int sharpness = 2; ///< pixels of a picture per pixel of the screen

QByteArray pngOf(const ViewPicture& picture, const std::function<void(double)>& progress)
{
    if (!progress) {
        return picture.bytes([](double) { return true; });
    }
    constexpr std::chrono::milliseconds interval(20);
    std::atomic<double> done{0.0};
    std::atomic<bool> isCancelled{false};
    // Whatever is thrown here, the thread is waited for.
    std::future<QByteArray> bytes = std::async(std::launch::async, [&] {
        return picture.bytes([&](double fraction) {
            done = fraction;
            return !isCancelled;
        });
    });
    try {
        while (bytes.wait_for(interval) == std::future_status::timeout) {
            progress(done);
        }
    } catch (...) {
        isCancelled = true;
        throw;
    }
    return bytes.get();
}

Report::Picture pictureOfView(
    AnalyzerViewInterface& view, const std::function<void(double)>& progress)
{
    const QWidget& widget = view.widget();
    const QSize size = widget.size();
    // Of a view that is very large on the screen there is no larger picture.
    const int scale =
        std::max(size.width(), size.height()) * sharpness <= largestPictureSide ? sharpness : 1;
    PictureOptions options;
    options.dpi = widget.logicalDpiX() * scale;
    Report::Picture picture;
    picture.title = oneLine(view.title());
    picture.note = leftOutInWords(view);
    picture.png = pngOf(ViewPicture(view, PictureFormat::Png, options), progress);
    picture.size = size;
    return picture;
}

std::vector<Report::Tag> tagsOf(const Project& project)
{
    std::map<std::string, std::size_t> images;
    for (std::size_t row = 0; row < project.caseCount(); ++row) {
        for (const boost::shared_ptr<AuxFile>& file : project.auxFiles(row)) {
            for (const std::string& tag : file->ownTags()) {
                ++images[tag];
            }
        }
    }
    std::vector<Report::Tag> tags;
    for (const WeakPtr<TagGroup>& handle : project.tagGroups()) {
        const boost::shared_ptr<TagGroup> group = handle.lock();
        for (const std::string& tag : group->tags()) {
            const auto found = images.find(tag);
            tags.push_back(
                {group->name(),
                 tag,
                 project.taggedCases(tag).count(),
                 found == images.end() ? 0 : found->second});
        }
    }
    return tags;
}

void addSelectedCases(Report& report, const Project& project, const CaseSet& selection)
{
    std::vector<boost::shared_ptr<Variable>> variables{project.caseIDVariable().lock()};
    for (const WeakPtr<Variable>& variable : project.variables()) {
        variables.push_back(variable.lock());
    }
    for (const boost::shared_ptr<Variable>& variable : variables) {
        report.columns.push_back({variable->name(), variable->isNumeric()});
    }
    const RowBitmap rows = selectedRows(project, selection);
    report.selectedCount = rows.count();
    for (std::size_t row = rows.next(0); row < rows.rowCount(); row = rows.next(row + 1)) {
        if (report.rows.size() == mostReportRows) {
            report.leftOutRowCount = report.selectedCount - mostReportRows;
            return;
        }
        Report::Row& cells = report.rows.emplace_back();
        for (const boost::shared_ptr<Variable>& variable : variables) {
            const Variant value = variable->value(row);
            cells.push_back(
                value.isEmpty() ? std::nullopt : std::make_optional(variantDisplayText(value)));
        }
    }
}

} // namespace

std::string leftOutInWords(const AnalyzerViewInterface& view)
{
    std::size_t all = 0;
    std::string reasons;
    for (const LeftOutCases& cases : view.leftOut()) {
        all += cases.count;
        reasons += (reasons.empty() ? "" : ", ") + countText(cases.count).toStdString() + ' '
            + oneLine(cases.reason);
    }
    return all == 0 ? std::string() : countText(all).toStdString() + " not drawn: " + reasons;
}

Report makeReport(
    const Project& project,
    const FilterList& filters,
    const std::vector<AnalyzerViewInterface*>& views,
    const CaseSet& selection,
    const std::string& date,
    const std::function<void(double)>& progress)
{
    Report report;
    report.title = oneLine(project.name());
    report.fileName =
        QFileInfo(QString::fromStdString(project.filePath())).fileName().toStdString();
    report.date = date;
    report.caseCount = project.caseCount();
    report.shownCount = filters.pipeline().passingCount();
    report.filters = filtersInWords(filters);
    report.tags = tagsOf(project);
    addSelectedCases(report, project, selection);
    for (AnalyzerViewInterface* view : views) {
        const auto made = static_cast<double>(report.pictures.size());
        const auto ofAll = [&](double fraction) {
            progress((made + fraction) / static_cast<double>(views.size()));
        };
        if (progress) {
            progress(made / static_cast<double>(views.size()));
        }
        report.pictures.push_back(
            pictureOfView(*view, progress ? std::function<void(double)>(ofAll) : nullptr));
    }
    return report;
}

} // namespace analyzer
