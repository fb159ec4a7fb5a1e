#include <dataviews/common/charts/PointPictureDeviceInterface.h>

PointPictureDeviceInterface::~PointPictureDeviceInterface() = default;
