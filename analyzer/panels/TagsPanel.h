#pragma once

#include <analyzer/tags/TagEditor.h>

#include <dataviews/platform/selection/SelectionModelInterface.h>
#include <dataviews/platform/signals/Signal.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QWidget>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

#include <set>
#include <string>

class QAbstractButton;
class QLabel;
class QLineEdit;
class QMenu;
class QModelIndex;
class QPushButton;
class QTreeView;

namespace analyzer {

class ElidedLabel;
class TagTreeModel;

/// Shows the tags of the open study, puts them on the selected cases or on images and takes them off, and makes and
/// removes the user's own.
///
/// All that it changes can be undone. What is refused is said above the list. A million selected cases cost it one pass
/// over them a change while it is to be seen, else nothing.
class TagsPanel : public QWidget
{
    Q_OBJECT

public:
    using Images = boost::function<TagEditor::Files()>;

    /// \p editor outlives the panel.
    TagsPanel(
        TagEditor& editor,
        boost::shared_ptr<SelectionModelInterface> selection,
        QWidget* parent = nullptr);
    TagsPanel(const TagsPanel&) = delete;
    TagsPanel& operator=(const TagsPanel&) = delete;
    ~TagsPanel() override;

    /// Where the images come from that are tagged when the panel acts on images; from nowhere at first.
    void setImages(const Images& images);

    /// The function of setImages() gives others now.
    void imagesChanged();

    /// For the keys 1 to 9: puts the user's tag \p number, counted from 1, on the selected cases or images, or takes it
    /// off if all carry it. Does nothing where there is no such tag; works while the panel is hidden, too.
    void toggleTag(int number);

    /// The user wants \p tag to be shown under images.
    Signal<void(const std::string& tag), TagsPanel> signalShowUnderImages;

    /// The user wants the image matrix laid out by the tags of \p group.
    Signal<void(const std::string& group), TagsPanel> signalLayOutByTags;

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    QWidget* makeTargets();
    QWidget* makeNameRow();
    void makeTree();
    void followChanges();

    /// Takes over what is selected, or the images, if they have changed since.
    void readTarget();
    void takeSelection(const CaseSet& selection);
    void setTarget(bool toImages);
    void showTarget();

    void projectChanged(const ProjectChange& change);
    void keepPlaces();
    void restorePlaces();

    void askForTag();
    void askForGroup();
    void askForName(const QString& question);
    void closeNameRow();
    void addNamed();

    /// The group that a new tag comes into: of the current row, or the last one if that is not the user's.
    [[nodiscard]] std::string groupForTag() const;
    void setTag(const std::string& tag, bool carry);
    bool pressTreeKey(int key);
    void fillMenu(const QModelIndex& index);
    void fillTagMenu(const std::string& tag);
    void selectCasesWith(const std::string& tag, bool besides);
    void remove(const std::string& group, const std::string& tag);

    /// Runs \p change and says what it refuses; whether it was accepted.
    bool attempt(const boost::function<void()>& change);
    void tell(const QString& problem);

    TagEditor& m_editor;
    boost::shared_ptr<SelectionModelInterface> m_selection;
    Images m_images;
    bool m_casesAreStale = true; ///< those of the model
    bool m_imagesAreStale = true;
    TagTreeModel* m_model;
    ElidedLabel* m_target;
    QAbstractButton* m_onCases = nullptr;
    QAbstractButton* m_onImages = nullptr;
    QPushButton* m_addTag;
    QPushButton* m_addGroup;
    QWidget* m_nameRow = nullptr;
    ElidedLabel* m_question = nullptr;
    QLineEdit* m_name = nullptr;
    bool m_namesTag = false; ///< a group else
    std::string m_groupOfName; ///< that the new tag comes into
    QLabel* m_problem;
    QLabel* m_empty;
    QTreeView* m_tree;
    QMenu* m_menu;
    std::set<std::string> m_collapsed; ///< groups
    std::string m_currentGroup; ///< while the model is being reset
    std::string m_currentTag;
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
