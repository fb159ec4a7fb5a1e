#pragma once

#include <dataviews/common/images/ImagesExport.h>

#include <boost/shared_ptr.hpp>

#include <string>

class QImage;

/// Where image views get their pictures from.
class DATAVIEWS_IMAGES_EXPORT ImageFileLoaderInterface
{
public:
    ImageFileLoaderInterface();
    ImageFileLoaderInterface(const ImageFileLoaderInterface& other);
    ImageFileLoaderInterface& operator=(const ImageFileLoaderInterface& other);

    /// The picture in the file \p path (absolute, UTF-8), at full size unless the loader says otherwise. Never an
    /// empty pointer: a file that is missing or is no picture gives a null QImage. Others may hold the same picture,
    /// so it is not to be changed.
    [[nodiscard]] virtual boost::shared_ptr<QImage> image(const std::string& path) const = 0;

    virtual ~ImageFileLoaderInterface();
};
