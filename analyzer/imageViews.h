#pragma once

#include <boost/shared_ptr.hpp>

#include <vector>

class AuxFile;
class ImageMatrixViewInterface;

namespace analyzer {

class AnalyzerViewInterface;

/// The images that the user means who looks at \p view: those of the selected cells of a matrix, or the one that is shown
/// large; none for views of other kinds.
[[nodiscard]] std::vector<boost::shared_ptr<AuxFile>> imagesMeantIn(AnalyzerViewInterface& view);

/// \p view as an image matrix; empty for another kind.
[[nodiscard]] boost::shared_ptr<ImageMatrixViewInterface> imageMatrix(AnalyzerViewInterface& view);

} // namespace analyzer
