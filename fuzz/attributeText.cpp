// Any text as the value of an attribute of each kind: read, written, checked and compared.

#include "apiMgmt/apiStub/base/filters/apiAttributeFilter.h"
#include "apiMgmt/apiStub/base/methodReturns/apiMethodError.h"
#include "fuzz/fuzzTarget.h"
#include "testbed/sampleClasses.h"

namespace {

void judge(const BASEApiAttribute& attribute, const std::string& text) {
    try {
        attribute.Validate(text);
    } catch (const APIMethodError&) {
        // what it is there for
    }
    for (int type = 0; type <= 9; ++type) {
        attribute.ApplyFilter({attribute.GetXmlName(), FILTERType{type}, text}, text);
    }
}

}  // namespace

void drive(std::string_view bytes) {
    const std::string text(bytes);
    APISample sample;
    for (const BASEApiAttribute* attribute : sample.GetAttributeList()) {
        judge(*attribute, text);
        sample.PutStringDirect(attribute->GetXmlName(), text);
    }
    // What no kind can hold is lost in the first two rounds; then nothing may change any more.
    rewrite(sample);
    rewrite(sample);
    const auto settled = sample.AllValues();
    rewrite(sample);
    require(sample.AllValues() == settled);
}
