#include <dataviews/common/views/AllowAnyValueValidator.h>
#include <dataviews/common/views/DataViewAbstract.h>
#include <dataviews/common/views/Property.h>

#include <dataviews/platform/selection/SelectionModelInterface.h>
#include <dataviews/platform/serialize/SerializerInterface.h>

#include <QtGlobal>

#include <boost/make_shared.hpp>

#include <set>
#include <utility>

DataViewAbstract::DataViewAbstract(
    std::unique_ptr<SerializerInterface> serializer,
    boost::shared_ptr<SelectionModelInterface> selectionModel)
    : m_serializer(std::move(serializer))
    , m_selectionModel(std::move(selectionModel))
    , m_mouseMode(boost::make_shared<corvane::Property<MouseMode>>(
          MouseMode(), boost::make_shared<corvane::AllowAnyValueValidator<MouseMode>>()))
{
    m_mouseMode->setValue(Select);
}

DataViewAbstract::DataViewAbstract(DataViewAbstract& other)
    : DataViewInterface(other)
    , m_serializer(std::move(other.m_serializer))
    , m_selectionModel(other.m_selectionModel)
    , m_mouseMode(other.m_mouseMode)
{}

// NOLINTNEXTLINE(misc-unconventional-assign-operator,bugprone-unhandled-self-assignment): see the header
DataViewAbstract& DataViewAbstract::operator=(DataViewAbstract& other)
{
    DataViewInterface::operator=(other);
    m_serializer = std::move(other.m_serializer); // a self-move keeps it
    m_selectionModel = other.m_selectionModel;
    m_mouseMode = other.m_mouseMode;
    return *this;
}

DataViewAbstract::~DataViewAbstract() = default;

SerializerInterface& DataViewAbstract::serializer()
{
    Q_ASSERT_X(
        m_serializer, "DataViewAbstract::serializer", "another view has taken the serializer");
    return *m_serializer;
}

void DataViewAbstract::adjustSelectionForMouseClickAtPoint()
{
    unsigned long long caseID = 0;
    if (!caseIDAtPoint(caseID)) {
        m_selectionModel->setSelection({});
        return;
    }
    if (!m_selectionModel->cases()->contains(caseID)) {
        m_selectionModel->setSelection({caseID});
    }
}

std::string DataViewAbstract::domName() const
{
    return m_serializer->name();
}

boost::shared_ptr<corvane::PropertyAbstract<DataViewInterface::MouseMode>> DataViewAbstract::
    mouseMode() const
{
    return m_mouseMode;
}

bool DataViewAbstract::caseIDAtPoint(unsigned long long& /*caseID*/)
{
    return false;
}
