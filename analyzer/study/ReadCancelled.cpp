#include <analyzer/study/ReadCancelled.h>

namespace analyzer {

ReadCancelled::ReadCancelled()
    : ExceptionBase("Reading the study was cancelled.")
{}

} // namespace analyzer
