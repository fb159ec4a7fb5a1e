#pragma once

#include <analyzer/views/AnalyzerViewInterface.h>

#include <dataviews/platform/serialize/Serializer.h>

#include <QWidget>

#include <string>
#include <vector>

/// A view of the analyzer that shows nothing and has the settings that it is told to.
class FakeView : public analyzer::AnalyzerViewInterface
{
public:
    using Settings = std::vector<boost::shared_ptr<analyzer::SettingInterface>>;

    /// Does not own \p picture.
    explicit FakeView(QWidget* picture)
        : m_widget(picture)
    {}

    [[nodiscard]] QWidget& widget() override { return *m_widget; }

    [[nodiscard]] const Settings& settings() const override { return m_settings; }

    void suspend() override {}

    void resume() override {}

    [[nodiscard]] SerializerInterface& serializer() override { return m_serializer; }

    void adjustSelectionForMouseClickAtPoint() override {}

    void accept(DataViewVisitorInterface& /*visitor*/) override {}

    [[nodiscard]] std::string domName() const override { return "Fake"; }

    void render() override {}

    [[nodiscard]] std::string kind() const override { return "fake"; }

    [[nodiscard]] std::string title() const override { return "Fake"; }

    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<MouseMode>> mouseModeProperty()
        const override
    {
        return {};
    }

    [[nodiscard]] bool hasAxes() const override { return false; }

    void fitData() override {}

    void resetXAxis() override {}

    void resetYAxis() override {}

    Settings m_settings;

protected:
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<MouseMode>> mouseMode() const override
    {
        return {};
    }

private:
    QWidget* m_widget;
    Serializer m_serializer{"Fake"};
};
