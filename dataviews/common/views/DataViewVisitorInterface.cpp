#include <dataviews/common/views/DataViewVisitorInterface.h>

DataViewVisitorInterface::~DataViewVisitorInterface() = default;
