#include <dataviews/common/serializers/GenericSerializer.h>

template class GenericSerializer<bool>;
template class GenericSerializer<short>;
