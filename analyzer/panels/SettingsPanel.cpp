#include <analyzer/panels/ElidedComboBox.h>
#include <analyzer/panels/ListField.h>
#include <analyzer/panels/NumberField.h>
#include <analyzer/panels/SettingsPanel.h>
#include <analyzer/panels/StepsField.h>
#include <analyzer/panels/VerticalScrollArea.h>
#include <analyzer/panels/plainToolTip.h>
#include <analyzer/panels/toStringList.h>
#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/ListSettingInterface.h>
#include <analyzer/views/NumberSettingInterface.h>
#include <analyzer/views/SettingInterface.h>
#include <analyzer/views/StepsSettingInterface.h>

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <exception>
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
    , m_problem(new QLabel(this))
    , m_scroll(new VerticalScrollArea(this))
{
    setObjectName(QStringLiteral("SettingsPanel"));
    m_title->setWordWrap(true);
    m_problem->setWordWrap(true);
    m_problem->setTextFormat(Qt::PlainText); // it quotes names and values of studies
    m_problem->setObjectName(QStringLiteral("SettingsProblem"));
    m_problem->hide();
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_title);
    layout->addWidget(m_problem);
    layout->addWidget(m_scroll, 1);
    setView({});
}

SettingsPanel::~SettingsPanel() = default;

void SettingsPanel::setView(const boost::shared_ptr<AnalyzerViewInterface>& view)
{
    m_connections.clear();
    m_problem->hide();
    m_fields = new QWidget;
    m_form = new QFormLayout(m_fields);
    m_form->setContentsMargins(0, 0, 0, 0);
    m_form->setRowWrapPolicy(QFormLayout::DontWrapRows);
    m_form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
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
    m_scroll->setWidget(m_fields); // deletes the fields before
    m_scroll->updateGeometry();
}

void SettingsPanel::add(const boost::shared_ptr<SettingInterface>& setting)
{
    const Attempt attempt = [this](const boost::function<void()>& change) { apply(change); };
    switch (setting->kind()) {
    case SettingInterface::Kind::Choice:
        addChoice(setting);
        return;
    case SettingInterface::Kind::Switch:
        addSwitch(setting);
        return;
    case SettingInterface::Kind::Number:
        if (auto number = boost::dynamic_pointer_cast<NumberSettingInterface>(setting)) {
            auto* field = new NumberField(std::move(number), attempt, m_fields);
            addRow(setting, field, [field] { field->showSetting(); });
        }
        return;
    case SettingInterface::Kind::List:
        if (auto list = boost::dynamic_pointer_cast<ListSettingInterface>(setting)) {
            auto* field = new ListField(std::move(list), attempt, m_fields);
            addRow(setting, field, [field] { field->showSetting(); });
        }
        return;
    case SettingInterface::Kind::Steps:
        if (auto steps = boost::dynamic_pointer_cast<StepsSettingInterface>(setting)) {
            auto* field = new StepsField(std::move(steps), attempt, m_fields);
            addRow(setting, field, [field] { field->showSetting(); });
        }
        return;
    }
}

void SettingsPanel::addChoice(const boost::shared_ptr<SettingInterface>& setting)
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
        [this, box, setting, show](int index) {
            apply([&] { setting->setText(box->itemText(index).toStdString()); });
            show();
        });
    addRow(setting, box, show);
}

void SettingsPanel::addSwitch(const boost::shared_ptr<SettingInterface>& setting)
{
    auto* box = new QCheckBox(QString::fromStdString(setting->label()), m_fields);
    box->setObjectName(QString::fromStdString(setting->name()));
    const auto show = [box, raw = setting.get()] { box->setChecked(raw->text() == "on"); };
    show();
    connect(box, &QCheckBox::clicked, this, [this, setting, show](bool checked) {
        apply([&] { setting->setText(checked ? "on" : "off"); });
        show();
    });
    addRow(setting, box, show);
}

void SettingsPanel::addRow(
    const boost::shared_ptr<SettingInterface>& setting,
    QWidget* field,
    const boost::function<void()>& show)
{
    QLabel* label = nullptr;
    if (setting->kind() == SettingInterface::Kind::Switch) {
        m_form->addRow(field);
    } else {
        label = new QLabel(QString::fromStdString(setting->label()), m_fields);
        label->setBuddy(field);
        m_form->addRow(label, field);
    }
    const auto enable = [label, field, raw = setting.get()] {
        field->setEnabled(raw->isEnabled());
        if (label != nullptr) {
            label->setEnabled(raw->isEnabled());
        }
    };
    enable();
    m_connections.add(setting->signalChanged.connect([show, enable] {
        show();
        enable();
    }));
}

void SettingsPanel::apply(const boost::function<void()>& change)
{
    m_problem->hide();
    try {
        change();
    } catch (const std::exception& error) {
        m_problem->setText(QString::fromUtf8(error.what()));
        m_problem->show();
    }
}

} // namespace analyzer
