#include <dataviews/common/images/ImageFileLoaderInterface.h>

ImageFileLoaderInterface::ImageFileLoaderInterface() = default;

ImageFileLoaderInterface::ImageFileLoaderInterface(const ImageFileLoaderInterface&) = default;

ImageFileLoaderInterface& ImageFileLoaderInterface::operator=(const ImageFileLoaderInterface&) =
    default;

ImageFileLoaderInterface::~ImageFileLoaderInterface() = default;
