#pragma once

#include <dataviews/platform/serialize/PlatformSerializeExport.h>

#include <boost/shared_ptr.hpp>

#include <string>

class QDomElement;

/// Writes settings into an XML element of its own and reads them back.
///
/// Errors are exceptions; what was read before one stays applied.
class DATAVIEWS_PLATFORM_SERIALIZE_EXPORT SerializerInterface
{
public:
    SerializerInterface() = default;
    SerializerInterface(const SerializerInterface&) = delete;
    SerializerInterface& operator=(const SerializerInterface&) = delete;
    virtual ~SerializerInterface();

    /// Appends an element called name() to \p parent.
    virtual void serialize(QDomElement& parent) const = 0;

    /// Reads the first child of \p parent that is called name(); without one, everything stays as it is.
    virtual void deserialize(const QDomElement& parent) = 0;

    /// The name of the element.
    [[nodiscard]] virtual std::string name() const = 0;

    /// Adds \p serializer behind the others; its element stands within this one's.
    virtual void addSubElement(boost::shared_ptr<SerializerInterface> serializer) = 0;

    /// Puts \p serializer in the place of the sub-element of the same name, or behind the others if there is none.
    virtual void replaceSubElement(boost::shared_ptr<SerializerInterface> serializer) = 0;

    /// Adds \p serializer for reading alone: for elements that earlier versions wrote.
    virtual void addDeserializeOnlySubElement(
        boost::shared_ptr<SerializerInterface> serializer) = 0;
};
