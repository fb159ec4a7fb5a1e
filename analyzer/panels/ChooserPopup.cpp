#include <analyzer/panels/ChooserPopup.h>

#include <QApplication>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QVBoxLayout>

#include <algorithm>

namespace analyzer {

ChooserPopup::ChooserPopup(QWidget* parent)
    : ChooserFrame(parent)
    , m_model(new ChooserModel(this))
    , m_search(new QLineEdit(this))
    , m_list(new QListView(this))
    , m_nothing(new QLabel(tr("Nothing has this in its name."), this))
{
    m_search->setPlaceholderText(tr("Search"));
    m_search->setClearButtonEnabled(true);
    m_search->installEventFilter(this);
    m_list->setModel(m_model);
    m_list->setUniformItemSizes(true);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setFocusPolicy(Qt::NoFocus);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Names of one study often begin alike, and end alike.
    m_list->setTextElideMode(Qt::ElideMiddle);
    m_nothing->setAlignment(Qt::AlignCenter);

    auto* layout = new QVBoxLayout(this);
    constexpr int margin = 4;
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(margin);
    layout->addWidget(m_search);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_nothing, 1);

    connect(m_search, &QLineEdit::textChanged, this, &ChooserPopup::search);
    connect(m_list, &QListView::clicked, this, &ChooserPopup::take);
}

void ChooserPopup::open(
    const QWidget& field,
    const QString& name,
    const QString& label,
    const ChooserModel::Choices& choices,
    std::optional<ChooserModel::Index> present)
{
    setObjectName(name + QStringLiteral("-chooser"));
    m_search->setObjectName(name + QStringLiteral("-search"));
    m_search->setAccessibleName(tr("Search in %1").arg(label));
    m_list->setObjectName(name + QStringLiteral("-list"));
    m_list->setAccessibleName(label);
    m_model->setChoices(choices, present);
    m_search->clear();
    search({});
    place(field);
    show();
    m_search->setFocus(Qt::PopupFocusReason);
    mark(m_model->presentRow().value_or(0)); // where the list can be scrolled there
}

void ChooserPopup::search(const QString& text)
{
    m_model->search(text);
    const bool isSearching = !text.trimmed().isEmpty();
    mark(isSearching ? 0 : m_model->presentRow().value_or(0));
    m_list->setVisible(m_model->rowCount() > 0);
    m_nothing->setVisible(m_model->rowCount() == 0);
}

void ChooserPopup::mark(int row)
{
    m_list->setCurrentIndex(m_model->index(row, 0));
}

void ChooserPopup::take(const QModelIndex& index)
{
    if (!index.isValid()) {
        return;
    }
    const ChooserModel::Index choice = m_model->choice(index.row());
    hide();
    Q_EMIT chosen(choice);
}

bool ChooserPopup::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != m_search || event->type() != QEvent::KeyPress) {
        return ChooserFrame::eventFilter(watched, event);
    }
    switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        QApplication::sendEvent(m_list, event);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        take(m_list->currentIndex());
        return true;
    case Qt::Key_Escape:
        hide();
        return true;
    default:
        return ChooserFrame::eventFilter(watched, event);
    }
}

void ChooserPopup::place(const QWidget& field)
{
    QFont bold = m_list->font(); // as the present entry is
    bold.setBold(true);
    const QFontMetrics metrics(bold);
    int textPx = 0;
    for (const QString& text : m_model->texts()) {
        textPx = std::max(textPx, metrics.horizontalAdvance(text));
    }
    // Stays as high while the list gets shorter, so that the field stays where it is.
    const int rows = rowsFor(m_model->texts().size());
    const int listHeight = rows * std::max(m_list->sizeHintForRow(0), 1) + 2 * m_list->frameWidth();
    const QMargins margins = layout()->contentsMargins();
    placeAt(
        field,
        {widthFor(field, textPx),
         listHeight + m_search->sizeHint().height() + layout()->spacing() + margins.top()
             + margins.bottom() + 2 * frameWidth()});
}

} // namespace analyzer
