#include <analyzer/views/ImageDiffPairs.h>

#include <dataviews/platform/data/Project.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace analyzer {

namespace {

/// Of very many selected cases only these are searched for a suitable image; the user may walk on.
constexpr std::size_t searchLimit = 1000;

using FileList = std::vector<boost::shared_ptr<AuxFile>>;

boost::shared_ptr<AuxFile> fileWithTag(const FileList& files, const std::string& tag)
{
    const auto found =
        std::find_if(files.begin(), files.end(), [&tag](const boost::shared_ptr<AuxFile>& file) {
            const std::vector<std::string> tags = file->ownTags();
            return std::find(tags.begin(), tags.end(), tag) != tags.end();
        });
    return found == files.end() ? boost::shared_ptr<AuxFile>() : *found;
}

bool hasNoTags(const FileList& files)
{
    return std::all_of(files.begin(), files.end(), [](const boost::shared_ptr<AuxFile>& file) {
        return file->ownTags().empty();
    });
}

} // namespace

ImageDiffPairs::ImageDiffPairs(
    const Project& project,
    const SelectedImageList& list,
    std::optional<std::string> tag,
    std::optional<CaseID> pinned)
    : m_project(project)
    , m_list(list)
    , m_tag(std::move(tag))
    , m_pinned(pinned)
    , m_numberOfReference(findReference())
{}

std::optional<ImageDiffPairs::CaseID> ImageDiffPairs::reference() const
{
    if (m_pinned) {
        return m_pinned;
    }
    return m_numberOfReference ? std::optional<CaseID>(m_list.caseID(*m_numberOfReference))
                               : std::nullopt;
}

std::size_t ImageDiffPairs::otherCount() const
{
    return m_list.caseCount() - (m_numberOfReference ? 1 : 0);
}

ImageDiffPairs::CaseID ImageDiffPairs::other(std::size_t place) const
{
    const bool isBehind = m_numberOfReference && place >= *m_numberOfReference;
    return m_list.caseID(isBehind ? place + 1 : place);
}

std::optional<std::size_t> ImageDiffPairs::placeOf(CaseID caseID) const
{
    const std::optional<std::size_t> number = m_list.caseNumber(caseID);
    if (!number || number == m_numberOfReference) {
        return std::nullopt;
    }
    return m_numberOfReference && *number > *m_numberOfReference ? *number - 1 : *number;
}

std::size_t ImageDiffPairs::firstSuitablePlace() const
{
    const CaseID first = *reference();
    const std::size_t end = std::min(otherCount(), searchLimit);
    for (std::size_t place = 0; place < end; ++place) {
        if (files(first, other(place)).first) {
            return place;
        }
    }
    return 0;
}

ImageDiffPairs::Files ImageDiffPairs::files(CaseID first, CaseID second) const
{
    const std::optional<std::size_t> firstRow = m_project.row(first);
    const std::optional<std::size_t> secondRow = m_project.row(second);
    if (!firstRow || !secondRow) {
        return {};
    }
    const FileList& firstFiles = m_project.auxFiles(*firstRow);
    const FileList& secondFiles = m_project.auxFiles(*secondRow);
    if (firstFiles.empty() || secondFiles.empty()) {
        return {};
    }
    const auto both = [&](const std::string& tag) {
        Files found{fileWithTag(firstFiles, tag), fileWithTag(secondFiles, tag)};
        return found.first && found.second ? found : Files();
    };
    if (m_tag) {
        return both(*m_tag);
    }
    for (const boost::shared_ptr<AuxFile>& file : firstFiles) {
        for (const std::string& tag : file->ownTags()) {
            Files found = both(tag);
            if (found.first) {
                return found;
            }
        }
    }
    return hasNoTags(firstFiles) && hasNoTags(secondFiles)
        ? Files{firstFiles.front(), secondFiles.front()}
        : Files();
}

bool ImageDiffPairs::hasSuitableImage(CaseID caseID) const
{
    const std::optional<std::size_t> row = m_project.row(caseID);
    return row && (!m_tag || fileWithTag(m_project.auxFiles(*row), *m_tag));
}

std::optional<std::size_t> ImageDiffPairs::findReference() const
{
    if (m_pinned) {
        return m_list.caseNumber(*m_pinned);
    }
    if (m_list.caseCount() == 0) {
        return std::nullopt;
    }
    const std::size_t end = std::min(m_list.caseCount(), searchLimit);
    for (std::size_t number = 0; number < end; ++number) {
        if (hasSuitableImage(m_list.caseID(number))) {
            return number;
        }
    }
    return 0;
}

} // namespace analyzer
