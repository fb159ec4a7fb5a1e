#include <analyzer/panels/ElidedComboBox.h>
#include <analyzer/panels/ListField.h>
#include <analyzer/panels/NumberField.h>
#include <analyzer/panels/RealField.h>
#include <analyzer/panels/SectionHeading.h>
#include <analyzer/panels/SettingRow.h>
#include <analyzer/panels/SettingsPanel.h>
#include <analyzer/panels/StepsField.h>
#include <analyzer/panels/VerticalScrollArea.h>
#include <analyzer/panels/plainToolTip.h>
#include <analyzer/panels/toStringList.h>
#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/ListSettingInterface.h>
#include <analyzer/views/NumberSettingInterface.h>
#include <analyzer/views/RealSettingInterface.h>
#include <analyzer/views/SettingInterface.h>
#include <analyzer/views/StepsSettingInterface.h>

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <utility>

namespace analyzer {

namespace {

void showChoices(ElidedComboBox& box, const SettingInterface& setting)
{
    const QSignalBlocker blocker(box);
    const QStringList choices = toStringList(setting.choices());
    const QString current = QString::fromStdString(setting.text());
    box.clear();
    box.addItems(choices);
    box.setCurrentIndex(static_cast<int>(choices.indexOf(current)));
    box.setToolTip(plainToolTip(current));
}

} // namespace

SettingsPanel::SettingsPanel(QWidget* parent)
    : QWidget(parent)
    , m_title(new QLabel(this))
    , m_scroll(new VerticalScrollArea(this))
{
    setObjectName(QStringLiteral("SettingsPanel"));
    m_title->setWordWrap(true);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_title);
    layout->addWidget(m_scroll, 1);
    setView({});
}

SettingsPanel::~SettingsPanel() = default;

void SettingsPanel::setView(const boost::shared_ptr<AnalyzerViewInterface>& view)
{
    m_connections.clear();
    m_sections.clear();
    m_nextLine = 0;
    m_fields = new QWidget;
    m_form = new QGridLayout(m_fields);
    m_form->setContentsMargins(0, 0, 0, 0);
    m_form->setColumnStretch(1, 1);
    if (view) {
        for (const boost::shared_ptr<SettingInterface>& setting : view->settings()) {
            add(setting);
        }
        m_title->setText(
            view->settings().empty() ? tr("This view has no settings.")
                                     : tr("Settings of the active view"));
    } else {
        m_title->setText(tr("No view is open."));
    }
    m_form->setRowStretch(m_nextLine, 1); // the fields stay at the top
    showSections();
    m_scroll->setWidget(m_fields); // deletes the fields before
    m_scroll->updateGeometry();
}

void SettingsPanel::startSection(const QString& name)
{
    m_sections.push_back({name, nullptr, {}});
    if (name.isEmpty()) {
        return;
    }
    constexpr int spaceAbove = 4;
    m_form->setRowMinimumHeight(m_nextLine, spaceAbove);
    ++m_nextLine;
    auto* heading = new SectionHeading(name, m_fields);
    heading->setChecked(m_collapsed.count(name) == 0);
    m_form->addWidget(heading, m_nextLine, 0, 1, -1);
    ++m_nextLine;
    m_sections.back().heading = heading;
    connect(heading, &SectionHeading::toggled, this, [this, name](bool checked) {
        setExpanded(name, checked);
    });
}

void SettingsPanel::setExpanded(const QString& section, bool expanded)
{
    if (expanded) {
        m_collapsed.erase(section);
    } else {
        m_collapsed.insert(section);
    }
    showSections();
}

void SettingsPanel::showSections()
{
    for (const Section& section : m_sections) {
        const bool isExpanded = m_collapsed.count(section.name) == 0;
        if (section.heading != nullptr) {
            section.heading->setChecked(isExpanded);
        }
        for (SettingRow* row : section.rows) {
            row->setVisible(isExpanded);
        }
    }
}

void SettingsPanel::add(const boost::shared_ptr<SettingInterface>& setting)
{
    const QString section = QString::fromStdString(setting->section());
    if (m_sections.empty() || m_sections.back().name != section) {
        startSection(section);
    }
    auto* row =
        new SettingRow(QString::fromStdString(setting->name()), *m_form, m_nextLine, m_fields);
    constexpr int linesOfRow = 2;
    m_nextLine += linesOfRow;
    m_sections.back().rows.push_back(row);
    switch (setting->kind()) {
    case SettingInterface::Kind::Choice:
        addChoice(setting, *row);
        return;
    case SettingInterface::Kind::Switch:
        addSwitch(setting, *row);
        return;
    case SettingInterface::Kind::Number:
        addField<NumberField, NumberSettingInterface>(setting, *row);
        return;
    case SettingInterface::Kind::Real:
        addField<RealField, RealSettingInterface>(setting, *row);
        return;
    case SettingInterface::Kind::List:
        addField<ListField, ListSettingInterface>(setting, *row);
        return;
    case SettingInterface::Kind::Steps:
        addField<StepsField, StepsSettingInterface>(setting, *row);
        return;
    }
}

void SettingsPanel::addChoice(const boost::shared_ptr<SettingInterface>& setting, SettingRow& row)
{
    auto* box = new ElidedComboBox(m_fields);
    box->setObjectName(QString::fromStdString(setting->name()));
    box->setAccessibleName(QString::fromStdString(setting->label()));
    const auto show = [box, raw = setting.get()] { showChoices(*box, *raw); };
    show();
    connect(
        box,
        QOverload<int>::of(&QComboBox::activated),
        this,
        [box, setting, show, attempt = row.attempt()](int index) {
            attempt([&] { setting->setText(box->itemText(index).toStdString()); });
            show();
        });
    fillRow(setting, row, box, show);
}

void SettingsPanel::addSwitch(const boost::shared_ptr<SettingInterface>& setting, SettingRow& row)
{
    auto* box = new QCheckBox(QString::fromStdString(setting->label()), m_fields);
    box->setObjectName(QString::fromStdString(setting->name()));
    const auto show = [box, raw = setting.get()] { box->setChecked(raw->text() == "on"); };
    show();
    connect(box, &QCheckBox::clicked, this, [setting, show, attempt = row.attempt()](bool checked) {
        attempt([&] { setting->setText(checked ? "on" : "off"); });
        show();
    });
    fillRow(setting, row, box, show);
}

template <class Field, class Interface>
void SettingsPanel::addField(const boost::shared_ptr<SettingInterface>& setting, SettingRow& row)
{
    auto typed = boost::dynamic_pointer_cast<Interface>(setting);
    Q_ASSERT_X(typed, "SettingsPanel", "a setting has the interface of its kind");
    auto* field = new Field(std::move(typed), row.attempt(), m_fields);
    fillRow(setting, row, field, [field] { field->showSetting(); });
}

void SettingsPanel::fillRow(
    const boost::shared_ptr<SettingInterface>& setting,
    SettingRow& row,
    QWidget* field,
    const boost::function<void()>& show)
{
    const bool namesItself = setting->kind() == SettingInterface::Kind::Switch;
    row.setField(field, namesItself ? QString() : QString::fromStdString(setting->label()));
    const auto enable = [&row, raw = setting.get()] { row.setEnabled(raw->isEnabled()); };
    enable();
    m_connections.add(setting->signalChanged.connect([show, enable] {
        show();
        enable();
    }));
}

} // namespace analyzer
