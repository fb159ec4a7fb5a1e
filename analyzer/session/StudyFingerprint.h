#pragma once

#include <QDateTime>

#include <cstdint>
#include <functional>
#include <string>

namespace analyzer {

/// Tells a file that has changed from one that has not.
struct StudyFingerprint
{
    std::uint64_t size = 0; ///< in bytes
    std::string checksum; ///< SHA-256 in lower case hexadecimal digits; empty if it is not known

    /// False as long as one of the checksums is not known.
    [[nodiscard]] bool isOfSameContent(const StudyFingerprint& other) const
    {
        return !checksum.empty() && size == other.size && checksum == other.checksum;
    }
};

/// The fingerprint of the file \p path, UTF-8, from which a study was read that began at \p readingBegan; on any thread.
/// Without a checksum if the file cannot be read, if it has been written since, or once \p isCancelled() is true.
[[nodiscard]] StudyFingerprint fingerprintOf(
    const std::string& path,
    const QDateTime& readingBegan,
    const std::function<bool()>& isCancelled);

} // namespace analyzer
