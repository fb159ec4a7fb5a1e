#pragma once

#include <analyzer/views/SelectedImageList.h>

#include <dataviews/platform/data/AuxFile.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

class Project;

namespace analyzer {

/// Which images of which two cases are compared: the reference and another one of the selected cases with images.
///
/// Looks at the files of few cases only, however many are selected. Holds for the selection, files and tags as they were
/// when it was made.
class ImageDiffPairs
{
public:
    using CaseID = unsigned long long;
    using Files = std::pair<boost::shared_ptr<AuxFile>, boost::shared_ptr<AuxFile>>;

    /// \p list holds the selected cases; it and \p project outlive this object. Both images carry \p tag themselves; for
    /// none it is the first tag that the two cases have in common. The reference is \p pinned whatever is selected; for
    /// none it is the first selected case with a suitable image.
    ImageDiffPairs(
        const Project& project,
        const SelectedImageList& list,
        std::optional<std::string> tag,
        std::optional<CaseID> pinned);

    /// The reference; none if no case is selected or pinned.
    [[nodiscard]] std::optional<CaseID> reference() const;

    /// The number of selected cases besides the reference.
    [[nodiscard]] std::size_t otherCount() const;

    /// The case at \p place among those, below otherCount().
    [[nodiscard]] CaseID other(std::size_t place) const;

    /// Where \p caseID is among those, if it is.
    [[nodiscard]] std::optional<std::size_t> placeOf(CaseID caseID) const;

    /// The place of the first one that has an image to compare with one of the reference's, else of the first one; there
    /// is one.
    [[nodiscard]] std::size_t firstSuitablePlace() const;

    /// The images to compare of two cases, both empty if there are no two with the tag. Where no file of either case has
    /// a tag, the first ones.
    [[nodiscard]] Files files(CaseID first, CaseID second) const;

private:
    [[nodiscard]] bool hasSuitableImage(CaseID caseID) const;
    [[nodiscard]] std::optional<std::size_t> findReference() const;

    const Project& m_project;
    const SelectedImageList& m_list;
    std::optional<std::string> m_tag;
    std::optional<CaseID> m_pinned;
    std::optional<std::size_t> m_numberOfReference; ///< among the selected cases, if it is there
};

} // namespace analyzer
