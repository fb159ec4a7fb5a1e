#include <analyzer/study/ImagePaths.h>
#include <analyzer/study/ProjectFiller.h>
#include <analyzer/study/ReadProgress.h>
#include <analyzer/study/StudyReport.h>
#include <analyzer/study/TableBuilder.h>
#include <analyzer/study/forEachInThreads.h>
#include <analyzer/study/sentenceText.h>
#include <analyzer/study/variableNature.h>

#include <dataviews/platform/data/Project.h>

#include <atomic>
#include <string_view>
#include <vector>

namespace analyzer {

namespace {

constexpr const char* imagesGroup = "Images";

bool isBlankText(std::string_view text)
{
    return text.find_first_not_of(" \t") == std::string_view::npos;
}

} // namespace

ProjectFiller::ProjectFiller(
    const StudyLocation& location, ReadProgress& progress, StudyReport& report, std::size_t threads)
    : m_location(location)
    , m_progress(progress)
    , m_report(report)
    , m_threads(threads)
{}

void ProjectFiller::fill(Project& project, TableBuilder& table, std::size_t work)
{
    m_rows = table.rows();
    project.setSource(m_location.name, m_location.tablePath);
    project.setCaseCount(m_rows);
    noteValueLikeHeader(table);
    const std::vector<HeaderColumn> columns = headerColumns(table.header());

    struct Made
    {
        vtkSmartPointer<vtkAbstractArray> array; ///< null for images, and for what is left out
        Variable::Nature nature = Variable::Output;
    };

    std::vector<Made> made(columns.size());
    forEachInThreads(columns.size(), m_threads, [&](std::size_t index) {
        m_progress.throwIfCancelled();
        const HeaderColumn& column = columns[index];
        ColumnBuilder& values = table.columns()[index];
        if (!(column.isNameless && !values.holdsAnything()) && !holdsImages(column, values)) {
            made[index].array = values.take(column.name, m_rows, m_progress);
            made[index].nature = column.nature
                ? *column.nature
                : variableNature(Variable(made[index].array, Variable::Output), m_progress);
        }
        m_progress.advance(work / columns.size());
    });

    for (std::size_t index = 0; index < columns.size(); ++index) {
        m_progress.throwIfCancelled();
        const HeaderColumn& column = columns[index];
        ColumnBuilder& values = table.columns()[index];
        if (column.isNameless && !values.holdsAnything()) {
            m_report.notes.push_back(
                "Column " + std::to_string(index + 1)
                + " has neither a name nor values and is left out.");
            continue;
        }
        if (!column.note.empty()) {
            m_report.notes.push_back(column.note);
        }
        if (made[index].array != nullptr) {
            noteTexts(column, values);
            project.addVariable(made[index].array, made[index].nature);
        } else {
            addImages(project, column, values);
        }
        values = ColumnBuilder(false, false);
    }
    countMissing(project);
    m_report.cases = m_rows;
    m_report.variables = project.variables().size();
    m_report.images = project.auxFileCount();
}

void ProjectFiller::countMissing(const Project& project)
{
    const std::vector<WeakPtr<Variable>>& variables = project.variables();
    std::atomic<std::size_t> missing{0};
    forEachInThreads(variables.size(), m_threads, [&](std::size_t index) {
        m_progress.throwIfCancelled();
        const boost::shared_ptr<Variable> variable = variables[index].lock();
        missing += variable->missingCount();
        // Views ask for it first, and it is kept.
        static_cast<void>(variable->distinctValueCount());
    });
    m_report.missingValues += missing;
}

bool ProjectFiller::holdsImages(const HeaderColumn& column, const ColumnBuilder& paths) const
{
    if (column.mark == HeaderColumn::Mark::None) {
        return false;
    }
    if (!paths.holdsAnything()) {
        return true;
    }
    if (paths.isNumeric()) {
        return false;
    }
    std::size_t images = 0;
    std::size_t others = 0;
    for (std::size_t row = 0; row < m_rows; ++row) {
        m_progress.throwIfCancelledAt(row);
        const std::string_view text = paths.text(row);
        if (!isBlankText(text)) {
            ++(ImagePaths::endsLikeImage(text) ? images : others);
        }
    }
    return images >= others;
}

void ProjectFiller::addImages(
    Project& project, const HeaderColumn& column, const ColumnBuilder& paths)
{
    if (project.tagGroup(imagesGroup).isNull()) {
        project.addTagGroup(imagesGroup);
    }
    project.addTag(imagesGroup, column.name);
    if (!paths.holdsAnything()) {
        m_report.missingValues += m_rows;
        m_report.missingImages += m_rows;
        m_report.notes.push_back("The image column " + inQuotes(column.name) + " holds no paths.");
        return;
    }
    ImagePaths images(m_location.folder);
    std::size_t unlisted = 0;
    for (std::size_t row = 0; row < m_rows; ++row) {
        m_progress.throwIfCancelledAt(row);
        const std::string_view text = paths.text(row);
        if (isBlankText(text)) {
            ++m_report.missingValues;
            ++m_report.missingImages;
            continue;
        }
        const ImagePaths::Resolved image = images.resolve(text);
        if (!image.absolutePath.empty()) {
            project.tagAuxFile(*project.addAuxFile(row, image.absolutePath), column.name, true);
        } else if (m_listedImages < StudyReport::maxListed) {
            ++m_listedImages;
            m_report.notes.push_back(
                "Case " + std::to_string(row + 1) + ": the image " + inQuotes(std::string(text))
                + " in column " + inQuotes(column.name) + " is left out: it " + image.refusal
                + '.');
        } else {
            ++unlisted;
        }
    }
    if (unlisted > 0) {
        m_report.notes.push_back(
            counted(unlisted, "more image", "more images") + " in column " + inQuotes(column.name)
            + (unlisted == 1 ? " is" : " are") + " left out for such reasons.");
    }
}

void ProjectFiller::noteTexts(const HeaderColumn& column, const ColumnBuilder& values)
{
    std::string reason;
    switch (values.textReason()) {
    case ColumnBuilder::TextReason::None:
        return;
    case ColumnBuilder::TextReason::Texts:
        if (column.mark == HeaderColumn::Mark::None) {
            return;
        }
        reason = "its fields do not end like names of images";
        break;
    case ColumnBuilder::TextReason::LeadingZeros:
        reason = "it holds whole numbers with leading zeros, such as " + inQuotes(values.example());
        break;
    case ColumnBuilder::TextReason::BeyondExact:
        reason = "it holds numbers too large to be exact, such as " + inQuotes(values.example());
        break;
    case ColumnBuilder::TextReason::MixedDecimalSigns:
        reason =
            "it holds points although the file has decimal commas, and a point may part thousands";
        break;
    }
    m_report.notes.push_back(
        "Column " + inQuotes(column.name) + " is kept as text: " + reason + '.');
}

void ProjectFiller::noteValueLikeHeader(const TableBuilder& table)
{
    std::size_t numbers = 0;
    for (const std::string& field : table.header()) {
        double value = 0.0;
        numbers += parseField(field.data(), field.size(), '.', value) == FieldKind::Number ? 1 : 0;
    }
    if (2 * numbers > table.header().size()) {
        m_report.notes.emplace_back(
            "The first line looks like values, not like the names of columns "
            "that a study begins with.");
    }
}

} // namespace analyzer
