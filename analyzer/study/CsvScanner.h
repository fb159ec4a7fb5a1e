#pragma once

#include <analyzer/study/CsvError.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <exception>
#include <new>
#include <string>

#include <csv.h>

namespace analyzer {

/// Takes CSV apart as RFC 4180 has it, fed with chunks of any size; a shell around libcsv that adds line numbers and
/// what libcsv leaves to its callers.
///
/// - Blanks around a field belong to it; only those between a closing quote and the delimiter do not.
/// - A quote inside a field that does not begin with one stands for itself.
/// - Text behind a closing quote, a quote that is never closed, and a field over maxFieldBytes are errors.
/// - Empty lines give no row. LF, CRLF and CR end one.
///
/// \p Sink has `void field(const char* text, std::size_t size)`, called for every field in order, and
/// `void endRow(std::size_t line)` with the line where the row began. What it throws leaves feed() or finish(), a
/// CsvError without a line with the present one, and the sink is not called again.
template <class Sink>
class CsvScanner
{
public:
    CsvScanner(char delimiter, Sink& sink)
        : m_sink(sink)
        , m_delimiter(delimiter)
    {
        csv_init(&m_parser, strictOptions);
        csv_set_delim(&m_parser, static_cast<unsigned char>(delimiter));
    }

    CsvScanner(const CsvScanner&) = delete;
    CsvScanner& operator=(const CsvScanner&) = delete;

    ~CsvScanner() { csv_free(&m_parser); }

    /// \throws CsvError for what is no CSV.
    void feed(const char* text, std::size_t size)
    {
        lookAt(text, size);
        std::size_t done = 0;
        while (done < size) {
            if (m_closed) {
                done += passBlanksBehindQuote(text + done, size - done);
                if (done == size) {
                    break;
                }
            }
            m_parser.status = CSV_SUCCESS;
            done += csv_parse(&m_parser, text + done, size - done, fieldFound, rowFound, this);
            rethrow();
            if (done < size) {
                goOnAfterStop(text[done], done);
            }
        }
        if (m_parser.entry_pos > maxFieldBytes) {
            throw CsvError{
                m_line, m_parser.quoted != 0 ? unclosedQuote() : "a field is longer than 64 MiB"};
        }
    }

    /// Ends the last row, which needs no line end.
    /// \throws CsvError if a quote is still open.
    void finish()
    {
        const int result = csv_fini(&m_parser, fieldFound, rowFound, this);
        rethrow();
        if (result != 0) {
            throw CsvError{m_line, unclosedQuote()};
        }
    }

    /// Whether what was fed ended with the end of a row.
    [[nodiscard]] bool isBetweenRows() const
    {
        return !m_rowHasFields && m_parser.quoted == 0 && m_parser.entry_pos == 0 && !m_closed;
    }

    /// Line ends so far.
    [[nodiscard]] std::size_t lineEnds() const { return m_line - 1; }

    static constexpr std::size_t maxFieldBytes = std::size_t{64} << 20U;

private:
    static constexpr unsigned char lenientOptions = CSV_REPALL_NL;
    static constexpr unsigned char strictOptions = CSV_REPALL_NL | CSV_STRICT | CSV_STRICT_FINI;
    static constexpr std::size_t leastBufferStep = std::size_t{64} << 10U;

    static std::string unclosedQuote()
    {
        return "the quote that opens a field here is never closed";
    }

    static int noSpace(unsigned char) { return 0; }

    static bool isBlank(char c) { return c == ' ' || c == '\t'; }

    /// libcsv strips blanks unless told what is one, but asking for every byte is slow: so only where there are any.
    /// Likewise a field can hold a line break only where there are quotes.
    void lookAt(const char* text, std::size_t size)
    {
        // By libcsv's own steps of 128 bytes long fields would grow slowly.
        csv_set_blk_size(&m_parser, std::max(leastBufferStep, csv_get_buffer_size(&m_parser)));
        const bool hasBlanks = std::memchr(text, ' ', size) != nullptr
            || (m_delimiter != '\t' && std::memchr(text, '\t', size) != nullptr);
        csv_set_space_func(&m_parser, hasBlanks ? noSpace : nullptr);
        m_mayHoldBreaks = m_parser.quoted != 0 || std::memchr(text, '"', size) != nullptr;
    }

    /// libcsv stopped before \p byte.
    void goOnAfterStop(char byte, std::size_t& done)
    {
        if (csv_error(&m_parser) != CSV_EPARSE) {
            throw std::bad_alloc();
        }
        if (m_parser.quoted != 0) {
            if (!isBlank(byte)) {
                throw textBehindQuote();
            }
            m_closed = true;
            return;
        }
        csv_set_opts(&m_parser, lenientOptions);
        csv_parse(&m_parser, &byte, 1, fieldFound, rowFound, this);
        csv_set_opts(&m_parser, strictOptions);
        ++done;
    }

    std::size_t passBlanksBehindQuote(const char* text, std::size_t size)
    {
        const char* end = std::find_if(
            text, text + size, [this](char c) { return c == m_delimiter || !isBlank(c); });
        if (end != text + size) {
            if (*end != m_delimiter && *end != '\r' && *end != '\n') {
                throw textBehindQuote();
            }
            m_closed = false;
        }
        return static_cast<std::size_t>(end - text);
    }

    CsvError textBehindQuote() const
    {
        return {m_line + breaksSoFar(), "text follows the closing quote of a field"};
    }

    /// Line breaks in the part of a field that libcsv holds.
    std::size_t breaksSoFar() const
    {
        return countBreaks(reinterpret_cast<const char*>(m_parser.entry_buf), m_parser.entry_pos);
    }

    static std::size_t countBreaks(const char* text, std::size_t size)
    {
        std::size_t breaks = 0;
        for (std::size_t place = 0; place < size; ++place) {
            const bool crlf = text[place] == '\r' && place + 1 < size && text[place + 1] == '\n';
            breaks += text[place] == '\n' || (text[place] == '\r' && !crlf) ? 1 : 0;
        }
        return breaks;
    }

    // libcsv is C: nothing may be thrown through it.
    void rethrow()
    {
        if (!m_thrown) {
            return;
        }
        try {
            std::rethrow_exception(m_thrown);
        } catch (CsvError& error) {
            error.setLine(error.line() == 0 ? m_line : error.line());
            throw;
        }
    }

    static void fieldFound(void* text, std::size_t size, void* self)
    {
        auto& scanner = *static_cast<CsvScanner*>(self);
        if (scanner.m_thrown) {
            return;
        }
        try {
            scanner.m_sink.field(static_cast<const char*>(text), size);
        } catch (...) {
            scanner.m_thrown = std::current_exception();
            return;
        }
        if (scanner.m_mayHoldBreaks) {
            scanner.m_line += countBreaks(static_cast<const char*>(text), size);
        }
        scanner.m_rowHasFields = true;
        scanner.m_afterReturn = false;
    }

    static void rowFound(int byte, void* self)
    {
        auto& scanner = *static_cast<CsvScanner*>(self);
        if (scanner.m_thrown) {
            return;
        }
        if (scanner.m_rowHasFields) {
            try {
                scanner.m_sink.endRow(scanner.m_rowLine);
            } catch (...) {
                scanner.m_thrown = std::current_exception();
                return;
            }
            scanner.m_rowHasFields = false;
        }
        if (byte == '\n' && scanner.m_afterReturn) {
            scanner.m_afterReturn = false;
            return;
        }
        scanner.m_afterReturn = byte == '\r';
        ++scanner.m_line;
        scanner.m_rowLine = scanner.m_line;
    }

    Sink& m_sink;
    csv_parser m_parser{};
    std::exception_ptr m_thrown;
    std::size_t m_line = 1; ///< where the next field begins
    std::size_t m_rowLine = 1; ///< where the row began
    char m_delimiter;
    bool m_mayHoldBreaks = false;
    bool m_rowHasFields = false;
    bool m_afterReturn = false; ///< the last line end was a CR, which an LF may complete
    bool m_closed = false; ///< a quoted field is closed, blanks followed
};

} // namespace analyzer
