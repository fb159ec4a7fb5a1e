#include <dataviews/platform/pipeline/FilterFactoryInterface.h>

FilterFactoryInterface::~FilterFactoryInterface() = default;
