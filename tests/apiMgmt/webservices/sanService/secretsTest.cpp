// What the service copied of a request's secrets is overwritten before the memory goes back: every
// piece that the program gives up is searched.
#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdlib>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "apiMgmt/webservices/sanService/pluginEntry.h"
#include "testbed/fakeServiceDatabase.h"
#include "tests/apiMgmt/webservices/sanService/contract/wire.h"

namespace {

constexpr std::string_view kMarker = "SecretMarkerThatIsLongEnough";
// The same as base64, twice, which is how credentials travel.
constexpr std::string_view kEncoded = "VTJWamNtVjBUV0Z5YTJWeVZHaGhkRWx6VEc5dVowVnViM1ZuYUE9PQ==";

bool gSearching = false;
int gFound = 0;

void search(void* memory) {
    if (memory != nullptr && gSearching) {
        const std::string_view bytes(static_cast<const char*>(memory),
                                     ::malloc_usable_size(memory));
        gFound += bytes.find(kMarker) != std::string_view::npos ? 1 : 0;
    }
}

TEST(Secrets, AreOverwrittenWhenTheRequestEnds) {
    fakeServiceDatabase::setPort(1);  // where nobody listens
    const wire::Context context(soap_new());
    const std::string marker(kMarker);
    const std::string request = wire::envelope(
        "<s:AddHccToSan><sanId>s</sanId><hccId>c</hccId><hccKey>" + marker + "</hccKey>" +
            "<cfmIpAddresses><ipAddress type='ipv4'><ipv4Addr>10.0.0.1</ipv4Addr></ipAddress>"
            "<port>1</port></cfmIpAddresses></s:AddHccToSan>",
        "<e:Header><s:HccApiHeader><xsdVersion version='2.3'/><userPass>" + std::string(kEncoded) +
            "</userPass><authToken>" + marker + "</authToken></s:HccApiHeader></e:Header>");
    const std::string reply = wire::answer(*context, request, [&] {
        gSearching = true;
        SANServiceHandler(context.get());
        gSearching = false;
    });
    // It came as far as to the API manager's door.
    EXPECT_NE(std::string::npos, reply.find("Received Invalid/NULL response")) << reply;
    EXPECT_EQ(0, gFound);
}

TEST(Secrets, TheSearchFindsWhatStays) {
    gSearching = true;
    std::string(kMarker).append("...");
    gSearching = false;
    EXPECT_LT(0, std::exchange(gFound, 0));
}

}  // namespace

void* operator new(std::size_t size) {
    void* const memory = std::malloc(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size);
}

void operator delete(void* memory) noexcept {
    search(memory);
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}
