#include <analyzer/study/ReadCancelled.h>
#include <analyzer/study/ReadProgress.h>

#include <algorithm>
#include <utility>

namespace analyzer {

double ReadProgress::fraction() const
{
    const std::size_t total = m_totalBytes;
    if (total == 0) {
        return 0.0;
    }
    // Work may be added when some is done already.
    m_shown = std::max(
        m_shown.load(),
        std::min(1.0, static_cast<double>(m_doneBytes) / static_cast<double>(total)));
    return m_shown;
}

std::optional<TablePreview> ReadProgress::takePreview()
{
    const std::lock_guard<std::mutex> lock(m_previewMutex);
    return std::exchange(m_preview, std::nullopt);
}

void ReadProgress::setPreview(TablePreview preview)
{
    const std::lock_guard<std::mutex> lock(m_previewMutex);
    m_preview = std::move(preview);
}

void ReadProgress::throwIfCancelled() const
{
    if (isCancelled()) {
        throw ReadCancelled();
    }
}

} // namespace analyzer
