#include <analyzer/StudyLoader.h>
#include <analyzer/study/ReadCancelled.h>
#include <analyzer/study/ReadProgress.h>
#include <analyzer/study/StudyLocation.h>

#include <QFileInfo>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <new>
#include <utility>

namespace analyzer {

namespace {

/// Finds out the fingerprint of a study in a thread of its own, until it is destroyed.
class FingerprintSearch
{
public:
    FingerprintSearch(const std::string& path, const QDateTime& began, const ReadProgress& progress)
        : m_result(std::async(std::launch::async, [this, path, began, &progress] {
            const std::string table = locateStudy(path).tablePath;
            // A pipe would have to be waited for; the reader refuses it.
            return QFileInfo(QString::fromStdString(table)).isFile()
                ? fingerprintOf(
                    table, began, [this, &progress] { return m_isOver || progress.isCancelled(); })
                : StudyFingerprint();
        }))
    {}

    FingerprintSearch(const FingerprintSearch&) = delete;
    FingerprintSearch& operator=(const FingerprintSearch&) = delete;

    ~FingerprintSearch() { m_isOver = true; }

    /// To be called once.
    [[nodiscard]] StudyFingerprint result() { return m_result.get(); }

private:
    std::atomic<bool> m_isOver{false};
    std::future<StudyFingerprint>
        m_result; ///< the last, for its end is waited for before the other goes
};

} // namespace

StudyLoader::StudyLoader(QObject* parent)
    : QObject(parent)
{}

StudyLoader::~StudyLoader()
{
    abandon();
}

void StudyLoader::start(const QString& path, bool withFingerprint)
{
    abandon();
    const auto isOver = [](const std::future<void>& thread) {
        return thread.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    };
    m_threads.erase(std::remove_if(m_threads.begin(), m_threads.end(), isOver), m_threads.end());
    m_path = path;
    m_progress = std::make_shared<ReadProgress>();
    m_threads.push_back(std::async(
        std::launch::async,
        [this, name = path.toStdString(), withFingerprint, progress = m_progress] {
            read(name, withFingerprint, progress);
        }));
}

void StudyLoader::cancel()
{
    if (!m_progress) {
        return;
    }
    m_progress->cancel();
    const auto tell = [this, progress = m_progress] {
        if (m_progress == progress) { // the study was not ready before
            m_progress.reset();
            Q_EMIT cancelled(m_path);
        }
    };
    QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
}

double StudyLoader::fraction() const
{
    return m_progress ? m_progress->fraction() : 1.0;
}

std::optional<TablePreview> StudyLoader::takePreview()
{
    return m_progress ? m_progress->takePreview() : std::nullopt;
}

void StudyLoader::abandon()
{
    if (m_progress) {
        m_progress->cancel();
        m_progress.reset();
    }
}

void StudyLoader::read(
    const std::string& path, bool withFingerprint, std::shared_ptr<ReadProgress> progress)
{
    const QDateTime began = QDateTime::currentDateTime();
    std::optional<StudyFingerprint> fingerprint;
    // Shared, since what is posted to another thread must be copyable.
    const auto study = std::make_shared<ReadStudy>();
    QString message;
    try {
        if (withFingerprint) {
            // It takes as long as the reading, and need not wait for that.
            FingerprintSearch search(path, began, *progress);
            *study = readStudy(path, *progress);
            fingerprint = search.result();
        } else {
            *study = readStudy(path, *progress);
        }
        progress->throwIfCancelled();
    } catch (const ReadCancelled&) {
        *study = {}; // here, for it may be large
        return; // nobody waits for it
    } catch (const std::bad_alloc&) {
        message = tr("There is not enough memory for the study \"%1\".")
                      .arg(QString::fromStdString(path));
    } catch (const std::exception& error) {
        message = QString::fromUtf8(error.what());
    }

    const auto deliver = [this, path, progress, study, message, fingerprint, began] {
        if (m_progress != progress) {
            return; // it was cancelled, or another reading was started meanwhile
        }
        m_progress.reset();
        const QString name = QString::fromStdString(path);
        if (!message.isEmpty()) {
            Q_EMIT failed(name, message);
        } else {
            m_study = std::move(*study);
            m_fingerprint = fingerprint;
            m_readingBegan = began;
            Q_EMIT finished(name);
        }
    };
    QMetaObject::invokeMethod(this, deliver, Qt::QueuedConnection);
}

} // namespace analyzer
