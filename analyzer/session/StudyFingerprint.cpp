#include <analyzer/session/StudyFingerprint.h>

#include <QByteArray>
#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

namespace analyzer {

StudyFingerprint fingerprintOf(
    const std::string& path,
    const QDateTime& readingBegan,
    const std::function<bool()>& isCancelled)
{
    constexpr qint64 blockSize = 1024 * 1024;
    StudyFingerprint result;
    QFile file(QString::fromStdString(path));
    const QDateTime written = QFileInfo(file).lastModified();
    const bool mayDiffer = written > readingBegan && written <= QDateTime::currentDateTime();
    if (mayDiffer || !file.open(QIODevice::ReadOnly)) {
        return result;
    }
    QCryptographicHash hash(QCryptographicHash::Sha256);
    QByteArray block(static_cast<int>(blockSize), Qt::Uninitialized);
    for (;;) {
        const qint64 count = file.read(block.data(), blockSize);
        if (count < 0 || isCancelled()) {
            return result;
        }
        if (count == 0) {
            break;
        }
        hash.addData(block.constData(), static_cast<int>(count));
        result.size += static_cast<std::uint64_t>(count);
    }
    if (QFileInfo(file.fileName()).lastModified() == written) {
        result.checksum = hash.result().toHex().toStdString();
    }
    return result;
}

} // namespace analyzer
