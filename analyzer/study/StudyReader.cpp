#include <analyzer/study/BlockReader.h>
#include <analyzer/study/CsvError.h>
#include <analyzer/study/CsvScanner.h>
#include <analyzer/study/ProjectFiller.h>
#include <analyzer/study/StudyError.h>
#include <analyzer/study/StudyLocation.h>
#include <analyzer/study/StudyReader.h>
#include <analyzer/study/TableBuilder.h>
#include <analyzer/study/TablePreview.h>
#include <analyzer/study/TextSurvey.h>
#include <analyzer/study/detectDelimiter.h>

#include <algorithm>
#include <new>
#include <string_view>
#include <thread>

namespace analyzer {

namespace {

/// Enough to see what the table is like.
constexpr std::size_t headBytes = std::size_t{64} << 10U;

/// The delimiter of the table; shows \p progress the first rows.
char lookAtHead(TableFile& file, const TextSurvey& survey, ReadProgress& progress)
{
    std::string head;
    file.start(survey.begin, survey.end);
    for (std::string_view chunk = file.next(); !chunk.empty() && head.size() < headBytes;
         chunk = file.next()) {
        head.append(chunk);
    }
    const bool isWhole = head.size() == survey.end - survey.begin;
    const char delimiter = detectDelimiter(head, isWhole);
    progress.setPreview(previewTable(head, delimiter, isWhole));
    return delimiter;
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

/// Reads the table of one study; see StudyReader.
class TableReader
{
public:
    TableReader(
        const StudyLocation& location, const StudyReader::Pieces& pieces, ReadProgress& progress)
        : m_location(location)
        , m_pieces(pieces)
        , m_progress(progress)
        , m_file(location.tablePath, pieces.chunkBytes)
    {}

    void read(ReadStudy& study)
    {
        m_progress.addTotal(m_file.size() + fillingWork());
        if (m_pieces.threads == 0 || !readInBlocks(supposeText(m_file), study)) {
            readWithCare(study);
        }
    }

private:
    /// About as long as reading that many bytes.
    [[nodiscard]] std::size_t fillingWork() const { return m_file.size() / 4; }

    void readWithCare(ReadStudy& study)
    {
        m_progress.addTotal(2 * m_file.size());
        const TextSurvey survey = surveyText(m_file, m_progress);
        if (m_pieces.threads > 0 && survey.isLatin1 && readInBlocks(survey, study)) {
            return;
        }
        startAnew(study, survey);
        const TableBuilder::Format format{lookAtHead(m_file, survey, m_progress), survey.isLatin1};
        TableBuilder table(format, study.report);
        scan(m_file, survey, format.delimiter, table, m_progress);
        table.endFirstPass();
        if (table.needsSecondPass()) {
            m_progress.addTotal(m_file.size());
            table.beginSecondPass();
            scan(m_file, survey, format.delimiter, table, m_progress);
            requireAgreement(table);
        }
        fill(study, table);
    }

    /// False if blocks will not do.
    bool readInBlocks(const TextSurvey& survey, ReadStudy& study)
    {
        startAnew(study, survey);
        TableBuilder table({lookAtHead(m_file, survey, m_progress), survey.isLatin1}, study.report);
        BlockReader blocks(
            m_file,
            survey,
            {m_pieces.headBytes, m_pieces.blockBytes, m_pieces.threads},
            m_progress);
        if (!blocks.read(table)) {
            return false;
        }
        table.endFirstPass();
        if (table.needsSecondPass()) {
            m_progress.addTotal(m_file.size());
            table.beginSecondPass();
            if (!blocks.read(table)) {
                return false;
            }
            requireAgreement(table);
        }
        fill(study, table);
        return true;
    }

    static void startAnew(ReadStudy& study, const TextSurvey& survey)
    {
        study.report = {};
        noteSurvey(survey, study.report);
    }

    static void requireAgreement(const TableBuilder& table)
    {
        if (!table.secondPassAgrees()) {
            throw CsvError{0, "the file changed while it was read"};
        }
    }

    void fill(ReadStudy& study, TableBuilder& table)
    {
        m_file.requireUnchanged();
        ProjectFiller filler(
            m_location, m_progress, study.report, std::max<std::size_t>(m_pieces.threads, 1));
        filler.fill(*study.project, table, fillingWork());
        m_progress.finish();
    }

    const StudyLocation& m_location;
    const StudyReader::Pieces& m_pieces;
    ReadProgress& m_progress;
    TableFile m_file;
};

StudyReader::Pieces piecesForThisMachine()
{
    constexpr std::size_t blockBytes = std::size_t{512} << 10U;
    return {
        headBytes,
        blockBytes,
        std::max(1U, std::thread::hardware_concurrency()),
        TableFile::defaultChunkBytes};
}

} // namespace

StudyReader::StudyReader()
    : m_pieces(piecesForThisMachine())
{}

StudyReader::StudyReader(const Pieces& pieces)
    : m_pieces(pieces)
{}

StudyReader::StudyReader(std::size_t chunkBytes)
    : m_pieces{0, 0, 0, chunkBytes}
{}

ReadStudy StudyReader::read(const std::string& path, ReadProgress& progress) const
{
    progress.throwIfCancelled();
    const StudyLocation location = locateStudy(path);
    TableReader reader(location, m_pieces, progress);
    ReadStudy study;
    study.project = std::make_unique<Project>();
    try {
        reader.read(study);
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
