#include <analyzer/study/BlockReader.h>
#include <analyzer/study/CsvScanner.h>
#include <analyzer/study/PlainScanner.h>
#include <analyzer/study/ReadProgress.h>
#include <analyzer/study/StudyReport.h>
#include <analyzer/study/TableFile.h>
#include <analyzer/study/TextSurvey.h>
#include <analyzer/study/Utf8Checker.h>
#include <analyzer/study/forEachInThreads.h>

#include <algorithm>
#include <utility>

namespace analyzer {

namespace {

/// Lines that reach farther beyond the end of a block are none of numbers.
constexpr std::size_t maxOverhang = std::size_t{4} << 20U;

constexpr std::size_t overhangStep = std::size_t{4} << 10U;

bool holds(std::string_view text, char byte)
{
    return text.find(byte) != std::string_view::npos;
}

bool isUtf8(std::string_view text)
{
    Utf8Checker checker;
    return checker.check(text.data(), text.size()) == text.size() && checker.isComplete();
}

} // namespace

BlockReader::BlockReader(
    const TableFile& file, const TextSurvey& survey, Sizes sizes, ReadProgress& progress)
    : m_file(file)
    , m_survey(survey)
    , m_sizes(sizes)
    , m_progress(progress)
{}

bool BlockReader::read(TableBuilder& table)
{
    m_nextBlock = 0;
    m_appendedBlocks = 0;
    m_lines = 0;
    m_isStopped = false;
    m_problem = nullptr;
    if (!readHead(table)) {
        return false;
    }
    const std::size_t rest = m_survey.end - m_begin;
    m_blockCount = (rest + m_sizes.blockBytes - 1) / m_sizes.blockBytes;
    if (m_blockCount > 0) {
        const std::size_t headRows = table.rows();
        const double rowsPerByte =
            static_cast<double>(headRows) / static_cast<double>(m_begin - m_survey.begin);
        constexpr double margin = 1.02;
        table.expectRows(
            headRows + static_cast<std::size_t>(margin * rowsPerByte * static_cast<double>(rest)));
        readBlocks(table);
    }
    if (m_problem) {
        std::rethrow_exception(m_problem);
    }
    return !m_isStopped;
}

bool BlockReader::readHead(TableBuilder& table)
{
    Block head;
    head.bytes.reserve(m_sizes.headBytes + overhangStep);
    if (!load(
            head,
            m_survey.begin,
            std::min(m_survey.end, m_survey.begin + std::max<std::size_t>(m_sizes.headBytes, 1)))) {
        return false;
    }
    m_begin = m_survey.begin + head.text.size();
    bool isRight = false;
    try {
        isRight = scan(head.text, table, m_lines);
    } catch (const CsvError&) {
        return false;
    }
    m_progress.advance(head.text.size());
    return isRight && table.isBehindHeader();
}

void BlockReader::readBlocks(TableBuilder& table)
{
    const std::size_t workers = std::min<std::size_t>(m_sizes.threads, m_blockCount);
    forEachInThreads(workers, workers, [this, &table](std::size_t) { work(table); });
}

void BlockReader::work(TableBuilder& table)
{
    try {
        StudyReport report;
        TableBuilder part(table.format(), report);
        Block block;
        block.bytes.reserve(m_sizes.blockBytes + overhangStep);
        while (true) {
            std::size_t number = 0;
            {
                const std::lock_guard<std::mutex> lock(m_mutex);
                if (m_isStopped || m_nextBlock == m_blockCount) {
                    return;
                }
                number = m_nextBlock++;
                part.restartAsPartOf(table);
            }
            readBlock(table, part, block, number);
        }
    } catch (const CsvError&) {
        stop(nullptr);
    } catch (...) {
        stop(std::current_exception());
    }
}

void BlockReader::readBlock(
    TableBuilder& table, TableBuilder& part, Block& block, std::size_t number)
{
    m_progress.throwIfCancelled();
    const std::size_t place = m_begin + number * m_sizes.blockBytes;
    std::size_t lines = 0;
    const bool isRight = load(block, place, std::min(m_survey.end, place + m_sizes.blockBytes))
        && scan(block.text, part, lines);
    if (!isRight) {
        stop(nullptr);
        return;
    }
    std::unique_lock<std::mutex> lock(m_mutex);
    m_appended.wait(lock, [&] { return m_isStopped || m_appendedBlocks == number; });
    if (m_isStopped) {
        return;
    }
    if (!table.append(part, m_lines)) {
        m_isStopped = true;
    }
    m_lines += lines;
    ++m_appendedBlocks;
    m_appended.notify_all();
    lock.unlock();
    m_progress.advance(block.text.size());
}

void BlockReader::stop(std::exception_ptr problem)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isStopped = true;
    if (!m_problem) {
        m_problem = std::move(problem);
    }
    m_appended.notify_all();
}

/// Loads the lines that begin from \p place to before \p nextPlace. False if they are too long, or no text.
bool BlockReader::load(Block& block, std::size_t place, std::size_t nextPlace) const
{
    // A line begins where one ends before.
    const std::size_t from = place == m_survey.begin ? place : place - 1;
    block.bytes.resize(nextPlace - from);
    m_file.read(from, block.bytes.data(), block.bytes.size());
    std::size_t begin = 0;
    if (from != place) {
        const auto lineEnd = std::find(block.bytes.begin(), block.bytes.end(), '\n');
        if (lineEnd == block.bytes.end() || lineEnd + 1 == block.bytes.end()) {
            // The block before has it all, but for a line that begins right here.
            block.text = {};
            return true;
        }
        begin = static_cast<std::size_t>(lineEnd + 1 - block.bytes.begin());
    }
    if (block.bytes.back() != '\n' && !findBreak(block, from, nextPlace)) {
        return false;
    }
    block.text = std::string_view(block.bytes.data(), block.bytes.size()).substr(begin);
    return !holds(block.text, '\0') && (m_survey.isLatin1 || isUtf8(block.text));
}

/// Goes on with the line in which the bytes, those of the file from \p from to \p place, end.
bool BlockReader::findBreak(Block& block, std::size_t from, std::size_t place) const
{
    while (place < m_survey.end) {
        const std::size_t step = std::min(overhangStep, m_survey.end - place);
        const std::size_t size = block.bytes.size();
        if (size > m_sizes.blockBytes + m_sizes.headBytes + maxOverhang) {
            return false;
        }
        block.bytes.resize(size + step);
        m_file.read(place, block.bytes.data() + size, step);
        const auto begin = block.bytes.begin() + static_cast<std::ptrdiff_t>(place - from);
        const auto lineEnd = std::find(begin, block.bytes.end(), '\n');
        if (lineEnd != block.bytes.end()) {
            block.bytes.erase(lineEnd + 1, block.bytes.end());
            return true;
        }
        place += step;
    }
    return true;
}

/// Whether \p text, which begins with a row, ends with one, too; adds its line ends to \p lines.
bool BlockReader::scan(std::string_view text, TableBuilder& table, std::size_t& lines) const
{
    if (!holds(text, '"')) {
        PlainScanner<TableBuilder> scanner(table.format().delimiter, table);
        scanner.scan(text.data(), text.size());
        lines += scanner.lineEnds();
        return true;
    }
    CsvScanner<TableBuilder> scanner(table.format().delimiter, table);
    scanner.feed(text.data(), text.size());
    if (text.back() != '\n') {
        scanner.finish(); // the last line of the file
    }
    lines += scanner.lineEnds();
    return scanner.isBetweenRows();
}

} // namespace analyzer
