#include <analyzer/views/SelectedImageList.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/selection/CaseSet.h>

#include <QtGlobal>

#include <vtkIntArray.h>

#include <algorithm>

namespace analyzer {

SelectedImageList::SelectedImageList(const Project& project)
    : m_project(project)
{}

void SelectedImageList::setCases(const vtkIntArray& caseIDs)
{
    clear();
    if (m_project.auxFileCount() == 0) {
        return;
    }
    const vtkIdType count = caseIDs.GetNumberOfValues();
    for (vtkIdType i = 0; i < count; ++i) {
        const auto caseID = static_cast<unsigned long long>(caseIDs.GetValue(i));
        const std::optional<std::size_t> row = m_project.row(caseID);
        const std::size_t fileCount = row ? m_project.auxFiles(*row).size() : 0;
        if (fileCount > 0) {
            m_cases.push_back({caseID, *row, fileCount});
        }
    }
    const auto byID = [](const Case& left, const Case& right) {
        return left.caseID < right.caseID;
    };
    if (!std::is_sorted(m_cases.begin(), m_cases.end(), byID)) {
        std::sort(m_cases.begin(), m_cases.end(), byID);
    }
}

void SelectedImageList::setSelection(const CaseSet& selection)
{
    m_selected.clear();
    m_count = 0;
    const auto select = [this](std::size_t index) {
        m_selected.push_back({index, m_count});
        m_count += m_cases[index].fileCount;
    };
    if (selection.size() >= m_cases.size()) {
        for (std::size_t index = 0; index < m_cases.size(); ++index) {
            if (selection.contains(m_cases[index].caseID)) {
                select(index);
            }
        }
        return;
    }
    std::size_t index = 0;
    selection.anyOf([&](CaseSet::ID caseID) {
        index = gallopTo(caseID, index);
        if (index < m_cases.size() && m_cases[index].caseID == caseID) {
            select(index);
        }
        return index == m_cases.size();
    });
}

void SelectedImageList::clear()
{
    m_cases.clear();
    m_selected.clear();
    m_count = 0;
}

unsigned long long SelectedImageList::caseID(std::size_t number) const
{
    Q_ASSERT_X(number < m_selected.size(), "SelectedImageList::caseID", "there is no such case");
    return m_cases[m_selected[number].index].caseID;
}

std::optional<std::size_t> SelectedImageList::caseNumber(unsigned long long caseID) const
{
    const std::size_t index = gallopTo(caseID, 0);
    if (index == m_cases.size() || m_cases[index].caseID != caseID) {
        return std::nullopt;
    }
    return numberOfCase(index);
}

/// The place among the selected cases of the case at \p index, if that is selected.
std::optional<std::size_t> SelectedImageList::numberOfCase(std::size_t index) const
{
    const auto selected = std::lower_bound(
        m_selected.begin(),
        m_selected.end(),
        index,
        [](const SelectedCase& candidate, std::size_t wanted) { return candidate.index < wanted; });
    if (selected == m_selected.end() || selected->index != index) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(selected - m_selected.begin());
}

boost::shared_ptr<AuxFile> SelectedImageList::file(std::size_t place) const
{
    Q_ASSERT_X(place < m_count, "SelectedImageList::file", "there is no such place");
    const auto behind = std::upper_bound(
        m_selected.begin(),
        m_selected.end(),
        place,
        [](std::size_t wanted, const SelectedCase& selected) {
            return wanted < selected.firstPlace;
        });
    const SelectedCase& selected = *(behind - 1);
    const std::vector<boost::shared_ptr<AuxFile>>& files =
        m_project.auxFiles(m_cases[selected.index].row);
    const std::size_t number = place - selected.firstPlace;
    return number < files.size() ? files[number] : boost::shared_ptr<AuxFile>();
}

std::optional<std::size_t> SelectedImageList::placeOf(const AuxFile& file) const
{
    const std::size_t index = gallopTo(m_project.caseID(file.row()), 0);
    const std::optional<std::size_t> number = numberOfCase(index);
    if (!number || m_cases[index].row != file.row()) {
        return std::nullopt;
    }
    const std::vector<boost::shared_ptr<AuxFile>>& files = m_project.auxFiles(file.row());
    const auto found =
        std::find_if(files.begin(), files.end(), [&file](const boost::shared_ptr<AuxFile>& other) {
            return other.get() == &file;
        });
    return m_selected[*number].firstPlace + static_cast<std::size_t>(found - files.begin());
}

/// The first case from \p from on whose ID is not below \p caseID. In steps that double: near cases are found in
/// constant time, so that large selections cost one walk, and small ones do not walk along all cases.
std::size_t SelectedImageList::gallopTo(unsigned long long caseID, std::size_t from) const
{
    std::size_t step = 1;
    std::size_t end = from;
    while (end < m_cases.size() && m_cases[end].caseID < caseID) {
        from = end + 1;
        end += step;
        step *= 2;
    }
    const auto first = m_cases.begin() + static_cast<std::ptrdiff_t>(from);
    const auto last = m_cases.begin() + static_cast<std::ptrdiff_t>(std::min(end, m_cases.size()));
    const auto found =
        std::lower_bound(first, last, caseID, [](const Case& candidate, unsigned long long wanted) {
            return candidate.caseID < wanted;
        });
    return static_cast<std::size_t>(found - m_cases.begin());
}

} // namespace analyzer
