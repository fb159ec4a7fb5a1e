#pragma once

#include <dataviews/common/models/ModelsExport.h>
#include <dataviews/common/models/StandardListModel.h>

#include <set>
#include <string>

/// Texts in ascending order, each its own display text; what find() gives is a text's rank.
class DATAVIEWS_MODELS_EXPORT StringListModel : public StandardListModel<std::string>
{
public:
    explicit StringListModel(std::set<std::string> strings);
    StringListModel(const StringListModel&) = delete;
    StringListModel& operator=(const StringListModel&) = delete;
    ~StringListModel() override;
};
