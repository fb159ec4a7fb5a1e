#include <analyzer/SessionKeeper.h>
#include <analyzer/ViewArea.h>
#include <analyzer/filters/FilterList.h>
#include <analyzer/session/SessionError.h>
#include <analyzer/session/restoreSession.h>
#include <analyzer/session/sessionText.h>
#include <analyzer/session/strictXml.h>
#include <analyzer/study/StudyReader.h>
#include <analyzer/tags/TagEditor.h>
#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/HoveredCase.h>
#include <analyzer/views/selectedRows.h>
#include <analyzer/views/viewKinds.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/data/TagGroup.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/serialize/SerializerInterface.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QDir>
#include <QDockWidget>
#include <QDomDocument>
#include <QMainWindow>
#include <QToolBar>

#include <boost/make_shared.hpp>

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace analyzer {

namespace {

void addAll(RowBitmap& rows, const RowBitmap& others)
{
    for (std::size_t i = 0; i < rows.words().size(); ++i) {
        rows.words()[i] |= others.words()[i];
    }
}

void checkLayout(const QByteArray& layout, const QStringList& docks)
{
    QMainWindow window;
    for (const QString& name : docks) {
        auto* dock = new QDockWidget(&window);
        dock->setObjectName(name);
        window.addDockWidget(Qt::LeftDockWidgetArea, dock);
    }
    if (!window.restoreState(layout)) {
        strictXml::refuse("the places of its panels are none");
    }
}

} // namespace

SessionKeeper::SessionKeeper(Parts parts)
    : m_parts(std::move(parts))
{}

SessionKeeper::~SessionKeeper()
{
    stopFingerprint();
}

void SessionKeeper::studyOpened(
    const QDateTime& readingBegan, const std::optional<StudyFingerprint>& known)
{
    stopFingerprint();
    if (known) {
        m_fingerprint = *known;
        return;
    }
    m_running =
        std::async(std::launch::async, [this, readingBegan, path = Project::project().filePath()] {
            return fingerprintOf(path, readingBegan, [this] { return m_isCancelled.load(); });
        });
}

QByteArray SessionKeeper::write(const QString& folder) const
{
    const Project& project = Project::project();
    Session session;
    session.studyPath =
        QDir(folder).relativeFilePath(QString::fromStdString(project.filePath())).toStdString();
    session.study = fingerprint();
    session.caseCount = project.caseCount();
    std::vector<std::string> groups;
    for (const boost::shared_ptr<const TagGroup>& group : m_parts.tags.userGroups()) {
        groups.push_back(group->name());
    }
    session.tagGroups = sessionTags(project, groups);
    session.filters = sessionFilters(m_parts.filters);

    QDomDocument document;
    const std::vector<ViewArea::OpenView> open = m_parts.views.openViews();
    for (std::size_t i = 0; i < open.size(); ++i) {
        QDomElement state = document.createElement(QStringLiteral("View"));
        open[i].view->serializer().serialize(state);
        session.views.push_back({open[i].view->kind(), open[i].number, open[i].place, state});
        session.activeView = open[i].view == m_parts.views.activeView() ? i : session.activeView;
    }
    session.windowSize = m_parts.window.size();
    session.viewLayout = m_parts.views.layoutOfViews();
    session.panelLayout = m_parts.window.saveState();
    session.selection = selectedRows(project, *m_parts.selection.cases());

    RowBitmap inSets = session.selection;
    for (const SessionView& view : session.views) {
        for (const unsigned long long caseID : casesNamedIn(view.state.firstChildElement())) {
            if (const std::optional<std::size_t> row = project.row(caseID)) {
                inSets.set(*row);
            }
        }
    }
    for (const SessionTagGroup& group : session.tagGroups) {
        for (const SessionTag& tag : group.tags) {
            addAll(inSets, tag.cases);
            for (const SessionFile& file : tag.files) {
                inSets.set(file.row);
            }
        }
    }
    session.keys = caseKeys(project, inSets);
    return writeSession(session);
}

QStringList SessionKeeper::tryOut(
    const Session& session, const ReadStudy& study, const StudyFingerprint& fingerprint)
{
    Project& project = *study.project;
    SessionRestorer restorer(session, project, session.study.isOfSameContent(fingerprint));
    const UndoStack::SuspendUndoRecording noRecording;
    restorer.restoreTags(project);

    const Project::Substitute substitute(project);
    DataPipelineManager pipeline(project);
    FilterList filters(pipeline);
    restorer.restoreFilters(filters);
    const ViewServices services{
        pipeline,
        boost::make_shared<SelectionModel>(),
        m_parts.services.images,
        m_parts.services.scaledImages,
        boost::make_shared<HoveredCase>()};
    QStringList places;
    for (const SessionView& saved : session.views) {
        restorer.restoreView(saved, *makeView(saved.kind, services));
        places += QString::fromStdString(saved.place);
    }
    checkLayout(session.viewLayout, places);
    checkLayout(session.panelLayout, {});
    static_cast<void>(restorer.selection());
    return restorer.remarks();
}

void SessionKeeper::restore(const Session& session, const StudyFingerprint& fingerprint)
{
    const Project& project = Project::project();
    SessionRestorer restorer(session, project, session.study.isOfSameContent(fingerprint));
    const UndoStack::SuspendUndoRecording noRecording;
    for (const SessionTagGroup& group : session.tagGroups) {
        m_parts.tags.adoptGroup(group.name);
    }
    restorer.restoreFilters(m_parts.filters);
    m_parts.window.resize(session.windowSize);
    m_parts.window.restoreState(session.panelLayout);
    for (const SessionView& saved : session.views) {
        restorer.restoreView(saved, *m_parts.views.reopen(saved.kind, saved.number, saved.place));
    }
    m_parts.views.setLayout(session.viewLayout);
    if (!session.views.empty()) {
        m_parts.views.setActiveView(m_parts.views.views()[session.activeView]);
    }
    std::set<unsigned long long> selected;
    restorer.selection().forEach(
        [&](std::size_t row) { selected.insert(selected.end(), project.caseID(row)); });
    m_parts.selection.setSelection(selected);
}

QString SessionKeeper::studyPath(const Session& session, const QString& folder)
{
    return QDir::cleanPath(
        QDir(folder).absoluteFilePath(QString::fromStdString(session.studyPath)));
}

StudyFingerprint SessionKeeper::fingerprint() const
{
    if (m_running.valid()) {
        m_fingerprint = m_running.get();
    }
    return m_fingerprint;
}

void SessionKeeper::stopFingerprint()
{
    m_isCancelled = true;
    if (m_running.valid()) {
        m_running.get();
    }
    m_isCancelled = false;
}

} // namespace analyzer
