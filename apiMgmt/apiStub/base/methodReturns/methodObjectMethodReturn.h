#pragma once

#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethodObject.h"
#include "apiMgmt/apiStub/base/methodReturns/objectListMethodReturn.h"

/// A return that carries method-objects ("ReturnMethodObject", "ReturnMethodObjectArray").
class METHODObjectMethodReturn : public OBJECTListMethodReturn<BASEApiMethodObject> {
public:
    explicit METHODObjectMethodReturn(bool isArray);
    METHODObjectMethodReturn(bool isArray, bool successful, BASEApiMethod* method);

    std::string GetReturnString(ObjectReturnEncodeEnum encode) const override;

    /// Appends the method-objects that stand below `element`; a single return takes the first.
    /// A record that no registry knows gives none.
    void ReadObjects(const parser::XMLElement& element);
};
