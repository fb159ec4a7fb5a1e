#pragma once

#include <analyzer/session/Session.h>
#include <analyzer/views/ViewServices.h>

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <atomic>
#include <cstdint>
#include <future>
#include <optional>

class QMainWindow;
class SelectionModelInterface;

namespace analyzer {

class FilterList;
class TagEditor;
class ViewArea;
struct ReadStudy;

/// Turns what is open in a window into a session and back.
///
/// The study and its checksum are found out in the background, from when the study has been opened.
class SessionKeeper
{
public:
    /// What a session is about. All of it outlives the keeper.
    struct Parts
    {
        QMainWindow& window; ///< whose panels and size are kept
        ViewArea& views;
        FilterList& filters;
        TagEditor& tags;
        SelectionModelInterface& selection;
        ViewServices services; ///< of the views
    };

    explicit SessionKeeper(Parts parts);
    SessionKeeper(const SessionKeeper&) = delete;
    SessionKeeper& operator=(const SessionKeeper&) = delete;

    /// Waits for the end of what runs in the background.
    ~SessionKeeper();

    /// The open project is another study from now on, of the fingerprint \p known, or one to be found out; its reading
    /// began at \p readingBegan.
    void studyOpened(
        const QDateTime& readingBegan, const std::optional<StudyFingerprint>& known = {});

    /// What is open now, as the content of a session file in the folder \p folder.
    /// \throws SessionError if it cannot be written so that it can be read again.
    [[nodiscard]] QByteArray write(const QString& folder) const;

    /// Puts everything of \p session that can fail to a test: on \p study, which is not open yet, and which gets the
    /// session's tags; with views that nobody sees. \p fingerprint is that of the study's table now.
    /// \throws SessionError with one sentence, or what a view throws; nothing that is open has changed then.
    /// \return a sentence for everything that the session has and the study does not have any more.
    [[nodiscard]] QStringList tryOut(
        const Session& session, const ReadStudy& study, const StudyFingerprint& fingerprint);

    /// Restores \p session, which has been tried out, over the study, which is open now without views and filters.
    /// \p fingerprint is as it was for tryOut().
    void restore(const Session& session, const StudyFingerprint& fingerprint);

    /// Where the table of the study of \p session is, if the session is in the folder \p folder.
    [[nodiscard]] static QString studyPath(const Session& session, const QString& folder);

private:
    [[nodiscard]] StudyFingerprint fingerprint() const;
    void stopFingerprint();

    Parts m_parts;
    mutable std::future<StudyFingerprint> m_running; ///< not valid without a study
    mutable StudyFingerprint m_fingerprint;
    std::atomic<bool> m_isCancelled{false};
};

} // namespace analyzer
