#pragma once

#include <analyzer/study/GrowingBuffer.h>
#include <analyzer/study/parseField.h>

#include <vtkSmartPointer.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

class vtkAbstractArray;

namespace analyzer {

class ReadProgress;

/// Collects the fields of one column as numbers or texts, whichever they turn out to be.
///
/// A column is one of numbers until a field is none. Where only empty fields came before, the column goes on as one of
/// texts; else the earlier spellings are gone, and the column asks for a second pass over the table. So no text is kept
/// for the sake of a turn that hardly ever comes.
class ColumnBuilder
{
public:
    /// Why a column without a plain text in it is one of texts.
    enum class TextReason
    {
        None, ///< it is one of numbers
        Texts, ///< it holds texts
        LeadingZeros, ///< whole numbers such as "03"
        BeyondExact, ///< numbers that a real does not hold
        MixedDecimalSigns ///< decimal commas and points
    };

    /// With \p decimalComma a number may have either decimal sign, but its column not both: beside decimal commas a
    /// point may part thousands, and nobody knows what "1.234" is.
    /// With \p asTexts the column is one of texts in any case.
    ColumnBuilder(bool decimalComma, bool asTexts);

    /// Sets the cell in \p row, which is the last one set or the one behind it. Returns whether the field holds
    /// anything but blanks.
    bool put(std::size_t row, const char* text, std::size_t size)
    {
        if (m_mode != Mode::Numbers) {
            return putText(row, text, size);
        }
        double value = 0.0;
        const FieldKind kind = parse(text, size, value);
        if (kind != FieldKind::Number) {
            return putOther(row, kind, text, size);
        }
        m_numbers.setLast(row, value);
        m_holdsNumbers = true;
        return true;
    }

    /// Sets the cell in \p row likewise if the field that begins at \p text and ends at \p delimiter, a line end or
    /// \p end is a number and the column one of numbers. Returns the end of the field, else null.
    const char* putNumber(std::size_t row, const char* text, const char* end, char delimiter)
    {
        if (m_mode != Mode::Numbers || m_decimalComma) {
            return nullptr;
        }
        double value = 0.0;
        const char* last = parsePlainNumber(text, end, value);
        if (last == nullptr
            || (last != end && *last != delimiter && *last != '\n' && *last != '\r')) {
            return nullptr;
        }
        m_numbers.setLast(row, value);
        m_holdsNumbers = true;
        return last;
    }

    /// Sets the cell in \p row likewise, to nothing.
    void putMissing(std::size_t row) { put(row, "", 0); }

    // ---- at the end of the first pass over the table, of \p rows rows

    /// Decides what the column is, as far as its own fields tell.
    void endFirstPass();

    [[nodiscard]] bool isNumeric() const { return m_reason == TextReason::None; }

    /// Whether any number that was taken has one.
    [[nodiscard]] bool hasDecimalCommas() const { return m_hasCommas; }

    [[nodiscard]] bool hasDecimalPoints() const { return m_hasPoints; }

    /// Whether any cell was given more than blanks.
    [[nodiscard]] bool holdsAnything() const { return m_holdsAnything; }

    /// Makes a column of numbers one of texts, which takes a second pass.
    void turnIntoTexts(TextReason reason);

    [[nodiscard]] TextReason textReason() const { return m_reason; }

    /// A field that the reason is about; empty where it is not one field.
    [[nodiscard]] const std::string& example() const { return m_example; }

    [[nodiscard]] bool needsSecondPass() const { return m_mode == Mode::Unkept; }

    /// From here on put() fills what the first pass could not keep; other columns stay as they are.
    void beginSecondPass();

    // ---- in parts

    /// Makes this the builder of a part of \p whole, a column of the same table: empty, in the same pass.
    void restartAsPartOf(const ColumnBuilder& whole);

    /// Sets the cells from \p row on to those of the first \p partRows rows of \p part, which was restarted as a part
    /// of this column. Both passes end as if each cell had been put here, but a column of texts may ask for a second
    /// pass that would not have to otherwise.
    void append(std::size_t row, const ColumnBuilder& part, std::size_t partRows);

    /// Asks for room for \p rows numbers.
    void expectRows(std::size_t rows);

    // ---- when all is read

    /// The text in \p row of a column of texts; valid until the column is taken.
    [[nodiscard]] std::string_view text(std::size_t row) const;

    /// The column of \p rows rows as a vtkDoubleArray with NaN or a vtkStringArray with empty texts for what is
    /// missing. Leaves nothing here.
    /// \throws ReadCancelled
    [[nodiscard]] vtkSmartPointer<vtkAbstractArray> take(
        const std::string& name, std::size_t rows, const ReadProgress& progress);

private:
    enum class Mode
    {
        Numbers,
        Texts,
        Unkept, ///< texts that the first pass does not keep
        Done ///< not to be changed by the second pass
    };

    FieldKind parse(const char* text, std::size_t size, double& value);
    bool putOther(std::size_t row, FieldKind kind, const char* text, std::size_t size);
    bool putText(std::size_t row, const char* text, std::size_t size);
    void store(std::size_t row, const char* text, std::size_t size);
    void appendSpellings(std::size_t row, const ColumnBuilder& part, std::size_t partRows);
    void becomeTexts(std::size_t row, FieldKind kind, std::string_view text);

    Mode m_mode;
    bool m_decimalComma;
    bool m_hasCommas = false;
    bool m_hasPoints = false;
    bool m_holdsNumbers = false;
    bool m_holdsWords = false; ///< NA, null, -
    bool m_holdsAnything = false; ///< besides numbers, until endFirstPass()
    bool m_holdsSpelling = false; ///< something a second pass would be needed for
    TextReason m_reason = TextReason::None;
    std::string m_example;

    GrowingBuffer<double> m_numbers;
    GrowingBuffer<char> m_bytes;
    GrowingBuffer<std::uint64_t> m_ends; ///< of the texts, in the bytes
};

inline FieldKind ColumnBuilder::parse(const char* text, std::size_t size, double& value)
{
    if (!m_decimalComma) {
        return parseField(text, size, '.', value);
    }
    const bool comma = size > 0 && std::memchr(text, ',', size) != nullptr;
    const FieldKind kind = parseField(text, size, comma ? ',' : '.', value);
    if (kind == FieldKind::Number) {
        m_hasCommas = m_hasCommas || comma;
        m_hasPoints = m_hasPoints || std::memchr(text, '.', size) != nullptr;
    } else if (kind == FieldKind::Text && comma && fields::isDigitsWithBothSigns(text, size)) {
        return FieldKind::BothDecimalSigns;
    }
    return kind;
}

} // namespace analyzer
