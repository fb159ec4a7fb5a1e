#include <analyzer/filters/FilterList.h>
#include <analyzer/tags/CompressedRows.h>
#include <analyzer/tags/TagEditor.h>

#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/property/ExceptionBase.h>
#include <dataviews/platform/undo/GenericUndoCommand.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QCoreApplication>
#include <QLocale>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

namespace analyzer {

namespace {

QString translated(const char* text)
{
    return QCoreApplication::translate("TagEditor", text);
}

QString textWith(const char* text, const std::string& name)
{
    return translated(text).arg(QString::fromStdString(name));
}

/// As "Tag 1,204 Cases good"; \p one and \p many are what they are, as in "Tag %1 Cases %2".
QString textWith(const char* one, const char* many, std::size_t count, const std::string& name)
{
    const QString number =
        QLocale(QLocale::English, QLocale::UnitedStates).toString(static_cast<qulonglong>(count));
    return translated(count == 1 ? one : many).arg(number, QString::fromStdString(name));
}

/// The rows of \p rows whose cases do not carry what they are to, or carry what they are not to.
RowBitmap changingRows(const RowBitmap& carrying, RowBitmap rows, bool carry)
{
    const std::vector<std::uint64_t>& before = carrying.words();
    std::vector<std::uint64_t>& words = rows.words();
    for (std::size_t word = 0; word < words.size(); ++word) {
        words[word] &= carry ? ~before[word] : before[word];
    }
    return rows;
}

bool isOf(const Project& project, const boost::shared_ptr<AuxFile>& file)
{
    if (!file || file->row() >= project.caseCount()) {
        return false;
    }
    const std::vector<boost::shared_ptr<AuxFile>>& files = project.auxFiles(file->row());
    return std::find(files.begin(), files.end(), file) != files.end();
}

/// A tag that an undo step makes or removes.
class KeptTag
{
public:
    explicit KeptTag(std::string name)
        : m_name(std::move(name))
    {}

    void takeOut(Project& project)
    {
        if (!m_removed && project.hasTag(m_name)) {
            m_removed = project.takeTag(m_name);
        }
    }

    /// What no step knows of may have taken its place; then it stays out.
    void putBack(Project& project)
    {
        if (m_removed && project.restoreTag(*m_removed)) {
            m_removed.reset();
        }
    }

private:
    std::string m_name;
    std::optional<RemovedTag> m_removed; ///< while it is not there
};

/// A group that an undo step makes or removes.
class KeptGroup
{
public:
    explicit KeptGroup(std::string name)
        : m_name(std::move(name))
    {}

    void takeOut(Project& project)
    {
        if (!m_removed && !project.tagGroup(m_name).isNull()) {
            m_removed = project.takeTagGroup(m_name);
        }
    }

    /// What no step knows of may have taken its place; then it stays out.
    void putBack(Project& project)
    {
        if (m_removed && project.restoreTagGroup(*m_removed)) {
            m_removed.reset();
        }
    }

private:
    std::string m_name;
    std::optional<RemovedTagGroup> m_removed; ///< while it is not there
};

/// Runs \p make at the first call, and \p remake at all others.
boost::function<void()> firstThen(
    const boost::function<void()>& make, const boost::function<void()>& remake)
{
    return [make, remake, isMade = boost::make_shared<bool>(false)] {
        if (*isMade) {
            remake();
            return;
        }
        make();
        *isMade = true;
    };
}

} // namespace

TagEditor::TagEditor(FilterList& filters)
    : m_filters(filters)
{}

TagEditor::~TagEditor() = default;

Project& TagEditor::project() const
{
    return m_filters.pipeline().project();
}

void TagEditor::addGroup(const std::string& name)
{
    const auto kept = boost::make_shared<KeptGroup>(name);
    push(
        textWith("Add Tag Group %1", name),
        firstThen(
            [this, name] { m_userGroups.insert(project().addTagGroup(name)); },
            [this, kept] { kept->putBack(project()); }),
        [this, kept] { kept->takeOut(project()); });
}

void TagEditor::addTag(const std::string& group, const std::string& tag)
{
    const bool isNewGroup = project().tagGroup(group).isNull();
    if (!isNewGroup && !isUserGroup(group)) {
        throw ExceptionBase(
            "The tag group \"" + group
            + "\" belongs to the study; add your tags to a group of your own.");
    }
    // Before the group is made.
    Project::checkTagName(tag, "tag");
    if (project().hasTag(tag)) {
        throw ExceptionBase("There is a tag \"" + tag + "\" already.");
    }
    const QString text = textWith("Add Tag %1", tag);
    const UndoStack::Macro macro(text);
    if (isNewGroup) {
        addGroup(group);
    }
    const auto kept = boost::make_shared<KeptTag>(tag);
    push(
        text,
        firstThen(
            [this, group, tag] { project().addTag(group, tag); },
            [this, kept] { kept->putBack(project()); }),
        [this, kept] { kept->takeOut(project()); });
}

std::size_t TagEditor::tagCases(const std::string& tag, const RowBitmap& rows, bool carry)
{
    checkIsUserTag(tag, "cannot be put on cases or taken off");
    const auto changing = boost::make_shared<const CompressedRows>(
        changingRows(project().taggedCases(tag), rows, carry));
    const std::size_t count = changing->size();
    if (count == 0) {
        return 0;
    }
    const auto change = [this, tag, changing](bool carries) {
        if (project().hasTag(tag)) {
            project().tagCases(tag, changing->toBitmap(), carries);
        }
    };
    push(
        carry ? textWith("Tag %1 Case %2", "Tag %1 Cases %2", count, tag)
              : textWith("Untag %1 Case %2", "Untag %1 Cases %2", count, tag),
        [change, carry] { change(carry); },
        [change, carry] { change(!carry); });
    return count;
}

std::size_t TagEditor::tagFiles(const std::string& tag, const Files& files, bool carry)
{
    checkIsUserTag(tag, "cannot be put on images or taken off");
    const auto changing = boost::make_shared<std::vector<WeakPtr<AuxFile>>>();
    std::set<const AuxFile*> known;
    for (const boost::shared_ptr<AuxFile>& file : files) {
        if (isOf(project(), file) && file->hasOwnTag(tag) != carry
            && known.insert(file.get()).second) {
            changing->emplace_back(file);
        }
    }
    if (changing->empty()) {
        return 0;
    }
    const auto change = [this, tag, changing](bool carries) {
        Files present; // the study's files live as long as it is open
        for (const WeakPtr<AuxFile>& file : *changing) {
            present.push_back(file.lock());
        }
        if (project().hasTag(tag)) {
            project().tagAuxFiles(present, tag, carries);
        }
    };
    push(
        carry ? textWith("Tag %1 Image %2", "Tag %1 Images %2", changing->size(), tag)
              : textWith("Untag %1 Image %2", "Untag %1 Images %2", changing->size(), tag),
        [change, carry] { change(carry); },
        [change, carry] { change(!carry); });
    return changing->size();
}

void TagEditor::removeTag(const std::string& tag)
{
    checkIsUserTag(tag, "cannot be removed");
    const QString text = textWith("Remove Tag %1", tag);
    const auto kept = boost::make_shared<KeptTag>(tag);
    const UndoStack::Macro macro(text);
    removeFiltersOn({tag});
    push(
        text,
        [this, kept] { kept->takeOut(project()); },
        [this, kept] { kept->putBack(project()); });
}

void TagEditor::removeGroup(const std::string& group)
{
    const boost::shared_ptr<TagGroup> present = project().tagGroup(group).lock();
    if (!present) {
        throw ExceptionBase("There is no tag group \"" + group + "\".");
    }
    if (!isUserGroup(group)) {
        throw ExceptionBase(
            "The tag group \"" + group + "\" belongs to the study and cannot be removed.");
    }
    const QString text = textWith("Remove Tag Group %1", group);
    const auto kept = boost::make_shared<KeptGroup>(group);
    const UndoStack::Macro macro(text);
    removeFiltersOn(std::vector<std::string>(present->tags()));
    push(
        text,
        [this, kept] { kept->takeOut(project()); },
        [this, kept] { kept->putBack(project()); });
}

void TagEditor::adoptGroup(const std::string& group)
{
    const WeakPtr<TagGroup> handle = project().tagGroup(group);
    if (!handle.expired()) {
        m_userGroups.insert(handle);
    }
}

std::vector<boost::shared_ptr<const TagGroup>> TagEditor::userGroups() const
{
    std::vector<boost::shared_ptr<const TagGroup>> groups;
    for (const WeakPtr<TagGroup>& group : project().tagGroups()) {
        if (m_userGroups.count(group) != 0) {
            groups.emplace_back(group.lock());
        }
    }
    return groups;
}

std::vector<std::string> TagEditor::userTags() const
{
    std::vector<std::string> tags;
    for (const boost::shared_ptr<const TagGroup>& group : userGroups()) {
        tags.insert(tags.end(), group->tags().begin(), group->tags().end());
    }
    return tags;
}

bool TagEditor::isUserGroup(const std::string& group) const
{
    return m_userGroups.count(project().tagGroup(group)) != 0;
}

bool TagEditor::isUserTag(const std::string& tag) const
{
    const std::vector<std::string> tags = userTags();
    return std::find(tags.begin(), tags.end(), tag) != tags.end();
}

void TagEditor::push(
    const QString& text, const boost::function<void()>& redo, const boost::function<void()>& undo)
{
    const auto here = [this,
                       study = project().caseIDVariable()](const boost::function<void()>& change) {
        return [this, study, change] {
            if (project().caseIDVariable() == study) {
                change();
            }
        };
    };
    // What listeners change while the command runs for the first time comes into the history before it, so that undo
    // brings back the tag first and then what depends on it. One step it is by the macro.
    const UndoStack::Macro macro(text);
    UndoStack::push(
        std::make_unique<GenericUndoCommand>(here(redo), here(undo), m_deleteSignaler, text));
}

void TagEditor::checkIsUserTag(const std::string& tag, const char* refusal) const
{
    if (!project().hasTag(tag)) {
        throw ExceptionBase("There is no tag \"" + tag + "\".");
    }
    if (!isUserTag(tag)) {
        throw ExceptionBase("The tag \"" + tag + "\" belongs to the study and " + refusal + ".");
    }
}

void TagEditor::removeFiltersOn(const std::vector<std::string>& tags)
{
    m_filters.pipeline().changeTogether([&] {
        for (const FilterList::FilterPtr& filter : m_filters.filters()) {
            if (filter->kind() == ListedFilter::Kind::Tag
                && std::find(tags.begin(), tags.end(), filter->name()) != tags.end()) {
                m_filters.remove(filter);
            }
        }
    });
}

} // namespace analyzer
