#pragma once

#include <QByteArray>
#include <QLockFile>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace analyzer {

/// Keeps what is open in a file, for the case that the program ends without having been asked to.
///
/// Each running program has a file of its own in the folder, and a lock that says that the program is alive. Files whose
/// program is gone are those to offer to the user. What is open at an orderly end is kept as the last session.
class Autosave
{
public:
    /// The folder where programs keep their state: that of the XDG base directories.
    [[nodiscard]] static QString defaultFolder();

    /// \p folder is made when it is first needed.
    explicit Autosave(QString folder);
    Autosave(const Autosave&) = delete;
    Autosave& operator=(const Autosave&) = delete;

    /// An orderly end: the file goes.
    ~Autosave();

    [[nodiscard]] const QString& folder() const { return m_folder; }

    /// Writes \p session, the content of a session file in folder(), unless it is what was written last.
    /// \throws ExceptionBase with a sentence if it cannot be written.
    void save(const QByteArray& session);

    /// Writes \p session as the last session.
    /// \throws ExceptionBase with a sentence if it cannot be written.
    void saveAsLast(const QByteArray& session) const;

    /// The path of the last session; empty if there is none.
    [[nodiscard]] QString lastSession() const;

    /// The files of programs that are gone, the newest first. They are this program's from now on: nobody else is offered
    /// them while it lives.
    [[nodiscard]] QStringList leftBehind();

    [[nodiscard]] bool isLeftBehind(const QString& path) const;

    /// Removes \p path, one of leftBehind().
    static void forget(const QString& path);

private:
    void makeFolder() const;

    QString m_folder;
    QString m_path; ///< of the own file; empty before the first save
    std::unique_ptr<QLockFile> m_lock; ///< of the own file
    QByteArray m_saved;
    QStringList m_leftBehind;
    std::vector<std::unique_ptr<QLockFile>> m_takenOver; ///< the locks of the files left behind
};

} // namespace analyzer
