#include <analyzer/views/CaseTableModel.h>
#include <analyzer/views/CaseTableState.h>
#include <analyzer/views/CaseTableWidget.h>
#include <analyzer/views/stateText.h>

#include <dataviews/platform/property/ExceptionBase.h>

#include <QDomDocument>
#include <QDomElement>

namespace analyzer {

namespace {

constexpr int widestColumn = 100000; // pixels

QString nameOf(const CaseTableModel& model, int column)
{
    return model.headerData(column, Qt::Horizontal).toString();
}

} // namespace

CaseTableState::CaseTableState(
    const std::string& elementName, CaseTableModel& model, CaseTableWidget& widget)
    : Serializer(elementName)
    , m_model(model)
    , m_widget(widget)
{}

CaseTableState::~CaseTableState() = default;

void CaseTableState::serializeSelf(QDomElement& element) const
{
    if (m_model.sortColumn() >= 0) {
        element.setAttribute(QStringLiteral("SortedBy"), nameOf(m_model, m_model.sortColumn()));
        element.setAttribute(
            QStringLiteral("Order"),
            m_model.sortOrder() == Qt::AscendingOrder ? QStringLiteral("Ascending")
                                                      : QStringLiteral("Descending"));
    }
    for (int column = 0; column < m_model.columnCount(); ++column) {
        QDomElement child = element.ownerDocument().createElement(QStringLiteral("Column"));
        child.setAttribute(QStringLiteral("name"), nameOf(m_model, column));
        child.setAttribute(QStringLiteral("Width"), m_widget.columnWidth(column));
        element.appendChild(child);
    }
}

void CaseTableState::deserializeSelf(const QDomElement& element)
{
    const QString order = element.attribute(QStringLiteral("Order"), QStringLiteral("Ascending"));
    const bool isAscending = order == QStringLiteral("Ascending");
    if (!isAscending && order != QStringLiteral("Descending")) {
        throw ExceptionBase("A table cannot be sorted \"" + order.toStdString() + "\"");
    }
    for (QDomElement child = element.firstChildElement(QStringLiteral("Column")); !child.isNull();
         child = child.nextSiblingElement(QStringLiteral("Column"))) {
        const int width = wholeAttribute(child, "Width");
        if (width < 0 || width > widestColumn) {
            throw ExceptionBase("A column cannot be " + std::to_string(width) + " pixels wide");
        }
        const int column = columnNamed(child.attribute(QStringLiteral("name")));
        if (column >= 0) {
            m_widget.setColumnWidth(column, width);
        }
    }
    const int column = columnNamed(element.attribute(QStringLiteral("SortedBy")));
    if (column >= 0) {
        m_model.sort(column, isAscending ? Qt::AscendingOrder : Qt::DescendingOrder);
    }
}

int CaseTableState::columnNamed(const QString& name) const
{
    for (int column = 0; column < m_model.columnCount(); ++column) {
        if (nameOf(m_model, column) == name) {
            return column;
        }
    }
    return -1;
}

} // namespace analyzer
