#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/TagFilter.h>

#include <utility>

TagFilter::TagFilter(std::string tag, bool inverted)
    : FilterAbstract(std::move(tag), inverted)
{}

TagFilter::~TagFilter() = default;

void TagFilter::apply(const Project& project, RowBitmap& rows) const
{
    if (!project.hasTag(tag())) {
        return;
    }
    RowBitmap passing = project.taggedCases(tag());
    if (isInverted()) {
        passing.invert();
    }
    rows.intersect(passing);
}
