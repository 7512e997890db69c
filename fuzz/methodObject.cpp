// Any text as a method-object, alone and in a list.

#include "fuzz/fuzzTarget.h"
#include "testbed/sampleClasses.h"

void drive(std::string_view bytes) {
    const std::string text(bytes);
    APISample::APISampleAddMethod method;
    method.PutStringDirect("Records", text);
    method.GetRecords();

    APISampleRecord record;
    if (!record.Parse(text)) {
        return;
    }
    const std::string written = record.ToXMLString(true);
    APISampleRecord copy;
    require(copy.Parse(written) && copy.ToXMLString(true) == written);
    method.SetRecords({&copy, &record});
    require(method.GetRecords().size() == 2);
}
