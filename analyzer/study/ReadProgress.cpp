#include <analyzer/study/ReadCancelled.h>
#include <analyzer/study/ReadProgress.h>

#include <algorithm>

namespace analyzer {

double ReadProgress::fraction() const
{
    const std::size_t total = m_totalBytes;
    if (total == 0) {
        return 0.0;
    }
    return std::min(1.0, static_cast<double>(m_doneBytes) / static_cast<double>(total));
}

void ReadProgress::throwIfCancelled() const
{
    if (isCancelled()) {
        throw ReadCancelled();
    }
}

} // namespace analyzer
