#pragma once

#include <analyzer/session/CaseKeys.h>
#include <analyzer/session/Session.h>

#include <QStringList>

#include <string>
#include <vector>

class Project;

namespace analyzer {

class AnalyzerViewInterface;
class FilterList;

/// What of \p project's tag groups called \p groups a session keeps: their tags, and what these are on.
[[nodiscard]] std::vector<SessionTagGroup> sessionTags(
    const Project& project, const std::vector<std::string>& groups);

[[nodiscard]] std::vector<SessionFilter> sessionFilters(const FilterList& filters);

/// The IDs of the cases that \p state, what a view wrote, names one by one: a pinned case, the case of an image.
[[nodiscard]] std::vector<unsigned long long> casesNamedIn(const QDomElement& state);

/// Puts what the session \p session holds into a study and its views. What is not there any more is told in remarks()
/// and left out; anything else that does not fit throws SessionError, and what was done by then stays done: so it is
/// tried first on things that nobody sees.
class SessionRestorer
{
public:
    /// \p isStudyUnchanged tells whether \p project is read from the very file that the session was saved with. Both
    /// outlive this object.
    SessionRestorer(const Session& session, const Project& project, bool isStudyUnchanged);

    /// Makes the tag groups and tags and puts them on cases and files.
    void restoreTags(Project& project);

    /// Adds the filters to \p filters, which is empty.
    void restoreFilters(FilterList& filters);

    /// Reads \p saved, one of the session's views, into \p view, a new one of its kind.
    void restoreView(const SessionView& saved, AnalyzerViewInterface& view);

    /// The selected cases, by the rows of the study.
    [[nodiscard]] RowBitmap selection();

    /// A sentence for everything that is left out; to be asked at the end.
    [[nodiscard]] QStringList remarks() const;

private:
    /// \p state with the present IDs of the cases that it names; what names one that is gone is left out.
    [[nodiscard]] QDomElement withPresentCases(const QDomElement& state);

    const Session& m_session;
    const Project& m_project;
    bool m_isStudyUnchanged;
    CaseMatch m_match;
    RowBitmap m_lostCases;
    QStringList m_remarks;
    std::vector<QDomElement>
        m_kept; ///< what withPresentCases() gave: elements die with their parents
};

} // namespace analyzer
