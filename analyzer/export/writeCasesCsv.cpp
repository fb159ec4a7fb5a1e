#include <analyzer/export/ReplacementFile.h>
#include <analyzer/export/writeCasesCsv.h>

#include <dataviews/platform/data/Project.h>

#include <QtGlobal>

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkStringArray.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <future>
#include <string_view>
#include <utility>
#include <vector>

namespace analyzer {

namespace {

constexpr std::size_t flushBytes = std::size_t{1} << 20U;
constexpr std::size_t maxNumberBytes = 32;

/// Gathers text, and hands it to the file in large pieces.
class CsvBuffer
{
public:
    CsvBuffer(ReplacementFile& file, CsvOptions options)
        : m_file(file)
        , m_options(options)
        , m_bytes(flushBytes)
    {}

    /// Makes room for \p size more bytes.
    void reserve(std::size_t size)
    {
        if (m_bytes.size() - m_used >= size) {
            return;
        }
        writeBeside();
        if (m_bytes.size() < size) {
            m_bytes.resize(size);
        }
    }

    /// Hands the rest to the file, which has all then.
    void flush()
    {
        waitForWriting();
        m_file.write(m_bytes.data(), m_used);
        m_used = 0;
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

    /// Lets the file take what is there while the next text is gathered: for large tables that is a third of the time.
    void writeBeside()
    {
        waitForWriting();
        m_bytes.swap(m_inWriting);
        m_bytes.resize(std::max(m_bytes.size(), flushBytes));
        const auto write = [this, size = std::exchange(m_used, 0)] {
            m_file.write(m_inWriting.data(), size);
        };
        m_writing = std::async(std::launch::async, write);
    }

    void waitForWriting()
    {
        if (m_writing.valid()) {
            m_writing.get();
        }
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

    ReplacementFile& m_file;
    CsvOptions m_options;
    std::vector<char> m_bytes;
    std::vector<char> m_inWriting;
    std::size_t m_used = 0;
    std::future<void> m_writing; ///< the last, for its end is waited for before the others go
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

void putNames(CsvBuffer& buffer, const std::vector<std::string>& names)
{
    // Whoever guesses the delimiter, as StudyReader does, sees from quotes that those in names are none.
    const bool quoted = std::any_of(names.begin(), names.end(), [](const std::string& name) {
        return name.find_first_of(";\t") != std::string::npos;
    });
    bool isFirst = true;
    for (const std::string& name : names) {
        buffer.reserve(1);
        if (!isFirst) {
            buffer.put(',');
        }
        isFirst = false;
        buffer.putText(name, quoted);
    }
    buffer.reserve(1);
    buffer.put('\n');
}

void putCase(CsvBuffer& buffer, const std::vector<Column>& columns, std::size_t row)
{
    bool isFirst = true;
    for (const Column& column : columns) {
        buffer.reserve(1);
        if (!isFirst) {
            buffer.put(',');
        }
        isFirst = false;
        if (column.reals != nullptr) {
            buffer.putReal(column.reals[row]);
        } else if (column.texts != nullptr) {
            buffer.putText(column.texts[row]);
        } else {
            buffer.putInteger(column.integers[row]);
        }
    }
    buffer.reserve(1);
    buffer.put('\n');
}

} // namespace

void writeCasesCsv(
    const Project& project, const RowBitmap& rows, const std::string& path, CsvOptions options)
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
    CsvBuffer buffer(file, options);
    putNames(buffer, names);
    rows.forEach([&](std::size_t row) { putCase(buffer, columns, row); });
    buffer.flush();
    file.commit();
}

} // namespace analyzer
