#pragma once

#include <analyzer/session/StudyFingerprint.h>
#include <analyzer/study/StudyReader.h>
#include <analyzer/study/TablePreview.h>

#include <QDateTime>
#include <QObject>
#include <QString>

#include <functional>
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

    /// Called with what has been read.
    using Check = std::function<void(const ReadStudy&, const StudyFingerprint&)>;

    /// Starts reading \p path, a file or a folder; a reading that still runs is cancelled without a signal.
    void start(const QString& path);

    /// The same with the fingerprint of the table. \p check, which does not throw, is called before finished(), in the
    /// thread of the loader and in an event of its own: it may take as long as what is done then.
    void start(const QString& path, Check check);

    /// Ends in cancelled(), unless the study was ready and checked already.
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
    /// What a reading is about.
    struct Reading
    {
        QString path;
        Check check; ///< empty if neither that nor a fingerprint is wanted
        std::shared_ptr<ReadProgress> progress;
    };

    /// What came out of it.
    struct Outcome
    {
        ReadStudy study;
        std::optional<StudyFingerprint> fingerprint;
        QDateTime began;
        QString message; ///< why there is no study; empty if there is one
    };

    void abandon();
    void read(const Reading& reading);

    /// On the thread of the loader.
    void checkOutcome(const Reading& reading, const std::shared_ptr<Outcome>& outcome);
    void deliver(const Reading& reading, Outcome& outcome);

    std::vector<std::future<void>> m_threads; ///< of the reading that runs, and of cancelled ones
    std::shared_ptr<ReadProgress> m_progress; ///< of the reading that runs
    QString m_path; ///< likewise
    ReadStudy m_study;
    std::optional<StudyFingerprint> m_fingerprint;
    QDateTime m_readingBegan;
};

} // namespace analyzer
