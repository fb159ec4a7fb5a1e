#pragma once

#include <dataviews/platform/data/PlatformDataExport.h>
#include <dataviews/platform/data/Variant.h>
#include <dataviews/platform/property/ValueRange_s.h>

#include <vtkAbstractArray.h>
#include <vtkSmartPointer.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class vtkDoubleArray;
class vtkIntArray;
class vtkStringArray;

/// One quantity of a study: a named column with a value, or a gap, for every case.
///
/// Owned by its project and handed out as weak handles. Its column does not change once the project is open, so
/// what is computed from it is computed at the first question and kept.
class DATAVIEWS_PLATFORM_DATA_EXPORT Variable
{
public:
    /// What a variable is in the study.
    enum Nature
    {
        Identifier = 0, ///< names the case
        Output = 1, ///< a result
        Input = 2 ///< chosen by the designer of the study
    };

    /// \p column is a vtkDoubleArray (a missing value is NaN), a vtkStringArray (a missing value is the empty text)
    /// or a vtkIntArray (nothing is missing), with one component; its name becomes the variable's.
    /// \throws ExceptionBase for any other column and for a column without a name.
    Variable(vtkSmartPointer<vtkAbstractArray> column, Nature nature);
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable();

    /// Unique in its project and never empty.
    [[nodiscard]] const std::string& name() const { return m_name; }

    [[nodiscard]] Nature nature() const { return m_nature; }

    /// The values, one a case, in the order of the cases.
    [[nodiscard]] vtkAbstractArray& column() const { return *m_column; }

    /// The column as numbers; null for a variable of texts.
    [[nodiscard]] vtkDoubleArray* realColumn() const { return m_reals; }

    /// The column as texts; null for a variable of numbers.
    [[nodiscard]] vtkStringArray* textColumn() const { return m_texts; }

    /// Whether the values are numbers.
    [[nodiscard]] bool isNumeric() const { return m_texts == nullptr; }

    /// Whether the values are numbers and every one that is not missing is a whole number that a double holds
    /// exactly.
    [[nodiscard]] bool isWhole() const;

    /// The value of the case in \p row, which must exist: empty where missing, an integer for a variable that
    /// isWhole(), else a real or a text.
    [[nodiscard]] Variant value(std::size_t row) const;

    /// The smallest value over all cases, as values are ordered; empty if all are missing.
    [[nodiscard]] Variant firstValue() const;

    /// The smallest and the largest finite value; {NaN, NaN} where there is none, as for texts.
    [[nodiscard]] ValueRange_s<double> range() const;

    /// The number of cases without a value.
    [[nodiscard]] std::size_t missingCount() const;

    /// The number of different values, missing ones not counted; more than maxDistinctValues are reported as
    /// maxDistinctValues + 1.
    [[nodiscard]] std::size_t distinctValueCount() const;

    static constexpr std::size_t maxDistinctValues = 50;

    /// The different values in ascending order, as value() gives them, missing ones left out. Only kept while they
    /// are few: there may be one for each case.
    [[nodiscard]] std::vector<Variant> distinctValues() const;

private:
    struct Statistics
    {
        ValueRange_s<double> finiteRange{};
        double smallest = 0.0; ///< infinities included; meaningless where all are missing
        std::size_t smallestText = 0; ///< row of the smallest text
        std::size_t missing = 0;
        bool whole = true;
    };

    const Statistics& statistics() const;
    [[nodiscard]] std::size_t rowCount() const;

    /// Calls \p take with every number that is not missing, until it returns false.
    template <class Take>
    void forEachNumber(Take take) const;

    /// Calls \p take with every text that is not missing, until it returns false.
    template <class Take>
    void forEachText(Take take) const;

    /// As value() gives them.
    [[nodiscard]] std::vector<Variant> variantsOf(const std::vector<double>& numbers) const;
    [[nodiscard]] static std::vector<Variant> variantsOf(
        const std::vector<std::string_view>& texts);

    vtkSmartPointer<vtkAbstractArray> m_column;
    vtkDoubleArray* m_reals;
    vtkStringArray* m_texts;
    vtkIntArray* m_integers;
    std::string m_name;
    Nature m_nature;
    mutable std::optional<Statistics> m_statistics;
    mutable std::optional<std::size_t> m_distinctValues;
    mutable std::vector<Variant>
        m_fewValues; ///< all different ones, if there are no more than maxDistinctValues
};
