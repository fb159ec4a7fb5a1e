#pragma once

#include <analyzer/study/TablePreview.h>

#include <atomic>
#include <cstddef>
#include <mutex>
#include <optional>

namespace analyzer {

/// How far a reader is, and whether it shall stop; shared by the thread that reads and the one that shows it.
///
/// The reader looks at it often enough to stop within a tenth of a second.
class ReadProgress
{
public:
    /// Asks the reader to stop. It does by throwing ReadCancelled.
    void cancel() { m_cancelled = true; }

    [[nodiscard]] bool isCancelled() const { return m_cancelled; }

    /// From 0 to 1, never falling, for one thread that asks.
    [[nodiscard]] double fraction() const;

    /// The first rows of the table, once, as soon as the reader has them.
    [[nodiscard]] std::optional<TablePreview> takePreview();

    // ---- for the reader

    void setPreview(TablePreview preview);

    /// \throws ReadCancelled if the reader shall stop.
    void throwIfCancelled() const;

    /// The same in a loop over rows, looking at every few thousandth \p row only.
    void throwIfCancelledAt(std::size_t row) const
    {
        constexpr std::size_t rowsPerLook = 4096;
        if (row % rowsPerLook == 0) {
            throwIfCancelled();
        }
    }

    /// Announces \p bytes of work besides what was announced before.
    void addTotal(std::size_t bytes) { m_totalBytes += bytes; }

    /// Tells that all is done.
    void finish() { m_doneBytes = m_totalBytes.load(); }

    /// Tells that \p bytes more are done.
    void advance(std::size_t bytes) { m_doneBytes += bytes; }

private:
    std::atomic<std::size_t> m_doneBytes{0};
    std::atomic<std::size_t> m_totalBytes{0};
    std::atomic<bool> m_cancelled{false};
    mutable std::atomic<double> m_shown{0.0}; ///< the largest fraction told
    std::mutex m_previewMutex;
    std::optional<TablePreview> m_preview;
};

} // namespace analyzer
