#include <dataviews/common/images/AsyncImageLoaderInterface.h>

AsyncImageLoaderInterface::AsyncImageLoaderInterface()
    : signalImageArrived([this] { signalImageArrivedConnected(); })
{}

AsyncImageLoaderInterface::~AsyncImageLoaderInterface() = default;

void AsyncImageLoaderInterface::prefetch(
    const std::vector<std::string>& /*paths*/, const QSize& /*size*/)
{}

void AsyncImageLoaderInterface::signalImageArrivedConnected() const {}
