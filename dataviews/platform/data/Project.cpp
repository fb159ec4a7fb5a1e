#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/property/ExceptionBase.h>

#include <QtGlobal>

#include <vtkIntArray.h>
#include <vtkNew.h>
#include <vtkTable.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <limits>
#include <numeric>
#include <unordered_map>
#include <utility>

namespace {

constexpr const char* caseIDName = "Case ID";

vtkSmartPointer<vtkIntArray> denseCaseIDs(std::size_t count)
{
    if (count > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        throw ExceptionBase(
            "A study can have 2147483647 cases at most; this one has " + std::to_string(count)
            + ".");
    }
    vtkSmartPointer<vtkIntArray> ids = vtkSmartPointer<vtkIntArray>::New();
    ids->SetNumberOfValues(static_cast<vtkIdType>(count));
    std::iota(ids->GetPointer(0), ids->GetPointer(0) + count, 1);
    return ids;
}

unsigned long long widened(int id)
{
    return static_cast<unsigned long long>(static_cast<long long>(id));
}

/// \p kind is "tag" or "tag group".
void checkName(const std::string& name, const char* kind)
{
    if (name.empty()) {
        throw ExceptionBase(std::string("A ") + kind + " needs a name.");
    }
    constexpr unsigned char firstPrintable = 0x20;
    constexpr unsigned char deleteCharacter = 0x7f;
    const bool hasControl = std::any_of(name.begin(), name.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return (byte < firstPrintable && c != '\n') || byte == deleteCharacter;
    });
    if (hasControl) {
        throw ExceptionBase(
            std::string("The name of a ") + kind + " cannot hold control characters.");
    }
}

} // namespace

struct Project::Content
{
    explicit Content(vtkSmartPointer<vtkIntArray> ids)
        : caseIDs(std::move(ids))
        , tags(boost::make_shared<TagStore>(static_cast<std::size_t>(caseIDs->GetNumberOfTuples())))
    {
        caseIDs->SetName(caseIDName);
        table->AddColumn(caseIDs);
        caseIDVariable = boost::make_shared<Variable>(caseIDs, Variable::Identifier);
        indexCaseIDs();
    }

    void indexCaseIDs()
    {
        const int* ids = caseIDs->GetPointer(0);
        const std::size_t count = caseCount();
        for (std::size_t row = 0; row < count; ++row) {
            isDense = isDense && ids[row] == static_cast<int>(row + 1);
        }
        if (isDense) {
            return;
        }
        rows.reserve(count);
        for (std::size_t row = 0; row < count; ++row) {
            if (!rows.try_emplace(ids[row], row).second) {
                throw ExceptionBase("The case ID " + std::to_string(ids[row]) + " is there twice.");
            }
        }
    }

    [[nodiscard]] std::size_t caseCount() const
    {
        return static_cast<std::size_t>(caseIDs->GetNumberOfTuples());
    }

    std::string name;
    std::string filePath;
    vtkNew<vtkTable> table;
    vtkSmartPointer<vtkIntArray> caseIDs;
    boost::shared_ptr<Variable> caseIDVariable;
    bool isDense = true; ///< the IDs are 1, 2, 3 …
    std::unordered_map<int, std::size_t> rows; ///< by case ID; empty if they are dense
    std::vector<boost::shared_ptr<Variable>> variables;
    std::vector<WeakPtr<Variable>> variableHandles;
    std::unordered_map<std::string, boost::shared_ptr<Variable>> variablesByName;
    std::unordered_map<std::size_t, std::vector<boost::shared_ptr<AuxFile>>> auxFiles; ///< by row
    std::size_t auxFileCount = 0;
    boost::shared_ptr<TagStore> tags;
    std::vector<boost::shared_ptr<TagGroup>> tagGroups;
    std::vector<WeakPtr<TagGroup>> tagGroupHandles;
};

Project::Project()
    : signalProjectChanged([this] { signalProjectChangedConnected(); })
    , m_content(std::make_unique<Content>(denseCaseIDs(0)))
{}

Project::~Project() = default;

Project& Project::project()
{
    static Project openProject;
    return openProject;
}

void Project::replaceStudy(Project& study)
{
    ProjectChange change;
    change.studyReplaced = true;
    change.removedTagGroups = m_content->tagGroupHandles;
    for (const boost::shared_ptr<TagGroup>& group : m_content->tagGroups) {
        change.removedTags.insert(
            change.removedTags.end(), group->tags().begin(), group->tags().end());
    }
    m_content = std::exchange(study.m_content, std::make_unique<Content>(denseCaseIDs(0)));
    announce(change);
}

const std::string& Project::name() const
{
    return m_content->name;
}

const std::string& Project::filePath() const
{
    return m_content->filePath;
}

std::size_t Project::caseCount() const
{
    return m_content->caseCount();
}

vtkTable& Project::table() const
{
    return *m_content->table;
}

const std::vector<WeakPtr<Variable>>& Project::variables() const
{
    return m_content->variableHandles;
}

WeakPtr<Variable> Project::variable(const std::string& name) const
{
    if (name == caseIDName) {
        return m_content->caseIDVariable;
    }
    const auto place = m_content->variablesByName.find(name);
    return place == m_content->variablesByName.end() ? WeakPtr<Variable>()
                                                     : WeakPtr<Variable>(place->second);
}

WeakPtr<Variable> Project::caseIDVariable() const
{
    return m_content->caseIDVariable;
}

unsigned long long Project::caseID(std::size_t row) const
{
    return widened(m_content->caseIDs->GetValue(static_cast<vtkIdType>(row)));
}

std::optional<std::size_t> Project::row(unsigned long long caseID) const
{
    const int id = static_cast<int>(caseID);
    if (widened(id) != caseID) {
        return std::nullopt;
    }
    if (m_content->isDense) {
        return id >= 1 && static_cast<std::size_t>(id) <= caseCount()
            ? std::optional<std::size_t>(id - 1)
            : std::nullopt;
    }
    const auto place = m_content->rows.find(id);
    return place == m_content->rows.end() ? std::nullopt
                                          : std::optional<std::size_t>(place->second);
}

std::optional<Record> Project::record(unsigned long long caseID) const
{
    const std::optional<std::size_t> found = row(caseID);
    return found ? std::optional<Record>(Record(*this, *found)) : std::nullopt;
}

const std::vector<boost::shared_ptr<AuxFile>>& Project::auxFiles(std::size_t row) const
{
    static const std::vector<boost::shared_ptr<AuxFile>> none;
    const auto place = m_content->auxFiles.find(row);
    return place == m_content->auxFiles.end() ? none : place->second;
}

std::size_t Project::auxFileCount() const
{
    return m_content->auxFileCount;
}

const std::vector<WeakPtr<TagGroup>>& Project::tagGroups() const
{
    return m_content->tagGroupHandles;
}

WeakPtr<TagGroup> Project::tagGroup(const std::string& name) const
{
    for (const boost::shared_ptr<TagGroup>& group : m_content->tagGroups) {
        if (group->name() == name) {
            return group;
        }
    }
    return {};
}

bool Project::hasTag(const std::string& tag) const
{
    return m_content->tags->find(tag).has_value();
}

RowBitmap Project::taggedCases(const std::string& tag) const
{
    const auto number = m_content->tags->find(tag);
    return number ? m_content->tags->cases(*number) : RowBitmap(caseCount());
}

std::vector<std::string> Project::caseTags(std::size_t row) const
{
    const TagStore& tags = *m_content->tags;
    std::vector<std::string> names;
    for (TagStore::TagNumber tag = 0; tag < tags.size(); ++tag) {
        if (!tags.name(tag).empty() && tags.cases(tag).contains(row)) {
            names.push_back(tags.name(tag));
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

WeakPtr<TagGroup> Project::addTagGroup(const std::string& name)
{
    checkName(name, "tag group");
    if (!tagGroup(name).isNull()) {
        throw ExceptionBase("There is a tag group \"" + name + "\" already.");
    }
    m_content->tagGroups.push_back(boost::make_shared<TagGroup>(name));
    m_content->tagGroupHandles.emplace_back(m_content->tagGroups.back());
    const WeakPtr<TagGroup> added = m_content->tagGroupHandles.back();
    announce({});
    return added;
}

void Project::addTag(const std::string& group, const std::string& tag)
{
    checkName(tag, "tag");
    const boost::shared_ptr<TagGroup> owner = tagGroup(group).lock();
    if (!owner) {
        throw ExceptionBase("There is no tag group \"" + group + "\".");
    }
    if (hasTag(tag)) {
        throw ExceptionBase("There is a tag \"" + tag + "\" already.");
    }
    owner->m_tags.push_back(tag);
    m_content->tags->add(tag);
    announce({});
}

void Project::tagCases(const std::string& tag, const RowBitmap& rows, bool carry)
{
    const auto number = m_content->tags->find(tag);
    if (!number) {
        throw ExceptionBase("There is no tag \"" + tag + "\".");
    }
    Q_ASSERT_X(
        rows.rowCount() == caseCount(), "Project::tagCases", "the rows are of another table");
    std::vector<std::uint64_t>& words = m_content->tags->cases(*number).words();
    std::uint64_t changes = 0;
    for (std::size_t word = 0; word < words.size(); ++word) {
        const std::uint64_t bits = rows.words()[word];
        const std::uint64_t before = words[word];
        words[word] = carry ? (before | bits) : (before & ~bits);
        changes |= before ^ words[word];
    }
    if (changes != 0) {
        announce({});
    }
}

void Project::tagAuxFile(AuxFile& file, const std::string& tag, bool carry)
{
    const auto number = m_content->tags->find(tag);
    if (!number) {
        throw ExceptionBase("There is no tag \"" + tag + "\".");
    }
    if (carry == file.hasOwnTag(*number)) {
        return;
    }
    if (carry) {
        file.m_ownTags.push_back(*number);
    } else {
        file.m_ownTags.erase(std::find(file.m_ownTags.begin(), file.m_ownTags.end(), *number));
    }
    announce({});
}

void Project::removeTag(const std::string& tag)
{
    if (!hasTag(tag)) {
        return;
    }
    const std::string name = tag; // the argument may be the one in the group
    for (const boost::shared_ptr<TagGroup>& group : m_content->tagGroups) {
        group->m_tags.erase(
            std::remove(group->m_tags.begin(), group->m_tags.end(), name), group->m_tags.end());
    }
    m_content->tags->remove(name);
    ProjectChange change;
    change.removedTags.push_back(name);
    announce(change);
}

void Project::removeTagGroup(const std::string& name)
{
    std::vector<boost::shared_ptr<TagGroup>>& groups = m_content->tagGroups;
    const auto place = std::find_if(
        groups.begin(), groups.end(), [&name](const boost::shared_ptr<TagGroup>& group) {
            return group->name() == name;
        });
    if (place == groups.end()) {
        return;
    }
    ProjectChange change;
    change.removedTags = (*place)->tags();
    change.removedTagGroups.emplace_back(*place);
    for (const std::string& tag : change.removedTags) {
        m_content->tags->remove(tag);
    }
    m_content->tagGroupHandles.erase(m_content->tagGroupHandles.begin() + (place - groups.begin()));
    groups.erase(place);
    announce(change);
}

void Project::setSource(const std::string& name, const std::string& filePath)
{
    m_content->name = name;
    m_content->filePath = filePath;
}

void Project::setCaseCount(std::size_t count)
{
    setCaseIDs(denseCaseIDs(count));
}

void Project::setCaseIDs(vtkSmartPointer<vtkIntArray> caseIDs)
{
    auto content = std::make_unique<Content>(std::move(caseIDs));
    content->name = m_content->name;
    content->filePath = m_content->filePath;
    m_content = std::move(content);
}

WeakPtr<Variable> Project::addVariable(
    vtkSmartPointer<vtkAbstractArray> column, Variable::Nature nature)
{
    const auto added = boost::make_shared<Variable>(column, nature);
    const std::string& name = added->name();
    if (!variable(name).isNull()) {
        throw ExceptionBase("There is a variable \"" + name + "\" already.");
    }
    if (column->GetNumberOfTuples() != m_content->caseIDs->GetNumberOfTuples()) {
        throw ExceptionBase(
            "Variable \"" + name + "\" has " + std::to_string(column->GetNumberOfTuples())
            + " values for " + std::to_string(caseCount()) + " cases.");
    }
    m_content->table->AddColumn(column);
    m_content->variables.push_back(added);
    m_content->variableHandles.emplace_back(added);
    m_content->variablesByName.emplace(name, added);
    return added;
}

boost::shared_ptr<AuxFile> Project::addAuxFile(std::size_t row, const std::string& filePath)
{
    const auto file = boost::make_shared<AuxFile>(filePath, row, m_content->tags);
    m_content->auxFiles[row].push_back(file);
    ++m_content->auxFileCount;
    return file;
}

void Project::announce(const ProjectChange& change)
{
    signalProjectChanged(change);
}

void Project::signalProjectChangedConnected() const {}
