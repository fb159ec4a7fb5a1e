#include <analyzer/filters/FilterList.h>
#include <analyzer/session/SessionError.h>
#include <analyzer/session/caseSetText.h>
#include <analyzer/session/restoreSession.h>
#include <analyzer/session/sentence.h>
#include <analyzer/session/strictXml.h>
#include <analyzer/views/AnalyzerViewInterface.h>

#include <dataviews/platform/data/AuxFile.h>
#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/data/TagGroup.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/serialize/SerializerInterface.h>

#include <QDir>
#include <QDomDocument>
#include <QDomNamedNodeMap>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <cstring>
#include <exception>
#include <map>
#include <set>
#include <utility>

namespace analyzer {

namespace {

/// Elements of which there may be several, with things of the study.
bool isItem(const QDomElement& element)
{
    return element.tagName() == QLatin1String("Variable")
        || element.tagName() == QLatin1String("Column")
        || element.tagName() == QLatin1String("Case");
}

QDir studyFolder(const Project& project)
{
    return QFileInfo(QString::fromStdString(project.filePath())).absoluteDir();
}

QDomElement written(AnalyzerViewInterface& view, QDomDocument& document)
{
    QDomElement parent = document.createElement(QStringLiteral("View"));
    view.serializer().serialize(parent);
    return parent.firstChildElement();
}

std::vector<QDomElement> children(const QDomElement& element)
{
    std::vector<QDomElement> result;
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        result.push_back(child);
    }
    return result;
}

/// Refuses elements in \p saved that \p own, of the same name, does not have, and elements that are there twice.
void checkElements(const QDomElement& saved, const QDomElement& own)
{
    QSet<QString> seen;
    for (const QDomElement& child : children(saved)) {
        const QString name = child.tagName();
        // Items have no children.
        const QDomElement ownChild = isItem(child) ? QDomElement() : own.firstChildElement(name);
        if (ownChild.isNull() && !isItem(child)) {
            strictXml::refuse(
                "there is an unknown element \"" + name.toStdString() + "\" in "
                + saved.tagName().toStdString());
        }
        if (isItem(child)) {
            checkElements(child, ownChild);
            continue;
        }
        if (seen.contains(name)) {
            strictXml::refuse(
                saved.tagName().toStdString() + " has two elements \"" + name.toStdString() + "\"");
        }
        seen.insert(name);
        checkElements(child, ownChild);
    }
}

using Content = std::map<QString, QString>;

/// The attributes and, of an element without children and without a name, the text.
Content content(const QDomElement& element)
{
    Content result;
    const QDomNamedNodeMap map = element.attributes();
    for (int i = 0; i < map.size(); ++i) {
        result[map.item(i).nodeName()] = map.item(i).nodeValue();
    }
    if (element.firstChildElement().isNull()) {
        result[QString()] = element.text();
    }
    return result;
}

QString contentText(const QDomElement& element)
{
    QStringList values;
    for (const auto& [name, value] : content(element)) {
        if (!name.isEmpty() || !value.isEmpty()) {
            values += value;
        }
    }
    return values.join(QStringLiteral(", "));
}

/// What of \p saved is not the same in \p own, in words.
void listDifferences(const QDomElement& saved, const QDomElement& own, QStringList& differences)
{
    const auto tell = [&differences](const QDomElement& element) {
        differences += QStringLiteral("%1 \"%2\"").arg(element.tagName(), contentText(element));
    };
    if (content(saved) != content(own)) {
        tell(saved);
    }
    std::multiset<std::pair<QString, Content>> ownItems;
    for (const QDomElement& child : children(own)) {
        if (isItem(child)) {
            ownItems.insert({child.tagName(), content(child)});
        }
    }
    for (const QDomElement& child : children(saved)) {
        if (!isItem(child)) {
            listDifferences(child, own.firstChildElement(child.tagName()), differences);
            continue;
        }
        const auto found = ownItems.find({child.tagName(), content(child)});
        if (found == ownItems.end()) {
            tell(child);
        } else {
            ownItems.erase(found); // once for each
        }
    }
}

constexpr const char* casePrefix = "case ";

/// The elements of \p state that name a case.
std::vector<QDomElement> caseElements(const QDomElement& state)
{
    std::vector<QDomElement> result;
    for (const char* name : {"Reference", "Other", "CurrentImage"}) {
        const QDomElement element = state.firstChildElement(QLatin1String(name));
        if (!element.isNull()) {
            result.push_back(element);
        }
    }
    return result;
}

/// The ID of the case that \p element, one of caseElements(), names: "17", "case 17"; none for other texts.
std::optional<unsigned long long> caseIn(const QDomElement& element)
{
    QString text = element.attribute(QStringLiteral("Value"), element.text());
    if (text.startsWith(QLatin1String(casePrefix))) {
        text.remove(0, static_cast<int>(std::strlen(casePrefix)));
    }
    bool isNumber = false;
    const qulonglong caseID = text.toULongLong(&isNumber);
    return isNumber ? std::optional<unsigned long long>(caseID) : std::nullopt;
}

void setCase(QDomElement& element, unsigned long long caseID)
{
    const QString number = QString::number(caseID);
    if (element.hasAttribute(QStringLiteral("Value"))) {
        element.setAttribute(QStringLiteral("Value"), number);
        return;
    }
    QDomNode text = element.firstChild();
    const bool hasPrefix = text.nodeValue().startsWith(QLatin1String(casePrefix));
    text.setNodeValue((hasPrefix ? QLatin1String(casePrefix) : QLatin1String()) + number);
}

} // namespace

std::vector<unsigned long long> casesNamedIn(const QDomElement& state)
{
    std::vector<unsigned long long> cases;
    for (const QDomElement& element : caseElements(state)) {
        if (const std::optional<unsigned long long> caseID = caseIn(element)) {
            cases.push_back(*caseID);
        }
    }
    return cases;
}

std::vector<SessionTagGroup> sessionTags(
    const Project& project, const std::vector<std::string>& groups)
{
    const QDir folder = studyFolder(project);
    std::vector<SessionTagGroup> result;
    std::map<std::string, SessionTag*> byName;
    for (const std::string& name : groups) {
        const boost::shared_ptr<TagGroup> group = project.tagGroup(name).lock();
        if (!group) {
            continue;
        }
        SessionTagGroup& saved = result.emplace_back(SessionTagGroup{name, {}});
        for (const std::string& tag : group->tags()) {
            saved.tags.push_back({tag, project.taggedCases(tag), {}});
        }
    }
    for (SessionTagGroup& group : result) {
        for (SessionTag& tag : group.tags) {
            byName[tag.name] = &tag;
        }
    }
    if (byName.empty() || project.auxFileCount() == 0) {
        return result;
    }
    for (std::size_t row = 0; row < project.caseCount(); ++row) {
        for (const boost::shared_ptr<AuxFile>& file : project.auxFiles(row)) {
            for (const std::string& tag : file->ownTags()) {
                const auto found = byName.find(tag);
                if (found != byName.end()) {
                    const QString path =
                        folder.relativeFilePath(QString::fromStdString(file->filePath()));
                    found->second->files.push_back({row, path.toStdString()});
                }
            }
        }
    }
    return result;
}

std::vector<SessionFilter> sessionFilters(const FilterList& filters)
{
    std::vector<SessionFilter> result;
    for (const FilterList::FilterPtr& filter : filters.filters()) {
        SessionFilter saved;
        saved.kind = filter->kind();
        saved.name = filter->name();
        saved.isEnabled = filter->enabled()->value();
        saved.isInverted = filter->inverted()->value();
        if (filter->range()) {
            saved.range = filter->range()->value();
        }
        if (filter->values()) {
            saved.values = filter->values()->value();
        }
        result.push_back(std::move(saved));
    }
    return result;
}

SessionRestorer::SessionRestorer(
    const Session& session, const Project& project, bool isStudyUnchanged)
    : m_session(session)
    , m_project(project)
    , m_isStudyUnchanged(isStudyUnchanged)
    , m_match(isStudyUnchanged ? CaseMatch(project.caseCount()) : CaseMatch(session.keys, project))
    , m_lostCases(session.caseCount)
{
    if (isStudyUnchanged && session.caseCount != project.caseCount()) {
        strictXml::refuse("it has another number of cases than its study");
    }
}

void SessionRestorer::restoreTags(Project& project)
{
    const QDir folder = studyFolder(project);
    for (const SessionTagGroup& group : m_session.tagGroups) {
        try {
            project.addTagGroup(group.name);
            for (const SessionTag& tag : group.tags) {
                project.addTag(group.name, tag.name);
                project.tagCases(tag.name, m_match.rows(tag.cases, m_lostCases), true);
            }
        } catch (const ExceptionBase& error) {
            throw SessionError(std::string("The tags of the session do not fit: ") + error.what());
        }
        for (const SessionTag& tag : group.tags) {
            for (const SessionFile& saved : tag.files) {
                const std::optional<std::size_t> row = m_match.row(saved.row);
                const std::string path =
                    QDir::cleanPath(folder.absoluteFilePath(QString::fromStdString(saved.path)))
                        .toStdString();
                bool isFound = false;
                if (row) {
                    for (const boost::shared_ptr<AuxFile>& file : project.auxFiles(*row)) {
                        if (file->filePath() == path) {
                            project.tagAuxFile(*file, tag.name, true);
                            isFound = true;
                        }
                    }
                } else {
                    m_lostCases.set(saved.row);
                }
                if (!isFound && m_isStudyUnchanged) {
                    strictXml::refuse("a tag is on an image that the study does not have");
                }
                if (!isFound) {
                    m_remarks +=
                        sentence(QStringLiteral("The image \"%1\" with the tag \"%2\" is gone")
                                     .arg(
                                         QString::fromStdString(saved.path),
                                         QString::fromStdString(tag.name)));
                }
            }
        }
    }
}

void SessionRestorer::restoreFilters(FilterList& filters)
{
    const Project& project = filters.pipeline().project();
    filters.pipeline().changeTogether([&] {
        for (const SessionFilter& saved : m_session.filters) {
            const bool isThere = saved.kind == ListedFilter::Kind::Tag
                ? project.hasTag(saved.name)
                : !project.variable(saved.name).expired();
            try {
                if (!isThere) {
                    throw ExceptionBase("it is not in the study");
                }
                const FilterList::FilterPtr filter = saved.kind == ListedFilter::Kind::Range
                    ? filters.addRangeFilter(saved.name, saved.range)
                    : saved.kind == ListedFilter::Kind::Values
                    ? filters.addValuesFilter(saved.name, saved.values)
                    : filters.addTagFilter(saved.name);
                filter->inverted()->setValue(saved.isInverted);
                filter->enabled()->setValue(saved.isEnabled);
            } catch (const ExceptionBase& error) {
                if (m_isStudyUnchanged) {
                    throw SessionError(
                        "The filter on \"" + saved.name + "\" does not fit: " + error.what());
                }
                m_remarks += sentence(
                    QStringLiteral("The filter on \"%1\" is gone: %2")
                        .arg(QString::fromStdString(saved.name), QString::fromUtf8(error.what())));
            }
        }
    });
}

void SessionRestorer::restoreView(const SessionView& saved, AnalyzerViewInterface& view)
{
    const QDomElement state = m_isStudyUnchanged
        ? saved.state.firstChildElement()
        : withPresentCases(saved.state.firstChildElement());
    if (state.tagName().toStdString() != view.domName()) {
        strictXml::refuse("the view " + saved.kind + " has the settings of another kind");
    }
    QDomDocument document;
    checkElements(state, written(view, document));
    const QString name =
        QStringLiteral("%1 %2").arg(QString::fromStdString(saved.kind)).arg(saved.number);
    const auto refuseOrTell = [&](const QString& problem) {
        if (m_isStudyUnchanged) {
            throw SessionError(
                QStringLiteral("The session is damaged: the view %1 does not take %2.")
                    .arg(name, problem)
                    .toStdString());
        }
        m_remarks +=
            sentence(QStringLiteral("The view %1 is not as it was: %2").arg(name, problem));
    };
    try {
        view.serializer().deserialize(state.parentNode().toElement());
    } catch (const std::exception& error) {
        refuseOrTell(QStringLiteral("its settings (%1)").arg(QString::fromUtf8(error.what())));
        return;
    }
    QStringList differences;
    listDifferences(state, written(view, document), differences);
    if (!differences.isEmpty()) {
        refuseOrTell(differences.join(QStringLiteral(", ")));
    }
}

QDomElement SessionRestorer::withPresentCases(const QDomElement& state)
{
    QDomElement parent = state.parentNode().cloneNode().toElement();
    QDomElement result = parent.firstChildElement();
    for (QDomElement& element : caseElements(result)) {
        // Cases are numbered by their rows.
        const std::optional<unsigned long long> saved = caseIn(element);
        if (!saved || *saved == 0 || *saved > m_session.caseCount) {
            continue;
        }
        const std::size_t row = *saved - 1;
        if (const std::optional<std::size_t> present = m_match.row(row)) {
            setCase(element, m_project.caseID(*present));
        } else {
            m_lostCases.set(row);
            result.removeChild(element);
        }
    }
    m_kept.push_back(parent);
    return result;
}

RowBitmap SessionRestorer::selection()
{
    return m_match.rows(m_session.selection, m_lostCases);
}

QStringList SessionRestorer::remarks() const
{
    QStringList remarks = m_remarks;
    if (m_lostCases.count() > 0) {
        constexpr std::size_t longest = 200; // characters
        const std::string cases = caseSetText(m_lostCases);
        // Only ranges are for people.
        const bool areNamed = cases.size() <= longest && cases.find(':') == std::string::npos;
        remarks += areNamed
            ? QStringLiteral("The study has changed, and these cases are not to be found in it "
                             "any more: %1.")
                  .arg(QString::fromStdString(cases))
            : QStringLiteral("The study has changed, and %1 cases are not to be found in it any "
                             "more.")
                  .arg(m_lostCases.count());
    }
    return remarks;
}

} // namespace analyzer
