#include <analyzer/StudyPreview.h>
#include <analyzer/panels/ElidedLabel.h>
#include <analyzer/study/TablePreview.h>

#include <QHBoxLayout>
#include <QHeaderView>
#include <QProgressBar>
#include <QPushButton>
#include <QShortcut>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <string>

namespace analyzer {

namespace {

constexpr int percents = 100;

} // namespace

StudyPreview::StudyPreview(QWidget* parent)
    : QWidget(parent)
    , m_title(new ElidedLabel(QString(), this))
    , m_bar(new QProgressBar(this))
    , m_cancel(new QPushButton(tr("Cancel"), this))
    , m_table(new QTableWidget(this))
{
    setObjectName(QStringLiteral("StudyPreview"));
    m_bar->setRange(0, percents);
    m_bar->setFormat(QStringLiteral("%p %"));
    m_bar->setAccessibleName(tr("Progress of opening"));
    m_table->setAccessibleName(tr("First cases of the study"));
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setSelectionMode(QAbstractItemView::NoSelection);
    m_table->setFocusPolicy(Qt::NoFocus);
    m_table->setWordWrap(false);

    auto* head = new QHBoxLayout;
    head->addWidget(m_title, 1);
    head->addWidget(m_bar, 1);
    head->addWidget(m_cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(head);
    layout->addWidget(m_table, 1);

    connect(m_cancel, &QPushButton::clicked, this, &StudyPreview::cancel);
    setFocusProxy(m_cancel);
    auto* escape = new QShortcut(Qt::Key_Escape, this);
    connect(escape, &QShortcut::activated, m_cancel, &QPushButton::click);
}

void StudyPreview::start(const QString& name)
{
    m_title->setText(tr("Opening %1…").arg(name));
    m_table->clear();
    m_table->setRowCount(0);
    m_table->setColumnCount(0);
    m_cancel->setEnabled(true);
    setFraction(0.0);
}

void StudyPreview::setTable(const TablePreview& table)
{
    const auto text = [&table](const std::string& field) {
        return table.isLatin1 ? QString::fromLatin1(field.data(), static_cast<int>(field.size()))
                              : QString::fromStdString(field);
    };
    const int columns = std::min(static_cast<int>(table.names.size()), maxColumns);
    m_table->clear();
    m_table->setColumnCount(columns);
    m_table->setRowCount(static_cast<int>(table.rows.size()));
    QStringList names;
    for (int column = 0; column < columns; ++column) {
        names += text(table.names[static_cast<std::size_t>(column)]);
    }
    m_table->setHorizontalHeaderLabels(names);
    for (std::size_t row = 0; row < table.rows.size(); ++row) {
        const int fields = std::min(static_cast<int>(table.rows[row].size()), columns);
        for (int column = 0; column < fields; ++column) {
            m_table->setItem(
                static_cast<int>(row),
                column,
                new QTableWidgetItem(text(table.rows[row][static_cast<std::size_t>(column)])));
        }
    }
}

void StudyPreview::setFraction(double fraction)
{
    m_bar->setValue(static_cast<int>(std::floor(fraction * percents)));
}

void StudyPreview::cancel()
{
    m_cancel->setEnabled(false); // it takes a moment
    Q_EMIT cancelled();
}

} // namespace analyzer
