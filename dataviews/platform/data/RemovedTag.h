#pragma once

#include <dataviews/platform/data/RowBitmap.h>
#include <dataviews/platform/data/TagGroup.h>
#include <dataviews/platform/data/TagStore.h>
#include <dataviews/platform/data/WeakPtr.h>

#include <cstddef>
#include <string>

/// A tag that Project::takeTag() took out, as Project::restoreTag() needs it. Files keep the number of the tag and carry
/// it again once it is back.
struct RemovedTag
{
    std::string name;
    WeakPtr<TagGroup> group;
    std::size_t place = 0; ///< among the tags of the group
    TagStore::TagNumber number = 0;
    RowBitmap cases;
};
