#pragma once

#include <dataviews/platform/data/AuxFile.h>
#include <dataviews/platform/data/ProjectChange.h>
#include <dataviews/platform/data/Record.h>
#include <dataviews/platform/data/RemovedTag.h>
#include <dataviews/platform/data/RemovedTagGroup.h>
#include <dataviews/platform/data/RowBitmap.h>
#include <dataviews/platform/data/TagGroup.h>
#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/signals/Signal.h>

#include <vtkSmartPointer.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class vtkIntArray;
class vtkTable;

/// A study in memory: its cases, variables, tags and auxiliary files.
///
/// Columnar: a table whose column 0 holds the case IDs and whose other columns are the variables; there is no object
/// for a case or a cell. A reader fills a new project on any thread and hands it over; from then on the project
/// belongs to the GUI thread.
class DATAVIEWS_PLATFORM_DATA_EXPORT Project
{
public:
    /// A project without cases.
    Project();
    Project(const Project&) = delete;
    Project& operator=(const Project&) = delete;
    virtual ~Project();

    /// The open study; always there, empty when none is open. Listeners stay connected when studies come and go.
    [[nodiscard]] static Project& project();

    /// Makes another project the open study for its lifetime, to try something out on it that asks for project(), and
    /// tells nobody. On the GUI thread, without events in between; nests.
    class DATAVIEWS_PLATFORM_DATA_EXPORT Substitute
    {
    public:
        /// \p project outlives this object.
        explicit Substitute(Project& project);
        Substitute(const Substitute&) = delete;
        Substitute& operator=(const Substitute&) = delete;
        ~Substitute();

    private:
        Project* m_former;
    };

    /// Takes the content of \p study, which is left empty, in place of its own; then tells listeners. Handles of the
    /// former content have expired by then.
    void replaceStudy(Project& study);

    /// Something about the project changed.
    Signal<void(const ProjectChange&), Project> signalProjectChanged;

    // ---- the study

    /// What people call the study; empty for an empty project.
    [[nodiscard]] const std::string& name() const;

    /// The absolute path of the study's table; empty for an empty project.
    [[nodiscard]] const std::string& filePath() const;

    [[nodiscard]] std::size_t caseCount() const;

    /// Column 0 is the case ID, the others are the variables in file order; one row a case. Not to be changed.
    [[nodiscard]] vtkTable& table() const;

    /// The variables of the study in file order, without the case ID.
    [[nodiscard]] const std::vector<WeakPtr<Variable>>& variables() const;

    /// The variable called \p name, or a handle of nothing; the case ID is found too.
    [[nodiscard]] WeakPtr<Variable> variable(const std::string& name) const;

    /// The case ID as a variable, an identifier called "Case ID"; always there.
    [[nodiscard]] WeakPtr<Variable> caseIDVariable() const;

    // ---- cases

    /// The ID of the case in \p row, which must exist.
    [[nodiscard]] unsigned long long caseID(std::size_t row) const;

    /// The row of the case \p caseID, if there is one; in constant time.
    [[nodiscard]] std::optional<std::size_t> row(unsigned long long caseID) const;

    /// The case \p caseID, if there is one; in constant time.
    [[nodiscard]] std::optional<Record> record(unsigned long long caseID) const;

    // ---- auxiliary files

    /// Those of the case in \p row, in the order of adding. The project owns them: others keep handles.
    [[nodiscard]] const std::vector<boost::shared_ptr<AuxFile>>& auxFiles(std::size_t row) const;
    [[nodiscard]] std::size_t auxFileCount() const;

    // ---- tags

    /// In the order of adding.
    [[nodiscard]] const std::vector<WeakPtr<TagGroup>>& tagGroups() const;

    /// The group called \p name, or a handle of nothing.
    [[nodiscard]] WeakPtr<TagGroup> tagGroup(const std::string& name) const;

    [[nodiscard]] bool hasTag(const std::string& tag) const;

    /// The rows of the cases that carry \p tag themselves; none for an unknown tag.
    [[nodiscard]] RowBitmap taggedCases(const std::string& tag) const;

    /// The tags of the case in \p row, sorted.
    [[nodiscard]] std::vector<std::string> caseTags(std::size_t row) const;

    /// How many files carry \p tag themselves; none for an unknown tag. In constant time.
    [[nodiscard]] std::size_t taggedAuxFileCount(const std::string& tag) const;

    /// The files that carry \p tag themselves, by rows and in the order of adding; none for an unknown tag.
    [[nodiscard]] std::vector<boost::shared_ptr<AuxFile>> taggedAuxFiles(
        const std::string& tag) const;

    /// Throws what addTagGroup() and addTag() throw for a \p name that none can have: an empty one, one that is not
    /// UTF-8, and one with a control character other than a line break or with U+FFFE or U+FFFF. \p kind, as in "tag",
    /// is for the sentence.
    /// \throws ExceptionBase
    static void checkTagName(const std::string& name, const std::string& kind);

    /// Adds an empty group behind the others.
    /// \throws ExceptionBase if checkTagName() refuses the name or it is taken.
    WeakPtr<TagGroup> addTagGroup(const std::string& name);

    /// Adds \p tag to the group called \p group. A tag belongs to one group.
    /// \throws ExceptionBase if there is no such group, or checkTagName() refuses the name or it is taken.
    void addTag(const std::string& group, const std::string& tag);

    /// Puts \p tag on the cases in \p rows, or takes it off them; other cases stay as they are.
    /// \throws ExceptionBase for an unknown tag; \p rows is a bitmap of this project's cases.
    void tagCases(const std::string& tag, const RowBitmap& rows, bool carry);

    /// Puts \p tag on \p file, one of this project's, or takes it off.
    /// \throws ExceptionBase for an unknown tag.
    void tagAuxFile(AuxFile& file, const std::string& tag, bool carry);

    /// As tagAuxFile() for each of \p files, announced together.
    void tagAuxFiles(
        const std::vector<boost::shared_ptr<AuxFile>>& files, const std::string& tag, bool carry);

    /// Removes \p tag from its group, all cases and all files; nothing for an unknown tag.
    void removeTag(const std::string& tag);

    /// Removes the group called \p name with its tags; nothing for an unknown group.
    void removeTagGroup(const std::string& name);

    /// As removeTag(), for a tag that may come back.
    /// \throws ExceptionBase for an unknown tag.
    [[nodiscard]] RemovedTag takeTag(const std::string& tag);

    /// Puts back what takeTag() took: at its place in its group, on the cases and the files that carried it. False, and
    /// nothing has changed, if its group is not here any more or its name is taken.
    bool restoreTag(const RemovedTag& removed);

    /// As removeTagGroup(), for a group that may come back; its handles do not expire as long as the result is kept.
    /// \throws ExceptionBase for an unknown group.
    [[nodiscard]] RemovedTagGroup takeTagGroup(const std::string& name);

    /// Puts back what takeTagGroup() took: the same group at its place, with its tags as they were. False, and nothing
    /// has changed, if the group is another study's or a name is taken.
    bool restoreTagGroup(const RemovedTagGroup& removed);

    // ---- for readers: fill in this order, before the project is open

    /// Names the study. \p filePath is the absolute path of its table.
    void setSource(const std::string& name, const std::string& filePath);

    /// Gives the project \p count cases with the IDs 1 to \p count. Variables, files and tags are gone.
    /// \throws ExceptionBase if there are more cases than a case ID can count (2147483647).
    void setCaseCount(std::size_t count);

    /// Gives the project a case for each of \p caseIDs, an array of its own, with that ID.
    /// Variables, files and tags are gone.
    /// \throws ExceptionBase if an ID is there twice.
    void setCaseIDs(vtkSmartPointer<vtkIntArray> caseIDs);

    /// Adds a variable behind the others; see Variable for the columns that are allowed.
    /// \throws ExceptionBase if the name is empty or taken or the column has not one value a case.
    WeakPtr<Variable> addVariable(
        vtkSmartPointer<vtkAbstractArray> column, Variable::Nature nature);

    /// Adds a file with the absolute path \p filePath behind the others of the case in \p row, which must exist.
    boost::shared_ptr<AuxFile> addAuxFile(std::size_t row, const std::string& filePath);

private:
    struct Content;

    /// Changes what a file carries, telling nobody; whether that is a change.
    bool setOwnTag(AuxFile& file, TagStore::TagNumber tag, bool carry);

    /// Takes \p group, one of these, out and writes that into \p change.
    RemovedTagGroup takeOut(TagGroup& group, ProjectChange& change);
    void announce(const ProjectChange& change);
    virtual void signalProjectChangedConnected() const;

    std::unique_ptr<Content> m_content;
};
