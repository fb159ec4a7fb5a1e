#pragma once

#include <dataviews/platform/data/AuxFile.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <optional>
#include <vector>

class CaseSet;
class Project;
class vtkIntArray;

namespace analyzer {

/// The images of the selected cases in a row: the cases by ascending ID, the images of each in the order of the study.
///
/// Counts images and touches none before it is asked for, so that a million selected cases cost one typed pass.
/// Holds rows of the study, no files.
class SelectedImageList
{
public:
    /// \p project outlives the list.
    explicit SelectedImageList(const Project& project);

    /// The cases that may be shown, by ID, in any order; those that the study does not have are left out. The
    /// selection is empty afterwards.
    void setCases(const vtkIntArray& caseIDs);

    /// Of \p selection the cases that may be shown are in the list.
    void setSelection(const CaseSet& selection);

    /// Forgets cases and selection.
    void clear();

    /// The number of images.
    [[nodiscard]] std::size_t count() const { return m_count; }

    /// The number of cases that have images.
    [[nodiscard]] std::size_t caseCount() const { return m_selected.size(); }

    /// The ID of the case at \p number, which is below caseCount().
    [[nodiscard]] unsigned long long caseID(std::size_t number) const;

    /// Where the case \p caseID is among those that have images, if it is.
    [[nodiscard]] std::optional<std::size_t> caseNumber(unsigned long long caseID) const;

    /// The image at \p place, which is below count(). Empty if the study has been replaced since the cases were set.
    [[nodiscard]] boost::shared_ptr<AuxFile> file(std::size_t place) const;

    /// Where \p file, one of the study's, is in the list, if it is.
    [[nodiscard]] std::optional<std::size_t> placeOf(const AuxFile& file) const;

private:
    /// A case with images.
    struct Case
    {
        unsigned long long caseID = 0;
        std::size_t row = 0;
        std::size_t fileCount = 0;
    };

    struct SelectedCase
    {
        std::size_t index = 0; ///< in the cases
        std::size_t firstPlace = 0;
    };

    [[nodiscard]] std::optional<std::size_t> numberOfCase(std::size_t index) const;
    [[nodiscard]] std::size_t gallopTo(unsigned long long caseID, std::size_t from) const;

    const Project& m_project;
    std::vector<Case> m_cases; ///< by ascending ID
    std::vector<SelectedCase> m_selected; ///< in the order of the cases
    std::size_t m_count = 0;
};

} // namespace analyzer
