#include <dataviews/common/serializers/ValueRangeSerializer.h>

template class ValueRangeSerializer<double>;
