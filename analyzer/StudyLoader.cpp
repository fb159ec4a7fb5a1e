#include <analyzer/StudyLoader.h>
#include <analyzer/study/ReadCancelled.h>
#include <analyzer/study/ReadProgress.h>

#include <exception>
#include <new>
#include <utility>

namespace analyzer {

StudyLoader::StudyLoader(QObject* parent)
    : QObject(parent)
{}

StudyLoader::~StudyLoader()
{
    stop();
}

void StudyLoader::start(const QString& path, bool withFingerprint)
{
    stop();
    m_progress = std::make_shared<ReadProgress>();
    m_thread =
        std::thread([this, name = path.toStdString(), withFingerprint, progress = m_progress] {
            read(name, withFingerprint, progress);
        });
}

void StudyLoader::cancel()
{
    if (m_progress) {
        m_progress->cancel();
    }
}

double StudyLoader::fraction() const
{
    return m_progress ? m_progress->fraction() : 1.0;
}

void StudyLoader::stop()
{
    cancel();
    m_progress.reset();
    if (m_thread.joinable()) {
        m_thread.join();
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
    bool wasCancelled = false;
    try {
        *study = readStudy(path, *progress);
        if (withFingerprint) {
            fingerprint = fingerprintOf(
                study->project->filePath(), began, [&progress] { return progress->isCancelled(); });
            progress->throwIfCancelled();
        }
    } catch (const ReadCancelled&) {
        wasCancelled = true;
    } catch (const std::bad_alloc&) {
        message = tr("There is not enough memory for the study \"%1\".")
                      .arg(QString::fromStdString(path));
    } catch (const std::exception& error) {
        message = QString::fromUtf8(error.what());
    }

    const auto deliver = [this, path, progress, study, message, wasCancelled, fingerprint, began] {
        if (m_progress != progress) {
            return; // another reading was started meanwhile
        }
        m_progress.reset();
        const QString name = QString::fromStdString(path);
        if (wasCancelled) {
            Q_EMIT cancelled(name);
        } else if (!message.isEmpty()) {
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
