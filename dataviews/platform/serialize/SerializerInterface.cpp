#include <dataviews/platform/serialize/SerializerInterface.h>

SerializerInterface::~SerializerInterface() = default;
