#include <analyzer/study/CsvError.h>
#include <analyzer/study/CsvScanner.h>
#include <analyzer/study/ProjectFiller.h>
#include <analyzer/study/StudyError.h>
#include <analyzer/study/StudyLocation.h>
#include <analyzer/study/StudyReader.h>
#include <analyzer/study/TableBuilder.h>
#include <analyzer/study/TextSurvey.h>
#include <analyzer/study/detectDelimiter.h>

#include <new>
#include <string_view>

namespace analyzer {

namespace {

constexpr std::size_t delimiterHeadBytes = std::size_t{64} << 10U;

/// The survey, the scan, and a second scan if need be.
constexpr std::size_t maxPasses = 3;

char delimiterOf(TableFile& file, const TextSurvey& survey)
{
    std::string head;
    file.start(survey.begin, survey.end);
    for (std::string_view chunk = file.next(); !chunk.empty() && head.size() < delimiterHeadBytes;
         chunk = file.next()) {
        head.append(chunk);
    }
    return detectDelimiter(head, head.size() == survey.end - survey.begin);
}

void scan(
    TableFile& file,
    const TextSurvey& survey,
    char delimiter,
    TableBuilder& table,
    ReadProgress& progress)
{
    CsvScanner<TableBuilder> scanner(delimiter, table);
    file.start(survey.begin, survey.end);
    for (std::string_view chunk = file.next(); !chunk.empty(); chunk = file.next()) {
        progress.throwIfCancelled();
        scanner.feed(chunk.data(), chunk.size());
        progress.advance(chunk.size());
    }
    scanner.finish();
}

void noteSurvey(const TextSurvey& survey, StudyReport& report)
{
    if (survey.isLatin1) {
        report.notes.push_back(
            "The file is no UTF-8 from line " + std::to_string(survey.firstForeignLine)
            + " on and is read as Latin-1.");
    }
    if (survey.endedByCtrlZ) {
        report.notes.emplace_back("The Ctrl-Z that closes the file is left out.");
    }
}

void readTable(
    TableFile& file, const StudyLocation& location, ReadProgress& progress, ReadStudy& study)
{
    progress.setTotal(maxPasses * file.size());
    const TextSurvey survey = surveyText(file, progress);
    noteSurvey(survey, study.report);
    const char delimiter = delimiterOf(file, survey);

    TableBuilder table({delimiter == ';', survey.isLatin1}, study.report);
    scan(file, survey, delimiter, table, progress);
    table.endFirstPass();
    if (table.needsSecondPass()) {
        table.beginSecondPass();
        scan(file, survey, delimiter, table, progress);
        if (!table.secondPassAgrees()) {
            throw CsvError{0, "the file changed while it was read"};
        }
    }
    file.requireUnchanged();
    ProjectFiller(location, progress, study.report).fill(*study.project, table);
    progress.advance(maxPasses * file.size());
}

} // namespace

StudyReader::StudyReader(std::size_t chunkBytes)
    : m_chunkBytes(chunkBytes)
{}

ReadStudy StudyReader::read(const std::string& path, ReadProgress& progress) const
{
    progress.throwIfCancelled();
    const StudyLocation location = locateStudy(path);
    TableFile file(location.tablePath, m_chunkBytes);
    ReadStudy study;
    study.project = std::make_unique<Project>();
    try {
        readTable(file, location, progress, study);
    } catch (const CsvError& error) {
        if (error.line() == 0) {
            throw StudyError(location.tablePath, error.what());
        }
        throw StudyError(location.tablePath, error.line(), error.what());
    } catch (const std::bad_alloc&) {
        throw StudyError(location.tablePath, "the table does not fit into memory");
    }
    return study;
}

ReadStudy readStudy(const std::string& path, ReadProgress& progress)
{
    return StudyReader().read(path, progress);
}

} // namespace analyzer
