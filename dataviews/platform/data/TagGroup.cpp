#include <dataviews/platform/data/TagGroup.h>

#include <utility>

TagGroup::TagGroup(std::string name)
    : m_name(std::move(name))
{}

TagGroup::~TagGroup() = default;
