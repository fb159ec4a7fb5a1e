#include <dataviews/common/charts/VTKPropertyAbstract.h>
#include <dataviews/common/views/BoundedValueValidator.h>

#include <vtkAxis.h>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;

class AxisMinimumProperty : public VTKPropertyAbstract<double>
{
public:
    template <class... Arguments>
    explicit AxisMinimumProperty(const vtkSmartPointer<vtkAxis>& axis, Arguments... arguments)
        : VTKPropertyAbstract<double>(axis, std::move(arguments)...)
        , m_axis(*axis)
    {}

    bool m_refusing = false;
    bool m_observedWhileStoring = false;

protected:
    void storeValueInVTK(const double& value) override
    {
        m_observedWhileStoring |= m_axis.HasObserver(vtkCommand::ModifiedEvent) != 0;
        m_axis.SetMinimum(value);
        if (m_refusing) {
            throw std::runtime_error("refused");
        }
    }

    [[nodiscard]] double storedValue() const override { return m_axis.GetMinimum(); }

private:
    vtkAxis& m_axis;
};

class VTKPropertyAbstractTest : public testing::Test
{
protected:
    VTKPropertyAbstractTest()
    {
        m_axis->SetRange(1.0, 9.0);
        m_property = std::make_unique<AxisMinimumProperty>(m_axis);
        m_property->valueChanged.connect([this](double value) { m_told.push_back(value); });
    }

    std::vector<double> takeTold() { return std::exchange(m_told, {}); }

    vtkSmartPointer<vtkAxis> m_axis = vtkSmartPointer<vtkAxis>::New();
    std::unique_ptr<AxisMinimumProperty> m_property;
    std::vector<double> m_told;
};

TEST_F(VTKPropertyAbstractTest, OwnWriteIsToldOnceThoughVtkRaisesAnEvent)
{
    m_property->setValue(2.0);
    EXPECT_THAT(takeTold(), ElementsAre(2.0));
    EXPECT_EQ(m_axis->GetMinimum(), 2.0);
    EXPECT_FALSE(m_property->m_observedWhileStoring);

    m_property->setValue(2.0);
    EXPECT_THAT(takeTold(), ElementsAre());

    m_axis->SetMinimum(3.0);
    EXPECT_THAT(takeTold(), ElementsAre(3.0)) << "Observed once only, and again after the write.";
}

TEST_F(VTKPropertyAbstractTest, ChangesByOthersAreToldWhenTheValueDiffersExactly)
{
    m_axis->SetTitle("not the value, but the first event");
    EXPECT_THAT(takeTold(), ElementsAre(1.0)) << "Nothing was known of the value before.";

    m_axis->SetMaximum(20.0);
    EXPECT_THAT(takeTold(), ElementsAre());

    const double next = std::nextafter(1.0, 2.0);
    m_axis->SetMinimum(next);
    EXPECT_THAT(takeTold(), ElementsAre(next));
    EXPECT_EQ(m_property->value(), next);

    // The value that the property knows of, not the one of its last write, is what counts as equal.
    m_property->setValue(next);
    EXPECT_THAT(takeTold(), ElementsAre());
    m_axis->SetMinimum(std::numeric_limits<double>::quiet_NaN());
    m_axis->Modified();
    EXPECT_EQ(takeTold().size(), 2U);
}

TEST_F(VTKPropertyAbstractTest, FailedWriteLeavesThePropertyListening)
{
    m_property->m_refusing = true;
    EXPECT_THROW(m_property->setValue(4.0), std::runtime_error);
    EXPECT_THAT(takeTold(), ElementsAre());

    m_axis->Modified();
    EXPECT_THAT(takeTold(), ElementsAre(4.0))
        << "What VTK took in spite of the failure is heard of later.";
}

TEST_F(VTKPropertyAbstractTest, ValidatorRefusesBeforeVtkIsTouched)
{
    const auto validator = boost::make_shared<corvane::BoundedValueValidator<double>>(0.5, 2.0);
    AxisMinimumProperty property(m_axis, validator);

    EXPECT_THROW(property.setValue(2.5), corvane::InvalidPropertyValueException);
    EXPECT_EQ(m_axis->GetMinimum(), 1.0);
}

TEST_F(VTKPropertyAbstractTest, KeepsItsObjectAliveAndLeavesItAtTheEnd)
{
    vtkAxis* const axis = m_axis;
    axis->Register(nullptr);
    m_axis = nullptr;
    EXPECT_EQ(axis->GetReferenceCount(), 2);

    m_property.reset();

    EXPECT_EQ(axis->GetReferenceCount(), 1);
    EXPECT_FALSE(axis->HasObserver(vtkCommand::ModifiedEvent));
    axis->Delete();
}

} // namespace
