// Any bytes as a body that the module reads: however it is cut into buckets, the same comes of it
// as of one piece, and the engine gets it as it was sent.
#include <httpd.h>

#include <apr_buckets.h>
#include <http_core.h>
#include <http_protocol.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <deque>

#include "fuzz/fuzzTarget.h"

// The library's own for C++ looks into a null pointer.
#undef APR_OFFSETOF
#define APR_OFFSETOF(type, field) offsetof(type, field)

// As in host/modGsoap.h, which is C.
extern "C" {
int soapReadBody(request_rec* r, apr_bucket_brigade* body, const char** refusal);
size_t soapTakeBody(apr_bucket_brigade* body, char* target, size_t room);
}

namespace {

constexpr apr_off_t kLimit = 16384;
constexpr std::size_t kFreePieces = 1024;  // that any body may come in
constexpr std::array<std::size_t, 8> kSizes = {1, 2, 31, 33, 2047, 2048, 8001, kLimit * 8};

struct Body {
    std::string_view plan;  // a byte for each bucket, again and again: its size and kind
    std::string_view left;
    std::size_t pieces = 0;
    std::deque<std::string> lent;  // gone when the next are asked for
    int status = OK;
    const char* refusal = nullptr;
};

Body readBody(std::string_view plan, const std::string& sent) {
    apr_pool_t* pool = nullptr;
    require(apr_pool_create(&pool, nullptr) == APR_SUCCESS);
    Body body;
    body.plan = plan;
    body.left = sent;
    ap_filter_t filter{};
    filter.ctx = &body;
    conn_rec connection{};
    connection.bucket_alloc = apr_bucket_alloc_create(pool);
    request_rec request{};
    request.pool = pool;
    request.connection = &connection;
    request.input_filters = &filter;
    request.headers_in = apr_table_make(pool, 1);
    apr_table_set(request.headers_in, plan.size() % 2 == 1 ? "Content-Length" : "Transfer-Encoding",
                  std::to_string(sent.size()).c_str());
    apr_bucket_brigade* kept = apr_brigade_create(pool, connection.bucket_alloc);
    body.status = soapReadBody(&request, kept, &body.refusal);
    body.lent.clear();
    std::string room(kSizes[plan.size() % kSizes.size()], '\0');
    std::string taken;
    while (const std::size_t size = soapTakeBody(kept, room.data(), room.size())) {
        taken.append(room, 0, size);
    }
    require(body.status != OK || (taken == sent && sent.size() <= kLimit));
    apr_pool_destroy(pool);
    return body;
}

}  // namespace

// What the server and the module's other files offer.
extern "C" {
module_struct gsoap_module{};  // NOLINT(readability-identifier-naming): the server's
}
apr_off_t ap_get_limit_req_body(const request_rec* /*r*/) {
    return kLimit;
}
int ap_map_http_request_error(apr_status_t /*failure*/, int status) {
    return status;
}
int ap_parse_strict_length(apr_off_t* length, const char* text) {
    *length = std::atoll(text);
    return 1;
}
apr_status_t ap_get_brigade(ap_filter_t* filter, apr_bucket_brigade* part, ap_input_mode_t /*mode*/,
                            apr_read_type_e /*block*/, apr_off_t /*size*/) {
    auto& body = *static_cast<Body*>(filter->ctx);
    apr_bucket_alloc_t* list = part->bucket_alloc;
    body.lent.clear();
    unsigned step = kSizes.size() - 1;
    do {
        if (!body.plan.empty()) {
            step = static_cast<unsigned char>(body.plan[body.pieces % body.plan.size()]);
        }
        const auto& data = body.lent.emplace_back(body.left.substr(0, kSizes[step % 8]));
        body.left.remove_prefix(data.size());
        ++body.pieces;
        apr_bucket* bucket = apr_bucket_transient_create(data.data(), data.size(), list);
        if ((step & 8U) != 0) {
            apr_bucket_setaside(bucket, part->p);
        }
        APR_BRIGADE_INSERT_TAIL(part, bucket);
        if ((step & 16U) != 0) {
            APR_BRIGADE_INSERT_TAIL(part, apr_bucket_flush_create(list));
        }
    } while ((step & 32U) != 0 && !body.left.empty());
    if (body.left.empty()) {
        APR_BRIGADE_INSERT_TAIL(part, apr_bucket_eos_create(list));
    }
    return APR_SUCCESS;
}

void drive(std::string_view bytes) {
    static const bool kStarted = apr_initialize() == APR_SUCCESS;
    const auto first = bytes.empty() ? 0U : static_cast<unsigned char>(bytes[0]);
    bytes.remove_prefix(std::min<std::size_t>(1, bytes.size()));
    const std::string_view plan = bytes.substr(0, first % 16);
    std::string sent;
    for (unsigned times = 0; times <= first / 16 % 8; ++times) {
        sent += bytes.substr(plan.size());
    }
    const Body whole = readBody({}, sent);
    const Body cut = readBody(plan, sent);
    require(kStarted);
    if (sent.size() <= kLimit && cut.pieces <= kFreePieces) {
        require(cut.status == whole.status && cut.refusal == whole.refusal);
    }
}
