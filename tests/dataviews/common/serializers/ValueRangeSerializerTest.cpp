#include <dataviews/common/serializers/ValueRangeSerializer.h>
#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/ValueRangeValidator.h>

#include <dataviews/platform/property/InvalidPropertyValueException.h>

#include <QDomDocument>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

using Range = ValueRange_s<double>;

constexpr double infinity = std::numeric_limits<double>::infinity();

class ValueRangeSerializerTest : public testing::Test
{
protected:
    QDomElement written()
    {
        QDomElement parent = m_document.createElement(QStringLiteral("parent"));
        ValueRangeSerializer<double>("Range", m_range).serialize(parent);
        return parent.firstChildElement(QStringLiteral("Range"));
    }

    void read(const QDomElement& element)
    {
        QDomElement parent = m_document.createElement(QStringLiteral("parent"));
        parent.appendChild(element);
        ValueRangeSerializer<double>("Range", m_range).deserialize(parent);
    }

    /// An element with the ends that are not null.
    QDomElement element(const char* min, const char* max)
    {
        QDomElement range = m_document.createElement(QStringLiteral("Range"));
        if (min != nullptr) {
            range.setAttribute(QStringLiteral("Min"), QString::fromLatin1(min));
        }
        if (max != nullptr) {
            range.setAttribute(QStringLiteral("Max"), QString::fromLatin1(max));
        }
        return range;
    }

    QDomDocument m_document;
    boost::shared_ptr<corvane::PropertyAbstract<Range>> m_range =
        boost::make_shared<corvane::Property<Range>>(
            Range{1.0, 2.0}, boost::make_shared<corvane::ValueRangeValidator<double>>());
};

TEST_F(ValueRangeSerializerTest, EveryRangeComesBackExactly)
{
    const struct
    {
        Range range;
        const char* min;
        const char* max;
    } cases[] = {
        {{0.0, 1.0}, "0", "1"},
        {{0.1, 1e17}, "0.10000000000000001", "1e+17"},
        {{-infinity, infinity}, "-inf", "inf"},
        {{5e-324, 1.7976931348623157e308}, "4.9406564584124654e-324", "1.7976931348623157e+308"},
    };

    for (const auto& c : cases) {
        m_range->setValue(c.range);
        const QDomElement range = written();
        EXPECT_EQ(range.attribute(QStringLiteral("Min")), QString::fromLatin1(c.min));
        EXPECT_EQ(range.attribute(QStringLiteral("Max")), QString::fromLatin1(c.max));
        EXPECT_TRUE(range.childNodes().isEmpty());

        m_range->setValue({-7.0, 7.0});
        read(range);
        EXPECT_EQ(m_range->value(), c.range);
    }
}

TEST_F(ValueRangeSerializerTest, NotANumberComesBackAsSuch)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    m_range->setValue({nan, nan});
    const QDomElement range = written();
    EXPECT_EQ(range.attribute(QStringLiteral("Min")), QStringLiteral("nan"));

    m_range->setValue({1.0, 2.0});
    read(range);
    EXPECT_TRUE(std::isnan(m_range->value().min));
    EXPECT_TRUE(std::isnan(m_range->value().max));
}

TEST_F(ValueRangeSerializerTest, MissingEndsStayAndWrongOnesAreZero)
{
    const struct
    {
        const char* min;
        const char* max;
        Range expected;
    } cases[] = {
        {nullptr, "5", {1.0, 5.0}},
        {"-5", nullptr, {-5.0, 2.0}},
        {nullptr, nullptr, {1.0, 2.0}},
        {"low", "5", {0.0, 5.0}},
        {"", "1,5", {0.0, 0.0}},
        {" -1.5 ", "inf", {-1.5, infinity}},
    };

    for (const auto& c : cases) {
        m_range->setValue({1.0, 2.0});
        read(element(c.min, c.max));
        EXPECT_EQ(m_range->value(), c.expected);
    }
}

TEST_F(ValueRangeSerializerTest, RefusesAnInvertedRange)
{
    try {
        read(element("3", nullptr));
        FAIL();
    } catch (const corvane::InvalidPropertyValueException& error) {
        EXPECT_EQ(std::string(error.what()), "Minimum cannot be greater than maximum.");
    }
    EXPECT_EQ(m_range->value(), (Range{1.0, 2.0}));
}

} // namespace
