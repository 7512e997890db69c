// What is refused before the engine reads it, whatever the pieces in which it comes.
#include "apiMgmt/webservices/sanService/requestScan.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/repeated.h"

namespace {

using namespace std::string_literals;

std::string scanned(const std::string& request, std::size_t piece) {
    RequestScan scan;
    for (std::size_t at = 0; at < request.size(); at += piece) {
        scan.add(std::string_view(request).substr(at, piece));
    }
    return scan.refusal() != nullptr ? scan.refusal() : "";
}

TEST(RequestScan, RefusesWhatTheEngineWouldLetPass) {
    const std::string characters = "Request contains characters that XML does not allow";
    const std::string entity = "Request refers to an entity that is not defined";
    const std::string markup = "Request contains markup that is not XML";
    const std::string attributes = "Request has too many attributes";
    const std::string deep = "Request nests elements more than 64 levels deep";
    const struct {
        std::string request, refusal;
    } cases[] = {
        // clang-format off
        {"<a/>", ""}, {"\xEF\xBB\xBF \r\n<a>\x01\x1f\x7f</a>", ""},
        {"<a>&lt;&gt;&amp;&quot;&apos;&#1;&#x1F;&#000000065;&#xfffd;&#x10fFfF;</a>", ""},
        {"<a b='>' c=\"/>'\">&amp;<!-- & &#0; ]]> - --><![CDATA[& &x; </a>]]]></a>", ""},
        {"<?xml version='1.0'?><a>]]></a>", ""},
        {"<a>\0</a>"s, characters}, {"<a b='\0'/>"s, characters}, {"<!--\0--><a/>"s, characters},
        {"<a>&#0;</a>", characters}, {"<a b='&#xD800;'/>", characters},
        {"<a>&#65535;</a>", characters}, {"<a>&#1114112;</a>", characters},
        {"<a>&#99999999999999999999;</a>", characters}, {"<a>\xC3</a>", characters},
        {"<a>\xC0\x80</a>", characters}, {"<a\xFF/>", characters}, {"<\xEF\xBF\xBE/>", characters},
        {"<a>\x7f\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBD\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", ""},
        {"<a>\xE0\x9F\xBF", characters}, {"<a>\xED\xA0\x80", characters}, {"<a>\xED\xBF\xBF", characters},
        {"<a>\xEF\xBF\xBF", characters}, {"<a>\xF0\x8F\xBF\xBF", characters}, {"<a>\xF4\x90\x80\x80", characters},
        {"<a>&nbsp;</a>", entity}, {"<a>&;</a>", entity}, {"<a>& b</a>", entity},
        {"<a>&LT;</a>", entity}, {"<a>&#;</a>", characters}, {"<a>&#x;</a>", characters},
        {"<a>&#X41;</a>", entity}, {"<a>&#4A;</a>", entity}, {"<a>&\xC3\xA9;</a>", entity},
        {"<a b='<!--'>&#0;</a>", markup}, {"<a <b/>", markup}, {"<a & b/>", markup}, {"<!-a>", markup},
        {"<?a &x;?><a/>", markup}, {"<!DOCTYPE a><a/>", "Request contains a document type declaration"},
        {repeated("<a>", 64), ""}, {repeated("<a>", 65), deep},
        {repeated("<a>", 63) + "<b/><b/><b>x</b><b/>", ""}, {repeated("<a>", 64) + "<b/>", deep},
        {"<a" + repeated(" b=''", 64) + "/>", ""}, {"<a" + repeated(" b=''", 65) + "/>", attributes},
        {"<x>" + repeated("<a" + repeated(" b=''", 64) + "/>", 64), ""},
        {"<x>" + repeated("<a" + repeated(" b=''", 64) + "/>", 65), attributes},
        {"<a b='<'/>", markup}, {"<a b=c/>", markup}, {"<a>&lt</a>", entity}, {"<!-- -- --><a/>", markup},
        {"<a " + repeated("b#='' ", 24) + "/>", ""},
        {"<a " + repeated("b#='' ", 25) + "/>", "Request has too many different attributes"},
        {"<a " + repeated("xmlns:b#='' ", 48) + "/>", ""},
        {"<a " + repeated("xmlns:b#='' ", 49) + "/>", "Request declares too many namespaces"},
        {"<a " + std::string(120, 'b') + "=''/>", ""},
        {"<a " + std::string(121, 'b') + "=''/>", "Request has an attribute with too long a name"},
        {"<a>" + std::string(RequestScan::kMaxBytes - 3, 'x'), ""},
        {"<a>" + std::string(RequestScan::kMaxBytes - 2, 'x'), "Request is longer than 131072 bytes"},
        {"POST / HTTP/1.1\r\n\r\n<a>&x;</a>", ""},
        // clang-format on
    };
    for (const auto& [request, refusal] : cases) {
        for (const std::size_t piece : {request.size(), std::size_t{1}, std::size_t{3}}) {
            EXPECT_EQ(refusal, scanned(request, piece)) << request.substr(0, 80) << ' ' << piece;
        }
    }
}

TEST(RequestScan, JudgesEachCharacterOfUnicode) {
    for (std::uint32_t point = 0; point <= 0x110000; ++point) {
        const bool refused = point == 0 || (point >= 0xD800 && point <= 0xDFFF) ||
                             point == 0xFFFE || point == 0xFFFF || point > 0x10FFFF;
        const std::string reference = "<a>&#" + std::to_string(point) + ";</a>";
        ASSERT_EQ(refused, !scanned(reference, reference.size()).empty()) << point;
    }
}

}  // namespace
