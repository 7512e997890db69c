#pragma once

#include <map>
#include <string>

#include "apiMgmt/apiStub/base/apiAttributes/baseApiAttribute.h"

namespace parser {
class XMLElement;
}

/// The attribute values of one object, record or method: texts by XML name. An attribute is set
/// when there is an entry for it, be it the empty text.
class ATTRIBUTEValues {
public:
    using ValueMap = std::map<std::string, std::string>;

    ATTRIBUTEValues() = default;
    explicit ATTRIBUTEValues(ValueMap values);

    /// Copies the stored text into `value`; false, and `value` untouched, when it is unset.
    bool GetStringDirect(const std::string& name, std::string& value) const;
    /// The stored text, empty when unset. Lives until that value is stored again.
    const std::string& GetStringDirect(const std::string& name) const;
    /// Stores or replaces, exactly as given.
    void PutStringDirect(const std::string& name, std::string value);

    bool IsAttributeSet(const std::string& name) const;
    bool IsAttributeSet(const BASEApiAttribute* attribute) const;

    const ValueMap& AllValues() const { return m_values; }

    // What the typed accessors of attribute rows go through.
    const std::string& LoadText(const std::string& name) const { return GetStringDirect(name); }
    void StoreText(const std::string& name, std::string text) {
        PutStringDirect(name, std::move(text));
    }

protected:
    ~ATTRIBUTEValues() = default;
    ATTRIBUTEValues(const ATTRIBUTEValues&) = default;
    ATTRIBUTEValues& operator=(const ATTRIBUTEValues&) = default;
    ATTRIBUTEValues(ATTRIBUTEValues&&) = default;
    ATTRIBUTEValues& operator=(ATTRIBUTEValues&&) = default;

    /// Overwrites all values; the object is of no use afterwards.
    void ClearSecrets() noexcept;

    /// The attribute with that XML name, or null. It lives as long as the process.
    static const BASEApiAttribute* FindAttribute(const APIAttributeList& attributes,
                                                 const std::string& name);
    /// Appends an element for each set attribute, in list order; with `unsetToo` an empty one for
    /// each other.
    void AppendElements(std::string& xml, const APIAttributeList& attributes, bool escape,
                        bool unsetToo = false) const;
    /// Stores the content of each child element under its tag, known or not. Null has none.
    void StoreChildren(const parser::XMLElement* element);

private:
    ValueMap m_values;
};
