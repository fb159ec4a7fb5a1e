#include <dataviews/common/serializers/VectorSerializer.h>

template class VectorSerializer<std::string, boost::function<bool(const std::string&)>>;
