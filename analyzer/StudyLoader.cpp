#include <analyzer/StudyLoader.h>
#include <analyzer/study/ReadCancelled.h>
#include <analyzer/study/ReadProgress.h>
#include <analyzer/study/StudyLocation.h>

#include <QFileInfo>
#include <QTimer>

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

void StudyLoader::start(const QString& path)
{
    start(path, {});
}

void StudyLoader::start(const QString& path, Check check)
{
    abandon();
    const auto isOver = [](const std::future<void>& thread) {
        return thread.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    };
    m_threads.erase(std::remove_if(m_threads.begin(), m_threads.end(), isOver), m_threads.end());
    m_path = path;
    m_progress = std::make_shared<ReadProgress>();
    const Reading reading{path, std::move(check), m_progress};
    m_threads.push_back(
        std::async(std::launch::async, [this, reading = reading] { read(reading); }));
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

void StudyLoader::read(const Reading& reading)
{
    const std::string path = reading.path.toStdString();
    ReadProgress& progress = *reading.progress;
    // Shared, since what is posted to another thread must be copyable.
    const auto outcome = std::make_shared<Outcome>();
    outcome->began = QDateTime::currentDateTime();
    try {
        if (reading.check) {
            // The fingerprint takes as long as the reading, and need not wait for that.
            FingerprintSearch search(path, outcome->began, progress);
            outcome->study = readStudy(path, progress);
            outcome->fingerprint = search.result();
        } else {
            outcome->study = readStudy(path, progress);
        }
        progress.throwIfCancelled();
    } catch (const ReadCancelled&) {
        return; // nobody waits for it; the study, which may be large, goes here
    } catch (const std::bad_alloc&) {
        outcome->message = tr("There is not enough memory for the study \"%1\".").arg(reading.path);
    } catch (const std::exception& error) {
        outcome->message = QString::fromUtf8(error.what());
    }
    QMetaObject::invokeMethod(
        this, [this, reading, outcome] { checkOutcome(reading, outcome); }, Qt::QueuedConnection);
}

void StudyLoader::checkOutcome(const Reading& reading, const std::shared_ptr<Outcome>& outcome)
{
    if (m_progress != reading.progress) {
        return; // it was cancelled, or another reading was started meanwhile
    }
    if (!reading.check || !outcome->message.isEmpty()) {
        deliver(reading, *outcome);
        return;
    }
    reading.check(outcome->study, outcome->fingerprint.value_or(StudyFingerprint()));
    // Behind whatever has happened in the window meanwhile, such as that somebody cancels.
    QTimer::singleShot(0, this, [this, reading, outcome] { deliver(reading, *outcome); });
}

void StudyLoader::deliver(const Reading& reading, Outcome& outcome)
{
    if (m_progress != reading.progress) {
        return;
    }
    m_progress.reset();
    if (!outcome.message.isEmpty()) {
        Q_EMIT failed(reading.path, outcome.message);
        return;
    }
    m_study = std::move(outcome.study);
    m_fingerprint = outcome.fingerprint;
    m_readingBegan = outcome.began;
    Q_EMIT finished(reading.path);
}

} // namespace analyzer
