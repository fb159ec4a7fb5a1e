#include <analyzer/views/SelectedCasesModel.h>
#include <analyzer/views/SelectedCasesTable.h>
#include <analyzer/views/SelectedCasesWidget.h>

#include <QLabel>
#include <QStackedLayout>
#include <QVBoxLayout>

#include <utility>

namespace analyzer {

namespace {

constexpr int lineMarginPx = 5;
constexpr int messageMarginPx = 20;

} // namespace

SelectedCasesWidget::SelectedCasesWidget(
    SelectedCasesModel& model, boost::shared_ptr<HoveredCase> hovered, QWidget* parent)
    : QWidget(parent)
    , m_pages(new QStackedLayout(this))
    , m_message(new QLabel(this))
    , m_line(new QLabel(this))
{
    auto* page = new QWidget(this);
    m_table = new SelectedCasesTable(model, std::move(hovered), page);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_line);
    layout->addWidget(m_table, 1);

    m_line->setTextFormat(Qt::PlainText);
    m_line->setMargin(lineMarginPx);
    m_line->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_message->setTextFormat(Qt::PlainText);
    m_message->setAlignment(Qt::AlignCenter);
    m_message->setWordWrap(true);
    m_message->setMargin(messageMarginPx);
    m_pages->addWidget(m_message);
    m_pages->addWidget(page);
    setFocusProxy(m_table);
}

void SelectedCasesWidget::showTable(const QString& line)
{
    m_line->setText(line);
    m_message->clear();
    m_pages->setCurrentIndex(1);
}

void SelectedCasesWidget::showMessage(const QString& message)
{
    m_line->clear();
    m_message->setText(message);
    m_pages->setCurrentIndex(0);
}

QString SelectedCasesWidget::line() const
{
    return m_line->text();
}

QString SelectedCasesWidget::message() const
{
    return m_message->text();
}

} // namespace analyzer
