#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class APIAttributeFilter;

/// Describes one value that travels to or from the management API: its names, its kind, its
/// bounds, and how its text is tested. The value itself is kept as text by the object, record or
/// method that owns it. A typed kind adds `ToString` and `ParseString`.
///
/// Attributes are declared with one row each (see attributeRow.h) and live as long as the
/// process. They never change, so any number of threads may share them.
class BASEApiAttribute {
public:
    /// What a declaration says about an attribute.
    class BASEAttributeProperties {
    public:
        BASEAttributeProperties(std::string xmlName, std::int32_t code, bool firstFlag,
                                bool secondFlag, std::string displayName);
        BASEAttributeProperties(std::string xmlName, std::int32_t code, bool firstFlag,
                                std::string displayName);
        BASEAttributeProperties(const BASEAttributeProperties&) = delete;
        BASEAttributeProperties& operator=(const BASEAttributeProperties&) = delete;
        virtual ~BASEAttributeProperties();

        /// Element name in documents and key under which the value is stored.
        const std::string& GetXmlName() const { return m_xmlName; }
        /// The code and the flags are kept as declared; nothing here interprets them.
        std::int32_t GetCode() const { return m_code; }
        bool GetFirstFlag() const { return m_firstFlag; }
        bool GetSecondFlag() const { return m_secondFlag; }
        /// What messages call the attribute.
        const std::string& GetDisplayName() const { return m_displayName; }

    private:
        std::string m_xmlName;
        std::int32_t m_code;
        bool m_firstFlag;
        bool m_secondFlag;
        std::string m_displayName;
        // A slot of the record's form; never used.
        [[maybe_unused]] const void* m_reserved = nullptr;
    };

    /// Owns `properties`. Throws APIMethodError when they are null.
    explicit BASEApiAttribute(std::unique_ptr<const BASEAttributeProperties> properties);
    /// With a plain record. The constructor of all kinds that have no bounds.
    BASEApiAttribute(const std::string& xmlName, std::int32_t code, bool firstFlag,
                     const std::string& displayName);
    BASEApiAttribute(const BASEApiAttribute&) = delete;
    BASEApiAttribute& operator=(const BASEApiAttribute&) = delete;
    virtual ~BASEApiAttribute();

    /// True when the text is an acceptable value; throws APIMethodError (state ParsingError)
    /// when it is not. Kinds without bounds accept every text.
    virtual bool Validate(const std::string& value) const;

    /// Whether an object whose attribute has this text passes the condition. An empty value
    /// never does, nor does any under an operator that the kind does not know. A kind without
    /// a rule of its own compares its whole text as matchesText (filterMatching.h) says.
    virtual bool ApplyFilter(const APIAttributeFilter& filter, const std::string& value) const = 0;

    const BASEAttributeProperties& GetProperties() const { return *m_properties; }
    const std::string& GetXmlName() const { return m_properties->GetXmlName(); }
    const std::string& GetDisplayName() const { return m_properties->GetDisplayName(); }

private:
    std::unique_ptr<const BASEAttributeProperties> m_properties;
};

/// The attributes of a class in their stated order; the pointers live as long as the process.
using APIAttributeList = std::vector<const BASEApiAttribute*>;
