#pragma once

#include <analyzer/study/TableBuilder.h>

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace analyzer {

class ReadProgress;
class TableFile;
struct StudyReport;
struct TextSurvey;

/// Reads a table in blocks of whole lines, several at a time in threads of their own.
///
/// Every block is taken for one that begins with a row. That of the first one does; and if a block is one and ends with
/// a row, the next one is one too. Where that does not hold, as with a line break in quotes at the end of a block, and
/// for whatever else needs a closer look, the reader gives up: the caller reads the table from end to end then, which
/// is slower and tells what is wrong.
class BlockReader
{
public:
    struct Sizes
    {
        std::size_t headBytes; ///< of the first block, with the header
        std::size_t blockBytes; ///< of the others; at least 1
        unsigned threads; ///< at least 1
    };

    /// Reads what \p survey has for the table in \p file. All references outlive the reader.
    BlockReader(
        const TableFile& file, const TextSurvey& survey, Sizes sizes, ReadProgress& progress);

    /// One pass over the table: puts its rows into \p table, a new one or one in its second pass. Advances the progress by
    /// the bytes of the table. False if the reader gives up; \p table is of no more use then.
    /// \throws StudyError if the file cannot be read; ReadCancelled.
    [[nodiscard]] bool read(TableBuilder& table);

private:
    /// A block of whole lines in memory.
    struct Block
    {
        std::vector<char> bytes;
        std::string_view text;
    };

    [[nodiscard]] bool readHead(TableBuilder& table);
    void readBlocks(TableBuilder& table);
    void work(TableBuilder& table);
    void readBlock(TableBuilder& table, TableBuilder& part, Block& block, std::size_t number);
    [[nodiscard]] bool load(Block& block, std::size_t place, std::size_t nextPlace) const;
    [[nodiscard]] bool findBreak(Block& block, std::size_t from, std::size_t place) const;
    [[nodiscard]] bool scan(std::string_view text, TableBuilder& table, std::size_t& lines) const;
    void stop(std::exception_ptr problem);

    const TableFile& m_file;
    const TextSurvey& m_survey;
    Sizes m_sizes;
    ReadProgress& m_progress;
    std::size_t m_begin = 0; ///< of the blocks behind the head
    std::size_t m_blockCount = 0;

    std::mutex m_mutex; ///< guards what follows and the table
    std::condition_variable m_appended;
    std::size_t m_nextBlock = 0;
    std::size_t m_appendedBlocks = 0;
    std::size_t m_lines = 0;
    bool m_isStopped = false;
    std::exception_ptr m_problem; ///< null where the reader just gives up
};

} // namespace analyzer
