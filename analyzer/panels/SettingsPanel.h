#pragma once

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QWidget>

#include <boost/shared_ptr.hpp>

class QFormLayout;
class QLabel;

namespace analyzer {

class AnalyzerViewInterface;
class SettingInterface;

/// Edits the settings of the view that is active.
///
/// A value that is refused is said beside the fields and changes nothing.
class SettingsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit SettingsPanel(QWidget* parent = nullptr);
    SettingsPanel(const SettingsPanel&) = delete;
    SettingsPanel& operator=(const SettingsPanel&) = delete;
    ~SettingsPanel() override;

    /// Shows the settings of \p view, or that there are none for an empty pointer. The panel does not keep the view.
    void setView(const boost::shared_ptr<AnalyzerViewInterface>& view);

private:
    void addChoice(const boost::shared_ptr<SettingInterface>& setting);
    void addSwitch(const boost::shared_ptr<SettingInterface>& setting);
    void apply(SettingInterface& setting, const QString& text);

    QLabel* m_title;
    QLabel* m_problem;
    QWidget* m_fields = nullptr;
    QFormLayout* m_form = nullptr;
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
