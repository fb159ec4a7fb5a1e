#pragma once

#include <dataviews/common/images/ImagesExport.h>

#include <dataviews/platform/data/WeakPtr.h>

#include <string>
#include <vector>

class Record;
class Variable;

/// Makes the text under an image.
class DATAVIEWS_IMAGES_EXPORT LabelMaker
{
public:
    LabelMaker();
    LabelMaker(const LabelMaker& other);
    LabelMaker& operator=(const LabelMaker& other);

    /// "name=value" of each of \p variables, in their order, with \p separator between them; empty without variables.
    /// Expired handles are left out. UTF-8.
    [[nodiscard]] virtual std::string label(
        const std::vector<WeakPtr<Variable>>& variables,
        const Record& record,
        const char* separator) const;

    virtual ~LabelMaker();
};
