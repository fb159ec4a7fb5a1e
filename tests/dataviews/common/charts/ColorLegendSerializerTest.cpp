#include <dataviews/common/charts/ColorLegendSerializer.h>
#include <dataviews/common/views/BoundedValueValidator.h>
#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/ValueRangeValidator.h>

#include <dataviews/platform/property/InvalidPropertyValueException.h>

#include <QDomDocument>
#include <QDomElement>

#include <boost/lexical_cast.hpp>
#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <exception>
#include <string>

namespace {

using Range = ValueRange_s<double>;

class ColorLegendSerializerTest : public testing::Test
{
protected:
    /// What reading "<view>\p xml</view>" throws; nothing if all is well.
    std::string errorOnReading(const QString& xml)
    {
        QDomDocument document;
        EXPECT_TRUE(document.setContent(QStringLiteral("<view>%1</view>").arg(xml)));
        try {
            m_serializer.deserialize(document.documentElement());
        } catch (const std::exception& error) {
            return error.what();
        }
        return {};
    }

    boost::shared_ptr<corvane::PropertyAbstract<bool>> m_show =
        boost::make_shared<corvane::Property<bool>>(false);
    boost::shared_ptr<corvane::PropertyAbstract<short>> m_numLabels =
        boost::make_shared<corvane::Property<short>>(
            ColorLegend::DEFAULT_NUMLABELS,
            boost::make_shared<corvane::BoundedValueValidator<short>>(
                ColorLegend::NUMLABELS_MIN, ColorLegend::NUMLABELS_MAX));
    boost::shared_ptr<corvane::PropertyAbstract<ColorLegend::RangeType>> m_rangeType =
        boost::make_shared<corvane::Property<ColorLegend::RangeType>>(ColorLegend::Auto);
    boost::shared_ptr<corvane::PropertyAbstract<Range>> m_range =
        boost::make_shared<corvane::Property<Range>>(
            Range{0.0, 1.0}, boost::make_shared<corvane::ValueRangeValidator<double>>());
    ColorLegendSerializer m_serializer{m_show, m_numLabels, m_rangeType, m_range};
};

TEST_F(ColorLegendSerializerTest, WritesTheSettingsInOrder)
{
    QDomDocument document;
    QDomElement view = document.createElement(QStringLiteral("view"));
    m_serializer.serialize(view);

    const QDomElement legend = view.firstChildElement();
    EXPECT_EQ(legend.tagName(), QStringLiteral("ColorLegend"));
    QDomElement setting = legend.firstChildElement();
    for (const auto& [name, text] :
         {std::pair{"Show", "0"}, {"NumLabels", "15"}, {"RangeType", "Auto"}, {"Range", ""}}) {
        EXPECT_EQ(setting.tagName(), QString::fromLatin1(name));
        EXPECT_EQ(setting.text(), QString::fromLatin1(text));
        if (setting.tagName() != QStringLiteral("Range")) {
            EXPECT_TRUE(setting.attributes().isEmpty());
            setting = setting.nextSiblingElement();
        }
    }
    EXPECT_EQ(setting.attribute(QStringLiteral("Min")), QStringLiteral("0"));
    EXPECT_EQ(setting.attribute(QStringLiteral("Max")), QStringLiteral("1"));
    EXPECT_TRUE(setting.nextSiblingElement().isNull());
}

TEST_F(ColorLegendSerializerTest, SettingsComeBack)
{
    m_show->setValue(true);
    m_numLabels->setValue(7);
    m_rangeType->setValue(ColorLegend::Custom);
    m_range->setValue({-0.1, 1e300});
    QDomDocument document;
    QDomElement view = document.createElement(QStringLiteral("view"));
    document.appendChild(view);
    m_serializer.serialize(view);
    QDomDocument readBack;
    ASSERT_TRUE(readBack.setContent(document.toByteArray(2)));
    m_show->setValue(false);
    m_numLabels->setValue(15);
    m_rangeType->setValue(ColorLegend::Auto);
    m_range->setValue({0.0, 0.0});

    m_serializer.deserialize(readBack.documentElement());

    EXPECT_TRUE(m_show->value());
    EXPECT_EQ(m_numLabels->value(), 7);
    EXPECT_EQ(m_rangeType->value(), ColorLegend::Custom);
    EXPECT_EQ(m_range->value(), (Range{-0.1, 1e300}));
}

TEST_F(ColorLegendSerializerTest, WhatIsMissingStays)
{
    EXPECT_EQ(errorOnReading(QStringLiteral("<ColorLegend><NumLabels/></ColorLegend>")), "");
    EXPECT_EQ(m_numLabels->value(), 15);

    EXPECT_EQ(errorOnReading(QStringLiteral("<ColorLegend><Range Min='-5'/></ColorLegend>")), "");
    EXPECT_EQ(m_range->value(), (Range{-5.0, 1.0}));
    EXPECT_EQ(m_rangeType->value(), ColorLegend::Auto);

    EXPECT_EQ(errorOnReading(QString()), "");
}

TEST_F(ColorLegendSerializerTest, WrongTextsThrowAndKeepWhatWasReadBefore)
{
    const std::string noNumber =
        "bad lexical cast: source type value could not be interpreted as target";
    const std::string tooFewOrMany =
        "The value must be greater than or equal to 3 and less than or equal to 40.";

    const struct
    {
        const char* settings;
        std::string error;
    } cases[] = {
        {"<Show>yes</Show>", noNumber},
        {"<NumLabels>40000</NumLabels>", noNumber},
        {"<NumLabels>2</NumLabels>", tooFewOrMany},
        {"<RangeType>auto</RangeType>", "bimap<>: invalid key"},
        {"<Range Min='2'/>", "Minimum cannot be greater than maximum."},
    };

    for (const auto& c : cases) {
        SCOPED_TRACE(c.settings);
        EXPECT_EQ(
            errorOnReading(QStringLiteral("<ColorLegend>%1</ColorLegend>")
                               .arg(QString::fromLatin1(c.settings))),
            c.error);
        EXPECT_EQ(m_numLabels->value(), 15);
        EXPECT_EQ(m_rangeType->value(), ColorLegend::Auto);
        EXPECT_EQ(m_range->value(), (Range{0.0, 1.0}));
    }

    EXPECT_EQ(
        errorOnReading(QStringLiteral(
            "<ColorLegend><Range Min='-9'/><RangeType>?</RangeType><Show>1</Show></ColorLegend>")),
        "bimap<>: invalid key");
    EXPECT_TRUE(m_show->value()) << "It is read before the range type, wherever it stands.";
    EXPECT_EQ(m_range->value(), (Range{0.0, 1.0})) << "It is read after the range type.";
}

} // namespace
