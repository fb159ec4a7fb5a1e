#pragma once

#include <boost/shared_ptr.hpp>

class AsyncImageCache;
class DataPipelineManagerInterface;
class ImageCache;
class SelectionModelInterface;

namespace analyzer {

class HoveredCase;

/// What the views of one window share.
struct ViewServices
{
    const DataPipelineManagerInterface& pipeline; ///< outlives the views
    boost::shared_ptr<SelectionModelInterface> selection;
    boost::shared_ptr<ImageCache> images; ///< at full size
    boost::shared_ptr<AsyncImageCache> scaledImages;
    boost::shared_ptr<HoveredCase> hovered;
};

} // namespace analyzer
