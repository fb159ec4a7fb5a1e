#pragma once

#include <analyzer/session/StudyFingerprint.h>
#include <analyzer/study/StudyReader.h>

#include <QDateTime>
#include <QObject>
#include <QString>

#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace analyzer {

/// Reads one study after another in a thread of its own.
///
/// Lives on the GUI thread, where its signals come. Destroying it cancels the reading and waits for that.
class StudyLoader : public QObject
{
    Q_OBJECT

public:
    explicit StudyLoader(QObject* parent = nullptr);
    StudyLoader(const StudyLoader&) = delete;
    StudyLoader& operator=(const StudyLoader&) = delete;
    ~StudyLoader() override;

    /// Starts reading \p path, a file or a folder; a reading that still runs is cancelled without a signal.
    /// \p withFingerprint finds out the fingerprint of the table as well.
    void start(const QString& path, bool withFingerprint = false);

    /// Ends in cancelled(), unless the study was ready already.
    void cancel();

    [[nodiscard]] bool isRunning() const { return m_progress != nullptr; }

    /// From 0 to 1.
    [[nodiscard]] double fraction() const;

    /// The study that finished() announced; whoever asks takes it.
    [[nodiscard]] ReadStudy takeStudy() { return std::move(m_study); }

    /// Of the study that finished() announced, if it was asked for.
    [[nodiscard]] const std::optional<StudyFingerprint>& fingerprint() const
    {
        return m_fingerprint;
    }

    /// When the reading of the study that finished() announced began.
    [[nodiscard]] const QDateTime& readingBegan() const { return m_readingBegan; }

Q_SIGNALS:
    void finished(const QString& path);

    /// \p message is a sentence for the user.
    void failed(const QString& path, const QString& message);
    void cancelled(const QString& path);

private:
    void stop();
    void read(
        const std::string& path, bool withFingerprint, std::shared_ptr<ReadProgress> progress);

    std::thread m_thread;
    std::shared_ptr<ReadProgress> m_progress; ///< of the reading that runs
    ReadStudy m_study;
    std::optional<StudyFingerprint> m_fingerprint;
    QDateTime m_readingBegan;
};

} // namespace analyzer
