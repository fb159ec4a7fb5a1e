#pragma once

#include <dataviews/platform/serialize/SerializerInterface.h>

#include <string>
#include <vector>

/// Base of the serializers: an element with content of its own, from subclasses, and sub-elements.
///
/// Sub-elements are written and read in the order of adding, after the element's own content; those for reading
/// alone are read in the same order among the others. Used on the GUI thread.
class DATAVIEWS_PLATFORM_SERIALIZE_EXPORT Serializer : public SerializerInterface
{
public:
    /// \p name must be a valid XML name.
    explicit Serializer(std::string name);
    Serializer(const Serializer&) = delete;
    Serializer& operator=(const Serializer&) = delete;
    ~Serializer() override;

    void serialize(QDomElement& parent) const override;
    void deserialize(const QDomElement& parent) override;
    [[nodiscard]] std::string name() const override;
    void addSubElement(boost::shared_ptr<SerializerInterface> serializer) override;
    void replaceSubElement(boost::shared_ptr<SerializerInterface> serializer) override;
    void addDeserializeOnlySubElement(boost::shared_ptr<SerializerInterface> serializer) override;

    /// Whether some serializer is reading now: true from the beginning of the outermost deserialize() to its end,
    /// however it ends.
    [[nodiscard]] static bool isInMiddleOfDeserialization();

protected:
    /// Writes the element's own content; nothing by default.
    virtual void serializeSelf(QDomElement& element) const;

    /// Reads the element's own content; nothing by default.
    virtual void deserializeSelf(const QDomElement& element);

private:
    struct SubElement
    {
        boost::shared_ptr<SerializerInterface> serializer;
        bool isReadOnly;
    };

    std::string m_name;
    std::vector<SubElement> m_subElements;
};
