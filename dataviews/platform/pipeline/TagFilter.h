#pragma once

#include <dataviews/platform/pipeline/FilterAbstract.h>

/// Keeps the cases that carry a tag themselves; inverted, all others. Tags on a case's files do not
/// count.
class DATAVIEWS_PLATFORM_PIPELINE_EXPORT TagFilter : public FilterAbstract
{
public:
    /// \throws ExceptionBase if \p tag is empty.
    explicit TagFilter(std::string tag, bool inverted = false);
    TagFilter(const TagFilter&) = delete;
    TagFilter& operator=(const TagFilter&) = delete;
    ~TagFilter() override;

    void apply(const Project& project, RowBitmap& rows) const override;
};
