#include <dataviews/common/images/AsyncImageLoaderInterface.h>

AsyncImageLoaderInterface::AsyncImageLoaderInterface()
    : signalImageArrived([this] { signalImageArrivedConnected(); })
{}

AsyncImageLoaderInterface::~AsyncImageLoaderInterface() = default;

void AsyncImageLoaderInterface::signalImageArrivedConnected() const {}
