#include <analyzer/study/ColumnBuilder.h>
#include <analyzer/study/ReadProgress.h>

#include <vtkDoubleArray.h>
#include <vtkStringArray.h>

#include <limits>

namespace analyzer {

namespace {

bool holdsMoreThanBlanks(const char* text, std::size_t size)
{
    return !std::all_of(text, text + size, fields::isBlank);
}

ColumnBuilder::TextReason reasonFor(FieldKind kind)
{
    switch (kind) {
    case FieldKind::LeadingZeros:
        return ColumnBuilder::TextReason::LeadingZeros;
    case FieldKind::BeyondExact:
        return ColumnBuilder::TextReason::BeyondExact;
    case FieldKind::BothDecimalSigns:
        return ColumnBuilder::TextReason::MixedDecimalSigns;
    default:
        return ColumnBuilder::TextReason::Texts;
    }
}

} // namespace

ColumnBuilder::ColumnBuilder(bool decimalComma, bool asTexts)
    : m_mode(asTexts ? Mode::Texts : Mode::Numbers)
    , m_decimalComma(decimalComma)
    , m_reason(asTexts ? TextReason::Texts : TextReason::None)
{}

bool ColumnBuilder::putOther(std::size_t row, FieldKind kind, const char* text, std::size_t size)
{
    switch (kind) {
    case FieldKind::Blank:
        m_holdsSpelling = m_holdsSpelling || size > 0;
        m_numbers.setLast(row, std::numeric_limits<double>::quiet_NaN());
        return false;
    case FieldKind::NaN:
    case FieldKind::MissingWord:
        m_holdsAnything = true;
        m_holdsSpelling = true;
        m_holdsWords = m_holdsWords || kind == FieldKind::MissingWord;
        m_numbers.setLast(row, std::numeric_limits<double>::quiet_NaN());
        return true;
    default:
        becomeTexts(row, kind, {text, size});
        return putText(row, text, size);
    }
}

void ColumnBuilder::becomeTexts(std::size_t row, FieldKind kind, std::string_view text)
{
    m_reason = reasonFor(kind);
    m_example = m_reason == TextReason::Texts ? std::string() : std::string(text);
    if (m_holdsNumbers || m_holdsSpelling) {
        m_mode = Mode::Unkept;
    } else {
        m_mode = Mode::Texts;
        m_ends.resize(row, 0);
    }
    m_numbers = {};
}

bool ColumnBuilder::putText(std::size_t row, const char* text, std::size_t size)
{
    const bool holds = holdsMoreThanBlanks(text, size);
    m_holdsAnything = m_holdsAnything || holds;
    if (m_mode == Mode::Texts) {
        store(row, text, size);
    }
    if (holds && m_reason != TextReason::Texts && m_mode != Mode::Done) {
        // Kept as text for its numbers only, so far.
        double value = 0.0;
        if (parse(text, size, value) == FieldKind::Text) {
            m_reason = TextReason::Texts;
        }
    }
    return holds;
}

void ColumnBuilder::store(std::size_t row, const char* text, std::size_t size)
{
    m_bytes.resize(row == 0 ? 0 : m_ends[row - 1], '\0');
    m_bytes.append(text, size);
    m_ends.setLast(row, m_bytes.size());
}

void ColumnBuilder::restartAsPartOf(const ColumnBuilder& whole)
{
    m_mode = whole.m_mode;
    m_decimalComma = whole.m_decimalComma;
    m_hasCommas = false;
    m_hasPoints = false;
    m_holdsNumbers = false;
    m_holdsWords = false;
    m_holdsAnything = false;
    m_holdsSpelling = false;
    m_reason = whole.m_reason;
    m_example.clear();
    m_numbers.resize(0, 0.0);
    m_bytes.resize(0, '\0');
    m_ends.resize(0, 0);
}

void ColumnBuilder::append(std::size_t row, const ColumnBuilder& part, std::size_t partRows)
{
    m_hasCommas = m_hasCommas || part.m_hasCommas;
    m_hasPoints = m_hasPoints || part.m_hasPoints;
    m_holdsWords = m_holdsWords || part.m_holdsWords;
    m_holdsAnything = m_holdsAnything || part.m_holdsAnything || part.m_holdsNumbers;
    if (m_mode == Mode::Done || partRows == 0) {
        return;
    }
    if (m_mode == Mode::Numbers && part.m_mode == Mode::Numbers) {
        m_numbers.resize(row, 0.0);
        m_numbers.append(part.m_numbers.data(), partRows);
        m_holdsNumbers = m_holdsNumbers || part.m_holdsNumbers;
        m_holdsSpelling = m_holdsSpelling || part.m_holdsSpelling;
        return;
    }
    appendSpellings(row, part, partRows);
    if (part.m_reason == TextReason::Texts || m_reason == TextReason::None) {
        m_reason = part.m_reason;
        m_example = part.m_example;
    }
}

void ColumnBuilder::appendSpellings(
    std::size_t row, const ColumnBuilder& part, std::size_t partRows)
{
    if (m_mode == Mode::Unkept) {
        return;
    }
    const bool isPartKept = part.m_mode == Mode::Texts
        || (part.m_mode == Mode::Numbers && !part.m_holdsNumbers && !part.m_holdsSpelling);
    if (!isPartKept || (m_mode == Mode::Numbers && (m_holdsNumbers || m_holdsSpelling))) {
        m_mode = Mode::Unkept;
        m_numbers = {};
        m_bytes = {};
        m_ends = {};
        return;
    }
    if (m_mode == Mode::Numbers) {
        m_mode = Mode::Texts;
        m_numbers = {};
        m_ends.resize(row, 0);
    }
    m_bytes.resize(row == 0 ? 0 : m_ends[row - 1], '\0');
    m_ends.resize(row, 0);
    const std::size_t begin = m_bytes.size();
    if (part.m_mode == Mode::Numbers) {
        m_ends.resize(row + partRows, begin);
        return;
    }
    m_bytes.append(part.m_bytes.data(), part.m_ends[partRows - 1]);
    for (std::size_t index = 0; index < partRows; ++index) {
        m_ends.setLast(row + index, begin + part.m_ends[index]);
    }
}

void ColumnBuilder::expectRows(std::size_t rows)
{
    if (m_mode == Mode::Numbers) {
        m_numbers.expect(rows);
    }
}

void ColumnBuilder::endFirstPass()
{
    m_holdsAnything = m_holdsAnything || m_holdsNumbers;
    if (m_mode != Mode::Numbers) {
        return;
    }
    if (m_holdsWords && !m_holdsNumbers) {
        turnIntoTexts(TextReason::Texts);
    } else if (m_hasCommas && m_hasPoints) {
        turnIntoTexts(TextReason::MixedDecimalSigns);
    }
}

void ColumnBuilder::turnIntoTexts(TextReason reason)
{
    m_mode = Mode::Unkept;
    m_reason = reason;
    m_numbers = {};
}

void ColumnBuilder::beginSecondPass()
{
    m_mode = m_mode == Mode::Unkept ? Mode::Texts : Mode::Done;
}

std::string_view ColumnBuilder::text(std::size_t row) const
{
    const std::uint64_t begin = row == 0 ? 0 : m_ends[row - 1];
    return {m_bytes.data() + begin, m_ends[row] - begin};
}

vtkSmartPointer<vtkAbstractArray> ColumnBuilder::take(
    const std::string& name, std::size_t rows, const ReadProgress& progress)
{
    const auto count = static_cast<vtkIdType>(rows);
    vtkSmartPointer<vtkAbstractArray> column;
    if (isNumeric()) {
        auto numbers = vtkSmartPointer<vtkDoubleArray>::New();
        // A last row that turned out empty may lie behind the rows.
        m_numbers.resize(rows, 0.0);
        numbers->SetArray(m_numbers.release(), count, 0, vtkDoubleArray::VTK_DATA_ARRAY_FREE);
        column = numbers;
    } else {
        auto texts = vtkSmartPointer<vtkStringArray>::New();
        texts->SetNumberOfValues(count);
        for (std::size_t row = 0; row < rows; ++row) {
            progress.throwIfCancelledAt(row);
            texts->GetPointer(static_cast<vtkIdType>(row))->assign(text(row));
        }
        m_bytes = {};
        m_ends = {};
        column = texts;
    }
    column->SetName(name.c_str());
    return column;
}

} // namespace analyzer
