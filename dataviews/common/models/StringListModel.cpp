#include <dataviews/common/models/StringListModel.h>

// NOLINTNEXTLINE(performance-unnecessary-value-param): callers give away a set of their own
StringListModel::StringListModel(std::set<std::string> strings)
{
    for (const std::string& string : strings) {
        push_back(string, string);
    }
}

StringListModel::~StringListModel() = default;
