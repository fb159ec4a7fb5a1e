#pragma once

#include <dataviews/platform/data/RemovedTag.h>
#include <dataviews/platform/data/TagGroup.h>
#include <dataviews/platform/data/TagStore.h>

#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>

#include <cstddef>
#include <vector>

/// A group that Project::takeTagGroup() took out, as Project::restoreTagGroup() needs it. Keeps the group alive, so that
/// handles of it lock again when it is back; until then it has no tags.
struct RemovedTagGroup
{
    boost::shared_ptr<TagGroup> group;
    std::size_t place = 0; ///< among the groups of the project
    std::vector<RemovedTag> tags; ///< in order
    boost::weak_ptr<const TagStore> store; ///< of the study that the group belongs to
};
