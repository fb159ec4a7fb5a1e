#include <analyzer/imageViews.h>
#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/ImageMatrixViewInterface.h>
#include <analyzer/views/SelectedImageViewInterface.h>

#include <dataviews/common/views/DataViewVisitorAbstract.h>

#include <dataviews/platform/data/AuxFile.h>

namespace analyzer {

namespace {

class ImageViewVisitor : public DataViewVisitorAbstract
{
public:
    using DataViewVisitorAbstract::visit;

    void visit(boost::shared_ptr<ImageMatrixViewInterface> view) override
    {
        matrix = view;
        for (const WeakPtr<AuxFile>& image : view->selectedImages()) {
            add(image);
        }
    }

    void visit(boost::shared_ptr<SelectedImageViewInterface> view) override
    {
        add(view->currentImage());
    }

    std::vector<boost::shared_ptr<AuxFile>> images;
    boost::shared_ptr<ImageMatrixViewInterface> matrix;

private:
    void add(const WeakPtr<AuxFile>& image)
    {
        if (const boost::shared_ptr<AuxFile> file = image.lock()) {
            images.push_back(file);
        }
    }
};

} // namespace

std::vector<boost::shared_ptr<AuxFile>> imagesMeantIn(AnalyzerViewInterface& view)
{
    ImageViewVisitor visitor;
    view.accept(visitor);
    return visitor.images;
}

boost::shared_ptr<ImageMatrixViewInterface> imageMatrix(AnalyzerViewInterface& view)
{
    ImageViewVisitor visitor;
    view.accept(visitor);
    return visitor.matrix;
}

} // namespace analyzer
