#pragma once

#include <analyzer/session/Session.h>
#include <analyzer/session/SessionError.h>

#include <QDomDocument>

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <limits>
#include <string>
#include <tuple>

/// A name with all that XML treats in a special way.
inline std::string difficultName()
{
    return " a \"b\" 'c' <d> & e;\nf\r\n\tg ]]> é 漢 \U0001F600 ";
}

inline RowBitmap rowsOf(std::size_t rowCount, std::initializer_list<std::size_t> rows)
{
    RowBitmap result(rowCount);
    for (const std::size_t row : rows) {
        result.set(row);
    }
    return result;
}

/// A session with something of everything.
inline analyzer::Session fullSession()
{
    using Kind = analyzer::ListedFilter::Kind;
    constexpr std::size_t caseCount = 70;
    constexpr double infinity = std::numeric_limits<double>::infinity();

    analyzer::Session session;
    session.studyPath = "../studies/" + difficultName() + ".csv";
    session.study = {1234567890123ULL, std::string(64, 'a')};
    session.caseCount = caseCount;
    session.keys = {
        {"Run", difficultName()}, rowsOf(caseCount, {0, 1, 69}), {1, ~std::uint64_t(0), 77}};
    session.tagGroups = {
        {"Quality",
         {{"good", rowsOf(caseCount, {0, 1}), {{69, "images/" + difficultName()}, {0, "a.png"}}},
          {difficultName(), RowBitmap(caseCount, true), {}}}},
        {"", {{"", RowBitmap(caseCount), {}}}},
        {difficultName(), {}}};
    session.filters = {
        {Kind::Range, "Speed", true, false, {-infinity, infinity}, {}},
        {Kind::Range, difficultName(), false, true, {-0.1, 1.0 / 3.0}, {}},
        {Kind::Values,
         "Material",
         true,
         true,
         {0.0, 0.0},
         {Variant(), Variant(-7), Variant(0.1), Variant("7"), Variant(difficultName())}},
        {Kind::Values, "", true, false, {0.0, 0.0}, {}},
        {Kind::Tag, "good", true, false, {0.0, 0.0}, {}}};

    QDomDocument states;
    states.setContent(QByteArray("<States><View><ScatterPlot><Zoom>1 &lt; 2</Zoom>"
                                 "<Range Min=\"0\" Max=\"é&#10;\" Of=\"\"/></ScatterPlot></View>"
                                 "<View><Table/></View><View><ScatterPlot/></View></States>"));
    QDomElement state = states.documentElement().firstChildElement();
    for (const auto& [kind, number, place] :
         {std::tuple("scatter", 1, "View1"),
          std::tuple("table", 1, "View7"),
          std::tuple("scatter", 3, "View2")}) {
        session.views.push_back({kind, number, place, state});
        state = state.nextSiblingElement();
    }
    session.activeView = 1;
    session.windowSize = {1400, 900};
    session.viewLayout = QByteArray("\0\xff\x10layout", 9);
    session.selection = rowsOf(caseCount, {2, 3, 69});
    return session;
}

/// The message of the SessionError that \p work throws; empty if it throws none. Fails for one that is no sentence.
inline std::string refusalOf(const std::function<void()>& work)
{
    try {
        work();
    } catch (const analyzer::SessionError& error) {
        const std::string message = error.what();
        EXPECT_EQ(message.find_first_of("\r\n\t"), std::string::npos) << message;
        EXPECT_GT(message.size(), 10U);
        EXPECT_TRUE(message.back() == '.' && message[message.size() - 2] != '.') << message;
        return message;
    }
    return {};
}
