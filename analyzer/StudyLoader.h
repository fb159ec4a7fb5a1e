#pragma once

#include <analyzer/session/StudyFingerprint.h>
#include <analyzer/study/StudyReader.h>
#include <analyzer/study/TablePreview.h>

#include <QDateTime>
#include <QObject>
#include <QString>

#include <future>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace analyzer {

/// Reads one study after another in threads of its own.
///
/// Lives on the GUI thread, where its signals come. A reading that is cancelled is over for everyone else at once, while
/// its thread still gives back memory. Destroying the loader cancels the reading and waits for all threads.
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

    /// The first rows of the study that is being read, once, as soon as they are there.
    [[nodiscard]] std::optional<TablePreview> takePreview();

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
    void abandon();
    void read(
        const std::string& path, bool withFingerprint, std::shared_ptr<ReadProgress> progress);

    std::vector<std::future<void>> m_threads; ///< of the reading that runs, and of cancelled ones
    std::shared_ptr<ReadProgress> m_progress; ///< of the reading that runs
    QString m_path; ///< likewise
    ReadStudy m_study;
    std::optional<StudyFingerprint> m_fingerprint;
    QDateTime m_readingBegan;
};

} // namespace analyzer
