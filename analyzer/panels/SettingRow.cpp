#include <analyzer/panels/SettingRow.h>
#include <analyzer/panels/announce.h>

#include <QApplication>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QScrollArea>
#include <QStyle>

#include <algorithm>
#include <exception>

namespace analyzer {

namespace {

constexpr int labelColumn = 0;
constexpr int fieldColumn = 1;

/// \p text with places to break it inside of words that a narrow panel has no room for.
QString withBreaks(const QString& text)
{
    constexpr int mostLettersInOnePiece = 20;
    const QChar zeroWidthSpace(0x200B);
    QString result;
    int letters = 0;
    for (const QChar letter : text) {
        if (letters >= mostLettersInOnePiece && !letter.isLowSurrogate() && !letter.isMark()) {
            result += zeroWidthSpace;
            letters = 0;
        }
        letters = letter.isSpace() ? 0 : letters + 1;
        result += letter;
    }
    return result;
}

} // namespace

SettingRow::SettingRow(const QString& name, QGridLayout& form, int line, QWidget* parent)
    : QObject(parent)
    , m_name(name)
    , m_form(form)
    , m_line(line)
    , m_parent(parent)
{
    m_later.setSingleShot(true);
    m_later.setInterval(0);
    connect(&m_later, &QTimer::timeout, this, [this] {
        if (m_waitsForRelease) {
            revealProblem();
        } else {
            scrollToProblem();
        }
    });
}

void SettingRow::setField(QWidget* field, const QString& label)
{
    m_field = field;
    if (label.isEmpty()) {
        m_form.addWidget(field, m_line, labelColumn, 1, -1);
        return;
    }
    m_label = new QLabel(label, m_parent);
    m_label->setTextFormat(Qt::PlainText);
    m_label->setBuddy(field);
    // Beside the first line of a field that has more.
    m_label->setMinimumHeight(editor()->sizeHint().height());
    const auto alignment = static_cast<Qt::Alignment>(
        m_parent->style()->styleHint(QStyle::SH_FormLayoutLabelAlignment));
    m_label->setAlignment((alignment & Qt::AlignHorizontal_Mask) | Qt::AlignVCenter);
    m_form.addWidget(m_label, m_line, labelColumn, Qt::AlignTop);
    // Also while the row is hidden, so that the fields of others stay where they are.
    m_form.setColumnMinimumWidth(
        labelColumn, std::max(m_form.columnMinimumWidth(labelColumn), m_label->sizeHint().width()));
    m_form.addWidget(field, m_line, fieldColumn);
}

Attempt SettingRow::attempt()
{
    return [this](const boost::function<void()>& change) { run(change); };
}

void SettingRow::setEnabled(bool enabled)
{
    m_field->setEnabled(enabled);
    if (m_label != nullptr) {
        m_label->setEnabled(enabled);
    }
}

void SettingRow::setVisible(bool visible)
{
    m_isVisible = visible;
    m_field->setVisible(visible);
    if (m_label != nullptr) {
        m_label->setVisible(visible);
    }
    if (m_problem != nullptr) {
        m_problem->setVisible(visible && !m_waitsForRelease);
    }
}

bool SettingRow::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonRelease) {
        qApp->removeEventFilter(this);
        m_later.start();
    }
    return QObject::eventFilter(watched, event);
}

void SettingRow::run(const boost::function<void()>& change)
{
    try {
        change();
        clearProblem();
    } catch (const std::exception& error) {
        showProblem(QString::fromUtf8(error.what()));
    }
}

void SettingRow::showProblem(const QString& problem)
{
    if (m_problem == nullptr) {
        m_problem = new QLabel(m_parent);
        m_problem->setObjectName(m_name + QStringLiteral("-problem"));
        m_problem->setTextFormat(Qt::PlainText); // it quotes names and values of studies
        m_problem->setWordWrap(true);
        m_form.addWidget(m_problem, m_line + 1, labelColumn, 1, -1);
        m_problem->hide();
    }
    m_problem->setText(QStringLiteral("\u26A0 ") + withBreaks(problem));
    m_problem->setAccessibleName(problem);
    editor()->setAccessibleDescription(problem);
    if (QGuiApplication::mouseButtons() == Qt::NoButton) {
        revealProblem();
    } else {
        m_waitsForRelease = m_problem->isHidden();
        qApp->installEventFilter(this);
    }
    announce(*m_problem);
}

void SettingRow::revealProblem()
{
    if (m_problem == nullptr) {
        return;
    }
    m_waitsForRelease = false;
    m_problem->setVisible(m_isVisible);
    // Once the form has made room for it.
    m_later.start();
}

void SettingRow::scrollToProblem()
{
    if (m_problem == nullptr || !m_problem->isVisible()) {
        return;
    }
    for (QWidget* around = m_parent; around != nullptr; around = around->parentWidget()) {
        if (auto* area = qobject_cast<QScrollArea*>(around)) {
            area->ensureWidgetVisible(m_problem, 0, 0);
            return;
        }
    }
}

void SettingRow::clearProblem()
{
    if (m_problem == nullptr) {
        return;
    }
    qApp->removeEventFilter(this);
    delete m_problem;
    m_problem = nullptr;
    m_waitsForRelease = false;
    editor()->setAccessibleDescription({});
}

QWidget* SettingRow::editor() const
{
    return m_field->focusProxy() == nullptr ? m_field : m_field->focusProxy();
}

} // namespace analyzer
