#include <analyzer/filters/ListedFilter.h>
#include <analyzer/filters/ValueScale.h>
#include <analyzer/filters/VariableHistogram.h>
#include <analyzer/panels/RangeFilterField.h>
#include <analyzer/panels/RangeHandle.h>
#include <analyzer/panels/RangeSlider.h>
#include <analyzer/panels/announce.h>
#include <analyzer/views/countText.h>
#include <analyzer/views/realText.h>

#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/property/ExceptionBase.h>

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include <cmath>
#include <exception>
#include <string>
#include <system_error>
#include <utility>

namespace analyzer {

namespace {

constexpr std::size_t binCount = 64;

QString numberText(double number)
{
    return QString::fromStdString(realText(number));
}

/// \throws ExceptionBase with a sentence.
double readNumber(const QString& text)
{
    const std::string trimmed = text.trimmed().toStdString();
    double number = 0.0;
    if (readReal(trimmed, number) != std::errc() || std::isnan(number)) {
        throw ExceptionBase(
            (trimmed.empty() ? std::string("An empty field") : "\"" + trimmed + "\"")
            + " is no number; write one such as 0.25, or -inf or inf for an open end.");
    }
    return number;
}

} // namespace

RangeFilterField::RangeFilterField(boost::shared_ptr<ListedFilter> filter, QWidget* parent)
    : QWidget(parent)
    , m_filter(std::move(filter))
    , m_min(makeField(tr("Smallest %1").arg(QString::fromStdString(m_filter->name()))))
    , m_max(makeField(tr("Largest %1").arg(QString::fromStdString(m_filter->name()))))
    , m_problem(new QLabel(this))
    , m_note(new QLabel(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* fields = new QHBoxLayout;
    fields->addWidget(m_min, 1);
    fields->addWidget(new QLabel(tr("to"), this));
    fields->addWidget(m_max, 1);
    layout->addLayout(fields);
    for (QLabel* label : {m_problem, m_note}) {
        label->setWordWrap(true);
        label->setTextFormat(Qt::PlainText); // it quotes what was typed
        label->hide();
        layout->addWidget(label);
    }
    setFocusProxy(m_min);
    addSlider();
    showRange();

    m_moveTimer.setSingleShot(true);
    m_moveTimer.setInterval(0);
    connect(&m_moveTimer, &QTimer::timeout, this, &RangeFilterField::takeMove);
    m_connections.add(m_filter->signalChanged.connect([this] {
        // A move that waits is newer than what is told here.
        if (!m_moved) {
            showRange();
        }
    }));
}

RangeFilterField::~RangeFilterField()
{
    m_filter->endGesture();
}

QLineEdit* RangeFilterField::makeField(const QString& accessibleName)
{
    auto* field = new QLineEdit(this);
    constexpr int leastLetters = 8;
    field->setMinimumWidth(leastLetters * fontMetrics().averageCharWidth());
    field->setAccessibleName(accessibleName);
    field->setToolTip(tr("A number, or -inf or inf for an open end. Return applies it."));
    field->installEventFilter(this);
    connect(field, &QLineEdit::editingFinished, this, &RangeFilterField::takeTexts);
    return field;
}

void RangeFilterField::addSlider()
{
    const boost::shared_ptr<Variable> variable = m_filter->variable().lock();
    const QString name = QString::fromStdString(m_filter->name());
    const Range range = variable->range();
    QStringList notes;
    if (std::isnan(range.min)) {
        notes.append(tr("It has no finite numbers."));
    } else if (range.min == range.max) {
        notes.append(tr("All its numbers are %1.").arg(numberText(range.min)));
    } else {
        // Few whole numbers get a bar each: with one part more than there are steps, each is alone in its part.
        const bool eachWhole = variable->isWhole() && range.max - range.min < binCount;
        const std::size_t bars =
            eachWhole ? static_cast<std::size_t>(range.max - range.min) + 1 : binCount;
        m_slider = new RangeSlider(
            ValueScale(range, variable->isWhole()),
            VariableHistogram(*variable, bars).counts(),
            eachWhole ? std::optional<double>(range.min) : std::nullopt,
            name,
            this);
        static_cast<QVBoxLayout*>(layout())->insertWidget(2, m_slider);
        connect(m_slider, &RangeSlider::gestureStarted, this, [this] {
            takeMove();
            m_filter->beginGesture();
        });
        connect(m_slider, &RangeSlider::moved, this, [this](double min, double max) {
            m_moved = Range{min, max};
            m_moveTimer.start();
        });
        connect(m_slider, &RangeSlider::gestureFinished, this, [this] {
            takeMove();
            m_filter->endGesture();
        });
    }
    if (const std::size_t missing = variable->missingCount(); missing > 0) {
        notes.append(
            missing == 1 ? tr("1 case has no value; the filter leaves it out.")
                         : tr("%1 cases have no value; the filter leaves them out.")
                               .arg(countText(missing)));
    }
    m_note->setText(notes.join(QStringLiteral(" ")));
    m_note->setVisible(!notes.isEmpty());
}

void RangeFilterField::setNames(const QString& prefix)
{
    m_min->setObjectName(prefix + QStringLiteral("-min"));
    m_max->setObjectName(prefix + QStringLiteral("-max"));
    m_problem->setObjectName(prefix + QStringLiteral("-problem"));
    if (m_slider != nullptr) {
        m_slider->setNames(prefix);
    }
}

QWidget* RangeFilterField::placeInTabOrder(QWidget* before)
{
    QWidget::setTabOrder(before, m_min);
    QWidget::setTabOrder(m_min, m_max);
    if (m_slider == nullptr) {
        return m_max;
    }
    QWidget::setTabOrder(m_max, &m_slider->lowerHandle());
    QWidget::setTabOrder(&m_slider->lowerHandle(), &m_slider->upperHandle());
    return &m_slider->upperHandle();
}

void RangeFilterField::retire()
{
    m_connections.clear();
    m_moveTimer.stop();
    m_moved.reset();
    for (QLineEdit* field : {m_min, m_max}) {
        field->disconnect(this);
        field->removeEventFilter(this);
    }
    if (m_slider != nullptr) {
        m_slider->disconnect(this);
    }
}

bool RangeFilterField::eventFilter(QObject* watched, QEvent* event)
{
    auto* field = qobject_cast<QLineEdit*>(watched);
    if (field != m_min && field != m_max) {
        return QWidget::eventFilter(watched, event);
    }
    if (event->type() == QEvent::KeyPress
        && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        showRange();
        return true;
    }
    if (event->type() == QEvent::ShortcutOverride && !field->isModified()) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo)) {
            event->ignore(); // there is nothing typed to undo: the key is the window's
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void RangeFilterField::showRange()
{
    const Range range = m_filter->range()->value();
    // Setting a text also marks it as one that the user has not changed.
    m_min->setText(numberText(range.min));
    m_max->setText(numberText(range.max));
    for (QLineEdit* field : {m_min, m_max}) {
        field->setCursorPosition(0);
    }
    m_problem->hide();
    if (m_slider != nullptr) {
        m_slider->setRange(range);
        m_slider->setKept(m_filter->inverted()->value(), m_filter->enabled()->value());
    }
}

void RangeFilterField::takeTexts()
{
    Range range = m_filter->range()->value();
    const auto isChanged = [](const QLineEdit& field, double end) {
        return field.isModified() && field.text().trimmed() != numberText(end);
    };
    // Both, for only both together may be a range.
    const bool minChanged = isChanged(*m_min, range.min);
    const bool maxChanged = isChanged(*m_max, range.max);
    try {
        range.min = minChanged ? readNumber(m_min->text()) : range.min;
        range.max = maxChanged ? readNumber(m_max->text()) : range.max;
        m_filter->range()->setValue(range);
        showRange();
    } catch (const std::exception& error) {
        m_problem->setText(QString::fromUtf8(error.what()));
        m_problem->show();
        announce(*m_problem);
    }
}

void RangeFilterField::takeMove()
{
    m_moveTimer.stop();
    if (const std::optional<Range> range = std::exchange(m_moved, std::nullopt)) {
        m_filter->range()->setValue(*range);
    }
}

} // namespace analyzer
