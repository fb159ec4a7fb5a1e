#include <analyzer/views/SelectedCasesModel.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/data/Variant.h>
#include <dataviews/platform/data/variantDisplayText.h>

#include <QFont>
#include <QStringList>

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkStringArray.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace analyzer {

namespace {

// Longer texts are cut: no cell and no tool tip can show them, and laying them out takes time.
constexpr int maxCellLength = 300;
constexpr int maxToolTipLength = 4000;

constexpr double plainStrength = 0.3; ///< of a mark that has no more and less

QString fromUtf8(const std::string& text, int maxLength)
{
    QString result = QString::fromStdString(text);
    if (result.size() > maxLength) {
        result.truncate(maxLength);
        if (result.at(maxLength - 1).isHighSurrogate()) {
            result.chop(1);
        }
        result.append(QChar(0x2026)); // horizontal ellipsis
    }
    return result;
}

QString missingText()
{
    return QString::fromStdString(variantDisplayText(Variant()));
}

/// Calls \p function with what gives the value of a row of the study, as a number or as a text.
template <class Function>
auto withValues(const Variable& variable, Function function)
{
    if (vtkDoubleArray* reals = variable.realColumn()) {
        return function([values = reals->GetPointer(0)](std::size_t row) { return values[row]; });
    }
    if (vtkStringArray* texts = variable.textColumn()) {
        return function([values = texts->GetPointer(0)](std::size_t row) -> const std::string& {
            return values[row];
        });
    }
    vtkIntArray* integers = vtkIntArray::SafeDownCast(&variable.column());
    return function([values = integers->GetPointer(0)](std::size_t row) { return values[row]; });
}

bool areEqual(double left, double right)
{
    return left == right || (std::isnan(left) && std::isnan(right));
}

bool areEqual(int left, int right)
{
    return left == right;
}

bool areEqual(const std::string& left, const std::string& right)
{
    return left == right;
}

bool areEqual(const Variable& variable, std::size_t left, std::size_t right)
{
    return withValues(
        variable, [left, right](auto value) { return areEqual(value(left), value(right)); });
}

/// The number of a case; nothing for a text and where it is missing.
std::optional<double> number(const Variable& variable, std::size_t studyRow)
{
    if (!variable.isNumeric()) {
        return std::nullopt;
    }
    const Variant value = variable.value(studyRow);
    return value.isEmpty() ? std::nullopt : std::optional<double>(value.toReal());
}

QString withSign(double value, const QString& digits)
{
    return value > 0.0 ? QLatin1Char('+') + digits : digits;
}

QString percentText(double percent)
{
    const double size = std::abs(percent);
    constexpr double tiny = 0.1;
    constexpr double few = 100.0;
    constexpr double many = 1e5;
    QString digits;
    if (size < tiny || size >= many) {
        constexpr int significantDigits = 2;
        digits = QString::number(percent, 'g', significantDigits);
    } else {
        digits = QString::number(percent, 'f', size < few ? 1 : 0);
    }
    return withSign(percent, digits + QStringLiteral(" %"));
}

QString absoluteText(double difference)
{
    return withSign(difference, QString::fromStdString(variantDisplayText(Variant(difference))));
}

/// How far a number is from that of the reference.
struct Distance
{
    double absolute = 0.0;
    std::optional<double> percent; ///< nothing for a reference of zero
};

/// Nothing if there is no such number, as from an infinity.
std::optional<Distance> distance(
    const Variable& variable, std::size_t studyRow, std::size_t referenceRow)
{
    const std::optional<double> value = number(variable, studyRow);
    const std::optional<double> reference = number(variable, referenceRow);
    if (!value || !reference || !std::isfinite(*value - *reference)) {
        return std::nullopt;
    }
    Distance result{*value - *reference, std::nullopt};
    constexpr double hundred = 100.0;
    const double percent = result.absolute / std::abs(*reference) * hundred;
    if (std::isfinite(percent)) {
        result.percent = percent;
    }
    return result;
}

QString fullText(const Variable& variable, std::size_t studyRow)
{
    return fromUtf8(variable.value(studyRow).toString(), maxToolTipLength);
}

QString natureHeading(Variable::Nature nature)
{
    switch (nature) {
    case Variable::Input:
        return SelectedCasesModel::tr("Inputs");
    case Variable::Output:
        return SelectedCasesModel::tr("Outputs");
    case Variable::Identifier:
        break;
    }
    return SelectedCasesModel::tr("Identifiers");
}

QFont boldFont()
{
    QFont font;
    font.setBold(true);
    return font;
}

} // namespace

SelectedCasesModel::SelectedCasesModel(QObject* parent)
    : QAbstractTableModel(parent)
{}

SelectedCasesModel::~SelectedCasesModel() = default;

// ---- what is shown

void SelectedCasesModel::showCases(
    const Project& project,
    const std::vector<unsigned long long>& caseIDs,
    std::optional<std::size_t> reference)
{
    Q_ASSERT_X(
        !reference || *reference < caseIDs.size(),
        "SelectedCasesModel::showCases",
        "there is no such column");
    const bool isOtherStudy = m_study != &project.table();
    beginResetModel();
    if (isOtherStudy) {
        takeVariables(project);
    }
    m_columns.clear();
    for (const unsigned long long caseID : caseIDs) {
        const std::optional<std::size_t> row = project.row(caseID);
        Q_ASSERT_X(row, "SelectedCasesModel::showCases", "the study has no such case");
        m_columns.push_back({caseID, *row});
    }
    m_reference = reference;
    findDifferences();
    arrange();
    endResetModel();
    if (isOtherStudy) {
        Q_EMIT studyChanged();
    }
}

void SelectedCasesModel::clear()
{
    beginResetModel();
    m_study = nullptr;
    m_lines.clear();
    m_columns.clear();
    m_rows.clear();
    m_reference.reset();
    endResetModel();
}

void SelectedCasesModel::setRows(Rows rows)
{
    if (std::exchange(m_shownRows, rows) != rows) {
        rearrange();
    }
}

void SelectedCasesModel::setOrder(Order order)
{
    if (std::exchange(m_order, order) != order) {
        rearrange();
    }
}

void SelectedCasesModel::setMark(Mark mark)
{
    m_mark = mark;
    repaint();
}

void SelectedCasesModel::setDifference(Difference difference)
{
    m_difference = difference;
    repaint();
}

void SelectedCasesModel::repaint()
{
    if (!m_rows.empty() && !m_columns.empty()) {
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    }
}

void SelectedCasesModel::takeVariables(const Project& project)
{
    m_study = &project.table();
    m_lines.clear();
    for (const WeakPtr<Variable>& handle : project.variables()) {
        if (boost::shared_ptr<Variable> variable = handle.lock()) {
            m_lines.push_back({std::move(variable), false, std::nullopt});
        }
    }
}

void SelectedCasesModel::findDifferences()
{
    for (Line& line : m_lines) {
        line.needsAllDigits.reset();
        line.differs = withValues(*line.variable, [this](auto value) {
            return std::any_of(m_columns.begin(), m_columns.end(), [&](const Column& column) {
                return !areEqual(value(column.studyRow), value(m_columns.front().studyRow));
            });
        });
    }
}

void SelectedCasesModel::arrange()
{
    m_rows.clear();
    if (m_order == Order::Study) {
        addRows(std::nullopt);
        return;
    }
    for (const Variable::Nature nature :
         {Variable::Input, Variable::Output, Variable::Identifier}) {
        addRows(nature);
    }
}

/// The variables of \p nature under a heading, or all of them without one.
void SelectedCasesModel::addRows(std::optional<Variable::Nature> nature)
{
    const bool showsAll = m_shownRows == Rows::All || m_columns.size() < 2;
    bool needsHeading = nature.has_value();
    for (std::size_t number = 0; number < m_lines.size(); ++number) {
        const Line& line = m_lines[number];
        if ((nature && line.variable->nature() != *nature) || (!showsAll && !line.differs)) {
            continue;
        }
        if (std::exchange(needsHeading, false)) {
            m_rows.push_back({std::nullopt, *nature});
        }
        m_rows.push_back({number, line.variable->nature()});
    }
}

void SelectedCasesModel::rearrange()
{
    beginResetModel();
    arrange();
    endResetModel();
}

std::optional<unsigned long long> SelectedCasesModel::caseID(int column) const
{
    return column >= 0 && column < columnCount()
        ? std::optional<unsigned long long>(m_columns[static_cast<std::size_t>(column)].caseID)
        : std::nullopt;
}

const Variable* SelectedCasesModel::variable(int row) const
{
    const Line* shown = line(row);
    return shown == nullptr ? nullptr : shown->variable.get();
}

std::size_t SelectedCasesModel::differingCount() const
{
    return static_cast<std::size_t>(std::count_if(
        m_lines.begin(), m_lines.end(), [](const Line& line) { return line.differs; }));
}

bool SelectedCasesModel::isDiffering(int row) const
{
    const Line* shown = line(row);
    return shown != nullptr && shown->differs;
}

const SelectedCasesModel::Line* SelectedCasesModel::line(int row) const
{
    if (row < 0 || row >= rowCount()) {
        return nullptr;
    }
    const std::optional<std::size_t> number = m_rows[static_cast<std::size_t>(row)].line;
    return number ? &m_lines[*number] : nullptr;
}

std::optional<std::size_t> SelectedCasesModel::studyRowOfReference() const
{
    return m_reference ? std::optional<std::size_t>(m_columns[*m_reference].studyRow)
                       : std::nullopt;
}

// ---- cells

/// Whether the numbers differ and would all read the same with few digits.
bool SelectedCasesModel::needsAllDigits(const Line& line) const
{
    if (!line.needsAllDigits) {
        const auto text = [&line](const Column& column) {
            return variantDisplayText(line.variable->value(column.studyRow));
        };
        line.needsAllDigits = line.differs && line.variable->isNumeric()
            && std::all_of(m_columns.begin(), m_columns.end(), [&](const Column& column) {
                                  return text(column) == text(m_columns.front());
                              });
    }
    return *line.needsAllDigits;
}

QString SelectedCasesModel::displayText(const Line& line, std::size_t studyRow) const
{
    const Variant value = line.variable->value(studyRow);
    if (value.isEmpty()) {
        return missingText();
    }
    if (!line.variable->isNumeric()) {
        return fromUtf8(value.toString(), maxCellLength).simplified(); // on one line
    }
    return QString::fromStdString(
        needsAllDigits(line) ? value.toString() : variantDisplayText(value));
}

QString SelectedCasesModel::differenceText(const Line& line, std::size_t studyRow) const
{
    const std::optional<std::size_t> reference = studyRowOfReference();
    if (!reference || m_difference == Difference::Nothing) {
        return {};
    }
    const std::optional<Distance> found = distance(*line.variable, studyRow, *reference);
    if (!found || found->absolute == 0.0) {
        return {};
    }
    return m_difference == Difference::Percent && found->percent ? percentText(*found->percent)
                                                                 : absoluteText(found->absolute);
}

QVariant SelectedCasesModel::strength(const Line& line, std::size_t studyRow) const
{
    if (m_mark == Mark::Magnitude) {
        const std::optional<double> value = number(*line.variable, studyRow);
        const ValueRange_s<double> range = line.variable->range();
        // Also no mark if all of the study is equal, or not finite.
        if (!value || !(range.min < range.max)) {
            return {};
        }
        // By halves: the width of the range of huge numbers is not finite.
        const double position = (*value / 2 - range.min / 2) / (range.max / 2 - range.min / 2);
        return std::clamp(position, 0.0, 1.0);
    }
    const std::optional<std::size_t> reference = studyRowOfReference();
    const bool isMarked =
        reference ? !areEqual(*line.variable, studyRow, *reference) : line.differs;
    return isMarked ? QVariant(plainStrength) : QVariant();
}

QString SelectedCasesModel::toolTip(const Line& line, const Column& column) const
{
    const Variable& variable = *line.variable;
    const auto valueText = [&variable](std::size_t studyRow) {
        const QString text = fullText(variable, studyRow);
        return text.isEmpty() ? missingText() : text;
    };
    QStringList lines = {tr("%1 of case %2: %3")
                             .arg(QString::fromStdString(variable.name()))
                             .arg(column.caseID)
                             .arg(valueText(column.studyRow))};
    const std::optional<std::size_t> reference = studyRowOfReference();
    if (reference && *reference != column.studyRow) {
        lines.append(tr("Reference, case %1: %2")
                         .arg(m_columns[*m_reference].caseID)
                         .arg(valueText(*reference)));
        if (const auto found = distance(variable, column.studyRow, *reference)) {
            const QString absolute = withSign(
                found->absolute, QString::fromStdString(Variant(found->absolute).toString()));
            lines.append(
                found->percent
                    ? tr("Difference: %1 (%2)").arg(absolute, percentText(*found->percent))
                    : tr("Difference: %1").arg(absolute));
        }
    }
    const ValueRange_s<double> range = variable.range();
    if (range.min <= range.max) {
        lines.append(tr("In the study: %1 to %2")
                         .arg(
                             QString::fromStdString(variantDisplayText(Variant(range.min))),
                             QString::fromStdString(variantDisplayText(Variant(range.max)))));
    }
    // As it is, even if a text of the study looks like markup.
    return QStringLiteral("<span style=\"white-space: pre-wrap\">%1</span>")
        .arg(lines.join(QLatin1Char('\n')).toHtmlEscaped());
}

QString SelectedCasesModel::accessibleText(const Line& line, std::size_t studyRow) const
{
    const QString text = displayText(line, studyRow);
    const QString difference = differenceText(line, studyRow);
    return difference.isEmpty() ? text : tr("%1, %2 from the reference").arg(text, difference);
}

int SelectedCasesModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int SelectedCasesModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

QVariant SelectedCasesModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount() || index.column() >= columnCount()) {
        return {};
    }
    const Line* shown = line(index.row());
    if (role == HeadingRole) {
        return shown == nullptr;
    }
    if (shown == nullptr) {
        return {};
    }
    const Column& column = m_columns[static_cast<std::size_t>(index.column())];
    switch (role) {
    case Qt::DisplayRole:
        return displayText(*shown, column.studyRow);
    case Qt::ToolTipRole:
        return toolTip(*shown, column);
    case Qt::AccessibleTextRole:
        return accessibleText(*shown, column.studyRow);
    case Qt::TextAlignmentRole:
        return static_cast<int>(
            (shown->variable->isNumeric() ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    case Qt::FontRole:
        if (shown->variable->value(column.studyRow).isEmpty()) {
            QFont font;
            font.setItalic(true);
            return font;
        }
        return {};
    case MissingRole:
        return shown->variable->value(column.studyRow).isEmpty();
    case DifferenceRole:
        return differenceText(*shown, column.studyRow);
    case StrengthRole:
        return strength(*shown, column.studyRow);
    case FullTextRole:
        return QString::fromStdString(shown->variable->value(column.studyRow).toString());
    default:
        return {};
    }
}

QVariant SelectedCasesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    return orientation == Qt::Vertical ? nameData(section, role) : caseData(section, role);
}

QVariant SelectedCasesModel::nameData(int row, int role) const
{
    if (row < 0 || row >= rowCount()) {
        return {};
    }
    const Line* shown = line(row);
    switch (role) {
    case Qt::DisplayRole:
        return shown == nullptr ? natureHeading(m_rows[static_cast<std::size_t>(row)].nature)
                                : QString::fromStdString(shown->variable->name()).simplified();
    case Qt::ToolTipRole:
        if (shown == nullptr) {
            return {};
        }
        return QStringLiteral("<qt>%1<br/>%2</qt>")
            .arg(
                QString::fromStdString(shown->variable->name()).toHtmlEscaped(),
                shown->differs ? tr("Not the same in all cases shown")
                               : tr("The same in all cases shown"));
    case Qt::FontRole:
        return shown != nullptr && shown->differs ? QVariant(boldFont()) : QVariant();
    case HeadingRole:
        return shown == nullptr;
    case Qt::TextAlignmentRole:
        return static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter);
    default:
        return {};
    }
}

QVariant SelectedCasesModel::caseData(int column, int role) const
{
    const std::optional<unsigned long long> id = caseID(column);
    if (!id) {
        return {};
    }
    const bool isReference = m_reference == static_cast<std::size_t>(column);
    switch (role) {
    case Qt::DisplayRole:
        return isReference ? tr("Case %1\nreference").arg(*id) : tr("Case %1").arg(*id);
    case Qt::ToolTipRole:
        return isReference ? tr("Case %1: the others are compared with it").arg(*id)
                           : tr("Case %1").arg(*id);
    case Qt::FontRole:
        return isReference ? QVariant(boldFont()) : QVariant();
    default:
        return {};
    }
}

} // namespace analyzer
