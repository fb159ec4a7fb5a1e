#include <dataviews/common/images/imageViewStylesheets.h>

#include <QFile>
#include <QSettings>

#include <gtest/gtest.h>

namespace {

TEST(imageViewStylesheetsTest, WritesWhatIsMissingAndKeepsWhatUsersWrote)
{
    const struct
    {
        QString key;
        QString (*sheet)();
        QString standard;
    } sheets[] = {
        {QStringLiteral("ImageListViewStylesheet"),
         &imageListViewStylesheet,
         QStringLiteral("QListView{background-color:lightgray}")},
        {QStringLiteral("ImageTableViewStylesheet"),
         &imageTableViewStylesheet,
         QStringLiteral("QTableView{background-color:lightgray}")}};

    QSettings settings;

    for (const auto& [key, sheet, standard] : sheets) {
        settings.remove(key);
        EXPECT_EQ(sheet(), standard);
        EXPECT_EQ(settings.value(key).toString(), standard);

        settings.setValue(key, QStringLiteral("QTableView{color:red}"));
        EXPECT_EQ(sheet(), QStringLiteral("QTableView{color:red}"));

        settings.setValue(key, QString());
        EXPECT_EQ(sheet(), QString());

        // As the file is read where somebody wrote commas without quotes.
        settings.setValue(key, QStringList{QStringLiteral("a{x:1}"), QStringLiteral("b{y:2}")});
        EXPECT_EQ(sheet(), QStringLiteral("a{x:1},b{y:2}"));
        settings.remove(key);
    }
}

} // namespace
