#include <analyzer/panels/CheckListPopup.h>
#include <analyzer/panels/ListField.h>
#include <analyzer/panels/plainToolTip.h>
#include <analyzer/panels/toStringList.h>
#include <analyzer/views/ListSettingInterface.h>

#include <QSignalBlocker>

#include <algorithm>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace analyzer {

ListField::ListField(
    boost::shared_ptr<ListSettingInterface> setting, Attempt attempt, QWidget* parent)
    : ElidedComboBox(parent)
    , m_setting(std::move(setting))
    , m_attempt(std::move(attempt))
    , m_popup(new CheckListPopup(
          QString::fromStdString(m_setting->name()),
          QString::fromStdString(m_setting->label()),
          this))
{
    setElideMode(Qt::ElideRight); // it reads a list
    setObjectName(QString::fromStdString(m_setting->name()));
    setAccessibleName(QString::fromStdString(m_setting->label()));
    showSetting();
    connect(m_popup, &CheckListPopup::toggled, this, &ListField::change);
}

void ListField::showSetting()
{
    const QSignalBlocker blocker(this);
    const QStringList chosen = toStringList(m_setting->selected());
    // The one item is what the field reads.
    clear();
    addItem(chosen.isEmpty() ? tr("(none)") : chosen.join(QStringLiteral(", ")));
    constexpr int mostInToolTip = 50;
    const QString listed = chosen.mid(0, mostInToolTip).join(QStringLiteral(", "));
    setToolTip(plainToolTip(
        chosen.size() > mostInToolTip
            ? tr("%1 and %2 more").arg(listed).arg(chosen.size() - mostInToolTip)
            : listed));
    if (m_popup->isVisible()) {
        m_popup->setChecked(chosen);
    }
}

void ListField::showPopup()
{
    m_popup->open(*this, toStringList(m_setting->choices()), toStringList(m_setting->selected()));
}

void ListField::hidePopup()
{
    m_popup->hide();
}

void ListField::change(const QStringList& names, bool chosen)
{
    std::vector<std::string> selected = m_setting->selected();
    if (chosen) {
        std::set<std::string> known(selected.begin(), selected.end());
        for (const QString& name : names) {
            if (known.insert(name.toStdString()).second) {
                selected.push_back(name.toStdString());
            }
        }
    } else {
        std::set<std::string> removed;
        for (const QString& name : names) {
            removed.insert(name.toStdString());
        }
        selected.erase(
            std::remove_if(
                selected.begin(),
                selected.end(),
                [&removed](const std::string& name) { return removed.count(name) != 0; }),
            selected.end());
    }
    m_attempt([this, &selected] { m_setting->setSelected(selected); });
    showSetting();
}

} // namespace analyzer
