#include <analyzer/session/sessionText.h>
#include <analyzer/session/sessionXml.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <random>
#include <utility>

#include <tests/analyzer/session/sessionExamples.h>

namespace {

using analyzer::readSession;
using analyzer::Session;
using analyzer::writeSession;

/// A small session as a file.
QByteArray smallFile()
{
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<DataViewsSession Version="1">
 <Study Path="study.csv" Size="99" Checksum="" Cases="9">
  <CaseKeys><Key Variable="Run"/><Cases>1-2</Cases><Hashes>AQAAAAAAAAACAAAAAAAAAA==</Hashes></CaseKeys>
 </Study>
 <Tags><Group Name="G"><Tag Name="T"><Cases>1</Cases><File Case="2" Path="a.png"/></Tag></Group></Tags>
 <Filters>
  <Filter Kind="Range" Of="Speed" Enabled="1" Inverted="0"><Range Min="-inf" Max="2.5"/></Filter>
  <Filter Kind="Values" Of="M" Enabled="1" Inverted="0"><Value Type="Whole" Value="7"/><Value Type="Missing"/></Filter>
  <Filter Kind="Tag" Of="T" Enabled="1" Inverted="0"/>
 </Filters>
 <Views Active="2">
  <View Kind="scatter" Number="1" Place="View1"><Scatter><Zoom>1</Zoom></Scatter></View>
  <View Kind="scatter" Number="2" Place="View2"><Scatter/></View>
 </Views>
 <Window Width="800" Height="600"><Views>AA==</Views><Panels>AAE=</Panels></Window>
 <Selection>3-4</Selection>
</DataViewsSession>)";
}

std::string refusal(const QByteArray& file)
{
    return refusalOf([&file] { static_cast<void>(readSession(file)); });
}

} // namespace

TEST(SessionTextTest, SessionWithEverythingReadsBackTheSame)
{
    const Session saved = fullSession();
    const QByteArray file = writeSession(saved);
    const Session read = readSession(file);

    EXPECT_EQ(writeSession(read), file);
    EXPECT_EQ(read.studyPath, saved.studyPath);
    EXPECT_TRUE(read.study.isOfSameContent(saved.study));
    EXPECT_EQ(read.caseCount, saved.caseCount);
    EXPECT_EQ(read.keys.variables, saved.keys.variables);
    EXPECT_EQ(read.keys.rows, saved.keys.rows);
    EXPECT_EQ(read.keys.hashes, saved.keys.hashes);
    ASSERT_EQ(read.tagGroups.size(), saved.tagGroups.size());
    for (std::size_t group = 0; group < saved.tagGroups.size(); ++group) {
        const auto& savedTags = saved.tagGroups[group].tags;
        EXPECT_EQ(read.tagGroups[group].name, saved.tagGroups[group].name);
        ASSERT_EQ(read.tagGroups[group].tags.size(), savedTags.size());
        for (std::size_t tag = 0; tag < savedTags.size(); ++tag) {
            const analyzer::SessionTag& readTag = read.tagGroups[group].tags[tag];
            EXPECT_EQ(readTag.name, savedTags[tag].name);
            EXPECT_EQ(readTag.cases, savedTags[tag].cases);
            ASSERT_EQ(readTag.files.size(), savedTags[tag].files.size());
            for (std::size_t i = 0; i < readTag.files.size(); ++i) {
                EXPECT_EQ(readTag.files[i].row, savedTags[tag].files[i].row);
                EXPECT_EQ(readTag.files[i].path, savedTags[tag].files[i].path);
            }
        }
    }
    ASSERT_EQ(read.filters.size(), saved.filters.size());
    for (std::size_t i = 0; i < saved.filters.size(); ++i) {
        EXPECT_EQ(read.filters[i].kind, saved.filters[i].kind);
        EXPECT_EQ(read.filters[i].name, saved.filters[i].name);
        EXPECT_EQ(read.filters[i].isEnabled, saved.filters[i].isEnabled);
        EXPECT_EQ(read.filters[i].isInverted, saved.filters[i].isInverted);
        EXPECT_EQ(read.filters[i].range.min, saved.filters[i].range.min);
        EXPECT_EQ(read.filters[i].range.max, saved.filters[i].range.max);
        EXPECT_EQ(read.filters[i].values, saved.filters[i].values);
    }
    ASSERT_EQ(read.views.size(), saved.views.size());
    for (std::size_t i = 0; i < saved.views.size(); ++i) {
        EXPECT_EQ(read.views[i].kind, saved.views[i].kind);
        EXPECT_EQ(read.views[i].number, saved.views[i].number);
        EXPECT_EQ(read.views[i].place, saved.views[i].place);
    }
    const QDomElement state = read.views[0].state.firstChildElement("ScatterPlot");
    EXPECT_EQ(state.firstChildElement("Zoom").text(), "1 < 2");
    EXPECT_EQ(state.firstChildElement("Range").attribute("Max"), QString::fromUtf8("é\n"));
    EXPECT_EQ(read.activeView, 1U);
    EXPECT_EQ(read.windowSize, saved.windowSize);
    EXPECT_EQ(read.viewLayout, saved.viewLayout);
    EXPECT_EQ(read.panelLayout, saved.panelLayout);
    EXPECT_EQ(read.selection, saved.selection);
}

TEST(SessionTextTest, FileThatIsCutOffAnywhereIsRefused)
{
    for (const QByteArray& file : {writeSession(readSession(smallFile())), smallFile()}) {
        for (int length = 0; length < file.size(); ++length) {
            ASSERT_NE(refusal(file.left(length)), "") << length;
        }
    }
}

TEST(SessionTextTest, EverySingleFaultIsRefused)
{
    const struct
    {
        const char* what; ///< is there
        QByteArray instead;
        const char* word; ///< of the refusal
    } faults[] = {
        {"<DataViewsSession Version=\"1\">", "<DataViewsSession>", "Version"},
        {"Version=\"1\">", "Version=\"0\">", "Version"},
        {"Version=\"1\">", "Version=\"2\">", "newer"},
        {"Version=\"1\">", "Version=\"99999999999\">", "Version"},
        {"Version=\"1\">", "Version=\"1\" Of=\"\">", "unknown attribute"},
        {"encoding=\"UTF-8\"", "encoding=\"ISO-8859-1\"", "UTF-8"},
        {"encoding=\"UTF-8\"", "encoding=\"UTF-7\"", "UTF-8"},
        {"<DataViewsSession", "<!DOCTYPE a><DataViewsSession", "document type"},
        {"<DataViewsSession", "<?a b?><DataViewsSession", "processing instruction"},
        {"<Cases>1</Cases>", "<Cases>1<?a b?></Cases>", "processing instruction"},
        {"<Cases>1</Cases>", "<Cases><![CDATA[1]]></Cases>", "CDATA"},
        {"<Cases>1</Cases>", "", "no \"Cases\""},
        {"<Cases>1</Cases>", "<Cases>1</Cases><Cases>1</Cases>", "two elements"},
        {"<Cases>1</Cases>", "<Cases>10</Cases>", "case 10"},
        {"<Cases>1</Cases>", "<Cases>1&#10;2</Cases>", "no set of cases"},
        {"<Cases>1</Cases>", "<Cases>base64:A</Cases>", "no set of cases"},
        {"<Cases>1</Cases>", "<Cases>base64:AAQ=</Cases>", "case 11"},
        {"<Cases>1</Cases>", "<Cases><a/></Cases>", "element where a text"},
        {"<Cases>1</Cases>", "<Cases a=\"\">1</Cases>", "unknown attribute"},
        {"Path=\"study.csv\"", "Path=\"\"", "no study"},
        {"Path=\"study.csv\"", "", "no \"Path\""},
        {"Size=\"99\"", "Size=\"-1\"", "Size"},
        {"Size=\"99\"", "Size=\"099\"", "Size"},
        {"Size=\"99\"", "Size=\" 99\"", "Size"},
        {"Size=\"99\"", "Size=\"9&#10;9\"", "Size"},
        {"Size=\"99\"", "Size=\"18446744073709551617\"", "Size"},
        {"Size=\"99\"", "Size=\"" + QByteArray(60000, '9') + "\"", "…"},
        {"Size=\"99\"", "Size=\"99\" Size=\"99\"", "damaged in line"},
        {"Checksum=\"\"", "Checksum=\"" + QByteArray(63, 'a') + "\"", "checksum"},
        {"Checksum=\"\"", "Checksum=\"" + QByteArray(64, 'A') + "\"", "checksum"},
        {"Cases=\"9\"", "Cases=\"0\"", "Cases"},
        {"Cases=\"9\"", "Cases=\"2147483648\"", "Cases"},
        {"Cases=\"9\"", "Cases=\"2147483647\"", "more sets"},
        {"Cases=\"9\"", "Cases=\"3\"", "case 4"},
        {"<Cases>1-2</Cases>", "<Cases>1-3</Cases>", "one key for each"},
        {"<Key Variable=\"Run\"/>", "", "keys without variables"},
        {"<Key Variable=\"Run\"/>", "<Key/>", "no \"Variable\""},
        {"<Cases>1-2</Cases><Hashes>AQAAAAAAAAACAAAAAAAAAA==</Hashes>",
         "<Cases/><Hashes/>",
         "variables without keys"},
        {"AQAAAAAAAAAC", "AQAAAAAAAAA", "Base64"},
        {"AQAAAAAAAAAC", "AQAAAA", "Base64"},
        {"AQAAAAAAAAACAAAAAAAAAA==", "AQAAAAAAAAA=", "one key for each"},
        {"<Group Name=\"G\">", "<Group>", "no \"Name\""},
        {"<Tag Name=\"T\">", "<Tag Name=\"T\"><Files/>", "unknown element"},
        {"Tag>", "Tug>", "damaged in line"},
        {"Case=\"2\"", "Case=\"10\"", "Case"},
        {"Case=\"2\"", "Case=\"0\"", "Case"},
        {"<Filters>", "<Filters>text", "text where none"},
        {"<Filters>", "<Filters><Range/>", "unknown element"},
        {"Kind=\"Range\"", "Kind=\"Tag\"", "belong together"},
        {"Kind=\"Range\"", "Kind=\"Values\"", "belong together"},
        {"Kind=\"Range\"", "Kind=\"range\"", "kind"},
        {"Kind=\"Values\"", "Kind=\"Tag\"", "belong together"},
        {"Kind=\"Tag\"", "Kind=\"Range\"", "belong together"},
        {"Enabled=\"1\"", "Enabled=\"2\"", "Enabled"},
        {"Enabled=\"1\"", "Enabled=\"true\"", "Enabled"},
        {"Max=\"2.5\"", "Max=\"nan\"", "ends before"},
        {"Min=\"-inf\"", "Min=\"nan\"", "ends before"},
        {"Max=\"2.5\"", "Max=\"-inf\" More=\"\"", "unknown attribute"},
        {"Min=\"-inf\"", "Min=\"3\"", "ends before"},
        {"Max=\"2.5\"", "Max=\"2,5\"", "no number"},
        {"Max=\"2.5\"", "Max=\"1e999\"", "no number"},
        {"Max=\"2.5\"", "Max=\"\"", "no number"},
        {"Max=\"2.5\"/>", "Max=\"2.5\"/><Range Min=\"0\" Max=\"1\"/>", "two elements"},
        {"Type=\"Whole\" Value=\"7\"", "Type=\"Whole\" Value=\"7.5\"", "whole number"},
        {"Type=\"Whole\" Value=\"7\"", "Type=\"Whole\" Value=\"9223372036854775808\"", "whole"},
        {"Type=\"Whole\" Value=\"7\"", "Type=\"Real\" Value=\"7 \"", "number"},
        {"Type=\"Whole\" Value=\"7\"", "Type=\"Text\"", "none"},
        {"Type=\"Whole\" Value=\"7\"", "Type=\"Missing\" Value=\"7\"", "none"},
        {"Type=\"Whole\" Value=\"7\"", "Type=\"Missing\"", "twice"},
        {"Type=\"Whole\" Value=\"7\"", "Type=\"Bool\" Value=\"7\"", "type"},
        {"Type=\"Whole\" Value=\"7\"", "Type=\"Whole\" Value=\"7\" a=\"\"", "unknown attribute"},
        {"<Value Type=\"Missing\"/>", "<Value Type=\"Missing\">7</Value>", "text"},
        {"Active=\"2\"", "Active=\"3\"", "Active"},
        {"Active=\"2\"", "", "no \"Active\""},
        {"Kind=\"scatter\"", "Kind=\"pie\"", "no view of the kind"},
        {"Number=\"2\"", "Number=\"1\"", "same place"},
        {"Number=\"2\"", "Number=\"0\"", "Number"},
        {"Place=\"View2\"", "Place=\"View1\"", "same place"},
        {"Place=\"View2\"", "Place=\"View2\xc2\xa0\"", "same place"},
        {"Place=\"View2\"", "Place=\"View2&#10;\"", "same place"},
        {"<Scatter/>", "", "no settings"},
        {"<Scatter/>", "text", "no settings"},
        {"<Scatter/>", "<Scatter/><Scatter/>", "no settings"},
        {"<Zoom>1</Zoom>", "<Zoom>1</Zoom>text", "text where none"},
        {"Width=\"800\"", "Width=\"0\"", "Width"},
        {"Height=\"600\"", "Height=\"100001\"", "Height"},
        {"<Views>AA==</Views>", "<Views>A!==</Views>", "Base64"},
        {"AAE=", QByteArray(65537, '\0').toBase64(), "too long"},
        {"3-4", "9-10", "case 10"},
        {"</DataViewsSession>", "<Selection/></DataViewsSession>", "two elements"},
        {"</DataViewsSession>", "</DataViewsSession>text", "damaged in line"},
    };

    ASSERT_EQ(refusal(smallFile()), "");
    EXPECT_NE(refusal("<svg/>").find("no session"), std::string::npos);
    for (const auto& fault : faults) {
        QByteArray file = smallFile();
        const int place = file.indexOf(fault.what);
        ASSERT_GE(place, 0) << fault.what;
        file.replace(place, static_cast<int>(std::strlen(fault.what)), fault.instead);

        const std::string message = refusal(file);
        EXPECT_NE(message.find(fault.word), std::string::npos)
            << fault.what << " -> " << fault.instead.left(100).constData() << ": " << message;
        EXPECT_LT(message.size(), 2000U);
    }
}

TEST(SessionTextTest, RandomDamageIsRefusedOrLeavesASession)
{
    const QByteArray files[] = {smallFile(), writeSession(fullSession())};
    const QByteArray bytes = "<>/\"'&;!?-=# \n09azZ\x01\x7f\x80\xc3\xff";
    std::mt19937 random(2);
    const auto below = [&random](int end) {
        return std::uniform_int_distribution<int>(0, end - 1)(random);
    };

    int sessions = 0;
    for (int round = 0; round < 4000; ++round) {
        QByteArray file = files[round % 2];
        for (int edits = 1 + below(3); edits > 0; --edits) {
            const int place = below(file.size() - 20);
            switch (below(4)) {
            case 0:
                file.remove(place, 1 + below(3));
                break;
            case 1:
                file.insert(place, bytes[below(bytes.size())]);
                break;
            case 2:
                file[place] = bytes[below(bytes.size())];
                break;
            default:
                file.insert(place, file.mid(below(file.size()), below(20)));
                break;
            }
        }
        SCOPED_TRACE(file.toStdString());
        if (refusal(file).empty()) {
            ++sessions;
            const QByteArray written = writeSession(readSession(file));
            ASSERT_EQ(writeSession(readSession(written)), written);
        }
    }
    EXPECT_GT(sessions, 100);
}

TEST(SessionTextTest, MillionCasesWithRandomTagsStaySmall)
{
    constexpr std::size_t caseCount = 1000000;
    std::mt19937_64 random(3);
    const auto randomRows = [&random] {
        RowBitmap rows(caseCount);
        std::generate(rows.words().begin(), rows.words().end(), std::ref(random));
        return rows;
    };
    Session session = fullSession();
    session.caseCount = caseCount;
    session.keys = {{}, RowBitmap(caseCount), {}};
    session.tagGroups = {{"Random", {}}};
    for (int i = 0; i < 20; ++i) {
        session.tagGroups[0].tags.push_back({"Tag " + std::to_string(i), randomRows(), {}});
    }
    session.selection = randomRows();

    const QByteArray file = writeSession(session);

    EXPECT_LT(file.size(), 4 * 1024 * 1024);
    const Session read = readSession(file);
    EXPECT_EQ(read.selection, session.selection);
    EXPECT_EQ(read.tagGroups[0].tags[19].cases, session.tagGroups[0].tags[19].cases);
}

TEST(SessionTextTest, WhatCouldNotBeReadAgainIsNotWritten)
{
    Session control = fullSession();
    control.tagGroups[0].name = "a\001b";
    Session layout = fullSession();
    layout.viewLayout = QByteArray(65537, 'x');
    Session large = fullSession();
    large.tagGroups[0].tags[0].files.assign(300000, {0, std::string(60, 'x')});
    Session longName = fullSession();
    longName.studyPath = std::string(70000, 'x');
    Session sets = fullSession();
    sets.caseCount = 2000000000;
    const std::pair<const Session*, const char*> wrong[] = {
        {&control, "read again"},
        {&layout, "layout"},
        {&large, "larger"},
        {&longName, "too long"},
        {&sets, "more sets"}};

    for (const auto& [session, word] : wrong) {
        const std::string message = refusalOf([&] { static_cast<void>(writeSession(*session)); });
        EXPECT_NE(message.find(word), std::string::npos) << message;
    }
}
