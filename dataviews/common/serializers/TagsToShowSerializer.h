#pragma once

#include <dataviews/common/serializers/SerializersExport.h>
#include <dataviews/common/serializers/VectorSerializer.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

#include <set>
#include <string>
#include <vector>

/// Keeps the tags that an image view lists in an element "TagsToShow"; reading leaves out tags that are not known.
///
/// The known tags are a copy: whoever adds a tag replaces the serializer (see replaceSubElement()).
class DATAVIEWS_SERIALIZERS_EXPORT TagsToShowSerializer
    : public VectorSerializer<std::string, boost::function<bool(const std::string&)>>
{
public:
    TagsToShowSerializer(
        boost::shared_ptr<corvane::PropertyAbstract<std::vector<std::string>>> tagsToShow,
        const std::set<std::string>& knownTags);
    TagsToShowSerializer(const TagsToShowSerializer&) = delete;
    TagsToShowSerializer& operator=(const TagsToShowSerializer&) = delete;
    ~TagsToShowSerializer() override;
};
