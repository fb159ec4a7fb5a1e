#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/property/ExceptionBase.h>

#include <QString>
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

/// What stands in for the open study now; null for nothing.
Project*& substitute()
{
    static Project* present = nullptr;
    return present;
}

bool isUtf8(const std::string& text)
{
    const std::string marked = '.' + text; // a byte order mark at the front would be dropped
    return QString::fromStdString(marked).toStdString() == marked;
}

bool holdsControlCharacter(const std::string& text)
{
    constexpr unsigned char firstPrintable = 0x20;
    constexpr unsigned char deleteCharacter = 0x7f;
    return std::any_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return (byte < firstPrintable && c != '\n') || byte == deleteCharacter;
    });
}

template <class T>
void insertAt(std::vector<T>& list, std::size_t place, const T& item)
{
    list.insert(list.begin() + static_cast<std::ptrdiff_t>(std::min(place, list.size())), item);
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

    /// The number of \p tag.
    /// \throws ExceptionBase for an unknown tag.
    [[nodiscard]] TagStore::TagNumber knownTag(const std::string& tag) const
    {
        const auto number = tags->find(tag);
        if (!number) {
            throw ExceptionBase("There is no tag \"" + tag + "\".");
        }
        return *number;
    }

    /// Where the group called \p group is; the end for an unknown one.
    [[nodiscard]] std::vector<boost::shared_ptr<TagGroup>>::iterator findGroup(
        const std::string& group)
    {
        return std::find_if(
            tagGroups.begin(), tagGroups.end(), [&group](const boost::shared_ptr<TagGroup>& other) {
                return other->name() == group;
            });
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
    return substitute() != nullptr ? *substitute() : openProject;
}

Project::Substitute::Substitute(Project& project)
    : m_former(std::exchange(substitute(), &project))
{}

Project::Substitute::~Substitute()
{
    substitute() = m_former;
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

std::size_t Project::taggedAuxFileCount(const std::string& tag) const
{
    const auto number = m_content->tags->find(tag);
    return number ? m_content->tags->fileCount(*number) : 0;
}

std::vector<boost::shared_ptr<AuxFile>> Project::taggedAuxFiles(const std::string& tag) const
{
    const std::size_t count = taggedAuxFileCount(tag);
    std::vector<boost::shared_ptr<AuxFile>> files;
    files.reserve(count);
    for (std::size_t row = 0; files.size() < count; ++row) {
        for (const boost::shared_ptr<AuxFile>& file : auxFiles(row)) {
            if (file->hasOwnTag(tag)) {
                files.push_back(file);
            }
        }
    }
    return files;
}

void Project::checkTagName(const std::string& name, const std::string& kind)
{
    if (name.empty()) {
        throw ExceptionBase("A " + kind + " needs a name.");
    }
    const std::string theName = "The name of a " + kind;
    if (holdsControlCharacter(name)) {
        throw ExceptionBase(theName + " cannot hold control characters.");
    }
    if (!isUtf8(name)) {
        throw ExceptionBase(theName + " must be text in UTF-8.");
    }
    const QString text = QString::fromStdString(name);
    for (const ushort code : {ushort(0xfffe), ushort(0xffff)}) { // no XML file can hold them
        if (text.contains(QChar(code))) {
            throw ExceptionBase(theName + " cannot hold the character U+FFFE or U+FFFF.");
        }
    }
}

WeakPtr<TagGroup> Project::addTagGroup(const std::string& name)
{
    checkTagName(name, "tag group");
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
    checkTagName(tag, "tag");
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
    const TagStore::TagNumber number = m_content->knownTag(tag);
    Q_ASSERT_X(
        rows.rowCount() == caseCount(), "Project::tagCases", "the rows are of another table");
    std::vector<std::uint64_t>& words = m_content->tags->cases(number).words();
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

bool Project::setOwnTag(AuxFile& file, TagStore::TagNumber tag, bool carry)
{
    if (carry == file.hasOwnTag(tag)) {
        return false;
    }
    if (carry) {
        file.m_ownTags.push_back(tag);
    } else {
        file.m_ownTags.erase(std::find(file.m_ownTags.begin(), file.m_ownTags.end(), tag));
    }
    m_content->tags->countFile(tag, carry);
    return true;
}

void Project::tagAuxFile(AuxFile& file, const std::string& tag, bool carry)
{
    if (setOwnTag(file, m_content->knownTag(tag), carry)) {
        announce({});
    }
}

void Project::tagAuxFiles(
    const std::vector<boost::shared_ptr<AuxFile>>& files, const std::string& tag, bool carry)
{
    const TagStore::TagNumber number = m_content->knownTag(tag);
    bool changed = false;
    for (const boost::shared_ptr<AuxFile>& file : files) {
        changed = setOwnTag(*file, number, carry) || changed;
    }
    if (changed) {
        announce({});
    }
}

void Project::removeTag(const std::string& tag)
{
    if (hasTag(tag)) {
        static_cast<void>(takeTag(tag));
    }
}

RemovedTag Project::takeTag(const std::string& tag)
{
    RemovedTag removed;
    removed.name = tag; // the argument may be the one in the group
    removed.number = m_content->knownTag(tag);
    for (const boost::shared_ptr<TagGroup>& group : m_content->tagGroups) {
        const auto place = std::find(group->m_tags.begin(), group->m_tags.end(), removed.name);
        if (place != group->m_tags.end()) {
            removed.group = group;
            removed.place = static_cast<std::size_t>(place - group->m_tags.begin());
            group->m_tags.erase(place);
            break;
        }
    }
    removed.cases = m_content->tags->take(removed.name);
    ProjectChange change;
    change.removedTags.push_back(removed.name);
    announce(change);
    return removed;
}

bool Project::restoreTag(const RemovedTag& removed)
{
    const std::vector<WeakPtr<TagGroup>>& groups = m_content->tagGroupHandles;
    const bool isHere = std::find(groups.begin(), groups.end(), removed.group) != groups.end();
    if (!isHere || hasTag(removed.name)) {
        return false;
    }
    insertAt(removed.group.lock()->m_tags, removed.place, removed.name);
    m_content->tags->restore(removed.name, removed.number, removed.cases);
    announce({});
    return true;
}

void Project::removeTagGroup(const std::string& name)
{
    const auto place = m_content->findGroup(name);
    if (place == m_content->tagGroups.end()) {
        return;
    }
    ProjectChange change;
    static_cast<void>(takeOut(**place, change));
    announce(change); // the handles have expired by now
}

RemovedTagGroup Project::takeTagGroup(const std::string& name)
{
    const auto place = m_content->findGroup(name);
    if (place == m_content->tagGroups.end()) {
        throw ExceptionBase("There is no tag group \"" + name + "\".");
    }
    ProjectChange change;
    RemovedTagGroup removed = takeOut(**place, change);
    announce(change);
    return removed;
}

RemovedTagGroup Project::takeOut(TagGroup& group, ProjectChange& change)
{
    const auto place = m_content->findGroup(group.name());
    const auto index = place - m_content->tagGroups.begin();
    RemovedTagGroup removed;
    removed.group = *place;
    removed.place = static_cast<std::size_t>(index);
    removed.store = m_content->tags;
    change.removedTagGroups.emplace_back(removed.group);
    change.removedTags = std::exchange(group.m_tags, {});
    for (const std::string& tag : change.removedTags) {
        const TagStore::TagNumber number = m_content->knownTag(tag);
        removed.tags.push_back(
            {tag, removed.group, removed.tags.size(), number, m_content->tags->take(tag)});
    }
    m_content->tagGroups.erase(place);
    m_content->tagGroupHandles.erase(m_content->tagGroupHandles.begin() + index);
    return removed;
}

bool Project::restoreTagGroup(const RemovedTagGroup& removed)
{
    const auto isTaken = [this](const RemovedTag& tag) { return hasTag(tag.name); };
    if (removed.store.lock() != m_content->tags || !tagGroup(removed.group->name()).isNull()
        || std::any_of(removed.tags.begin(), removed.tags.end(), isTaken)) {
        return false;
    }
    for (const RemovedTag& tag : removed.tags) {
        removed.group->m_tags.push_back(tag.name);
        m_content->tags->restore(tag.name, tag.number, tag.cases);
    }
    insertAt(m_content->tagGroupHandles, removed.place, WeakPtr<TagGroup>(removed.group));
    insertAt(m_content->tagGroups, removed.place, removed.group);
    announce({});
    return true;
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
