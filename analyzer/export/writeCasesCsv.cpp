#include <analyzer/export/ReplacementFile.h>
#include <analyzer/export/writeCasesCsv.h>
#include <analyzer/study/forEachInThreads.h>

#include <dataviews/platform/data/Project.h>

#include <QtGlobal>

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkStringArray.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cmath>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

namespace analyzer {

namespace {

constexpr std::size_t firstBytes = std::size_t{1} << 20U;
constexpr std::size_t maxNumberBytes = 32;

/// Pieces of so many cases are written one after another, and gathered beside each other.
constexpr std::size_t casesInPiece = 8192;

/// Gathers text.
class CsvText
{
public:
    explicit CsvText(CsvOptions options)
        : m_options(options)
        , m_bytes(firstBytes)
    {}

    void clear() { m_used = 0; }

    void writeTo(ReplacementFile& file) const { file.write(m_bytes.data(), m_used); }

    /// Makes room for \p size more bytes.
    void reserve(std::size_t size)
    {
        if (m_bytes.size() - m_used < size) {
            m_bytes.resize(std::max(m_used + size, 2 * m_bytes.size()));
        }
    }

    /// There must be room for it.
    void put(char byte) { m_bytes[m_used++] = byte; }

    void putInteger(std::int64_t value)
    {
        reserve(maxNumberBytes);
        toChars(value);
    }

    void putReal(double value)
    {
        if (std::isnan(value)) {
            return;
        }
        reserve(maxNumberBytes);
        constexpr double largestExact = 9007199254740992.0; // 2^53
        const double size = std::abs(value);
        if (size <= largestExact) {
            const auto whole = static_cast<std::int64_t>(value);
            // Minus zero is none of the integers.
            if (static_cast<double>(whole) == value && (whole != 0 || !std::signbit(value))) {
                toChars(whole);
            } else {
                toChars(value);
            }
            return;
        }
        const std::size_t begin = m_used;
        toChars(value);
        const std::string_view text(m_bytes.data() + begin, m_used - begin);
        if (!std::isinf(value) && text.find('e') == std::string_view::npos) {
            put('.');
            put('0');
        }
    }

    void putText(std::string_view text, bool alwaysQuoted = false)
    {
        constexpr std::size_t around = 3; // quotes and an apostrophe
        reserve(2 * text.size() + around);
        const bool quoted = alwaysQuoted || mustBeQuoted(text);
        if (quoted) {
            put('"');
        }
        if (m_options.forSpreadsheets && looksLikeFormula(text)) {
            put('\'');
        }
        if (quoted) {
            for (const char byte : text) {
                if (byte == '"') {
                    put('"');
                }
                put(byte);
            }
            put('"');
        } else if (!text.empty()) {
            std::memcpy(m_bytes.data() + m_used, text.data(), text.size());
            m_used += text.size();
        }
    }

private:
    template <class Number>
    void toChars(Number value)
    {
        char* begin = m_bytes.data() + m_used;
        m_used += static_cast<std::size_t>(
            std::to_chars(begin, begin + maxNumberBytes, value).ptr - begin);
    }

    static bool isBlank(char byte) { return byte == ' ' || byte == '\t'; }

    static bool mustBeQuoted(std::string_view text)
    {
        const auto isSpecial = [](char byte) {
            return byte == ',' || byte == '"' || byte == '\r' || byte == '\n';
        };
        return !text.empty()
            && (isBlank(text.front()) || isBlank(text.back())
                || std::any_of(text.begin(), text.end(), isSpecial));
    }

    static bool looksLikeFormula(std::string_view text)
    {
        constexpr std::string_view starts = "=+-@\t\r";
        return !text.empty() && starts.find(text.front()) != std::string_view::npos;
    }

    CsvOptions m_options;
    std::vector<char> m_bytes;
    std::size_t m_used = 0;
};

/// The values of one variable; one of the pointers is set.
struct Column
{
    explicit Column(const Variable& variable)
    {
        if (vtkDoubleArray* realColumn = variable.realColumn()) {
            reals = realColumn->GetPointer(0);
        } else if (vtkStringArray* textColumn = variable.textColumn()) {
            texts = textColumn->GetPointer(0);
        } else {
            integers = vtkIntArray::SafeDownCast(&variable.column())->GetPointer(0);
        }
    }

    const double* reals = nullptr;
    const vtkStdString* texts = nullptr;
    const int* integers = nullptr;
};

void putNames(CsvText& text, const std::vector<std::string>& names)
{
    // Whoever guesses the delimiter, as StudyReader does, sees from quotes that those in names are none.
    const bool quoted = std::any_of(names.begin(), names.end(), [](const std::string& name) {
        return name.find_first_of(";\t") != std::string::npos;
    });
    bool isFirst = true;
    for (const std::string& name : names) {
        text.reserve(1);
        if (!isFirst) {
            text.put(',');
        }
        isFirst = false;
        text.putText(name, quoted);
    }
    text.reserve(1);
    text.put('\n');
}

void putCase(CsvText& text, const std::vector<Column>& columns, std::size_t row)
{
    bool isFirst = true;
    for (const Column& column : columns) {
        text.reserve(1);
        if (!isFirst) {
            text.put(',');
        }
        isFirst = false;
        if (column.reals != nullptr) {
            text.putReal(column.reals[row]);
        } else if (column.texts != nullptr) {
            text.putText(column.texts[row]);
        } else {
            text.putInteger(column.integers[row]);
        }
    }
    text.reserve(1);
    text.put('\n');
}

/// Writes the cases of a project piece by piece, in several threads.
class CaseWriter
{
public:
    CaseWriter(
        const std::vector<Column>& columns,
        const RowBitmap& rows,
        CsvOptions options,
        ReplacementFile& file,
        const ExportProgress& progress)
        : m_columns(columns)
        , m_rows(rows)
        , m_options(options)
        , m_file(file)
        , m_progress(progress)
        , m_pieceCount((rows.rowCount() + casesInPiece - 1) / casesInPiece)
    {}

    /// False if it was cancelled.
    bool write()
    {
        const std::size_t workers =
            std::min<std::size_t>(std::max(1U, std::thread::hardware_concurrency()), m_pieceCount);
        forEachInThreads(workers, workers, [this](std::size_t) { work(); });
        return !m_isStopped;
    }

private:
    void work()
    {
        try {
            CsvText text(m_options);
            for (std::size_t piece = m_next++; piece < m_pieceCount; piece = m_next++) {
                text.clear();
                gather(piece, text);
                if (!writeInTurn(piece, text)) {
                    return;
                }
            }
        } catch (...) {
            stop();
            throw;
        }
    }

    void gather(std::size_t piece, CsvText& text) const
    {
        const std::size_t end = std::min((piece + 1) * casesInPiece, m_rows.rowCount());
        for (std::size_t row = m_rows.next(piece * casesInPiece); row < end;
             row = m_rows.next(row + 1)) {
            putCase(text, m_columns, row);
        }
    }

    /// False if nothing more is wanted.
    bool writeInTurn(std::size_t piece, const CsvText& text)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_turn.wait(lock, [&] { return m_isStopped || m_written == piece; });
        if (m_isStopped) {
            return false;
        }
        // The others gather meanwhile.
        text.writeTo(m_file);
        ++m_written;
        m_isStopped = m_progress
            && !m_progress(static_cast<double>(m_written) / static_cast<double>(m_pieceCount));
        m_turn.notify_all();
        return !m_isStopped;
    }

    void stop()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isStopped = true;
        m_turn.notify_all();
    }

    const std::vector<Column>& m_columns;
    const RowBitmap& m_rows;
    CsvOptions m_options;
    ReplacementFile& m_file;
    const ExportProgress& m_progress;
    std::size_t m_pieceCount;
    std::atomic<std::size_t> m_next{0};
    std::mutex m_mutex;
    std::condition_variable m_turn;
    std::size_t m_written = 0;
    bool m_isStopped = false;
};

} // namespace

bool writeCasesCsv(
    const Project& project,
    const RowBitmap& rows,
    const std::string& path,
    CsvOptions options,
    const ExportProgress& progress)
{
    Q_ASSERT_X(
        rows.rowCount() == project.caseCount(), "writeCasesCsv", "the bitmap is of other cases");
    std::vector<std::string> names;
    std::vector<Column> columns;
    const auto add = [&](const WeakPtr<Variable>& handle) {
        const auto variable = handle.lock();
        names.push_back(variable->name());
        columns.emplace_back(*variable);
    };
    add(project.caseIDVariable());
    for (const WeakPtr<Variable>& variable : project.variables()) {
        add(variable);
    }

    ReplacementFile file(path);
    CsvText head(options);
    putNames(head, names);
    head.writeTo(file);
    if (!CaseWriter(columns, rows, options, file, progress).write()) {
        return false;
    }
    file.commit();
    return true;
}

} // namespace analyzer
