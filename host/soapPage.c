/* The counts for a person: a page of its own, and a part of the server's status page. */
#include "host/soapStatus.h"

#include <apr_strings.h>
#include <http_protocol.h>
#include <mod_status.h>

#define MILLISECONDS 1e6
#define SECONDS 1e9

static const char kHead[] =
    "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
    "<meta name=\"viewport\" content=\"width=device-width\">"
    "<meta http-equiv=\"refresh\" content=\"10\"><title>SOAP service</title><style>"
    "body{font:16px/1.5 sans-serif;margin:1rem auto;max-width:60rem;padding:0 1rem;color:#111;"
    "background:#fff}table{border-collapse:collapse;margin:1rem 0;width:100%}"
    "caption{text-align:left;font-weight:bold}th,td{border:1px solid #767676;"
    "padding:.2rem .6rem;text-align:left}td{text-align:right}"
    ".bad{background:#a00;color:#fff;padding:.3rem .6rem}</style></head><body>"
    "<h1>SOAP service</h1>\n";

static uint64_t countOf(const struct soapHistogram* histogram) {
    uint64_t count = 0;
    for (int i = 0; i < kSoapBuckets; ++i) {
        count += histogram->buckets[i];
    }
    return count;
}

/* The end in seconds of the bucket in which this share of all calls has ended. */
static const char* quantile(const struct soapHistogram* histogram, double share) {
    const double wanted = share * (double)countOf(histogram);
    uint64_t sum = 0;
    int bucket = 0;
    while (bucket < kSoapBuckets - 1 && (double)(sum += histogram->buckets[bucket]) < wanted) {
        ++bucket;
    }
    return kSoapBucketTexts[bucket];
}

static void writeTimes(request_rec* r, const char* what, const struct soapHistogram* histogram) {
    const uint64_t count = countOf(histogram);
    if (count > 0) {
        ap_rprintf(r,
                   "<tr><th scope=\"row\">%s</th><td>%.3f ms on average</td>"
                   "<td>half within %s s</td><td>99 %% within %s s</td></tr>\n",
                   what, (double)histogram->sum / (double)count / MILLISECONDS,
                   quantile(histogram, 0.5), quantile(histogram, 0.99));
    }
}

static void writeOperation(request_rec* r, const struct soapOperationView* view) {
    if (view->calls == 0 && view->inProgress == 0) {
        return;
    }
    ap_rprintf(r, "<table><caption>%s</caption>\n", ap_escape_html(r->pool, view->name));
    for (int i = 0; i < kSoapOutcomes; ++i) {
        if (view->outcomes[i] > 0) {
            ap_rprintf(r,
                       "<tr><th scope=\"row\">%s</th><td colspan=\"3\">%" APR_UINT64_T_FMT
                       "</td></tr>\n",
                       kSoapOutcomeNames[i], view->outcomes[i]);
        }
    }
    if (view->inProgress > 0) {
        ap_rprintf(r,
                   "<tr><th scope=\"row\">at work</th><td>%u</td><td colspan=\"2\">oldest %.1f s"
                   "</td></tr>\n",
                   view->inProgress, view->oldest);
    }
    writeTimes(r, "whole call", &view->whole);
    writeTimes(r, "of that the array", &view->array);
    ap_rputs("</table>\n", r);
}

static void writeService(request_rec* r, const struct soapServiceView* service) {
    const char* path = ap_escape_html(r->pool, service->counts->path);
    ap_rprintf(r, "<h2>%s</h2>\n", path);
    if (service->trouble) {
        ap_rprintf(r, "<p class=\"bad\">The array does not answer: %s.</p>\n", service->trouble);
    }
    ap_rprintf(r,
               "<p>%u calls at work, %u of them wait for the array; the oldest began %.1f s ago."
               " %" APR_UINT64_T_FMT " lines lost for the system log.</p>\n",
               service->inProgress, service->waiting, service->oldest,
               service->counts->lostLogLines);
    for (int i = 0; i < service->operations->nelts; ++i) {
        writeOperation(r, &APR_ARRAY_IDX(service->operations, i, struct soapOperationView));
    }
    ap_rputs("<table><caption>Refused before the service saw them</caption><tr>", r);
    for (int i = 0; i < kSoapRefusals; ++i) {
        ap_rprintf(r, "<th scope=\"col\">%s</th>", kSoapRefusalNames[i]);
    }
    ap_rputs("</tr><tr>", r);
    for (int i = 0; i < kSoapRefusals; ++i) {
        ap_rprintf(r, "<td>%" APR_UINT64_T_FMT "</td>", service->counts->refused[i]);
    }
    ap_rputs("</tr></table>\n", r);
}

void soapSendPage(request_rec* r, const apr_array_header_t* services) {
    ap_set_content_type(r, "text/html; charset=utf-8");
    apr_table_setn(r->headers_out, "Content-Security-Policy",
                   "default-src 'none'; style-src 'unsafe-inline'; frame-ancestors 'none'");
    ap_rputs(kHead, r);
    ap_rprintf(r, "<p>Counted for %.0f seconds.</p>\n",
               (double)(soapNow() - soapAllCounts()->started) / SECONDS);
    for (int i = 0; i < services->nelts; ++i) {
        writeService(r, &APR_ARRAY_IDX(services, i, struct soapServiceView));
    }
    ap_rputs("</body></html>\n", r);
}

static void writeForPrograms(request_rec* r, const struct soapServiceView* service) {
    ap_rprintf(r,
               "SoapLocation: %s\nSoapCalls: %" APR_UINT64_T_FMT "\nSoapBusy: %" APR_UINT64_T_FMT
               "\nSoapCallsInProgress: %u\nSoapCallsWaiting: %u\nSoapOldestCall: %.3f\n"
               "SoapArrayAnswers: %d\n",
               service->counts->path, service->calls, service->counts->refused[kSoapBusy],
               service->inProgress, service->waiting, service->oldest, service->trouble == NULL);
}

static void writeForPeople(request_rec* r, const struct soapServiceView* service) {
    ap_rprintf(r,
               "<dt>%s: %" APR_UINT64_T_FMT " calls, %" APR_UINT64_T_FMT
               " answered with 503; %u at work, the oldest for %.1f s</dt>\n",
               ap_escape_html(r->pool, service->counts->path), service->calls,
               service->counts->refused[kSoapBusy], service->inProgress, service->oldest);
    if (service->trouble) {
        ap_rprintf(r,
                   "<dt style=\"background:#a00;color:#fff\">The array does not answer: %s</dt>\n",
                   service->trouble);
    }
}

int soapExtendStatus(request_rec* r, int flags) {
    const apr_array_header_t* services = soapViewServices(r->pool);
    const int isForPrograms = (flags & AP_STATUS_SHORT) != 0;
    ap_rputs(isForPrograms ? "" : "<hr />\n<h2>SOAP service</h2>\n<dl>\n", r);
    for (int i = 0; i < services->nelts; ++i) {
        const struct soapServiceView* service = &APR_ARRAY_IDX(services, i, struct soapServiceView);
        (isForPrograms ? writeForPrograms : writeForPeople)(r, service);
    }
    ap_rputs(isForPrograms ? "" : "</dl>\n", r);
    return OK;
}
