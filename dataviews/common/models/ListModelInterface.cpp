#include <dataviews/common/models/ListModelInterface.h>

template class ListModelInterface<std::string>;
