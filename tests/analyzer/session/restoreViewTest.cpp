#include <analyzer/session/restoreSession.h>
#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/HoveredCase.h>
#include <analyzer/views/ViewServices.h>
#include <analyzer/views/viewKinds.h>

#include <dataviews/common/images/AsyncImageCache.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/serialize/SerializerInterface.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QRegularExpression>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <optional>

#include <tests/analyzer/session/sessionExamples.h>
#include <tests/support/SmallStudy.h>

namespace {

using analyzer::Session;
using analyzer::SessionRestorer;

/// What can happen to the XML that a view wrote.
struct Damage
{
    const char* kind; ///< of the view
    QByteArray what; ///< is in it
    QByteArray instead;
    const char* word; ///< of the refusal
};

class RestoreViewTest : public testing::Test
{
protected:
    RestoreViewTest() { openStudy("Drag"); }

    ~RestoreViewTest() override { UndoStack::history().clear(); }

    /// Opens a study with a variable called \p variable.
    void openStudy(const std::string& variable)
    {
        m_study.emplace(3);
        m_study->add("Speed", {1, 2, 3}, Variable::Input)
            .add(variable, {3, 1, 2})
            .add("Lift", {5, 5, 6})
            .open();
    }

    [[nodiscard]] boost::shared_ptr<analyzer::AnalyzerViewInterface> makeView(
        const std::string& kind)
    {
        m_pipeline.emplace(Project::project());
        return analyzer::makeView(
            kind,
            {*m_pipeline,
             boost::make_shared<SelectionModel>(),
             {},
             boost::make_shared<AsyncImageCache>(),
             boost::make_shared<analyzer::HoveredCase>()});
    }

    /// What \p view writes.
    static QByteArray stateOf(analyzer::AnalyzerViewInterface& view)
    {
        QDomDocument document;
        QDomElement parent = document.createElement("View");
        document.appendChild(parent);
        view.serializer().serialize(parent);
        return document.toByteArray(-1);
    }

    /// What a view of \p kind writes that does not have the settings of a new one.
    QByteArray changedState(const std::string& kind)
    {
        const auto view = makeView(kind);
        for (const auto& setting : view->settings()) {
            if (setting->name() == "y" || setting->name() == "row") {
                setting->setText("Drag");
            }
            if (setting->name() == "opacity" || setting->name() == "zoom") {
                setting->setText("37");
            }
        }
        static const QRegularExpression width("Width=\"[0-9]+\""); // comes from the font
        QString state = QString::fromUtf8(stateOf(*view));
        return state.replace(width, "Width=\"70\"").toUtf8();
    }

    /// Restores \p state and gives what the view writes then.
    QByteArray restore(SessionRestorer& restorer, const std::string& kind, const QByteArray& state)
    {
        QDomDocument document;
        EXPECT_TRUE(document.setContent(state)) << state.constData();
        const auto view = makeView(kind);
        restorer.restoreView({kind, 1, "View1", document.documentElement()}, *view);
        return stateOf(*view);
    }

    /// A session of the study, without anything.
    static Session emptySession()
    {
        Session session;
        session.caseCount = 3;
        session.keys.rows = RowBitmap(3);
        session.selection = RowBitmap(3);
        return session;
    }

    std::optional<SmallStudy> m_study;
    std::optional<DataPipelineManager> m_pipeline;
};

} // namespace

TEST_F(RestoreViewTest, EveryKindWritesWhatItHasRead)
{
    const Session session = emptySession();
    for (const std::string& kind : analyzer::viewKinds()) {
        const QByteArray state = changedState(kind);
        for (const bool isUnchanged : {true, false}) {
            SessionRestorer restorer(session, Project::project(), isUnchanged);
            EXPECT_EQ(restore(restorer, kind, state), state);
            EXPECT_EQ(restorer.remarks(), QStringList()) << kind;
        }
    }
}

TEST_F(RestoreViewTest, WhatTheViewDoesNotTakeIsRefusedForAnUnchangedStudy)
{
    const Damage damages[] = {
        {"scatter", "<View>", "<View><LinePlot/>", "another kind"},
        {"scatter", "<Opacity>37</Opacity>", "<Opaque>37</Opaque>", "unknown element"},
        {"scatter", "<Opacity>37</Opacity>", "<Opacity><a/></Opacity>", "unknown element"},
        {"scatter", "<Show>1</Show>", "<Show>1</Show><More/>", "unknown element"},
        {"scatter", "</Opacity>", "</Opacity><Opacity>37</Opacity>", "two elements"},
        {"scatter", "<Opacity>37<", "<Opacity>101<", "less than or equal to 100"},
        {"scatter", "<Opacity>37<", "<Opacity>-1<", "settings"},
        {"scatter", "<Opacity>37<", "<Opacity>99999999999<", "settings"},
        {"scatter", "<Opacity>37<", "<Opacity>3.5<", "settings"},
        {"scatter", "<Opacity>37<", "<Opacity>much<", "settings"},
        {"scatter", "<Opacity>37<", "<Opacity><", "take Opacity"},
        {"scatter", "<Opacity>37<", "<Opacity a=\"b\">37<", "Opacity"},
        {"scatter", "<ShowLegend>1<", "<ShowLegend>2<", "settings"},
        {"scatter", "Drag", "Weight", "Weight"},
        {"scatter", "Drag", "Dr\nag", "Dr ag"},
        {"scatter", "Viridis", "Red", "settings"},
        {"scatter", "Max=\"3\"", "Max=\"nan\"", "settings"},
        {"scatter", "Max=\"3\"", "Max=\"1e999\"", "settings"},
        {"scatter", "Max=\"3\"", "Max=\"1\"", "settings"},
        {"scatter", "Max=\"3\"", "Most=\"3\"", "settings"},
        {"scatter", "Max=\"3\"", "Max=\"3\" More=\"3\"", "XAxis"},
        {"table", "Width=\"70\"", "Width=\"-1\"", "wide"},
        {"table", "Width=\"70\"", "Width=\"9999999\"", "wide"},
        {"table", "Width=\"70\"", "Width=\"7e1\"", "number"},
        {"table", "name=\"Drag\"", "name=\"Nobody\"", "Nobody"},
        {"table", "name=\"Drag\"", "name=\"Drag\" a=\"b\"", "Drag"},
        {"table", "</Columns>", "<Column name=\"Drag\" Width=\"70\"/></Columns>", "Drag"},
        {"table",
         "</Columns>",
         "<Column name=\"A\" Width=\"1\"><a/></Column></Columns>",
         "unknown"},
        {"table", "<Columns>", "<Columns SortedBy=\"Nobody\">", "Nobody"},
        {"table", "<Columns>", "<Columns SortedBy=\"Drag\" Order=\"Up\">", "Up"},
        {"table", "Down=\"0\"", "Down=\"-1\"", "scrolled"},
        {"images", "<Zoom>37<", "<Zoom>37 %<", "settings"},
        {"images", "<RowsBy>Variable<", "<RowsBy>Name<", "settings"},
        {"images", "Type=\"Whole\"", "Type=\"Half\"", "Half"},
        {"images", "<TagsToShow>", "<TagsToShow>gone", "gone"},
        {"images",
         "<VariablesInLabel/>",
         "<VariablesInLabel><Variable name=\"Nobody\"/></VariablesInLabel>",
         "Nobody"},
    };

    const Session session = emptySession();
    for (const Damage& damage : damages) {
        QByteArray state = changedState(damage.kind);
        const int place = state.indexOf(damage.what);
        ASSERT_GE(place, 0) << damage.what.constData() << state.constData();
        state.replace(place, damage.what.size(), damage.instead);
        SessionRestorer restorer(session, Project::project(), true);

        const std::string message =
            refusalOf([&] { static_cast<void>(restore(restorer, damage.kind, state)); });
        EXPECT_NE(message.find(damage.word), std::string::npos)
            << damage.instead.constData() << ": " << message;
    }
}

TEST_F(RestoreViewTest, VariableThatIsGoneLeavesTheRest)
{
    const struct
    {
        const char* kind;
        QByteArray setting; ///< another one
        QString remark;
    } cases[] = {
        {"scatter",
         "<Opacity>37</Opacity>",
         "The view scatter 1 is not as it was: YVariable \"Drag\"."},
        {"images", "<Zoom>37</Zoom>", "The view images 1 is not as it was: RowVariable \"Drag\"."},
        {"table", "name=\"Mass\"", "The view table 1 is not as it was: Column \"70, Drag\"."}};

    const Session session = emptySession();

    for (const auto& gone : cases) {
        openStudy("Drag");
        const QByteArray state = changedState(gone.kind);
        openStudy("Mass");
        SessionRestorer restorer(session, Project::project(), false);

        const QByteArray restored = restore(restorer, gone.kind, state);

        EXPECT_TRUE(restored.contains(gone.setting)) << restored.constData();
        EXPECT_FALSE(restored.contains("Drag"));
        ASSERT_EQ(restorer.remarks().size(), 1);
        EXPECT_TRUE(restorer.remarks()[0].startsWith(gone.remark.chopped(1)))
            << qPrintable(restorer.remarks()[0]);
        EXPECT_TRUE(restorer.remarks()[0].endsWith('.'));
    }
}
