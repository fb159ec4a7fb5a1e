#pragma once

#include <dataviews/platform/data/WeakPtr.h>

#include <string>
#include <vector>

class TagGroup;

/// What a project tells its listeners about a change.
struct ProjectChange
{
    /// Another study took the place of the open one: all earlier handles have expired.
    bool studyReplaced = false;

    /// Names of tags that are gone, also those of the removed groups.
    std::vector<std::string> removedTags;

    /// Handles of tag groups that are gone; they still compare, and have expired unless the group is kept to come back.
    std::vector<WeakPtr<TagGroup>> removedTagGroups;
};
