// Any text as a method-object, alone and in a list.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "tests/apiMgmt/apiStub/base/sampleClasses.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    APISample::APISampleAddMethod method;
    method.PutStringDirect("Records", text);
    method.GetRecords();

    APISampleRecord record;
    if (!record.Parse(text))
        return 0;
    const std::string written = record.ToXMLString(true);
    APISampleRecord copy;
    if (!copy.Parse(written) || copy.ToXMLString(true) != written)
        std::abort();
    method.SetRecords({&copy, &record});
    if (method.GetRecords().size() != 2)
        std::abort();
    return 0;
}
