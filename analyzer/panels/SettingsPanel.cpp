#include <analyzer/panels/SettingsPanel.h>
#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/SettingInterface.h>

#include <QCheckBox>
#include <QComboBox>
#include <QCompleter>
#include <QFormLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <exception>

namespace analyzer {

namespace {

QStringList toList(const std::vector<std::string>& texts)
{
    QStringList list;
    for (const std::string& text : texts) {
        list.append(QString::fromStdString(text));
    }
    return list;
}

void showChoices(QComboBox& box, const SettingInterface& setting)
{
    const QSignalBlocker blocker(box);
    const QStringList choices = toList(setting.choices());
    const QString current = QString::fromStdString(setting.text());
    box.clear();
    box.addItems(choices);
    box.setCurrentIndex(static_cast<int>(choices.indexOf(current)));
    box.setToolTip(current);
}

} // namespace

SettingsPanel::SettingsPanel(QWidget* parent)
    : QWidget(parent)
    , m_title(new QLabel(this))
    , m_problem(new QLabel(this))
{
    setObjectName(QStringLiteral("SettingsPanel"));
    auto* layout = new QVBoxLayout(this);
    m_title->setWordWrap(true);
    m_problem->setWordWrap(true);
    m_problem->setObjectName(QStringLiteral("SettingsProblem"));
    m_problem->hide();
    layout->addWidget(m_title);
    layout->addWidget(m_problem);
    layout->addStretch(1);
    setView({});
}

SettingsPanel::~SettingsPanel() = default;

void SettingsPanel::setView(const boost::shared_ptr<AnalyzerViewInterface>& view)
{
    m_connections.clear();
    m_problem->hide();
    delete m_fields;
    m_fields = new QWidget(this);
    m_form = new QFormLayout(m_fields);
    m_form->setContentsMargins(0, 0, 0, 0);
    m_form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    m_form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    constexpr int placeOfFields = 1;
    static_cast<QVBoxLayout*>(layout())->insertWidget(placeOfFields, m_fields);

    if (!view) {
        m_title->setText(tr("No view is open."));
        return;
    }
    m_title->setText(
        view->settings().empty() ? tr("This view has no settings.")
                                 : tr("Settings of the active view"));
    for (const boost::shared_ptr<SettingInterface>& setting : view->settings()) {
        switch (setting->kind()) {
        case SettingInterface::Kind::Choice:
            addChoice(setting);
            break;
        case SettingInterface::Kind::Switch:
            addSwitch(setting);
            break;
        }
    }
}

void SettingsPanel::addChoice(const boost::shared_ptr<SettingInterface>& setting)
{
    auto* box = new QComboBox(m_fields);
    box->setObjectName(QString::fromStdString(setting->name()));
    box->setAccessibleName(QString::fromStdString(setting->label()));
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(12);
    box->setMaxVisibleItems(24);
    showChoices(*box, *setting);
    connect(box, QOverload<int>::of(&QComboBox::activated), this, [this, box, setting](int index) {
        apply(*setting, box->itemText(index));
        showChoices(*box, *setting);
    });
    m_connections.add(
        setting->signalChanged.connect([box, raw = setting.get()] { showChoices(*box, *raw); }));
    m_form->addRow(QString::fromStdString(setting->label()), box);
}

void SettingsPanel::addSwitch(const boost::shared_ptr<SettingInterface>& setting)
{
    auto* box = new QCheckBox(QString::fromStdString(setting->label()), m_fields);
    box->setObjectName(QString::fromStdString(setting->name()));
    box->setChecked(setting->text() == "on");
    connect(box, &QCheckBox::clicked, this, [this, box, setting](bool checked) {
        apply(*setting, checked ? QStringLiteral("on") : QStringLiteral("off"));
        box->setChecked(setting->text() == "on");
    });
    m_connections.add(setting->signalChanged.connect(
        [box, raw = setting.get()] { box->setChecked(raw->text() == "on"); }));
    m_form->addRow(box);
}

void SettingsPanel::apply(SettingInterface& setting, const QString& text)
{
    m_problem->hide();
    try {
        setting.setText(text.toStdString());
    } catch (const std::exception& error) {
        m_problem->setText(QString::fromUtf8(error.what()));
        m_problem->show();
    }
}

} // namespace analyzer
