#pragma once

#include "apiMgmt/apiStub/base/apiObjects/base/baseApiObject.h"
#include "apiMgmt/apiStub/base/methodReturns/objectListMethodReturn.h"

/// A return that carries API objects ("ReturnObject", "ReturnObjectArray").
///
/// In the XML encoding each object stands as its own element. In the other encodings objects
/// of one class that follow each other share a section, an element named after the class:
///
///     <TarnServer><Header>InstanceId,InstanceName</Header><Data>7,left
///     8,right</Data></TarnServer>
///
/// The header names the attributes that any of them has set. In the data, "--cm--" stands for
/// a comma, "--nl--" for a line feed or another control character, "--cl--" for a colon. An
/// attribute that is set to the empty text looks like one that is not set, and reads back so.
class COMPObjectMethodReturn : public OBJECTListMethodReturn<BASEApiObject> {
public:
    explicit COMPObjectMethodReturn(bool isArray);
    COMPObjectMethodReturn(bool isArray, bool successful, BASEApiMethod* method);

    std::string GetReturnString(ObjectReturnEncodeEnum encode) const override;

    /// Appends the objects that stand below `element`, in either encoding; a single return
    /// takes the first. A class that no registry knows gives no object. False when the data have
    /// more fields than an XML document may have elements: they would cost as much.
    bool ReadObjects(const parser::XMLElement& element);

private:
    void ReadLines(const BASEApiObject& sample, const APIAttributeList& columns,
                   const std::string& text);
};
