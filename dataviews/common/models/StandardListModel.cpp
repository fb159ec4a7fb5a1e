#include <dataviews/common/models/StandardListModel.h>

template class StandardListModel<std::string>;
