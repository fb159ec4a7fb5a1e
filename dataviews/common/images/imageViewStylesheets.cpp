#include <dataviews/common/images/imageViewStylesheets.h>

#include <QSettings>
#include <QStringList>
#include <QVariant>

namespace {

QString styleSheetSetting(const QString& key, const QString& fallback)
{
    QSettings settings;
    QVariant value = settings.value(key);
    if (!value.isValid()) {
        value = fallback;
        settings.setValue(key, value);
    }
    // A sheet that was written by hand with commas and no quotes is read as a list.
    return value.type() == QVariant::StringList ? value.toStringList().join(QLatin1Char(','))
                                                : value.toString();
}

} // namespace

QString imageListViewStylesheet()
{
    return styleSheetSetting(
        QStringLiteral("ImageListViewStylesheet"),
        QStringLiteral("QListView{background-color:lightgray}"));
}

QString imageTableViewStylesheet()
{
    return styleSheetSetting(
        QStringLiteral("ImageTableViewStylesheet"),
        QStringLiteral("QTableView{background-color:lightgray}"));
}
