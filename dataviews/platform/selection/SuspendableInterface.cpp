#include <dataviews/platform/selection/SuspendableInterface.h>

SuspendableInterface::~SuspendableInterface() = default;
