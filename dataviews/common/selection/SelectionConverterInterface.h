#pragma once

#include <dataviews/common/selection/SelectionExport.h>

#include <QItemSelection>

#include <boost/shared_ptr.hpp>

#include <optional>
#include <set>

class CaseSet;
class QItemSelectionModel;

/// Translates between the selected cells of one item view and sets of cases, by case ID.
///
/// The two directions need not be each other's inverse: a cell may stand for no case or for several, and a case may be
/// shown in several cells or in none.
class DATAVIEWS_SELECTION_EXPORT SelectionConverterInterface
{
public:
    SelectionConverterInterface() = default;
    SelectionConverterInterface(const SelectionConverterInterface&) = delete;
    SelectionConverterInterface& operator=(const SelectionConverterInterface&) = delete;
    virtual ~SelectionConverterInterface();

    /// The cases of everything that is selected in the view; reads the selected indexes itself.
    [[nodiscard]] virtual std::set<unsigned long long> toCaseIDs(
        const QItemSelectionModel& selectionModel) = 0;

    /// All cells that show one of the cases; cases that the view does not show contribute nothing.
    [[nodiscard]] virtual QItemSelection toItemSelection(
        const std::set<unsigned long long>& caseIDs) = 0;

    /// What toCaseIDs() gives, never null; for converters that can do without a std::set. By default made of that.
    [[nodiscard]] virtual boost::shared_ptr<const CaseSet> toCases(
        const QItemSelectionModel& selectionModel);

    /// What toItemSelection() gives, from converters that can do without a std::set; nothing from others.
    [[nodiscard]] virtual std::optional<QItemSelection> cellsOf(const CaseSet& cases);
};
