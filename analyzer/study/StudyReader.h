#pragma once

#include <analyzer/study/ReadProgress.h>
#include <analyzer/study/StudyReport.h>
#include <analyzer/study/TableFile.h>

#include <dataviews/platform/data/Project.h>

#include <cstddef>
#include <memory>
#include <string>

namespace analyzer {

/// A study that was read, and what there is to say about it.
struct ReadStudy
{
    std::unique_ptr<Project> project;
    StudyReport report;
};

/// Reads studies: a CSV table in one of three dialects, with or without images.
///
/// Any thread may read; the project belongs to the one that gets it.
class StudyReader
{
public:
    /// How a reader takes a table apart. What it reads does not depend on that.
    struct Pieces
    {
        std::size_t headBytes; ///< are read first
        std::size_t blockBytes; ///< for each thread, at least 1
        unsigned threads; ///< 0 to read from end to end
        std::size_t chunkBytes; ///< where blocks will not do, at least 1
    };

    /// Reads in blocks on all cores.
    StudyReader();

    explicit StudyReader(const Pieces& pieces);

    /// Reads from end to end, with \p chunkBytes of the file in memory at a time, at least 1.
    explicit StudyReader(std::size_t chunkBytes);

    /// Reads the study at \p path, a file or a folder (UTF-8).
    ///
    /// The table is CSV as RFC 4180 has it, with comma, semicolon or tab, in UTF-8 or else Latin-1; see CsvScanner,
    /// TableBuilder and headerColumns() for the details. With semicolons a number may have a decimal comma; a column
    /// with both decimal signs, such as "1.234,5", and one with decimal points in a file with decimal commas, are
    /// texts, for a point may part thousands there. An empty field is missing; "NaN", "NA", "null" and "-" are missing
    /// in a column whose other fields are numbers, and NaN in one of nothing else. Columns FILE… and img, img_… become
    /// tags of the group "Images" on the files they name if at least half of their paths end like an image; else they
    /// are variables.
    ///
    /// \throws StudyError for what is no study; ReadCancelled once \p progress is cancelled.
    [[nodiscard]] ReadStudy read(const std::string& path, ReadProgress& progress) const;

private:
    Pieces m_pieces;
};

/// Reads the study at \p path with a StudyReader.
[[nodiscard]] ReadStudy readStudy(const std::string& path, ReadProgress& progress);

} // namespace analyzer
