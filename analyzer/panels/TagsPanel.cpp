#include <analyzer/filters/FilterList.h>
#include <analyzer/panels/ElidedLabel.h>
#include <analyzer/panels/TagTickDelegate.h>
#include <analyzer/panels/TagTreeModel.h>
#include <analyzer/panels/TagsPanel.h>
#include <analyzer/panels/announce.h>
#include <analyzer/panels/plainToolTip.h>
#include <analyzer/views/countText.h>
#include <analyzer/views/selectedRows.h>

#include <dataviews/platform/pipeline/DataPipelineManager.h>

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <exception>
#include <utility>
#include <vector>

namespace analyzer {

namespace {

constexpr const char* firstGroup = "My Tags";

} // namespace

TagsPanel::TagsPanel(
    TagEditor& editor, boost::shared_ptr<SelectionModelInterface> selection, QWidget* parent)
    : QWidget(parent)
    , m_editor(editor)
    , m_selection(std::move(selection))
    , m_model(new TagTreeModel(editor, this))
    , m_target(new ElidedLabel({}, this))
    , m_addTag(new QPushButton(tr("New tag…"), this))
    , m_addGroup(new QPushButton(tr("New group…"), this))
    , m_problem(new QLabel(this))
    , m_empty(new QLabel(this))
    , m_tree(new QTreeView(this))
    , m_menu(new QMenu(this))
{
    setObjectName(QStringLiteral("TagsPanel"));
    m_target->setObjectName(QStringLiteral("TagsTarget"));
    m_addTag->setObjectName(QStringLiteral("AddTag"));
    m_addGroup->setObjectName(QStringLiteral("AddTagGroup"));
    m_problem->setObjectName(QStringLiteral("TagsProblem"));
    m_problem->setWordWrap(true);
    m_problem->setTextFormat(Qt::PlainText); // it quotes names
    m_problem->hide();
    m_empty->setObjectName(QStringLiteral("TagsEmpty"));
    m_empty->setWordWrap(true);
    m_empty->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    m_empty->setText(
        tr("Tags mark cases and images, for example as good or bad, to filter, find and "
           "compare them. There are none yet."));
    m_menu->setObjectName(QStringLiteral("TagMenu"));
    m_menu->setToolTipsVisible(true);

    auto* buttons = new QHBoxLayout;
    for (QPushButton* button : {m_addTag, m_addGroup}) {
        button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        buttons->addWidget(button, 1);
    }
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(makeTargets());
    layout->addWidget(m_target);
    layout->addLayout(buttons);
    layout->addWidget(makeNameRow());
    layout->addWidget(m_problem);
    layout->addWidget(m_empty, 1);
    layout->addWidget(m_tree, 1);
    makeTree();
    connect(m_addTag, &QPushButton::clicked, this, &TagsPanel::askForTag);
    connect(m_addGroup, &QPushButton::clicked, this, &TagsPanel::askForGroup);
    followChanges();
    projectChanged({});
    showTarget();
}

TagsPanel::~TagsPanel() = default;

QWidget* TagsPanel::makeTargets()
{
    auto* targets = new QWidget(this);
    auto* layout = new QHBoxLayout(targets);
    layout->setContentsMargins(0, 0, 0, 0);
    m_onCases = new QRadioButton(tr("Cases"), targets);
    m_onCases->setObjectName(QStringLiteral("TagCases"));
    m_onCases->setAccessibleName(tr("Tag the selected cases"));
    m_onCases->setToolTip(tr("Ticks put tags on the selected cases"));
    m_onImages = new QRadioButton(tr("Images"), targets);
    m_onImages->setObjectName(QStringLiteral("TagImages"));
    m_onImages->setAccessibleName(tr("Tag images"));
    m_onImages->setToolTip(tr("Ticks put tags on the images of the active view alone"));
    layout->addWidget(new QLabel(tr("Tag"), targets));
    layout->addWidget(m_onCases);
    layout->addWidget(m_onImages);
    layout->addStretch(1);
    m_onCases->setChecked(true);
    connect(m_onImages, &QAbstractButton::toggled, this, &TagsPanel::setTarget);
    return targets;
}

QWidget* TagsPanel::makeNameRow()
{
    m_nameRow = new QWidget(this);
    m_question = new ElidedLabel({}, m_nameRow);
    m_name = new QLineEdit(m_nameRow);
    m_name->setObjectName(QStringLiteral("TagName"));
    m_name->installEventFilter(this);
    auto* accept = new QToolButton(m_nameRow); // narrower than a push button
    accept->setObjectName(QStringLiteral("AcceptTagName"));
    accept->setText(tr("Add"));
    accept->setFocusPolicy(Qt::StrongFocus);
    auto* cancel = new QToolButton(m_nameRow);
    cancel->setObjectName(QStringLiteral("CancelTagName"));
    cancel->setText(QStringLiteral("×"));
    cancel->setAutoRaise(true);
    cancel->setFocusPolicy(Qt::StrongFocus);
    cancel->setAccessibleName(tr("Add nothing"));
    cancel->setToolTip(tr("Add nothing"));

    auto* field = new QHBoxLayout;
    field->addWidget(m_name, 1);
    field->addWidget(accept);
    field->addWidget(cancel);
    auto* layout = new QVBoxLayout(m_nameRow);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_question);
    layout->addLayout(field);
    connect(m_name, &QLineEdit::returnPressed, this, &TagsPanel::addNamed);
    connect(m_name, &QLineEdit::textEdited, m_problem, &QWidget::hide);
    connect(accept, &QToolButton::clicked, this, &TagsPanel::addNamed);
    connect(cancel, &QToolButton::clicked, this, &TagsPanel::closeNameRow);
    m_nameRow->hide();
    return m_nameRow;
}

void TagsPanel::makeTree()
{
    m_tree->setObjectName(QStringLiteral("TagTree"));
    m_tree->setAccessibleName(tr("Tags"));
    m_tree->setModel(m_model);
    m_tree->setItemDelegate(new TagTickDelegate(m_tree));
    m_tree->setHeaderHidden(true);
    m_tree->setUniformRowHeights(true);
    m_tree->setAllColumnsShowFocus(true);
    m_tree->setTextElideMode(Qt::ElideRight);
    m_tree->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_tree->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_tree->setContextMenuPolicy(Qt::CustomContextMenu);
    constexpr int indentation = 14;
    m_tree->setIndentation(indentation);
    constexpr int leastHeight = 60;
    m_tree->setMinimumSize(0, leastHeight);
    m_tree->installEventFilter(this);
    QHeaderView& header = *m_tree->header();
    header.setStretchLastSection(false);
    header.setMinimumSectionSize(1);
    header.setSectionResizeMode(TagTreeModel::NameColumn, QHeaderView::Stretch);
    header.setSectionResizeMode(TagTreeModel::CountColumn, QHeaderView::ResizeToContents);
    header.setSectionResizeMode(TagTreeModel::KeyColumn, QHeaderView::ResizeToContents);
    m_tree
        ->expandAll(); // once rows are of one height: the list keeps the heights that it finds first

    connect(m_model, &TagTreeModel::toggled, this, [this](const QString& tag, bool carry) {
        setTag(tag.toStdString(), carry);
    });
    connect(m_model, &QAbstractItemModel::modelAboutToBeReset, this, &TagsPanel::keepPlaces);
    connect(m_model, &QAbstractItemModel::modelReset, this, &TagsPanel::restorePlaces);
    connect(m_tree, &QTreeView::customContextMenuRequested, this, [this](const QPoint& place) {
        fillMenu(m_tree->indexAt(place));
        m_menu->popup(m_tree->viewport()->mapToGlobal(place));
    });
}

void TagsPanel::followChanges()
{
    m_connections.add(m_editor.project().signalProjectChanged.connect(
        [this](const ProjectChange& change) { projectChanged(change); }));
    m_connections.add(
        m_selection->signalSelectionChanged.connect([this](const CaseSelection& selection) {
            if (isVisible() && m_model->target() == TagTreeModel::Target::Cases) {
                takeSelection(*selection);
            } else {
                m_casesAreStale = true;
            }
        }));
}

void TagsPanel::setImages(const Images& images)
{
    m_images = images;
    imagesChanged();
}

void TagsPanel::imagesChanged()
{
    m_imagesAreStale = true;
    if (isVisible()) {
        readTarget();
    }
}

void TagsPanel::showEvent(QShowEvent* event)
{
    readTarget();
    QWidget::showEvent(event);
}

bool TagsPanel::eventFilter(QObject* watched, QEvent* event)
{
    const bool isPress = event->type() == QEvent::KeyPress;
    if (!isPress && event->type() != QEvent::ShortcutOverride) {
        return QWidget::eventFilter(watched, event);
    }
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (watched == m_name && key == Qt::Key_Escape) {
        event->accept(); // also before a shortcut of the window takes it
        if (isPress) {
            closeNameRow();
        }
        return true;
    }
    if (watched == m_tree && isPress && pressTreeKey(key)) {
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

bool TagsPanel::pressTreeKey(int key)
{
    const QModelIndex current = m_tree->currentIndex();
    const std::string tag = m_model->tagAt(current);
    if (key == Qt::Key_Delete && current.isValid()) {
        remove(m_model->groupAt(current), tag);
        return true;
    }
    // In whatever column the row is current.
    if (key == Qt::Key_Space && !tag.empty()) {
        readTarget();
        setTag(tag, m_model->state(tag) != Qt::Checked);
        return true;
    }
    return false;
}

void TagsPanel::readTarget()
{
    if (m_model->target() == TagTreeModel::Target::Cases && m_casesAreStale) {
        takeSelection(*m_selection->cases());
    } else if (m_model->target() == TagTreeModel::Target::Images && m_imagesAreStale) {
        m_model->setImages(m_images ? m_images() : TagEditor::Files());
        m_imagesAreStale = false;
        showTarget();
    }
}

void TagsPanel::takeSelection(const CaseSet& selection)
{
    m_model->setCases(selectedRows(m_editor.project(), selection));
    m_casesAreStale = false;
    showTarget();
}

void TagsPanel::setTarget(bool toImages)
{
    m_model->setTarget(toImages ? TagTreeModel::Target::Images : TagTreeModel::Target::Cases);
    readTarget();
    showTarget();
}

void TagsPanel::showTarget()
{
    const std::size_t count = m_model->targetCount();
    const QString number = countText(count);
    QString text;
    if (m_editor.project().caseCount() == 0) {
        text = tr("No study is open");
    } else if (m_model->target() == TagTreeModel::Target::Cases) {
        text = count == 1
            ? tr("1 case is selected")
            : (count == 0 ? tr("No case is selected") : tr("%1 cases are selected").arg(number));
    } else {
        text = count == 1 ? tr("1 image of the active view")
                          : (count == 0 ? tr("The active view gives no images")
                                        : tr("%1 images of the active view").arg(number));
    }
    m_target->setText(text);
    m_target->setToolTip(plainToolTip(text));
    if (m_nameRow->isHidden()) {
        m_problem->hide(); // it was about the former target
    }
}

void TagsPanel::projectChanged(const ProjectChange& change)
{
    if (change.studyReplaced) {
        m_collapsed.clear();
        m_model->setCases(RowBitmap(m_editor.project().caseCount()));
        m_model->setImages({}); // who gives images may have to hear of the study yet
        m_casesAreStale = true;
        m_imagesAreStale = true;
        closeNameRow();
        showTarget();
    }
    m_model->readTags();
    const bool isOpen = m_editor.project().caseCount() != 0;
    m_addTag->setEnabled(isOpen);
    m_addGroup->setEnabled(isOpen);
    m_empty->setVisible(isOpen && m_model->rowCount() == 0);
    m_tree->setVisible(!isOpen || m_model->rowCount() != 0);
}

void TagsPanel::keepPlaces()
{
    for (int row = 0; row < m_model->rowCount(); ++row) {
        const QModelIndex group = m_model->index(row, 0);
        if (m_tree->isExpanded(group) || m_model->rowCount(group) == 0) {
            m_collapsed.erase(m_model->groupAt(group));
        } else {
            m_collapsed.insert(m_model->groupAt(group));
        }
    }
    m_currentGroup = m_model->groupAt(m_tree->currentIndex());
    m_currentTag = m_model->tagAt(m_tree->currentIndex());
}

void TagsPanel::restorePlaces()
{
    for (int row = 0; row < m_model->rowCount(); ++row) {
        const QModelIndex group = m_model->index(row, 0);
        m_tree->setExpanded(group, m_collapsed.count(m_model->groupAt(group)) == 0);
    }
    QModelIndex current = m_model->find(m_currentGroup, m_currentTag);
    if (!current.isValid()) {
        current = m_model->find(m_currentGroup, {});
    }
    m_tree->setCurrentIndex(current);
}

void TagsPanel::askForTag()
{
    m_namesTag = true;
    m_groupOfName = groupForTag();
    askForName(tr("New tag in %1").arg(QString::fromStdString(m_groupOfName)));
}

void TagsPanel::askForGroup()
{
    m_namesTag = false;
    askForName(tr("New group of tags"));
}

void TagsPanel::askForName(const QString& question)
{
    m_problem->hide();
    m_question->setText(question);
    m_question->setToolTip(plainToolTip(question));
    m_name->setAccessibleName(question);
    m_nameRow->show();
    m_name->selectAll();
    m_name->setFocus(Qt::OtherFocusReason);
}

void TagsPanel::closeNameRow()
{
    const bool hadFocus = m_nameRow->isAncestorOf(focusWidget());
    m_name->clear();
    m_nameRow->hide();
    m_problem->hide();
    if (hadFocus) {
        m_tree->setFocus(Qt::OtherFocusReason);
    }
}

void TagsPanel::addNamed()
{
    const std::string name = m_name->text().simplified().toStdString();
    const std::string group = m_namesTag ? m_groupOfName : name;
    const std::string tag = m_namesTag ? name : std::string();
    const bool isAdded = attempt([&] {
        if (m_namesTag) {
            m_editor.addTag(group, tag);
        } else {
            m_editor.addGroup(group);
        }
    });
    if (!isAdded) {
        m_name->selectAll();
        m_name->setFocus(Qt::OtherFocusReason);
        return;
    }
    closeNameRow();
    m_tree->setCurrentIndex(m_model->find(group, tag));
    m_tree->setFocus(Qt::OtherFocusReason);
}

std::string TagsPanel::groupForTag() const
{
    std::string current = m_model->groupAt(m_tree->currentIndex());
    if (m_editor.isUserGroup(current)) {
        return current;
    }
    const std::vector<boost::shared_ptr<const TagGroup>> groups = m_editor.userGroups();
    if (!groups.empty()) {
        return groups.back()->name();
    }
    std::string name = firstGroup;
    for (int number = 2; !m_editor.project().tagGroup(name).isNull(); ++number) {
        name = firstGroup + (' ' + std::to_string(number)); // the study has one of that name
    }
    return name;
}

void TagsPanel::toggleTag(int number)
{
    const std::vector<std::string> tags = m_editor.userTags();
    if (number < 1 || static_cast<std::size_t>(number) > tags.size()) {
        return;
    }
    const std::string& tag = tags[static_cast<std::size_t>(number) - 1];
    readTarget();
    setTag(tag, m_model->state(tag) != Qt::Checked);
}

void TagsPanel::setTag(const std::string& tag, bool carry)
{
    readTarget();
    const bool onCases = m_model->target() == TagTreeModel::Target::Cases;
    if (m_model->targetCount() == 0) {
        tell(
            onCases ? tr("Select the cases to put the tag on.")
                    : tr("Make a view active that shows the images to put the tag on."));
        return;
    }
    attempt([&] {
        if (onCases) {
            m_editor.tagCases(tag, m_model->cases(), carry);
        } else {
            m_editor.tagFiles(tag, m_model->images(), carry);
        }
    });
}

void TagsPanel::fillMenu(const QModelIndex& index)
{
    m_menu->clear();
    const std::string group = m_model->groupAt(index);
    const std::string tag = m_model->tagAt(index);
    if (!tag.empty()) {
        fillTagMenu(tag);
    }
    if (!group.empty()) {
        connect(m_menu->addAction(tr("&Lay Out Matrix by Tags")), &QAction::triggered, this, [=] {
            signalLayOutByTags(group);
        });
        m_menu->addSeparator();
        QAction* removal = m_menu->addAction(tag.empty() ? tr("&Remove Group") : tr("&Remove Tag"));
        removal->setEnabled(m_editor.isUserGroup(group));
        removal->setToolTip(
            removal->isEnabled() ? QString() : tr("It comes with the study and stays as it is"));
        connect(removal, &QAction::triggered, this, [=] { remove(group, tag); });
        m_menu->addSeparator();
    }
    connect(m_menu->addAction(tr("New &Tag…")), &QAction::triggered, m_addTag, &QPushButton::click);
    connect(
        m_menu->addAction(tr("New &Group…")), &QAction::triggered, m_addGroup, &QPushButton::click);
}

void TagsPanel::fillTagMenu(const std::string& tag)
{
    const auto add = [&](const QString& text, bool isEnabled, const boost::function<void()>& act) {
        QAction* action = m_menu->addAction(text);
        action->setEnabled(isEnabled);
        connect(action, &QAction::triggered, this, [act] { act(); });
    };
    const bool isOnCases = m_editor.project().taggedCases(tag).count() > 0;
    add(tr("&Filter by Tag"), isOnCases, [=] {
        attempt([&] { m_editor.filters().addTagFilter(tag); });
    });
    add(tr("&Select Cases with Tag"), isOnCases, [=] { selectCasesWith(tag, false); });
    add(tr("&Add Them to the Selection"), isOnCases, [=] { selectCasesWith(tag, true); });
    add(tr("Show &under Images"), true, [=] { signalShowUnderImages(tag); });
}

void TagsPanel::selectCasesWith(const std::string& tag, bool besides)
{
    const Project& project = m_editor.project();
    RowBitmap rows = project.taggedCases(tag);
    rows.intersect(m_editor.filters().pipeline().passingRows()); // only what can be seen
    std::vector<CaseSet::ID> ids;
    ids.reserve(rows.count());
    rows.forEach([&](std::size_t row) { ids.push_back(project.caseID(row)); });
    std::sort(ids.begin(), ids.end());
    const CaseSet tagged = CaseSet::ofSorted(ids);
    m_selection->takeCases(boost::make_shared<const CaseSet>(
        besides ? CaseSet::united(*m_selection->cases(), tagged) : tagged));
}

void TagsPanel::remove(const std::string& group, const std::string& tag)
{
    attempt([&] {
        if (tag.empty()) {
            m_editor.removeGroup(group);
        } else {
            m_editor.removeTag(tag);
        }
    });
}

bool TagsPanel::attempt(const boost::function<void()>& change)
{
    m_problem->hide();
    try {
        change();
        return true;
    } catch (const std::exception& error) {
        tell(QString::fromUtf8(error.what()));
        return false;
    }
}

void TagsPanel::tell(const QString& problem)
{
    m_problem->setText(problem);
    m_problem->show();
    announce(*m_problem);
}

} // namespace analyzer
