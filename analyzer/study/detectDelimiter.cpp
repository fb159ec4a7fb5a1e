#include <analyzer/study/CsvScanner.h>
#include <analyzer/study/detectDelimiter.h>
#include <analyzer/study/parseField.h>

#include <cstddef>
#include <tuple>

namespace analyzer {

namespace {

constexpr std::size_t enoughRows = 100;

/// Counts fields as one delimiter parts them.
class Probe
{
public:
    explicit Probe(char delimiter)
        : m_decimal(delimiter == ';' ? ',' : '.')
    {}

    void field(const char* text, std::size_t size)
    {
        double value = 0.0;
        const FieldKind kind = parseField(text, size, m_decimal, value);
        m_isBlank = m_isBlank && kind == FieldKind::Blank;
        m_numbersInRow += kind == FieldKind::Number ? 1 : 0;
        ++m_fieldsInRow;
    }

    void endRow(std::size_t)
    {
        if (!m_isBlank || m_fieldsInRow > 1) {
            takeRow();
        }
        m_fieldsInRow = 0;
        m_numbersInRow = 0;
        m_isBlank = true;
    }

    void fail() { m_failed = true; }

    [[nodiscard]] bool parts() const { return m_headerFields > 1; }

    /// Greater for the better delimiter.
    [[nodiscard]] auto rank() const
    {
        const double evenShare =
            m_rows == 0 ? 1.0 : static_cast<double>(m_evenRows) / static_cast<double>(m_rows);
        const double numberShare =
            m_fields == 0 ? 0.0 : static_cast<double>(m_numbers) / static_cast<double>(m_fields);
        return std::make_tuple(!m_failed, evenShare, numberShare, m_headerFields);
    }

private:
    void takeRow()
    {
        if (m_headerFields == 0) {
            m_headerFields = m_fieldsInRow;
        } else if (m_rows < enoughRows) {
            ++m_rows;
            m_evenRows += m_fieldsInRow == m_headerFields ? 1 : 0;
            m_fields += m_fieldsInRow;
            m_numbers += m_numbersInRow;
        }
    }

    char m_decimal;
    std::size_t m_headerFields = 0;
    std::size_t m_rows = 0;
    std::size_t m_evenRows = 0;
    std::size_t m_fields = 0;
    std::size_t m_numbers = 0;
    std::size_t m_fieldsInRow = 0;
    std::size_t m_numbersInRow = 0;
    bool m_isBlank = true;
    bool m_failed = false;
};

Probe probe(std::string_view head, bool isWhole, char delimiter)
{
    Probe result(delimiter);
    CsvScanner<Probe> scanner(delimiter, result);
    try {
        scanner.feed(head.data(), head.size());
        if (isWhole) {
            scanner.finish();
        }
    } catch (const CsvError&) {
        result.fail();
    }
    return result;
}

} // namespace

char detectDelimiter(std::string_view head, bool isWhole)
{
    char best = ',';
    Probe bestProbe = probe(head, isWhole, best);
    for (const char delimiter : {';', '\t'}) {
        const Probe other = probe(head, isWhole, delimiter);
        if (other.parts() && (!bestProbe.parts() || other.rank() > bestProbe.rank())) {
            best = delimiter;
            bestProbe = other;
        }
    }
    return best;
}

} // namespace analyzer
