#include <analyzer/Autosave.h>
#include <analyzer/export/ReplacementFile.h>

#include <dataviews/platform/property/ExceptionBase.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <utility>

namespace analyzer {

namespace {

constexpr const char* prefix = "autosave-";
constexpr const char* suffix = ".dvsession";

QString lockOf(const QString& path)
{
    return path + QStringLiteral(".lock");
}

void write(const QString& path, const QByteArray& session)
{
    ReplacementFile file(path.toStdString());
    file.write(session.constData(), static_cast<std::size_t>(session.size()));
    file.commit();
}

} // namespace

QString Autosave::defaultFolder()
{
    QString state = qEnvironmentVariable("XDG_STATE_HOME");
    if (state.isEmpty() || QDir::isRelativePath(state)) {
        state = QDir::homePath() + QStringLiteral("/.local/state");
    }
    return state + QStringLiteral("/DataViews");
}

Autosave::Autosave(QString folder)
    : m_folder(std::move(folder))
{}

Autosave::~Autosave()
{
    if (!m_path.isEmpty()) {
        QFile::remove(m_path);
    }
}

void Autosave::save(const QByteArray& session)
{
    if (session == m_saved) {
        return;
    }
    if (m_path.isEmpty()) {
        makeFolder();
        const QString path = m_folder + QLatin1Char('/') + QLatin1String(prefix)
            + QUuid::createUuid().toString(QUuid::WithoutBraces) + QLatin1String(suffix);
        auto lock = std::make_unique<QLockFile>(lockOf(path));
        lock->setStaleLockTime(0); // a program may run for days
        if (!lock->tryLock(0)) {
            throw ExceptionBase(
                "The folder \"" + m_folder.toStdString() + "\" does not take a lock.");
        }
        m_lock = std::move(lock);
        m_path = path;
    }
    write(m_path, session);
    m_saved = session;
}

void Autosave::saveAsLast(const QByteArray& session) const
{
    makeFolder();
    write(m_folder + QStringLiteral("/last") + QLatin1String(suffix), session);
}

QString Autosave::lastSession() const
{
    const QString path = m_folder + QStringLiteral("/last") + QLatin1String(suffix);
    return QFileInfo::exists(path) ? path : QString();
}

QStringList Autosave::leftBehind()
{
    const QFileInfoList files = QDir(m_folder).entryInfoList(
        {QLatin1String(prefix) + QLatin1Char('*') + QLatin1String(suffix)},
        QDir::Files,
        QDir::Time);
    QStringList found;
    for (const QFileInfo& file : files) {
        if (isLeftBehind(file.absoluteFilePath())) {
            found += file.absoluteFilePath();
            continue;
        }
        auto lock = std::make_unique<QLockFile>(lockOf(file.absoluteFilePath()));
        lock->setStaleLockTime(0);
        if (lock->tryLock(0)) {
            found += file.absoluteFilePath();
            m_takenOver.push_back(std::move(lock));
        }
    }
    m_leftBehind = found;
    return m_leftBehind;
}

bool Autosave::isLeftBehind(const QString& path) const
{
    return m_leftBehind.contains(path);
}

void Autosave::forget(const QString& path)
{
    QFile::remove(path);
}

void Autosave::makeFolder() const
{
    // What an engineer has open is nobody else's business.
    constexpr QFile::Permissions own = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    if (!QFileInfo::exists(m_folder)) {
        if (!QDir().mkpath(m_folder)) {
            throw ExceptionBase("The folder \"" + m_folder.toStdString() + "\" cannot be made.");
        }
        QFile::setPermissions(m_folder, own);
    }
}

} // namespace analyzer
