#pragma once

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/undo/DeleteSignaler.h>

#include <QString>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace analyzer {

class FilterList;

/// Changes the user's tags of the open study; each change is one undo step.
///
/// The groups that are made here are the user's. All others, such as the one that a reader makes of columns of images,
/// are the study's own with their tags, and are refused here: nobody could tell after the next opening of the study what
/// of them was the user's. What listeners change in reaction, as views that take a removed tag off their lists, becomes
/// part of the step. When another study takes the place of the open one, undo and redo of what was done to its tags do
/// nothing. Used on the GUI thread.
class TagEditor
{
public:
    using Files = std::vector<boost::shared_ptr<AuxFile>>;

    /// Edits the tags of the study that \p filters filter; they outlive the editor.
    explicit TagEditor(FilterList& filters);
    TagEditor(const TagEditor&) = delete;
    TagEditor& operator=(const TagEditor&) = delete;

    /// The tags stay; what the history holds of them does nothing any more.
    ~TagEditor();

    /// Adds an empty group behind the others.
    /// \throws ExceptionBase with a sentence, and nothing has changed, where Project::addTagGroup() refuses \p name.
    void addGroup(const std::string& name);

    /// Adds \p tag to \p group, which is made in the same step if it is not there.
    /// \throws ExceptionBase with a sentence, and nothing has changed, if the group is the study's own or
    /// Project::addTag() refuses the name.
    void addTag(const std::string& group, const std::string& tag);

    /// Puts \p tag on the cases in \p rows, a bitmap of the open study's cases, or takes it off them. No step if that
    /// changes nothing. Gives how many cases changed.
    /// \throws ExceptionBase with a sentence for a tag that is not the user's.
    std::size_t tagCases(const std::string& tag, const RowBitmap& rows, bool carry);

    /// As tagCases(), for files themselves; those that are not the open study's are passed over.
    std::size_t tagFiles(const std::string& tag, const Files& files, bool carry);

    /// Removes \p tag and the filters on it.
    /// \throws ExceptionBase with a sentence for a tag that is not the user's.
    void removeTag(const std::string& tag);

    /// Removes \p group with its tags and the filters on them.
    /// \throws ExceptionBase with a sentence for a group that is not the user's.
    void removeGroup(const std::string& group);

    /// Makes \p group, which a session brought with its study, the user's; without an undo step. Nothing for one that is
    /// not there.
    void adoptGroup(const std::string& group);

    /// What a session saves: the user's groups in order, with their tags.
    [[nodiscard]] std::vector<boost::shared_ptr<const TagGroup>> userGroups() const;

    /// The tags of userGroups(), in order.
    [[nodiscard]] std::vector<std::string> userTags() const;

    /// Whether \p group is there and not the study's own.
    [[nodiscard]] bool isUserGroup(const std::string& group) const;

    /// Whether \p tag is in one of the userGroups().
    [[nodiscard]] bool isUserTag(const std::string& tag) const;

    [[nodiscard]] FilterList& filters() const { return m_filters; }

    [[nodiscard]] Project& project() const;

private:
    /// Records a command that does nothing in other studies; runs \p redo.
    void push(
        const QString& text,
        const boost::function<void()>& redo,
        const boost::function<void()>& undo);
    void checkIsUserTag(const std::string& tag, const char* refusal) const;
    void removeFiltersOn(const std::vector<std::string>& tags);

    FilterList& m_filters;
    std::set<WeakPtr<TagGroup>> m_userGroups; ///< those that can be redone too
    DeleteSignaler m_deleteSignaler;
};

} // namespace analyzer
