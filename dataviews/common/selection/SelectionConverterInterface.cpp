#include <dataviews/common/selection/SelectionConverterInterface.h>

SelectionConverterInterface::~SelectionConverterInterface() = default;
